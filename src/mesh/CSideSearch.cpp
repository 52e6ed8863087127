#include "mesh/CSideSearch.h"

#include <algorithm>
#include <cmath>
#include <map>
#include <optional>
#include <utility>

#include "base/ExportProgress.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

// Farther than any lattice is wide.
constexpr double kEverywhere = 4096.0;
// The share of finding out what there is.
constexpr double kPrepared = 0.4;
// Some milliseconds' work.
constexpr std::size_t kCopiesAtOnce = std::size_t{1} << 12;

}  // namespace

// False where the steps do not go on.
bool CSideSearch::Prepare(const CExportSteps& steps) {
  constexpr double kPlanes = 0.1;
  constexpr double kFosters = 0.5;
  constexpr double kEnds = 0.6;
  constexpr double kNodes = 0.7;
  NumberKnown();
  if (!steps.Goes(kPlanes / 2)) return false;
  m_aPoints.reserve(m_Patch.Triangles().VertexCount());
  for (std::uint32_t v = 0; v < m_Patch.Triangles().VertexCount(); ++v)
    m_aPoints.push_back({m_Patch.ColumnOf(v), m_Patch.RowOf(v)});
  const std::size_t triangles = m_Patch.Triangles().Triangles().size();
  const auto findPlanes = [this](std::size_t begin, std::size_t end) { FindPlanes(begin, end); };
  const auto makeNodes = [this](std::size_t begin, std::size_t end) { MakeNodes(begin, end); };
  m_aGifts.resize(triangles);
  m_aPlanes.reserve(triangles);
  if (!steps.Part(kPlanes, kFosters).ForBlocks(triangles, findPlanes)) return false;
  FindFosters();
  if (!steps.Goes(kEnds)) return false;
  m_auBefore = VerticesBeforeEnds(m_Patch.Triangles());
  if (!steps.Goes(kNodes)) return false;
  // Behind them one that is never near, in place of all that there is not.
  m_aNodes.resize(triangles + 1);
  m_aNodes.back() = {.m_auBeyond = {NoNode(), NoNode(), NoNode()}, .m_afLeast = {HUGE_VALF, HUGE_VALF}};
  m_auQueue.resize(triangles + 1);
  return steps.Part(kNodes, 1).ForBlocks(triangles, makeNodes);
}

void CSideSearch::FindAll(bool planes, const CExportSteps& steps) {
  if (!Prepare(steps.Part(0, kPrepared))) return;
  m_auTermAt.resize(m_Found.m_auKnown.size());
  const std::vector<bool> atCut = planes ? CopiesAtCuts() : std::vector<bool>(m_Sides.CopyCount());
  m_Found.m_auRows.assign(m_Sides.CopyCount(), kNone);
  const auto continueSome = [&](std::size_t begin, std::size_t end) {
    for (auto copy = static_cast<std::uint32_t>(begin); copy < end; ++copy) {
      if (!m_Sides.IsKnown(copy) || atCut[copy]) Continue(copy, atCut[copy]);
    }
  };
  steps.Part(kPrepared, 1).ForBlocks(m_Sides.CopyCount(), continueSome, kCopiesAtOnce);
}

void CSideSearch::NumberKnown() {
  for (std::uint32_t copy = 0; copy < m_Sides.CopyCount(); ++copy) {
    const bool known = m_Sides.IsKnown(copy);
    m_Found.m_auKnownAt.push_back(known ? static_cast<std::uint32_t>(m_Found.m_auKnown.size()) : kNone);
    if (known) m_Found.m_auKnown.push_back(m_Patch.MeshVertex(m_Sides.VertexOf(copy)));
  }
}

std::vector<bool> CSideSearch::CopiesAtCuts() const {
  const auto triangles = m_Patch.Triangles().Triangles();
  std::vector<bool> atCut(m_Sides.CopyCount());
  for (std::uint32_t t = 0; t < triangles.size(); ++t) {
    for (std::uint32_t k = 0; k < 3; ++k) {
      if (triangles[t].m_abCut[k]) atCut[m_Sides.CopyOf(t, k)] = atCut[m_Sides.CopyOf(t, (k + 1) % 3)] = true;
    }
  }
  return atCut;
}

