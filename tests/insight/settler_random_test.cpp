// Random models whose tears leave points over, which fairness curves tie to regions: where regions are settled does not
// depend on where the surface began.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <span>
#include <vector>

#include <Eigen/SVD>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "insight/CSettler.h"
#include "report/SurfaceHeights.h"
#include "solver/CGridSolver.h"
#include "support/DirectSolution.h"
#include "support/TornGrids.h"

namespace {

// What regions are placed by.
enum class Followed { Nothing, RandomValues };

struct CLooseModel : CTornGrid {
  explicit CLooseModel(std::uint32_t seed) {
    std::mt19937 random(seed);
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution(low, high)(random); };
    const auto place = [&] { return std::array{uniform(0, 100), uniform(0, 100)}; };
    for (auto count = 3 + random() % 5; count > 0; --count) Tear({place(), place(), place()}, random() % 3 != 0);
    for (auto count = 2 + random() % 5; count > 0; --count) Fair({place(), place()});
    for (auto count = 3 + random() % 5; count > 0; --count) {
      const auto [x, y] = place();
      m_Grid.AddPtCstr(random() % 4 == 0 ? SlopeCstr(x, y, uniform(-1, 1), uniform(-1, 1))
                                         : HeightCstr(x, y, uniform(-10, 10)));
    }
    StartIteration(m_Grid);
    m_Settler.Prepare(m_Grid.Surface().Tree(), m_Grid.Surface().Order(), m_Grid.Solver());
  }

  const CPieces& Pieces() const { return m_Settler.Freedom().Pieces(); }
  // By scan position, as all heights here.
  std::vector<double> SettledFrom(const Eigen::VectorXd& heights) {
    const std::span<const double> start(heights.data(), static_cast<std::size_t>(heights.size()));
    m_Grid.Surface().Basis().W(start, m_Grid.Surface().Coefficients());
    m_fEnergyBefore = Energy();
    // As in two ticks: where a direction shows little, the second makes up for the rounding of the first.
    for (int tick = 0; tick < 2; ++tick) m_Settler.Settle(m_Grid.Surface().Basis(), m_Grid.Surface().Coefficients());
    m_fEnergyAfter = Energy();
    return HeightsByScan(m_Grid);
  }
  double Energy() {
    m_Grid.Surface().Reconstruct();
    return EnergyOf(m_Grid);
  }

  CSettler m_Settler;
  double m_fEnergyBefore = 0;
  double m_fEnergyAfter = 0;
};

// Rows and terms one below the other over all points, each of magnitude 1.
Eigen::MatrixXd NormedEquations(const CGridSolver& solver, std::size_t points) {
  const CConstraintRows& rows = solver.System().Constraints();
  const CEnergyTerms& terms = solver.CurveTerms();
  Eigen::MatrixXd equations =
      Eigen::MatrixXd::Zero(static_cast<Eigen::Index>(rows.Count() + terms.Count()), static_cast<Eigen::Index>(points));
  equations.topRows(static_cast<Eigen::Index>(rows.Count())) = Dense(rows.Rows(), points);
  for (std::size_t t = 0; t < terms.Count(); ++t) {
    for (std::size_t e = 0; e < terms.Coefs(t).size(); ++e)
      equations(static_cast<Eigen::Index>(rows.Count() + t), terms.Unknowns(t)[e]) += terms.Coefs(t)[e];
  }
  for (Eigen::Index j = 0; j < equations.rows(); ++j) equations.row(j) /= equations.row(j).cwiseAbs().sum();
  return equations;
}

// What can move without that an equation notices, as columns over all points; discards what is all but free.
Eigen::MatrixXd WhatIsFree(const Eigen::MatrixXd& equations, const CPieces& pieces) {
  std::vector<Eigen::VectorXd> columns;
  for (std::uint32_t piece = 0; piece < pieces.Count(); ++piece) {
    const CPlanePoint middle = pieces[piece].Middle();
    for (const std::array<double, 3>& plane : {std::array{1.0, 0.0, 0.0}, {0.0, 1.0, 0.0}, {0.0, 0.0, 1.0}}) {
      Eigen::VectorXd column = Eigen::VectorXd::Zero(static_cast<Eigen::Index>(pieces.PointCount()));
      for (const std::uint32_t point : pieces.PointsOf(piece)) {
        const CPlanePoint& place = pieces.PlaceOf(point);
        column[point] = plane[0] + plane[1] * (place.x - middle.x) + plane[2] * (place.y - middle.y);
      }
      if (column.norm() > 1e-9) columns.emplace_back(column / column.cwiseAbs().maxCoeff());
    }
  }
  Eigen::MatrixXd planes(static_cast<Eigen::Index>(pieces.PointCount()), static_cast<Eigen::Index>(columns.size()));
  for (std::size_t k = 0; k < columns.size(); ++k) planes.col(static_cast<Eigen::Index>(k)) = columns[k];
  Eigen::MatrixXd image = Eigen::MatrixXd::Zero(equations.rows() + planes.cols(), planes.cols());
  image.topRows(equations.rows()) = equations * planes;
  for (Eigen::Index row = 0; row < image.rows(); ++row) {
    const double length = image.row(row).norm();
    image.row(row) *= length > 1e-8 ? 1 / length : 0;
  }
  const Eigen::JacobiSVD<Eigen::MatrixXd> svd(image, Eigen::ComputeFullV);
  const Eigen::VectorXd& values = svd.singularValues();
  Eigen::Index rank = 0;
  for (const double value : values) {
    RC_PRE(value < 1e-9 || value > 1e-4);
    rank += value > 1e-6 ? 1 : 0;
  }
  return planes * svd.matrixV().rightCols(planes.cols() - rank);
}

