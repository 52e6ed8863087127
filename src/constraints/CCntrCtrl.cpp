#include "constraints/CCntrCtrl.h"

#include <algorithm>
#include <cmath>
#include <istream>
#include <ostream>

#include "base/Console.h"
#include "constraints/PtCstrText.h"
#include "lattice/CLattice.h"

namespace {

// Nodes of a traced curve nearer than this to the line that replaces them, in lattice steps, say nothing about the
// shape.
constexpr double kSimplifyDistance = 0.5;

struct CPlace {
  double x;
  double y;
};

// Distance of p from the line through a and b; from a where the two coincide.
double DistanceToLine(const CPlace& p, const CPlace& a, const CPlace& b) {
  const double length = std::hypot(b.x - a.x, b.y - a.y);
  if (length == 0.0) return std::hypot(p.x - a.x, p.y - a.y);
  return std::abs((b.x - a.x) * (p.y - a.y) - (b.y - a.y) * (p.x - a.x)) / length;
}

// Counted across the whole process, so that a curve just read from a file is never taken for one that it has replaced.
CurveId NextId() {
  static std::uint64_t last = 0;
  return static_cast<CurveId>(++last);
}

}  // namespace

CCntrCtrl::CCntrCtrl() : m_Id(NextId()) { Console() << "CCntrCtrl creation\n"; }

bool CCntrCtrl::operator==(const CCntrCtrl& other) const {
  return m_bClosed == other.m_bClosed && m_aNodes == other.m_aNodes && m_Type == other.m_Type &&
         m_uOptions == other.m_uOptions && m_aAutoBumps == other.m_aAutoBumps;
}

void CCntrCtrl::SetDistance(CurveSide side, double distance) {
  m_aAutoBumps[static_cast<std::size_t>(side)].m_fDistance = distance;
}

void CCntrCtrl::SetOrientation(CurveSide side, double degrees) {
  m_aAutoBumps[static_cast<std::size_t>(side)].m_fOrientation =
      std::isnan(degrees) ? 0.0 : std::clamp(degrees, -kMaxOrientation, kMaxOrientation);
}

void CCntrCtrl::SetAllWeights(double leftCurvature, double leftTorsion, double rightCurvature, double rightTorsion) {
  for (CCntrNode& node : m_aNodes) node.m_Weights = {leftCurvature, rightCurvature, leftTorsion, rightTorsion};
}

const CCntrNode* CCntrCtrl::FindNode(double x, double y, double reach) const {
  const auto found =
      std::ranges::find_if(m_aNodes, [=](const CCntrNode& node) { return node.IsWithinReach(x, y, reach); });
  return found == m_aNodes.end() ? nullptr : &*found;
}

std::size_t CCntrCtrl::NumberOf(const CCntrNode& node) const {
  const auto found = std::ranges::find_if(m_aNodes, [&node](const CCntrNode& other) { return &other == &node; });
  return static_cast<std::size_t>(std::distance(m_aNodes.begin(), found));
}

void CCntrCtrl::RemoveBetween(CNodes::iterator a, CNodes::iterator b) {
  auto node = std::next(a);
  while (node != b) {
    if (node == m_aNodes.end() && m_bClosed) {
      node = m_aNodes.begin();
    } else if (node == m_aNodes.end()) {
      Console() << "Error CCntrCtrl::RemoveBetween : The end of the curve has been reached\n";
      return;
    } else if (node == a) {
      Console() << "Error CCntrCtrl::RemoveBetween : the original node has been reached\n";
      return;
    } else {
      node = m_aNodes.erase(node);
    }
  }
}

void CCntrCtrl::Simplify(const CLattice& lattice) {
  if (m_aNodes.size() < 2) return;
  const auto place = [&lattice](const CCntrNode& node) {
    return CPlace{lattice.ColumnOf(node.m_fX), lattice.RowOf(node.m_fY)};
  };
  auto anchor = m_aNodes.begin();
  for (auto successor = std::next(anchor); successor != m_aNodes.end(); ++successor) {
    const auto apart = std::find_if(std::next(anchor), successor, [&](const CCntrNode& node) {
      return DistanceToLine(place(node), place(*anchor), place(*successor)) >= kSimplifyDistance;
    });
    if (apart == successor) continue;
    RemoveBetween(anchor, apart);
    anchor = apart;
  }
  RemoveBetween(anchor, std::prev(m_aNodes.end()));
}

void CCntrCtrl::Write(std::ostream& out, double tolerance) const {
  out << (m_bClosed ? 1 : 0) << '\t' << m_aNodes.size() << '\n';
  for (const CCntrNode& node : m_aNodes) {
    WritePtCstr(out, node, tolerance);
    const CNodeWeights& w = node.m_Weights;
    out << '\t' << w.m_fLeftCurvature << '\t' << w.m_fLeftTorsion << '\t' << w.m_fRightCurvature << '\t'
        << w.m_fRightTorsion << '\n';
  }
  const CAutoBump& left = AutoBump(CurveSide::Left);
  const CAutoBump& right = AutoBump(CurveSide::Right);
  out << '\n'
      << static_cast<std::uint32_t>(m_Type) << '\n'
      << m_uOptions << '\n'
      << left.m_fOrientation << '\n'
      << right.m_fOrientation << '\n'
      << left.m_fDistance << '\n'
      << right.m_fDistance;
}

void CCntrCtrl::Read(std::istream& in) {
  int closed = 0;
  std::size_t count = 0;
  in >> closed >> count;
  m_bClosed = closed != 0;
  m_aNodes.clear();
  for (; in && count > 0; --count) {
    CCntrNode node;
    ReadPtCstr(in, node);
    CNodeWeights& w = node.m_Weights;
    in >> w.m_fLeftCurvature >> w.m_fLeftTorsion >> w.m_fRightCurvature >> w.m_fRightTorsion;
    if (in) m_aNodes.push_back(node);
  }
  CAutoBump left;
  CAutoBump right;
  auto type = static_cast<std::uint32_t>(m_Type);
  in >> type >> m_uOptions >> left.m_fOrientation >> right.m_fOrientation >> left.m_fDistance >> right.m_fDistance;
  m_Type = static_cast<CurveType>(type);
  SetOrientation(CurveSide::Left, left.m_fOrientation);
  SetOrientation(CurveSide::Right, right.m_fOrientation);
  SetDistance(CurveSide::Left, left.m_fDistance);
  SetDistance(CurveSide::Right, right.m_fDistance);
}
