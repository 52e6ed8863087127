#include "insight/CSettler.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "insight/PlacingOrder.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"
#include "solver/CGridSolver.h"
#include "solver/CHierarchicalBasis.h"

namespace {

// Of the mean squared slope over the squared diagonal, against the mean squared difference across a tear. Where a tear
// is one straight line it decides the tilt across that line; more, and regions would be level that should follow.
constexpr double kSteepness = 1e-4;

// Directions that what is minimised makes less of than this share of the usual are open. Rounding makes 1e-15 of it.
constexpr double kOpen = 1e-10;

CExtent BoxAround(const CFreedom& freedom, const CFreeGroup& group) {
  CExtent box = freedom.Pieces()[group.m_auPieces.front()].m_Box;
  for (const std::uint32_t piece : group.Regions()) {
    const CExtent& other = freedom.Pieces()[piece].m_Box;
    box = {std::min(box.x0, other.x0), std::max(box.x1, other.x1), std::min(box.y0, other.y0),
           std::max(box.y1, other.y1)};
  }
  return box;
}

void AddScaled(double factor, const CSmallMatrix& from, CSmallMatrix& to) {
  for (std::size_t i = 0; i < to.Rows(); ++i) {
    for (std::size_t j = 0; j < to.Columns(); ++j) to.At(i, j) += factor * from.At(i, j);
  }
}

CSmallMatrix Product(const CSmallMatrix& a, const CSmallMatrix& b) {
  CSmallMatrix product(a.Rows(), b.Columns());
  for (std::size_t j = 0; j < b.Columns(); ++j) a.Times(b.Column(j), product.Column(j));
  return product;
}

// Adds the square of a form of the step, given by what each direction makes of it.
template <typename Form>
void AddSquare(double weight, const Form& form, CSmallMatrix& square) {
  for (std::size_t i = 0; i < square.Rows(); ++i) {
    for (std::size_t j = 0; j < square.Columns(); ++j) square.At(i, j) += weight * form(i) * form(j);
  }
}

CSmallMatrix Identity(std::size_t n) {
  CSmallMatrix identity(n, n);
  for (std::size_t k = 0; k < n; ++k) identity.At(k, k) = 1.0;
  return identity;
}

// Makes a form the next thing to be made least in what is open, a projection, and takes from that what it decides
// about: directions of which it makes less than `least` stay open.
CSmallMatrix Choose(const CSmallMatrix& form, double least, CSmallMatrix& open) {
  const CSmallMatrix within = Product(open, Product(form, open));
  CSmallMatrix choose = PseudoInverse(within, least);
  AddScaled(-1.0, Product(choose, within), open);
  return choose;
}

}  // namespace

bool CSettler::IsPrepared(const CQuadTree& tree, const CGridSolver& solver) const {
  return m_uTreeRevision == tree.Revision() && m_afHeights.size() == solver.System().UnknownCount() &&
         m_Rows == solver.System().Constraints().Rows();
}

void CSettler::Prepare(const CQuadTree& tree, const CPointOrder& order, const CGridSolver& solver) {
  if (IsPrepared(tree, solver)) return;
  const CConstraintRows& rows = solver.System().Constraints();
  m_uTreeRevision = tree.Revision();
  m_Rows = rows.Rows();
  m_Freedom.Build(tree, order, rows, solver.CurveTerms());
  m_auPlaceInGroup.assign(m_Freedom.Pieces().Count(), 0);
  for (const CFreeGroup& group : m_Freedom.Groups()) {
    for (std::size_t k = 0; k < group.m_uRegions; ++k) m_auPlaceInGroup[group.m_auPieces[k]] = k;
  }
  AddSteps(RanksOfPieces(m_Freedom));
  AddSlopes(tree, order);
  for (CStep& step : m_aSteps) FormOwn(step);
  m_bFollowingStale = true;
  for (std::vector<double>* values : {&m_afHeights, &m_afMoves, &m_afCoefs}) values->assign(order.Count(), 0.0);
}

