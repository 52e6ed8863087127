// What the constraint rows make of each other, factorised in blocks, beside the Cholesky factor of the whole.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
#include <set>
#include <vector>

#include <Eigen/Cholesky>
#include <Eigen/LU>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CRowFactor.h"
#include "solver/RowBlocks.h"

namespace {

using Matrix = Eigen::MatrixXd;
using Vector = Eigen::VectorXd;
using Values = std::vector<double>;

constexpr std::size_t kColumns = 12;
constexpr double kShift = 1e-8;

// Rows of five entries each, and the same as a full matrix.
CPlainRows RandomRows(std::uint32_t seed, std::size_t count, Matrix& full) {
  std::mt19937 random(seed);
  std::uniform_real_distribution<double> value(-1, 1);
  CPlainRows rows;
  full = Matrix::Zero(static_cast<Eigen::Index>(count), kColumns);
  for (std::size_t j = 0; j < count; ++j) {
    const std::size_t first = random() % (kColumns - 5);
    for (std::size_t column = first; column < first + 5; ++column) {
      rows.Append(static_cast<std::uint32_t>(column), value(random));
      full(static_cast<Eigen::Index>(j), static_cast<Eigen::Index>(column)) = rows.m_afValues.back();
    }
    rows.EndRow();
  }
  return rows;
}

// The product of the rows, shifted.
Matrix Shifted(const Matrix& full) {
  Matrix s = full * full.transpose();
  s.diagonal().array() += kShift * s.diagonal().maxCoeff();
  return s;
}

// The rows of `s` and its columns in another order.
Matrix Reordered(const Matrix& s, const std::vector<std::uint32_t>& order) {
  Matrix result(s.rows(), s.cols());
  for (Eigen::Index i = 0; i < s.rows(); ++i) {
    for (Eigen::Index k = 0; k < s.cols(); ++k)
      result(i, k) = s(order[static_cast<std::size_t>(i)], order[static_cast<std::size_t>(k)]);
  }
  return result;
}

// L^-1 as a full matrix, column by column.
Matrix InverseOf(CRowFactor& factor, bool transposed) {
  const auto count = static_cast<Eigen::Index>(factor.Count());
  Matrix inverse(count, count);
  for (Eigen::Index k = 0; k < count; ++k) {
    Values unit(factor.Count(), 0.0);
    unit[static_cast<std::size_t>(k)] = 1.0;
    if (transposed) {
      factor.SolveTransposed(unit);
    } else {
      factor.Solve(unit);
    }
    inverse.col(k) = Eigen::Map<const Vector>(unit.data(), count);
  }
  return inverse;
}

TEST(RowFactorTest, WithAllEarlierRowsIsTheCholeskyFactor) {
  const std::vector<std::uint32_t> order{3, 1, 4, 0, 2};
  const std::vector<CRowBlock> whole{{order, 0}};
  const std::vector<CRowBlock> parts{{{3, 1}, 0}, {{3, 1, 4, 0}, 2}, {{1, 0, 4, 3, 2}, 4}};
  for (const std::vector<CRowBlock>& blocks : {whole, parts}) {
    Matrix full;
    const CPlainRows rows = RandomRows(3, 5, full);
    CRowFactor factor;
    factor.Factorise(blocks, rows, kColumns, kShift);
    ASSERT_EQ(factor.Count(), 5U);
    const Matrix l = Reordered(Shifted(full), order).llt().matrixL();
    const Matrix wanted = l.inverse();
    const Matrix inverse = Reordered(InverseOf(factor, false), order);
    EXPECT_LT((inverse - wanted).norm(), 1e-9 * wanted.norm());
    for (Eigen::Index i = 0; i < 5; ++i)
      EXPECT_NEAR(factor.Diagonal(order[static_cast<std::size_t>(i)]), l(i, i), 1e-9);
  }
}

RC_GTEST_PROP(RowFactorProperty, TransposeIsTheTransposeAndEveryRowIsScaled, ()) {
  const auto count = *rc::gen::inRange<std::size_t>(1, 12);
  Matrix full;
  const CPlainRows rows = RandomRows(*rc::gen::arbitrary<std::uint32_t>(), count, full);
  std::vector<CRowPlace> places(count);
  for (CRowPlace& place : places) place = {*rc::gen::inRange(0, 9) / 8.0, *rc::gen::inRange(0, 9) / 8.0, false};
  CRowFactor factor;
  factor.Factorise(ChooseRowBlocks(places, {3, 2, 2}), rows, kColumns, kShift);
  const Matrix inverse = InverseOf(factor, false);
  RC_ASSERT((InverseOf(factor, true) - inverse.transpose()).norm() <= 1e-12 * inverse.norm());
  const Matrix scaled = inverse * Shifted(full) * inverse.transpose();
  RC_ASSERT((scaled.diagonal().array() - 1.0).abs().maxCoeff() < 1e-6);
}

TEST(RowFactorTest, DependentAndEmptyRowsAreNoProblem) {
  CPlainRows rows;
  rows.Append(0, 3.0);
  rows.EndRow();
  rows.Append(0, 3.0);
  rows.EndRow();
  rows.Append(1, 2.0);
  rows.EndRow();
  rows.EndRow();
  const std::vector<CRowBlock> blocks{{{0, 1, 2, 3}, 0}};
  CRowFactor factor;
  factor.Factorise(blocks, rows, 2, kShift);
  Values v{1, 1, 1, 0};
  factor.Solve(v);
  EXPECT_TRUE(std::ranges::all_of(v, [](double value) { return std::isfinite(value); }));
  CPlainRows empty;
  for (int j = 0; j < 4; ++j) empty.EndRow();
  factor.Factorise(blocks, empty, 2, kShift);
  v = {1, 2, 3, 4};
  factor.Solve(v);
  EXPECT_EQ(v, (Values{1, 2, 3, 4}));
}

double Distance(const CRowPlace& a, const CRowPlace& b) { return std::hypot(a.m_fX - b.m_fX, a.m_fY - b.m_fY); }

RC_GTEST_PROP(RowBlocksProperty, EveryRowIsInOneBlockAfterTheNearestOfEarlierOnes, ()) {
  const CRowBlockSizes sizes{4, 3, 5};
  std::vector<CRowPlace> places(*rc::gen::inRange<std::size_t>(0, 40));
  for (CRowPlace& place : places)
    place = {*rc::gen::inRange(0, 65) / 64.0, *rc::gen::inRange(0, 65) / 64.0, *rc::gen::arbitrary<bool>()};
  std::set<std::uint32_t> seen;
  bool slopes = false;
  for (const CRowBlock& block : ChooseRowBlocks(places, sizes)) {
    RC_ASSERT(block.OwnCount() > 0 && block.OwnCount() <= (seen.empty() ? sizes.m_uFirst : sizes.m_uOwn));
    RC_ASSERT(block.m_uEarlier == std::min(sizes.m_uEarlier, seen.size()));
    const std::set<std::uint32_t> taken(block.m_auRows.begin(),
                                        block.m_auRows.begin() + static_cast<std::ptrdiff_t>(block.m_uEarlier));
    for (const std::uint32_t j : taken) RC_ASSERT(seen.contains(j));
    if (block.OwnCount() == 1) {
      const CRowPlace& own = places[block.m_auRows.back()];
      double farthest = 0.0;
      for (const std::uint32_t j : taken) farthest = std::max(farthest, Distance(own, places[j]));
      for (const std::uint32_t j : seen) RC_ASSERT(taken.contains(j) || Distance(own, places[j]) >= farthest - 1e-12);
    }
    for (std::size_t k = block.m_uEarlier; k < block.m_auRows.size(); ++k) {
      RC_ASSERT(seen.insert(block.m_auRows[k]).second);
      RC_ASSERT(places[block.m_auRows[k]].m_bSlope || !slopes);
      slopes = slopes || places[block.m_auRows[k]].m_bSlope;
    }
  }
  RC_ASSERT(seen.size() == places.size());
}

TEST(RowBlocksTest, FirstRowsAreFarApart) {
  std::vector<CRowPlace> places;
  for (int i = 0; i < 16; ++i) {
    for (int k = 0; k < 16; ++k) places.push_back({(i + 0.5) / 16, (k + 0.5) / 16, false});
  }
  const std::vector<CRowBlock> blocks = ChooseRowBlocks(places, {16, 8, 8});
  const std::vector<std::uint32_t>& first = blocks.front().m_auRows;
  ASSERT_EQ(first.size(), 16U);
  for (const std::uint32_t a : first) {
    for (const std::uint32_t b : first) {
      EXPECT_TRUE(a == b || Distance(places[a], places[b]) >= 0.25 - 1e-12) << a << ' ' << b;
    }
  }
}

}  // namespace
