#include "mesh/CSideRaiser.h"

#include <algorithm>
#include <bit>
#include <cmath>
#include <utility>

#include "mesh/CSideSearch.h"
#include "mesh/CTearPatch.h"
#include "mesh/CTearSides.h"

namespace {

// A window has at most 7 rows and columns: the last bits of each row, and of the word, stay clear and keep what spreads
// from coming round.
constexpr int kRowBits = 8;

std::uint64_t SpreadIn(std::uint64_t from, std::uint64_t squares) {
  for (std::uint64_t before = 0; before != from;) {
    before = from;
    from |= (from << 1U | from >> 1U | from << kRowBits | from >> kRowBits) & squares;
  }
  return from;
}

// Behind all planes, where nothing counts.
constexpr double kBehindAll = 1e300;

}  // namespace

CSideRaiser::CSideRaiser(const CTearPatch& patch, const CTearSides& sides)
    : m_Patch(patch), m_Sides(sides), m_iCells(patch.Plane().Cells()) {}

void CSideRaiser::CPlanes::Begin() {
  if (m_uCount / kLanes == m_aBlocks.size()) m_aBlocks.emplace_back();
  CBlock& block = m_aBlocks[m_uCount / kLanes];
  block = {};
  block.m_afX.fill(kBehindAll);
}

std::vector<double> CSideRaiser::Raise(const std::function<double(std::uint32_t)>& meshHeights,
                                       const CExportSteps& steps) {
  constexpr double kKnown = 0.05;
  constexpr double kPrepared = 0.3;
  constexpr double kRaised = 0.9;
  constexpr std::size_t kOriginsAtOnce = std::size_t{1} << 14;
  m_afHeights.resize(m_Sides.CopyCount());
  for (std::uint32_t copy = 0; copy < m_afHeights.size(); ++copy) {
    if (m_Sides.IsKnown(copy)) m_afHeights[copy] = meshHeights(m_Patch.MeshVertex(m_Sides.VertexOf(copy)));
  }
  if (!steps.Goes(kKnown) || !Prepare(steps.Part(kKnown, kPrepared))) return std::move(m_afHeights);
  const auto raise = [this](std::size_t begin, std::size_t end) {
    for (std::size_t origin = begin; origin < end; ++origin) {
      if (m_auFirstStart[origin] != kNone) RaiseLeaf(m_auFirstStart[origin]);
    }
  };
  if (steps.Part(kPrepared, kRaised).ForBlocks(m_auFirstStart.size(), raise, kOriginsAtOnce))
    SearchRest(steps.Part(kRaised, 1));
  return std::move(m_afHeights);
}

bool CSideRaiser::Prepare(const CExportSteps& steps) {
  constexpr double kSquares = 0.4;
  constexpr double kPieces = 0.9;
  FindSquares();
  if (!steps.Goes(kSquares)) return false;
  MakePieces();
  if (!steps.Goes(kPieces)) return false;
  m_auBefore = VerticesBeforeEnds(m_Patch.Triangles());
  ListStarts();
  return steps.Goes(1);
}

void CSideRaiser::FindSquares() {
  m_Squares = CSideSquares(m_Patch, m_Sides, m_afHeights);
  m_auPlaceOf.assign(m_Patch.Triangles().Triangles().size(), kNone);
  m_abProvided.assign(m_Sides.PieceCount(), 0);
  for (std::uint32_t number = 0; number < m_Squares.All().size(); ++number) {
    const std::uint32_t first = m_Squares[number].m_uFirst;
    for (std::uint32_t k = 0; k < SideFacing::kCount; ++k) m_auPlaceOf[first + k] = kSquare | number;
    m_abProvided[m_Sides.PieceOf(first)] = 1;
  }
}

double CSideRaiser::HeightAtCorner(std::uint32_t t, std::uint32_t k) const { return m_afHeights[m_Sides.CopyOf(t, k)]; }