// Regions that a way over shared tears, or a group, leads to from settled ones: the others stay where they are.
std::set<std::uint32_t> PlacedRegions(const CFreedom& freedom) {
  std::set<std::uint32_t> placed;
  for (const CRegion& region : freedom.Regions()) {
    if (region.m_aFree.empty()) placed.insert(region.m_uPiece);
  }
  const CPieces& pieces = freedom.Pieces();
  std::size_t before = 0;
  while (before != placed.size()) {
    before = placed.size();
    for (const CPieces::CJoint& cut : pieces.Cuts()) {
      const std::array ends{pieces.PieceAt(cut.m_uA), pieces.PieceAt(cut.m_uB)};
      if (!pieces[ends[0]].IsDrawn() || !pieces[ends[1]].IsDrawn()) continue;
      if (placed.contains(ends[0]) || placed.contains(ends[1])) placed.insert(ends.begin(), ends.end());
    }
  }
  return placed;
}

RC_GTEST_PROP(SettlerOfLooseTears, PlacesRegionsWhereverTheSurfaceBegan, ()) {
  // Half of them models in which such a point lets a region move that something else ties to the rest.
  const auto seed = *rc::gen::oneOf(rc::gen::arbitrary<std::uint32_t>(),
                                    rc::gen::element<std::uint32_t>(39, 434, 510, 671, 691, 769, 1011, 1166));
  CLooseModel test(seed);
  const CPieces& pieces = test.Pieces();
  const Eigen::MatrixXd equations = NormedEquations(test.m_Grid.Solver(), pieces.PointCount());
  const Eigen::MatrixXd free = WhatIsFree(equations, pieces);
  const std::vector<double> random = RandomValues(seed, pieces.PointCount());
  const std::vector<double> shares = RandomValues(seed + 1, static_cast<std::size_t>(free.cols()));
  const Eigen::VectorXd first = Eigen::Map<const Eigen::VectorXd>(random.data(), equations.cols());
  const Eigen::VectorXd move = 10 * free * Eigen::Map<const Eigen::VectorXd>(shares.data(), free.cols());
  const Followed followed = *rc::gen::element(Followed::Nothing, Followed::RandomValues);
  if (followed == Followed::RandomValues) test.m_Settler.Follow(RandomValues(seed + 2, pieces.PointCount()), 1, 2, 0);

  const std::vector<double> a = test.SettledFrom(first);
  RC_ASSERT(std::abs(test.m_fEnergyAfter - test.m_fEnergyBefore) <= 1e-8 * test.m_fEnergyBefore);
  const Eigen::VectorXd moved = Eigen::Map<const Eigen::VectorXd>(a.data(), equations.cols()) - first;
  const double scale = 1 + moved.cwiseAbs().maxCoeff() + move.cwiseAbs().maxCoeff();
  RC_ASSERT(equations.rows() == 0 || (equations * moved).cwiseAbs().maxCoeff() <= 1e-8 * scale);
  const std::vector<double> b = test.SettledFrom(first + move);
  const std::set<std::uint32_t> placed = PlacedRegions(test.m_Settler.Freedom());
  for (const std::uint32_t piece : placed) {
    for (const std::uint32_t point : pieces.PointsOf(piece)) RC_ASSERT(std::abs(a[point] - b[point]) <= 1e-6 * scale);
  }
  RC_CLASSIFY(!placed.empty(), "something is placed");
  RC_CLASSIFY(std::ranges::any_of(test.m_Settler.Freedom().Groups(),
                                  [&](const CFreeGroup& group) {
                                    return group.m_uRegions > 1 && placed.contains(group.m_auPieces.front());
                                  }),
              "a group is placed");
}

}  // namespace