void CSideSearch::FindPlanes(std::size_t begin, std::size_t end) {
  for (auto t = static_cast<std::uint32_t>(begin); t < end; ++t) {
    const std::optional<CSidePlane> plane = SidePlaneOf(m_Patch, m_Sides, t);
    m_aGifts[t].m_uPlane = plane ? static_cast<std::uint32_t>(m_aPlanes.size()) : kNone;
    if (plane) m_aPlanes.push_back(*plane);
  }
}

// Pieces that have no plane of their own borrow from a neighbour that has, or that has borrowed already.
void CSideSearch::FindFosters() {
  const auto triangles = m_Patch.Triangles().Triangles();
  std::vector<bool> provided(m_Sides.PieceCount());
  for (std::uint32_t t = 0; t < triangles.size(); ++t) {
    if (m_aGifts[t].m_uPlane != kNone) provided[m_Sides.PieceOf(t)] = true;
  }
  m_auFosters.assign(m_Sides.PieceCount(), kNone);
  for (bool found = true; found;) {
    std::map<std::pair<std::uint32_t, std::uint32_t>, double> shared;
    for (std::uint32_t t = 0; t < triangles.size(); ++t) {
      const std::uint32_t piece = m_Sides.PieceOf(t);
      if (provided[piece]) continue;
      for (std::size_t k = 0; k < 3; ++k) {
        const std::uint32_t beyond = triangles[t].m_auNeighbours[k];
        if (beyond == kNone || !triangles[t].m_abCut[k] || !provided[m_Sides.PieceOf(beyond)]) continue;
        const auto& v = triangles[t].m_auVertices;
        shared[{piece, m_Sides.PieceOf(beyond)}] +=
            m_Patch.Plane().Distance(m_Patch.Triangles().Place(v[k]), m_Patch.Triangles().Place(v[(k + 1) % 3]));
      }
    }
    std::vector<double> most(m_Sides.PieceCount(), 0.0);
    for (const auto& [pieces, length] : shared) {
      provided[pieces.first] = true;
      if (length <= most[pieces.first]) continue;
      most[pieces.first] = length;
      m_auFosters[pieces.first] = pieces.second;
    }
    found = !shared.empty();
  }
}

void CSideSearch::MakeNodes(std::size_t begin, std::size_t end) {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  for (auto t = static_cast<std::uint32_t>(begin); t < end; ++t) {
    const auto& triangle = triangles.Triangle(t);
    CNode& node = m_aNodes[t];
    for (std::uint32_t k = 0; k < 3; ++k) {
      const CSidePoint& p = m_aPoints[triangle.m_auVertices[k]];
      const std::array place{static_cast<float>(p.x), static_cast<float>(p.y)};
      for (std::size_t axis = 0; axis < place.size(); ++axis) {
        node.m_afLeast[axis] = k == 0 ? place[axis] : std::min(node.m_afLeast[axis], place[axis]);
        node.m_afMost[axis] = k == 0 ? place[axis] : std::max(node.m_afMost[axis], place[axis]);
      }
      m_aGifts[t].m_auKnown[k] = m_Found.m_auKnownAt[m_Sides.CopyOf(t, k)];
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      const bool isWay =
          beyond != kNone && (!triangle.m_abCut[k] || m_auFosters[m_Sides.PieceOf(t)] == m_Sides.PieceOf(beyond));
      node.m_auBeyond[k] = isWay ? beyond : NoNode();
    }
  }
}

void CSideSearch::StartFrom(std::uint32_t copy) {
  const std::uint32_t vertex = m_Sides.VertexOf(copy);
  m_Point = m_aPoints[vertex];
  m_uBefore = m_auBefore[vertex];
}

void CSideSearch::Continue(std::uint32_t copy, bool slopes) {
  StartFrom(copy);
  double reach = CSideHeights::kRing;
  LookAround(copy, reach);
  while (m_afWeights[0] + m_afWeights[1] == 0.0 && reach < kEverywhere) {
    reach *= 2.0;
    LookAround(copy, reach);
  }
  AddRow(copy, slopes);
}