void CSideRaiser::MakePieces() {
  const CCutTriangulation& triangles = m_Patch.Triangles();
  for (std::uint32_t t = 0; t < m_auPlaceOf.size(); ++t) {
    if (m_auPlaceOf[t] != kNone) continue;
    m_auPlaceOf[t] = static_cast<std::uint32_t>(m_auTriangles.size());
    m_auTriangles.push_back(t);
  }
  m_aPieces.resize(m_auTriangles.size());
  m_aRaised.reserve(m_auTriangles.size());
  for (std::size_t number = 0; number < m_aPieces.size(); ++number) {
    const std::uint32_t t = m_auTriangles[number];
    const auto& triangle = triangles.Triangle(t);
    CPiece& piece = m_aPieces[number];
    for (std::uint32_t k = 0; k < 3; ++k) {
      const std::uint32_t v = triangle.m_auVertices[k];
      const std::array place{static_cast<float>(m_Patch.ColumnOf(v)), static_cast<float>(m_Patch.RowOf(v))};
      for (std::size_t axis = 0; axis < place.size(); ++axis) {
        piece.m_afLeast[axis] = k == 0 ? place[axis] : std::min(piece.m_afLeast[axis], place[axis]);
        piece.m_afMost[axis] = k == 0 ? place[axis] : std::max(piece.m_afMost[axis], place[axis]);
      }
      const std::uint32_t beyond = triangle.m_auNeighbours[k];
      piece.m_auBeyond[k] = beyond != kNone && !triangle.m_abCut[k] ? m_auPlaceOf[beyond] : kNone;
    }
    m_aRaised.push_back(RaisedOf(t));
    if (m_aRaised.back().m_bCounts) m_abProvided[m_Sides.PieceOf(t)] = 1;
  }
}

CSideRaiser::CRaised CSideRaiser::RaisedOf(std::uint32_t t) const {
  CRaised raised;
  for (std::uint32_t k = 0; k < 3; ++k) {
    if (m_Sides.IsKnown(m_Sides.CopyOf(t, k))) raised.m_Range.Add(HeightAtCorner(t, k));
  }
  const std::optional<CSidePlane> plane = SidePlaneOf(m_Patch, m_Sides, t);
  if (!plane) return raised;
  raised.m_bCounts = true;
  raised.m_Middle = plane->m_Middle;
  for (std::size_t k = 0; k < plane->m_auCopies.size(); ++k) {
    const double z = m_afHeights[plane->m_auCopies[k]];
    raised.m_Range.Add(z);
    raised.m_fZ += z / 3.0;
    raised.m_fSlopeX += plane->m_afSlopeX[k] * z;
    raised.m_fSlopeY += plane->m_afSlopeY[k] * z;
  }
  return raised;
}

// Copies to be continued, leaf by leaf; pieces of the surface without a plane borrow from others, which a search finds.
void CSideRaiser::ListStarts() {
  m_auFirstStart.assign(m_Patch.OriginCount(), kNone);
  m_auNextStart.resize(m_Sides.CopyCount());
  for (std::uint32_t copy = 0; copy < m_Sides.CopyCount(); ++copy) {
    if (m_Sides.IsKnown(copy)) continue;
    const std::uint32_t t = m_Sides.TriangleAt(copy);
    if (m_abProvided[m_Sides.PieceOf(t)] == 0 || (m_auPlaceOf[t] & kSquare) != 0) {
      m_auRest.push_back(copy);
      continue;
    }
    const std::uint32_t origin = m_Patch.Triangles().Triangle(t).m_uOrigin;
    m_auNextStart[copy] = std::exchange(m_auFirstStart[origin - m_Patch.Origin(origin).m_uPlace], copy);
  }
}

// Those that see the same together.
void CSideRaiser::RaiseLeaf(std::uint32_t first) {
  while (first != kNone) {
    m_Window = WindowOf(ReachAt(first));
    SpreadFrom(m_auPlaceOf[m_Sides.TriangleAt(first)]);
    for (std::uint32_t* link = &first; *link != kNone;) {
      const std::uint32_t copy = *link;
      const CReach reach = ReachAt(copy);
      const CPiece& start = m_aPieces[m_auPlaceOf[m_Sides.TriangleAt(copy)]];
      if (start.m_uSeen != m_uBase || WindowOf(reach) != m_Window) {
        link = &m_auNextStart[copy];
        continue;
      }
      *link = m_auNextStart[copy];
      const std::optional<double> height = HeightAt(copy, reach);
      if (height) {
        m_afHeights[copy] = *height;
      } else {
        m_auRest.push_back(copy);
      }
    }
  }
}

CSideRaiser::CReach CSideRaiser::ReachAt(std::uint32_t copy) const {
  const std::uint32_t vertex = m_Sides.VertexOf(copy);
  const double x = m_Patch.ColumnOf(vertex);
  const double y = m_Patch.RowOf(vertex);
  constexpr double kRing = CSideHeights::kRing;
  return {{x, y},
          {static_cast<float>(x - kRing), static_cast<float>(y - kRing)},
          {static_cast<float>(x + kRing), static_cast<float>(y + kRing)}};
}