void CSettler::AddSteps(std::span<const std::uint32_t> ranks) {
  const CPieces& pieces = m_Freedom.Pieces();
  m_aSteps.clear();
  for (std::size_t g = 0; g < m_Freedom.Groups().size(); ++g) {
    const std::size_t directions = m_Freedom.Groups()[g].DirectionCount();
    m_aSteps.emplace_back().m_uGroup = g;
    CStep& step = m_aSteps.back();
    for (std::vector<double>* values :
         {&step.m_afOfSlopes, &step.m_afOfEdges, &step.m_afOfReference, &step.m_afGradient, &step.m_afStep})
      values->assign(directions, 0.0);
  }
  const auto rankOf = [&](const CStep& step) {
    std::uint32_t rank = kNotPlaced;
    for (const std::uint32_t piece : m_Freedom.Groups()[step.m_uGroup].Regions()) rank = std::min(rank, ranks[piece]);
    return rank;
  };
  std::ranges::sort(m_aSteps, {}, rankOf);
  // Which step a piece belongs to, none for what is settled.
  std::vector<CStep*> stepOf(pieces.Count(), nullptr);
  for (CStep& step : m_aSteps) {
    for (const std::uint32_t piece : m_Freedom.Groups()[step.m_uGroup].Regions()) stepOf[piece] = &step;
  }
  for (const CPieces::CJoint& cut : pieces.Cuts()) {
    const std::uint32_t a = pieces.PieceAt(cut.m_uA);
    const std::uint32_t b = pieces.PieceAt(cut.m_uB);
    if (ranks[a] == kNotPlaced || ranks[b] == kNotPlaced || ranks[a] == ranks[b]) continue;
    CStep* later = stepOf[ranks[a] > ranks[b] ? a : b];
    later->m_aEdges.push_back(ranks[a] > ranks[b] ? cut : CPieces::CJoint{cut.m_uB, cut.m_uA});
  }
}

void CSettler::AddSlopes(const CQuadTree& tree, const CPointOrder& order) {
  if (m_aSteps.empty()) return;
  const CPieces& pieces = m_Freedom.Pieces();
  std::vector<CStep*> stepOf(pieces.Count(), nullptr);
  for (CStep& step : m_aSteps) {
    for (const std::uint32_t piece : m_Freedom.Groups()[step.m_uGroup].Regions()) {
      stepOf[piece] = &step;
      step.m_fArea += pieces[piece].m_fArea;
    }
  }
  CPieces::ForEachSlope(tree, order, [&](const CPieces::CSlope& slope) {
    CStep* step = stepOf[pieces.PieceAt(slope.m_Ends.m_uA)];
    if (step != nullptr) step->m_aSlopes.push_back(slope);
  });
}

const CPlane& CSettler::PlaneOf(const CStep& step, std::size_t direction, std::uint32_t point) const {
  const std::size_t place = m_auPlaceInGroup[m_Freedom.Pieces().PieceAt(point)];
  return m_Freedom.Groups()[step.m_uGroup].PlaneOf(direction, place);
}

double CSettler::SlopeOf(const CStep& step, std::size_t direction, const CPieces::CSlope& slope) const {
  const CPlane& plane = PlaneOf(step, direction, slope.m_Ends.m_uA);
  return slope.m_bAlongX ? plane.m_fP : plane.m_fQ;
}

CSmallMatrix CSettler::FormOfSlopes(const CStep& step) const {
  const CFreeGroup& group = m_Freedom.Groups()[step.m_uGroup];
  CSmallMatrix form(group.DirectionCount(), group.DirectionCount());
  for (const std::uint32_t piece : group.Regions()) {
    const CPieces::CPiece& of = m_Freedom.Pieces()[piece];
    const std::size_t k = m_auPlaceInGroup[piece];
    AddSquare(
        of.m_fAlongX / step.m_fArea, [&](std::size_t d) { return group.PlaneOf(d, k).m_fP; }, form);
    AddSquare(
        of.m_fAlongY / step.m_fArea, [&](std::size_t d) { return group.PlaneOf(d, k).m_fQ; }, form);
  }
  return form;
}

CSmallMatrix CSettler::FormOfEdges(const CStep& step) const {
  CSmallMatrix form(step.m_afStep.size(), step.m_afStep.size());
  const double share = 1.0 / static_cast<double>(std::max<std::size_t>(step.m_aEdges.size(), 1));
  for (const CPieces::CJoint& edge : step.m_aEdges) {
    const CPlanePoint& place = m_Freedom.Pieces().PlaceOf(edge.m_uA);
    AddSquare(
        share, [&](std::size_t d) { return PlaneOf(step, d, edge.m_uA).At(place); }, form);
  }
  return form;
}

