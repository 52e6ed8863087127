// Which regions float and how, compared with a dense decomposition of rows and fairness terms on the planes of all
// pieces.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include <Eigen/SVD>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "constraints/CurveRasteriser.h"
#include "insight/CFreedom.h"
#include "solver/CConstraintRows.h"
#include "solver/CurveTerms.h"
#include "support/ConstraintBuilders.h"
#include "support/CurveBuilders.h"
#include "support/DirectSolution.h"
#include "support/TearFlood.h"
#include "support/TreeGenerators.h"

namespace {

using Matrix = Eigen::MatrixXd;
using Vector = Eigen::VectorXd;

constexpr double kFree = 1e-7;
constexpr double kMoves = 1e-4;

Eigen::Index At(std::size_t k) { return static_cast<Eigen::Index>(k); }

Eigen::Index RankOf(const Matrix& matrix, double tolerance) {
  if (matrix.cols() == 0 || matrix.rows() == 0) return 0;
  const Vector values = Eigen::JacobiSVD<Matrix>(matrix).singularValues();
  return (values.array() > tolerance).count();
}

// A tree with tears, constraints and fairness curves, all at random.
struct CRandomModel {
  CRandomModel(const std::vector<CTreeOp>& ops, std::uint32_t seed) : m_Test(4, 2) {
    ApplyAll(m_Test.m_Tree, ops);
    std::mt19937 random(seed);
    const auto uniform = [&](double low, double high) { return std::uniform_real_distribution(low, high)(random); };
    const auto place = [&] { return std::array{uniform(-3.5, 12.5), uniform(20, 26)}; };
    for (auto count = random() % 3; count > 0; --count)
      CCurveRasteriser(m_Test.m_Tree).Rasterise(CTestCurve({place(), place(), place()}, random() % 2 == 0).m_Curve);
    m_Test.Settle();
    m_Test.m_Tree.ListLeaves();
    for (auto count = random() % 6; count > 0; --count) {
      const auto [x, y] = place();
      m_Points.Add(random() % 3 == 0 ? SlopeCstr(x, y) : HeightCstr(x, y, 1));
    }
    for (auto count = random() % 3; count > 0; --count)
      m_Curves.Add(PointsAt({place(), place(), place()}), kFair, false).SetAllWeights(1, 1, 1, 1);
    const std::array<const CPtCstrList*, 1> lists{&m_Points};
    m_Rows.Add(lists, m_Test.m_Tree, m_Test.m_Surface);
    AddCurveTerms(m_Curves, m_Test.m_Tree, m_Test.m_Surface, m_Terms);
    m_Freedom.Build(m_Test.m_Tree, m_Test.m_Order, m_Rows, m_Terms);
  }

  CPlanePoint PlaceOf(std::size_t k) const {
    const std::uint32_t point = m_Test.m_Order.PointAtScan(k);
    const auto side = static_cast<std::uint32_t>(m_Test.m_Lattice.PointsPerSide());
    const std::uint32_t row = point / side;
    return {m_Test.m_Lattice.XOf(point % side), m_Test.m_Lattice.YOf(row)};
  }
  std::size_t Count() const { return m_Test.m_Order.Count(); }