// Beyond the border, too, so that all its points are as far from its sides.
CSideRaiser::CWindow CSideRaiser::WindowOf(const CReach& reach) {
  const auto first = [&reach](std::size_t axis) { return static_cast<int>(std::floor(reach.m_afLeast[axis])); };
  const auto last = [&reach](std::size_t axis) { return static_cast<int>(std::ceil(reach.m_afMost[axis])) - 1; };
  return {{first(0), first(1)}, {last(0), last(1)}};
}

// All that the points of the window see from there.
void CSideRaiser::SpreadFrom(std::uint32_t start) {
  m_uBase = ++m_uSearch;
  ++m_uSearch;  // that of its doors
  FindWindow();
  m_uFound = 0;
  m_auDoors.clear();
  m_auQueue.assign(1, start);
  m_aPieces[start].m_uSeen = m_uBase;
  std::size_t done = 0;
  for (std::uint64_t entered = 0;;) {
    for (; done < m_auQueue.size(); ++done) {
      for (const std::uint32_t beyond : m_aPieces[m_auQueue[done]].m_auBeyond) {
        if (beyond == kNone) continue;
        if ((beyond & kSquare) == 0) {
          SeePiece(beyond);
        } else {
          m_uFound |= BitOf(m_Squares[beyond & ~kSquare]);
        }
      }
    }
    m_uFound = SpreadIn(m_uFound, m_uSquares);
    if (m_uFound == entered) break;
    EnterFrom(m_uFound & ~entered);
    entered = m_uFound;
  }
  TakeSquares();
  for (const std::uint32_t piece : m_auQueue) {
    const CRaised& plane = m_aRaised[piece];
    m_Range.Add(plane.m_Range);
    if (plane.m_bCounts) m_Planes.Add(plane.m_Middle.x, plane.m_Middle.y, plane.m_fZ, plane.m_fSlopeX, plane.m_fSlopeY);
  }
}

void CSideRaiser::FindWindow() {
  m_uSquares = 0;
  for (std::size_t axis = 0; axis < 2; ++axis) {
    m_Bounds.m_afLeast[axis] = static_cast<float>(m_Window.m_aiFirst[axis]);
    m_Bounds.m_afInnerLeast[axis] = static_cast<float>(m_Window.m_aiFirst[axis] + 1);
    m_Bounds.m_afInnerMost[axis] = static_cast<float>(m_Window.m_aiLast[axis]);
    m_Bounds.m_afMost[axis] = static_cast<float>(m_Window.m_aiLast[axis] + 1);
  }
  const auto& [left, low] = m_Window.m_aiFirst;
  for (int row = std::max(low, 0); row <= std::min(m_Window.m_aiLast[1], m_iCells - 1); ++row) {
    for (int column = std::max(left, 0); column <= std::min(m_Window.m_aiLast[0], m_iCells - 1); ++column) {
      const std::uint32_t square = m_Squares.At(column, row);
      if (square == kNone) continue;
      const auto bit = static_cast<std::size_t>((row - low) * kRowBits + column - left);
      m_auWindow[bit] = square;
      m_uSquares |= std::uint64_t{1} << bit;
    }
  }
}

// None for a square outside of the window.
std::uint64_t CSideRaiser::BitOf(const CSquare& square) const {
  const auto& [left, low] = m_Window.m_aiFirst;
  if (square.m_iColumn < left || square.m_iColumn > m_Window.m_aiLast[0] || square.m_iRow < low ||
      square.m_iRow > m_Window.m_aiLast[1])
    return 0;
  return std::uint64_t{1} << static_cast<unsigned>((square.m_iRow - low) * kRowBits + square.m_iColumn - left);
}

// The pieces next to squares, but for those outside of the window.
void CSideRaiser::EnterFrom(std::uint64_t squares) {
  const std::array<std::uint64_t, SideFacing::kCount> beside{m_uSquares << kRowBits, m_uSquares >> 1U,
                                                             m_uSquares >> kRowBits, m_uSquares << 1U};
  for (std::uint32_t k = 0; k < SideFacing::kCount; ++k) {
    for (std::uint64_t left = squares & ~beside[k] & ~OutermostBits(k); left != 0; left &= left - 1) {
      const std::uint32_t t = m_Squares[m_auWindow[static_cast<std::size_t>(std::countr_zero(left))]].m_uFirst + k;
      const std::uint32_t beyond = m_Patch.Triangles().Triangle(t).m_auNeighbours[0];
      if (beyond != kNone) SeePiece(m_auPlaceOf[beyond]);
    }
  }
}