CSmallMatrix CSettler::FormOfReference(const CStep& step, std::size_t& points) const {
  CSmallMatrix form(step.m_afStep.size(), step.m_afStep.size());
  for (const std::uint32_t piece : m_Freedom.Groups()[step.m_uGroup].Regions()) {
    for (const std::uint32_t point : m_Freedom.Pieces().PointsOf(piece)) {
      if (std::isnan(m_afReference[point])) continue;
      const CPlanePoint& place = m_Freedom.Pieces().PlaceOf(point);
      AddSquare(
          1.0, [&](std::size_t d) { return PlaneOf(step, d, point).At(place); }, form);
      ++points;
    }
  }
  return form;
}

double CSettler::SquaredDiagonal(const CStep& step) const {
  const CExtent box = BoxAround(m_Freedom, m_Freedom.Groups()[step.m_uGroup]);
  return (box.x1 - box.x0) * (box.x1 - box.x0) + (box.y1 - box.y0) * (box.y1 - box.y0);
}

// Of what can follow any plane, edges and slopes decide together; otherwise slopes come first.
void CSettler::AddOwnStages(const CStep& step, CSmallMatrix& open, bool anyPlane, std::vector<CStage>& stages) const {
  const double square = SquaredDiagonal(step);
  CSmallMatrix slopes = FormOfSlopes(step);
  CSmallMatrix edges = FormOfEdges(step);
  if (anyPlane) {
    AddScaled(kSteepness * square, slopes, edges);
    CSmallMatrix choose = Choose(edges, kOpen, open);
    stages.push_back({kSteepness * square, 1.0, 0.0, std::move(edges), std::move(choose)});
    return;
  }
  CSmallMatrix level = Choose(slopes, kOpen / square, open);
  stages.push_back({1.0, 0.0, 0.0, std::move(slopes), std::move(level)});
  CSmallMatrix near = Choose(edges, kOpen, open);
  stages.push_back({0.0, 1.0, 0.0, std::move(edges), std::move(near)});
}

void CSettler::FormOwn(CStep& step) const {
  const bool anyPlane = m_Freedom.Groups()[step.m_uGroup].m_bFollowsAnyPlane;
  step.m_aOwn.clear();
  // Without an edge to go by it stays.
  if (anyPlane && step.m_aEdges.empty()) return;
  CSmallMatrix open = Identity(step.m_afStep.size());
  AddOwnStages(step, open, anyPlane, step.m_aOwn);
}

void CSettler::Follow(std::span<const double> values, double offset, double linear, double square) {
  if (values.size() != m_afHeights.size() || (offset == 0.0 && linear == 0.0 && square == 0.0)) {
    m_afReference.clear();
    return;
  }
  m_bFollowingStale = m_bFollowingStale || m_afReference.size() != values.size();
  m_afReference.resize(values.size(), 0.0);
  for (std::size_t k = 0; k < values.size(); ++k) {
    const double height = offset + values[k] * (linear + values[k] * square);
    const double before = std::exchange(m_afReference[k], height);
    m_bFollowingStale = m_bFollowingStale || std::isnan(before) != std::isnan(height);
  }
  if (!m_bFollowingStale) return;
  for (CStep& step : m_aSteps) FormFollowing(step);
  m_bFollowingStale = false;
}

void CSettler::FollowInChanges(std::span<const double> values) {
  Follow(values, 1.0, 0.0, 0.0);
  for (double& height : m_afReference) {
    if (!std::isnan(height)) height = 0.0;
  }
}

// A region that can follow any plane is held in part by what the reference says of it, if that is all there is.
void CSettler::FormFollowing(CStep& step) const {
  std::size_t points = 0;
  CSmallMatrix squares = FormOfReference(step, points);
  if (points == 0) {
    step.m_aFollowing = step.m_aOwn;
    return;
  }
  CSmallMatrix open = Identity(step.m_afStep.size());
  CSmallMatrix choose = Choose(squares, kOpen * static_cast<double>(points), open);
  step.m_aFollowing.clear();
  step.m_aFollowing.push_back({0.0, 0.0, 1.0, std::move(squares), std::move(choose)});
  const bool anyPlane = m_Freedom.Groups()[step.m_uGroup].m_bFollowsAnyPlane && !step.m_aEdges.empty();
  AddOwnStages(step, open, anyPlane, step.m_aFollowing);
}