  ConsoleCapture m_Console;
  CTestTree m_Test;
  CPtCstrList m_Points;
  CCntrCtrlList m_Curves;
  CConstraintRows m_Rows;
  CEnergyTerms m_Terms;
  CFreedom m_Freedom;
};

// The pieces, by flooding, as lists of scan positions.
std::vector<std::vector<std::size_t>> FloodedPieces(const CRandomModel& model) {
  const CPointOrder& order = model.m_Test.m_Order;
  std::vector<bool> seen(model.Count(), false);
  std::vector<std::vector<std::size_t>> pieces;
  for (std::size_t k = 0; k < model.Count(); ++k) {
    if (seen[k]) continue;
    const int side = model.m_Test.m_Lattice.PointsPerSide();
    const auto point = static_cast<int>(order.PointAtScan(k));
    pieces.emplace_back();
    for (const auto& [x, y] : ReachableFrom(model.m_Test.m_Tree, point % side, point / side)) {
      const std::int32_t number = order.NumberOf(model.m_Test.m_Lattice.Index(x, y));
      pieces.back().push_back(order.ScanOf(static_cast<std::size_t>(number)));
      seen[pieces.back().back()] = true;
    }
    std::ranges::sort(pieces.back());
  }
  return pieces;
}

// A column for every plane of every piece, over all points.
Matrix PlanesOf(const CRandomModel& model, const std::vector<std::vector<std::size_t>>& pieces) {
  std::vector<Vector> columns;
  for (const std::vector<std::size_t>& piece : pieces) {
    for (int k = 0; k < 3; ++k) {
      Vector column = Vector::Zero(At(model.Count()));
      double mean = 0;
      for (const std::size_t point : piece) {
        const CPlanePoint place = model.PlaceOf(point);
        column[At(point)] = std::array{1.0, place.x, place.y}[static_cast<std::size_t>(k)];
        mean += column[At(point)] / static_cast<double>(piece.size());
      }
      for (const std::size_t point : piece) column[At(point)] -= k == 0 ? 0.0 : mean;
      if (column.norm() > 1e-9) columns.emplace_back(column / column.cwiseAbs().maxCoeff());
    }
  }
  Matrix planes(At(model.Count()), At(columns.size()));
  for (std::size_t k = 0; k < columns.size(); ++k) planes.col(At(k)) = columns[k];
  return planes;
}

// Rows and terms one below the other, over all points, each of magnitude 1.
Matrix EquationsOf(const CRandomModel& model) {
  Matrix equations = Matrix::Zero(At(model.m_Rows.Count() + model.m_Terms.Count()), At(model.Count()));
  equations.topRows(At(model.m_Rows.Count())) = Dense(model.m_Rows.Rows(), model.Count());
  for (std::size_t t = 0; t < model.m_Terms.Count(); ++t) {
    for (std::size_t e = 0; e < model.m_Terms.Coefs(t).size(); ++e)
      equations(At(model.m_Rows.Count() + t), model.m_Terms.Unknowns(t)[e]) +=
          model.m_Terms.Coefs(t)[e] / model.m_Terms.Magnitude(t);
  }
  for (std::size_t j = 0; j < model.m_Rows.Count(); ++j) equations.row(At(j)) /= equations.row(At(j)).cwiseAbs().sum();
  return equations;
}

// The planes that the equations take for 0, as columns over all points.
Matrix FreePlanes(const Matrix& equations, const Matrix& planes) {
  Matrix image = equations * planes;
  for (Eigen::Index row = 0; row < image.rows(); ++row) {
    // Of magnitude 1, and stencils are exact to some 1e-10.
    const double length = image.row(row).norm();
    image.row(row) *= length > 1e-8 ? 1 / length : 0;
  }
  Matrix stacked(image.rows() + planes.cols(), planes.cols());
  stacked << image, Matrix::Zero(planes.cols(), planes.cols());
  const Eigen::JacobiSVD<Matrix> svd(stacked, Eigen::ComputeFullV);
  const Vector& values = svd.singularValues();
  const double largest = std::max(values.maxCoeff(), 1e-300);
  // What is all but free is known to few digits.
  const auto isOpen = [&](double value) { return value > 0.1 * kFree * largest && value < 1000 * kFree * largest; };
  RC_PRE(std::none_of(values.data(), values.data() + values.size(), isOpen));
  const Eigen::Index rank = (values.array() > kFree * largest).count();
  return planes * svd.matrixV().rightCols(planes.cols() - rank);
}

Matrix Restricted(const Matrix& columns, const std::vector<std::size_t>& points) {
  Matrix rows(At(points.size()), columns.cols());
  for (std::size_t k = 0; k < points.size(); ++k) rows.row(At(k)) = columns.row(At(points[k]));
  return rows;
}

std::vector<std::size_t> PointsOf(const CFreedom& freedom, std::uint32_t piece) {
  const std::span<const std::uint32_t> points = freedom.Pieces().PointsOf(piece);
  return {points.begin(), points.end()};
}

// The directions of all groups as columns over all points.
Matrix Directions(const CRandomModel& model) {
  std::vector<Vector> columns;
  for (const CFreeGroup& group : model.m_Freedom.Groups()) {
    for (std::size_t d = 0; d < group.DirectionCount(); ++d) {
      columns.emplace_back(Vector::Zero(At(model.Count())));
      for (std::size_t k = 0; k < group.m_auPieces.size(); ++k) {
        for (const std::size_t point : PointsOf(model.m_Freedom, group.m_auPieces[k]))
          columns.back()[At(point)] = group.PlaneOf(d, k).At(model.PlaceOf(point));
      }
    }
  }
  Matrix directions(At(model.Count()), At(columns.size()));
  for (std::size_t k = 0; k < columns.size(); ++k) directions.col(At(k)) = columns[k];
  return directions;
}

// Nothing in them is settled, none has a part that moves by itself, and those that follow any plane are those of which
// every plane over all their regions is free.
void ExpectGroupsOf(const CRandomModel& model, const Matrix& free) {
  std::vector<std::size_t> drawn;
  for (const CRegion& region : model.m_Freedom.Regions()) {
    const std::vector<std::size_t> points = PointsOf(model.m_Freedom, region.m_uPiece);
    drawn.insert(drawn.end(), points.begin(), points.end());
  }
  Eigen::Index rank = 0;
  for (const CFreeGroup& group : model.m_Freedom.Groups()) {
    std::vector<std::vector<std::size_t>> whole(1);
    for (const std::uint32_t piece : group.m_auPieces)
      RC_ASSERT(Restricted(free, PointsOf(model.m_Freedom, piece)).norm() > kMoves);
    for (const std::uint32_t piece : group.Regions()) {
      const std::vector<std::size_t> points = PointsOf(model.m_Freedom, piece);
      whole.front().insert(whole.front().end(), points.begin(), points.end());
    }
    const Matrix own = Restricted(free, whole.front());
    RC_ASSERT(RankOf(own, kMoves) == At(group.DirectionCount()));
    rank += At(group.DirectionCount());
    const Matrix planes = Restricted(PlanesOf(model, whole), whole.front());
    Matrix with(own.rows(), own.cols() + planes.cols());
    with << own, planes;
    RC_ASSERT(group.m_bFollowsAnyPlane == (RankOf(with, kMoves) == At(group.DirectionCount())));
  }
  RC_ASSERT(rank == RankOf(Restricted(free, drawn), kMoves));
}

RC_GTEST_PROP(Freedom, AgreesWithADenseDecomposition, ()) {
  const CRandomModel model(*GenTreeOps(), *rc::gen::arbitrary<std::uint32_t>());
  const std::vector<std::vector<std::size_t>> pieces = FloodedPieces(model);
  RC_ASSERT(pieces.size() == model.m_Freedom.Pieces().Count());
  for (std::uint32_t piece = 0; piece < pieces.size(); ++piece)
    RC_ASSERT(pieces[piece] == PointsOf(model.m_Freedom, piece));
  const Matrix equations = EquationsOf(model);
  const Matrix free = FreePlanes(equations, PlanesOf(model, pieces));

  std::vector<std::size_t> drawn;
  for (const CRegion& region : model.m_Freedom.Regions()) {
    const std::vector<std::size_t>& points = pieces[region.m_uPiece];
    drawn.insert(drawn.end(), points.begin(), points.end());
    const Matrix own = Restricted(free, points);
    RC_ASSERT(RankOf(own, kMoves) == At(region.m_aFree.size()));
    Matrix with(own.rows(), own.cols() + At(region.m_aFree.size()));
    with.leftCols(own.cols()) = own;
    for (std::size_t k = 0; k < region.m_aFree.size(); ++k) {
      for (std::size_t p = 0; p < points.size(); ++p)
        with(At(p), own.cols() + At(k)) = region.m_aFree[k].At(model.PlaceOf(points[p]));
    }
    RC_ASSERT(RankOf(with, kMoves) == At(region.m_aFree.size()));
  }
  ExpectGroupsOf(model, free);
  const Matrix directions = Directions(model);
  RC_ASSERT(RankOf(Restricted(directions, drawn), kMoves) == RankOf(Restricted(free, drawn), kMoves));
  const Matrix missed = equations * directions;
  for (Eigen::Index k = 0; k < missed.size(); ++k) RC_ASSERT(std::abs(missed.data()[k]) <= 1e-7);
}

// A region is what is drawn: a flood over the triangles in no tear.
RC_GTEST_PROP(Freedom, RegionsArePiecesWithATriangleThatIsDrawn, ()) {
  const CRandomModel model(*GenTreeOps(), 1);
  std::vector<bool> drawn(model.m_Freedom.Pieces().Count(), false);
  for (const CLeaf& leaf : model.m_Test.m_Tree.Leaves()) {
    for (unsigned k = 0; k < 4; ++k) {
      if ((leaf.m_uMarked >> k & 1U) != 0) continue;
      const auto [x, y] = leaf.m_pCell->Corner(static_cast<int>(k));
      const std::int32_t number = model.m_Test.m_Order.NumberOf(model.m_Test.m_Lattice.Index(x, y));
      drawn[model.m_Freedom.Pieces().PieceAt(model.m_Test.m_Order.ScanOf(static_cast<std::size_t>(number)))] = true;
    }
  }
  std::vector<bool> named(drawn.size(), false);
  for (const CRegion& region : model.m_Freedom.Regions()) named[region.m_uPiece] = true;
  RC_ASSERT(named == drawn);
}

// One region: the whole of an untorn tree.
std::size_t FreeOfWhole(const std::vector<CPtCstr>& constraints) {
  CTestTree test(4, 3);
  test.m_Tree.ListLeaves();
  CPtCstrList points;
  for (const CPtCstr& c : constraints) points.Add(c);
  CConstraintRows rows;
  rows.Add(std::array<const CPtCstrList*, 1>{&points}, test.m_Tree, test.m_Surface);
  CFreedom freedom;
  freedom.Build(test.m_Tree, test.m_Order, rows, {});
  EXPECT_EQ(freedom.Regions().size(), 1U);
  return freedom.Regions().front().m_aFree.size();
}

TEST(Freedom, OfTheWholeSurfaceIsCounted) {
  EXPECT_EQ(FreeOfWhole({}), 3U);
  EXPECT_EQ(FreeOfWhole({HeightCstr(1, 22, 5)}), 2U);
  EXPECT_EQ(FreeOfWhole({SlopeCstr(1, 22)}), 1U);
  EXPECT_EQ(FreeOfWhole({HeightCstr(1, 22, 5), HeightCstr(1, 22, 7)}), 2U);
  EXPECT_EQ(FreeOfWhole({HeightCstr(1, 22, 5), HeightCstr(2, 22, 5), HeightCstr(9, 22, 5)}), 1U);
  EXPECT_EQ(FreeOfWhole({HeightCstr(1, 22, 5), HeightCstr(2, 22, 5), HeightCstr(9, 22.5, 5)}), 0U);
  EXPECT_EQ(FreeOfWhole({HeightCstr(1, 22, 5), SlopeCstr(8, 24)}), 0U);
}

}  // namespace
