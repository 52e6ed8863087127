// What the constraint rows make of each other, factorised in blocks, beside the Cholesky factor of the whole.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <random>
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

CRowSource SourceOf(const CPlainRows& all) {
  return [&all](std::uint32_t j, CPlainRows& rows) {
    for (std::size_t e = all.m_auStart[j]; e < all.m_auStart[j + 1]; ++e)
      rows.Append(all.m_auColumns[e], all.m_afValues[e]);
    rows.EndRow();
  };
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
    factor.Factorise(blocks, 5, SourceOf(rows), kColumns, kShift);
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
  factor.Factorise(ChooseRowBlocks(places, {3, 2, 2}), count, SourceOf(rows), kColumns, kShift);
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
  factor.Factorise(blocks, 4, SourceOf(rows), 2, kShift);
  Values v{1, 1, 1, 0};
  factor.Solve(v);
  EXPECT_TRUE(std::ranges::all_of(v, [](double value) { return std::isfinite(value); }));
  CPlainRows empty;
  for (int j = 0; j < 4; ++j) empty.EndRow();
  factor.Factorise(blocks, 4, SourceOf(empty), 2, kShift);
  v = {1, 2, 3, 4};
  factor.Solve(v);
  EXPECT_EQ(v, (Values{1, 2, 3, 4}));
}

// A chain of more rows than are held at a time, each with the one before it: the factor of two rows, written out.
TEST(RowFactorTest, RowsAreAskedForAgainWhereTheyAreTooManyToBeHeld) {
  constexpr std::size_t kCount = 20000;
  Matrix full;
  const CPlainRows rows = RandomRows(4, 29, full);
  const CRowSource few = SourceOf(rows);
  std::size_t asked = 0;
  const CRowSource repeated = [&](std::uint32_t j, CPlainRows& written) {
    ++asked;
    few(j % 29, written);
  };
  std::vector<CRowBlock> blocks{{{0}, 0}};
  for (std::uint32_t j = 1; j < kCount; ++j) blocks.push_back({{j - 1, j}, 1});
  CRowFactor factor;
  factor.Factorise(blocks, kCount, repeated, kColumns, kShift);
  EXPECT_GT(asked, kCount);
  EXPECT_LT(asked, 3 * kCount);
  const Matrix s = Shifted(full);
  for (std::size_t j = 1; j < kCount; ++j) {
    const auto own = static_cast<Eigen::Index>(j % 29);
    const auto before = static_cast<Eigen::Index>((j - 1) % 29);
    const double wanted = std::sqrt(s(own, own) - s(own, before) * s(own, before) / s(before, before));
    ASSERT_NEAR(factor.Diagonal(j), wanted, 1e-9) << j;
  }
}

}  // namespace