// All triangles of the side that come as near as that, into the queue. Each is looked at from all its neighbours, and
// without a branch: what has been seen, or is not near, is put where the next one comes.
void CSideSearch::FindNear(std::uint32_t copy, double reach) {
  const std::array least{static_cast<float>(m_Point.x - reach), static_cast<float>(m_Point.y - reach)};
  const std::array most{static_cast<float>(m_Point.x + reach), static_cast<float>(m_Point.y + reach)};
  const std::uint32_t search = ++m_uSearch;
  CNode* nodes = m_aNodes.data();
  std::uint32_t* queue = m_auQueue.data();
  queue[0] = m_Sides.TriangleAt(copy);
  nodes[queue[0]].m_uSeen = search;
  std::size_t count = 1;
  for (std::size_t at = 0; at < count; ++at) {
    for (const std::uint32_t beyond : nodes[queue[at]].m_auBeyond) {
      CNode& next = nodes[beyond];
      const int fresh = static_cast<int>(next.m_uSeen != search);
      const int near = static_cast<int>(next.m_afLeast[0] < most[0]) & static_cast<int>(next.m_afMost[0] > least[0]) &
                       static_cast<int>(next.m_afLeast[1] < most[1]) & static_cast<int>(next.m_afMost[1] > least[1]);
      next.m_uSeen = search;
      queue[count] = beyond;
      count += static_cast<std::size_t>(fresh & near);
    }
  }
  m_auNear = {queue, count};
}

void CSideSearch::LookAround(std::uint32_t copy, double reach) {
  FindNear(copy, reach);
  m_aTerms.clear();
  m_afWeights = {};
  for (const std::uint32_t t : m_auNear) {
    const CGift& gift = m_aGifts[t];
    for (const std::uint32_t known : gift.m_auKnown) {
      if (known != kNone) TermOf(known);
    }
    if (gift.m_uPlane != kNone) Count(m_aPlanes[gift.m_uPlane]);
  }
}

CSideSearch::CTerm& CSideSearch::TermOf(std::uint32_t known) {
  std::uint32_t& at = m_auTermAt[known];
  if (at >= m_aTerms.size() || m_aTerms[at].m_uKnown != known) {
    at = static_cast<std::uint32_t>(m_aTerms.size());
    m_aTerms.push_back({.m_uKnown = known});
  }
  return m_aTerms[at];
}

// Always the first where no cut ends.
std::size_t CSideSearch::HandOf(double dx, double dy) const {
  if (m_uBefore == kNone) return 0;
  const CSidePoint& before = m_aPoints[m_uBefore];
  return SideOfEnd({m_Point.x - before.x, m_Point.y - before.y}, dx, dy);
}

// By its distance from the middle of the triangle, and on the side of an open end that this lies on.
void CSideSearch::Count(const CSidePlane& plane) {
  const double dx = m_Point.x - plane.m_Middle.x;
  const double dy = m_Point.y - plane.m_Middle.y;
  const double weight = SideWeightAt(dx, dy);
  const std::size_t hand = HandOf(dx, dy);
  m_afWeights[hand] += weight;
  for (std::size_t k = 0; k < plane.m_auCopies.size(); ++k) {
    CTerm& term = TermOf(m_Found.m_auKnownAt[plane.m_auCopies[k]]);
    term.m_afWeight[hand] += weight * (1.0 / 3.0 + plane.m_afSlopeX[k] * dx + plane.m_afSlopeY[k] * dy);
    term.m_afSlopeX[hand] += weight * plane.m_afSlopeX[k];
    term.m_afSlopeY[hand] += weight * plane.m_afSlopeY[k];
  }
}