std::uint64_t CSideRaiser::OutermostBits(std::size_t hand) const {
  constexpr std::uint64_t kRow = 0xFF;
  constexpr std::uint64_t kColumn = 0x0101010101010101;
  const int across = m_Window.m_aiLast[0] - m_Window.m_aiFirst[0];
  const int up = m_Window.m_aiLast[1] - m_Window.m_aiFirst[1];
  switch (hand) {
    case SideFacing::kDown:
      return kRow;
    case SideFacing::kRight:
      return kColumn << static_cast<unsigned>(across);
    case SideFacing::kUp:
      return kRow << static_cast<unsigned>(up * kRowBits);
    default:
      return kColumn;
  }
}

void CSideRaiser::SeePiece(std::uint32_t piece) {
  CPiece& next = m_aPieces[piece];
  if (next.m_uSeen == m_uBase || next.m_uSeen == m_uBase + 1) return;
  if (IsAlwaysNear(next)) {
    next.m_uSeen = m_uBase;
    m_auQueue.push_back(piece);
  } else if (!IsNeverNear(next)) {
    next.m_uSeen = m_uBase + 1;
    m_auDoors.push_back(piece);
  }
}

// All but the outer triangles of the outermost, and the corners that only these have, belong to every point.
void CSideRaiser::TakeSquares() {
  m_apWhole.clear();
  m_Planes.Clear();
  m_Range = {};
  m_afCorners = {};
  for (CPlanes& outer : m_aOuter) outer.Clear();
  std::array<std::uint64_t, SideFacing::kCount> outermost{};
  for (std::size_t k = 0; k < SideFacing::kCount; ++k) outermost[k] = OutermostBits(k);
  const std::uint64_t rim = outermost[SideFacing::kDown] | outermost[SideFacing::kRight] | outermost[SideFacing::kUp] |
                            outermost[SideFacing::kLeft];
  for (std::uint64_t left = m_uFound & ~rim; left != 0; left &= left - 1) {
    const CSquare& square = m_Squares[m_auWindow[static_cast<std::size_t>(std::countr_zero(left))]];
    m_apWhole.push_back(&square.m_Planes);
    m_Range.Add(square.m_Range);
  }
  for (std::uint64_t left = m_uFound & rim; left != 0; left &= left - 1) {
    const auto bit = static_cast<unsigned>(std::countr_zero(left));
    const CSquare& square = m_Squares[m_auWindow[bit]];
    const CBlock& planes = square.m_Planes;
    m_Range.Add(HeightAtCorner(square.m_uFirst, 2));
    for (std::uint32_t k = 0; k < SideFacing::kCount; ++k) {
      const bool isOuter = (outermost[k] >> bit & 1U) != 0;
      const bool isCorner = isOuter && (outermost[(k + 3) % SideFacing::kCount] >> bit & 1U) != 0;
      CPlanes& to = isOuter ? m_aOuter[k] : m_Planes;
      to.Add(planes.m_afX[k], planes.m_afY[k], planes.m_afZ[k], planes.m_afSlopeX[k], planes.m_afSlopeY[k]);
      const double z = HeightAtCorner(square.m_uFirst + k, 0);
      if (isCorner) {
        m_afCorners[k] = z;
      } else {
        m_Range.Add(z);
      }
    }
  }
}

// None where a point sees more than what all of the window see and the pieces at its rim, or no plane.
std::optional<double> CSideRaiser::HeightAt(std::uint32_t copy, const CReach& reach) {
  if (!EnterDoors(reach)) return {};
  const std::uint32_t before = m_auBefore[m_Sides.VertexOf(copy)];
  const CSum sum = before == kNone ? SumOfOneSide(reach) : SumOfTwoSides(reach, before);
  if (!(sum.m_afWeights[0] + sum.m_afWeights[1] > 0.0)) return {};
  CRange range = m_Range;
  const auto keeps = OuterNear(reach);
  for (std::size_t k = 0; k < SideFacing::kCount; ++k) {
    if (m_afCorners[k] && (keeps[k] || keeps[(k + 3) % SideFacing::kCount])) range.Add(*m_afCorners[k]);
  }
  for (const std::uint32_t piece : m_auNear) range.Add(m_aRaised[piece].m_Range);
  const std::array<double, 2> share = SharesOfSides(sum.m_afWeights);
  return range.Widened().Within(share[0] * sum.m_afSums[0] + share[1] * sum.m_afSums[1]);
}