void CSettler::FindGradients(CStep& step) const {
  const std::size_t n = step.m_afStep.size();
  std::ranges::fill(step.m_afOfSlopes, 0.0);
  std::ranges::fill(step.m_afOfEdges, 0.0);
  for (const CPieces::CSlope& slope : step.m_aSlopes) {
    const double rise = m_afHeights[slope.m_Ends.m_uB] - m_afHeights[slope.m_Ends.m_uA];
    const double weighted = slope.m_fArea / step.m_fArea * rise / slope.m_fLength;
    for (std::size_t d = 0; d < n; ++d) step.m_afOfSlopes[d] += weighted * SlopeOf(step, d, slope);
  }
  const double share = 1.0 / static_cast<double>(std::max<std::size_t>(step.m_aEdges.size(), 1));
  for (const CPieces::CJoint& edge : step.m_aEdges) {
    const CPlanePoint& place = m_Freedom.Pieces().PlaceOf(edge.m_uA);
    const double difference = share * (m_afHeights[edge.m_uA] - m_afHeights[edge.m_uB]);
    for (std::size_t d = 0; d < n; ++d) step.m_afOfEdges[d] += difference * PlaneOf(step, d, edge.m_uA).At(place);
  }
}

void CSettler::FindReferenceGradient(CStep& step) const {
  std::ranges::fill(step.m_afOfReference, 0.0);
  for (const std::uint32_t piece : m_Freedom.Groups()[step.m_uGroup].Regions()) {
    for (const std::uint32_t point : m_Freedom.Pieces().PointsOf(piece)) {
      if (std::isnan(m_afReference[point])) continue;
      const CPlanePoint& place = m_Freedom.Pieces().PlaceOf(point);
      const double difference = m_afHeights[point] - m_afReference[point];
      for (std::size_t d = 0; d < step.m_afStep.size(); ++d)
        step.m_afOfReference[d] += difference * PlaneOf(step, d, point).At(place);
    }
  }
}

// The step is subtracted, and so is what those taken before do to what is left of each gradient.
void CSettler::FindStep(CStep& step, std::span<const CStage> stages) {
  std::ranges::fill(step.m_afStep, 0.0);
  for (const CStage& stage : stages) {
    stage.m_Form.Times(step.m_afStep, step.m_afGradient);
    for (std::size_t d = 0; d < step.m_afStep.size(); ++d) {
      step.m_afGradient[d] = stage.m_fSlopes * step.m_afOfSlopes[d] + stage.m_fEdges * step.m_afOfEdges[d] +
                             stage.m_fReference * step.m_afOfReference[d] - step.m_afGradient[d];
    }
    stage.m_Choose.AddTimes(step.m_afGradient, step.m_afStep);
  }
}

// Points that tears have left over go along, perhaps with several groups.
void CSettler::Take(const CStep& step) {
  const CFreeGroup& group = m_Freedom.Groups()[step.m_uGroup];
  for (std::size_t k = 0; k < group.m_auPieces.size(); ++k) {
    for (const std::uint32_t point : m_Freedom.Pieces().PointsOf(group.m_auPieces[k])) {
      const CPlanePoint& place = m_Freedom.Pieces().PlaceOf(point);
      double move = 0.0;
      for (std::size_t d = 0; d < step.m_afStep.size(); ++d) move -= step.m_afStep[d] * group.PlaneOf(d, k).At(place);
      m_afMoves[point] += move;
      m_afHeights[point] += move;
    }
  }
}

void CSettler::Settle(const CHierarchicalBasis& basis, std::span<double> x) {
  if (m_aSteps.empty()) return;
  basis.invW(x, m_afHeights);
  std::ranges::fill(m_afMoves, 0.0);
  const bool follows = !m_afReference.empty();
  for (CStep& step : m_aSteps) {
    FindGradients(step);
    if (follows) FindReferenceGradient(step);
    FindStep(step, follows ? step.m_aFollowing : step.m_aOwn);
    const bool finite = std::ranges::all_of(step.m_afStep, [](double value) { return std::isfinite(value); });
    if (finite) Take(step);
  }
  basis.W(m_afMoves, m_afCoefs);
  for (std::size_t k = 0; k < x.size(); ++k) x[k] += m_afCoefs[k];
}