// The mean of each side's planes, and of the two sides.
void CSideSearch::AddRow(std::uint32_t copy, bool slopes) {
  const std::array<double, 2> share = SharesOfSides(m_afWeights);
  const auto mean = [&share](const std::array<double, 2>& sums) { return share[0] * sums[0] + share[1] * sums[1]; };
  m_Found.m_auRows[copy] = static_cast<std::uint32_t>(m_Found.m_aRows.size());
  const auto first = static_cast<std::uint32_t>(m_Found.m_aSlopes.size());
  for (const CTerm& term : m_aTerms) {
    m_Found.m_aTerms.push_back({term.m_uKnown, mean(term.m_afWeight)});
    if (slopes) m_Found.m_aSlopes.push_back({mean(term.m_afSlopeX), mean(term.m_afSlopeY)});
  }
  m_Found.m_aRows.push_back(
      {copy, static_cast<std::uint32_t>(m_Found.m_aTerms.size()), slopes ? first : CSideHeights::kNone});
}

void CSideSearch::Raise(std::span<const std::uint32_t> copies, std::span<double> heights, const CExportSteps& steps) {
  if (!Prepare(steps.Part(0, kPrepared / 2))) return;
  m_aRaised.resize(m_aGifts.size());
  const auto raiseGifts = [&](std::size_t begin, std::size_t end) { RaiseGifts(begin, end, heights); };
  if (!steps.Part(kPrepared / 2, kPrepared).ForBlocks(m_aGifts.size(), raiseGifts)) return;
  const auto raise = [&](std::size_t begin, std::size_t end) {
    for (const std::uint32_t copy : copies.subspan(begin, end - begin)) heights[copy] = HeightAt(copy);
  };
  steps.Part(kPrepared, 1).ForBlocks(copies.size(), raise, kCopiesAtOnce);
}

void CSideSearch::RaisePlane(const CSidePlane& plane, std::span<const double> heights, CRaised& raised) {
  raised.m_Middle = plane.m_Middle;
  raised.m_fCounts = 1.0;
  for (std::size_t k = 0; k < plane.m_auCopies.size(); ++k) {
    const double z = heights[plane.m_auCopies[k]];
    raised.m_Range.Add(z);
    raised.m_fZ += z / 3.0;
    raised.m_fSlopeX += plane.m_afSlopeX[k] * z;
    raised.m_fSlopeY += plane.m_afSlopeY[k] * z;
  }
}

void CSideSearch::RaiseGifts(std::size_t begin, std::size_t end, std::span<const double> heights) {
  for (auto t = static_cast<std::uint32_t>(begin); t < end; ++t) {
    for (std::uint32_t k = 0; k < 3; ++k) {
      if (m_aGifts[t].m_auKnown[k] != kNone) m_aRaised[t].m_Range.Add(heights[m_Sides.CopyOf(t, k)]);
    }
    if (m_aGifts[t].m_uPlane != kNone) RaisePlane(m_aPlanes[m_aGifts[t].m_uPlane], heights, m_aRaised[t]);
  }
}

double CSideSearch::HeightAt(std::uint32_t copy) {
  StartFrom(copy);
  CSum sum;
  for (double reach = CSideHeights::kRing;; reach *= 2.0) {
    FindNear(copy, reach);
    sum = SumOfPlanes();
    if (sum.m_afWeights[0] + sum.m_afWeights[1] > 0.0 || reach >= kEverywhere) break;
  }
  const std::array<double, 2> share = SharesOfSides(sum.m_afWeights);
  return sum.m_Range.Widened().Within(share[0] * sum.m_afSums[0] + share[1] * sum.m_afSums[1]);
}

// Those of the triangles that are near, at the point in hand.
CSideSearch::CSum CSideSearch::SumOfPlanes() const {
  CSum sum;
  for (const std::uint32_t t : m_auNear) {
    const CRaised& plane = m_aRaised[t];
    const double dx = m_Point.x - plane.m_Middle.x;
    const double dy = m_Point.y - plane.m_Middle.y;
    const double weight = plane.m_fCounts * SideWeightAt(dx, dy);
    const std::size_t hand = HandOf(dx, dy);
    sum.m_afWeights[hand] += weight;
    sum.m_afSums[hand] += weight * (plane.m_fZ + plane.m_fSlopeX * dx + plane.m_fSlopeY * dy);
    sum.m_Range.Add(plane.m_Range);
  }
  return sum;
}