bool CSideRaiser::EnterDoors(const CReach& reach) {
  const std::uint32_t search = ++m_uSearch;
  m_auNear.clear();
  const auto enter = [&](std::uint32_t piece) {
    m_aPieces[piece].m_uSeen = search;
    m_auNear.push_back(piece);
  };
  for (const std::uint32_t piece : m_auDoors) {
    if (IsNear(m_aPieces[piece], reach)) enter(piece);
  }
  std::size_t done = 0;
  while (done < m_auNear.size()) {
    for (const std::uint32_t beyond : m_aPieces[m_auNear[done++]].m_auBeyond) {
      if (beyond == kNone) continue;
      if ((beyond & kSquare) != 0) {
        if ((BitOf(m_Squares[beyond & ~kSquare]) & ~m_uFound) != 0) return false;
        continue;
      }
      const CPiece& next = m_aPieces[beyond];
      if (next.m_uSeen == m_uBase || next.m_uSeen == search || !IsNear(next, reach)) continue;
      if (IsAlwaysNear(next)) return false;
      enter(beyond);
    }
  }
  return true;
}

// Whether the outer triangles of the outermost squares come near.
std::array<bool, 4> CSideRaiser::OuterNear(const CReach& reach) const {
  const auto least = [&](std::size_t axis) {
    return reach.m_afLeast[axis] < static_cast<float>(m_Window.m_aiFirst[axis]) + 0.5F;
  };
  const auto most = [&](std::size_t axis) {
    return reach.m_afMost[axis] > static_cast<float>(m_Window.m_aiLast[axis]) + 0.5F;
  };
  return {least(1), most(0), most(1), least(0)};
}

// Nearly everywhere.
CSideRaiser::CSum CSideRaiser::SumOfOneSide(const CReach& reach) const {
  const CSidePoint point = reach.m_Point;
  CSideSquares::CLaneSums sums;
  for (const CBlock* block : m_apWhole) sums.Add(*block, point);
  for (const CBlock& block : m_Planes.Blocks()) sums.Add(block, point);
  const auto keeps = OuterNear(reach);
  for (std::size_t k = 0; k < SideFacing::kCount; ++k) {
    if (!keeps[k]) continue;
    for (const CBlock& block : m_aOuter[k].Blocks()) sums.Add(block, point);
  }
  double weights = sums.Weights();
  double heights = sums.Heights();
  for (const std::uint32_t piece : m_auNear) {
    const CRaised& plane = m_aRaised[piece];
    if (!plane.m_bCounts) continue;
    const double dx = point.x - plane.m_Middle.x;
    const double dy = point.y - plane.m_Middle.y;
    const double weight = SideWeightAt(dx, dy);
    weights += weight;
    heights += weight * (plane.m_fZ + plane.m_fSlopeX * dx + plane.m_fSlopeY * dy);
  }
  return {{weights, 0.0}, {heights, 0.0}};
}

CSideRaiser::CSum CSideRaiser::SumOfTwoSides(const CReach& reach, std::uint32_t before) const {
  const CSidePoint point = reach.m_Point;
  const CSidePoint along{point.x - m_Patch.ColumnOf(before), point.y - m_Patch.RowOf(before)};
  CSum sum;
  const auto add = [&](double x, double y, double z, double slopeX, double slopeY) {
    const double dx = point.x - x;
    const double dy = point.y - y;
    const double weight = SideWeightAt(dx, dy);
    const std::size_t hand = SideOfEnd(along, dx, dy);
    sum.m_afWeights[hand] += weight;
    sum.m_afSums[hand] += weight * (z + slopeX * dx + slopeY * dy);
  };
  const auto addBlock = [&add](const CBlock& block) {
    for (std::size_t k = 0; k < kLanes; ++k)
      add(block.m_afX[k], block.m_afY[k], block.m_afZ[k], block.m_afSlopeX[k], block.m_afSlopeY[k]);
  };
  for (const CBlock* block : m_apWhole) addBlock(*block);
  std::ranges::for_each(m_Planes.Blocks(), addBlock);
  const auto keeps = OuterNear(reach);
  for (std::size_t k = 0; k < SideFacing::kCount; ++k) {
    if (keeps[k]) std::ranges::for_each(m_aOuter[k].Blocks(), addBlock);
  }
  for (const std::uint32_t piece : m_auNear) {
    const CRaised& plane = m_aRaised[piece];
    if (plane.m_bCounts) add(plane.m_Middle.x, plane.m_Middle.y, plane.m_fZ, plane.m_fSlopeX, plane.m_fSlopeY);
  }
  return sum;
}

void CSideRaiser::SearchRest(const CExportSteps& steps) {
  if (m_auRest.empty()) return;
  CSideHeights found;
  CSideSearch(m_Patch, m_Sides, found).Raise(m_auRest, m_afHeights, steps);
}
