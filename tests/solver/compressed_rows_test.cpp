#include <algorithm>
#include <cstdint>
#include <numeric>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CCompressedRows.h"

namespace {

using Values = std::vector<double>;
using Entries = std::vector<std::pair<std::uint32_t, double>>;

CCompressedRows RowsOf(const std::vector<Entries>& rows) {
  CCompressedRows matrix;
  for (const Entries& row : rows) {
    for (const auto& [column, value] : row) matrix.Append(column, value);
    matrix.EndRow();
  }
  return matrix;
}

Values Product(const CCompressedRows& matrix, const Values& v) {
  Values out(matrix.RowCount(), 1e9);
  matrix.Times(v, out);
  return out;
}

TEST(CompressedRowsTest, BeginsWithoutRows) {
  const CCompressedRows matrix;
  EXPECT_EQ(matrix.RowCount(), 0U);
  EXPECT_EQ(matrix.EntryCount(), 0U);
}

TEST(CompressedRowsTest, RowsKeepTheirEntriesInTheOrderOfWriting) {
  const CCompressedRows matrix = RowsOf({{{3, 0.5}, {1, -2.0}}, {{0, 4.0}}});
  ASSERT_EQ(matrix.RowCount(), 2U);
  EXPECT_EQ(matrix.EntryCount(), 3U);
  EXPECT_EQ(std::vector(matrix.Columns(0).begin(), matrix.Columns(0).end()), (std::vector<std::uint32_t>{3, 1}));
  EXPECT_EQ(Values(matrix.Values(0).begin(), matrix.Values(0).end()), (Values{0.5, -2.0}));
  EXPECT_EQ(std::vector(matrix.Columns(1).begin(), matrix.Columns(1).end()), (std::vector<std::uint32_t>{0}));
}

TEST(CompressedRowsTest, EmptyRowsCount) {
  const CCompressedRows matrix = RowsOf({{}, {{0, 2.0}}, {}, {}});
  EXPECT_EQ(matrix.RowCount(), 4U);
  EXPECT_TRUE(matrix.Columns(0).empty());
  EXPECT_TRUE(matrix.Values(3).empty());
  EXPECT_EQ(Product(matrix, {3.0}), (Values{0, 6, 0, 0}));
}

TEST(CompressedRowsTest, ProductIsTheDotProductWithEveryRow) {
  const CCompressedRows matrix = RowsOf({{{0, 1.0}, {2, 2.0}}, {{1, -1.0}}, {{2, 0.5}, {0, 3.0}}});
  EXPECT_EQ(Product(matrix, {2.0, 5.0, 7.0}), (Values{16, -5, 9.5}));
}

TEST(CompressedRowsTest, TransposedProductAddsToWhatIsThere) {
  const CCompressedRows matrix = RowsOf({{{0, 1.0}, {2, 2.0}}, {{1, -1.0}}});
  Values out{100, 200, 300};
  matrix.AddTransposeTimes(Values{3.0, 4.0}, out);
  EXPECT_EQ(out, (Values{103, 196, 306}));
}

TEST(CompressedRowsTest, ValuesOfARepeatedColumnAddUp) {
  const CCompressedRows matrix = RowsOf({{{1, 2.0}, {0, 1.0}, {1, 0.5}}});
  EXPECT_EQ(Product(matrix, {3.0, 10.0}), (Values{28}));
  Values out(2, 0.0);
  matrix.AddTransposeTimes(Values{2.0}, out);
  EXPECT_EQ(out, (Values{2, 5}));
}

TEST(CompressedRowsTest, ClearForgetsAllRows) {
  CCompressedRows matrix = RowsOf({{{1, 2.0}, {0, 1.0}}, {{1, 0.5}}});
  matrix.Append(7, 1.0);
  matrix.Clear();
  EXPECT_EQ(matrix.RowCount(), 0U);
  EXPECT_EQ(matrix.EntryCount(), 0U);
  matrix.Append(0, 4.0);
  matrix.EndRow();
  EXPECT_EQ(Product(matrix, {2.0}), (Values{8}));
}

TEST(CompressedRowsTest, ClearForgetsTheClassesToo) {
  CCompressedRows matrix = RowsOf({{{0, 2.0}}, {{1, 2.0}}, {{2, 2.0}}});
  matrix.Clear();
  matrix.Append(1, 5.0);
  matrix.EndRow();
  EXPECT_EQ(Product(matrix, {1.0, 3.0}), (Values{15}));
}

TEST(CompressedRowsTest, RowsThatRepeatAreStoredOnce) {
  const CCompressedRows matrix = RowsOf({{{0, 1.0}, {1, 2.0}}, {{1, 1.0}, {2, 2.0}}, {{2, 5.0}}, {{3, 1.0}, {4, 2.0}}});
  EXPECT_EQ(matrix.EntryCount(), 7U);
  EXPECT_EQ(matrix.StoredEntryCount(), 3U);
  EXPECT_EQ(Product(matrix, {1, 10, 100, 1000, 10000}), (Values{21, 210, 500, 21000}));
}

// A sum in another order may end in other bits.
TEST(CompressedRowsTest, RowsOfOtherOrderOrOtherZerosAreOthers) {
  const CCompressedRows matrix = RowsOf({{{0, 1.0}, {1, 2.0}}, {{2, 2.0}, {1, 1.0}}, {{2, 0.0}}, {{3, -0.0}}});
  EXPECT_EQ(matrix.StoredEntryCount(), 6U);
}

TEST(CompressedRowsTest, RowsAreEqualEntryForEntry) {
  const CCompressedRows matrix = RowsOf({{{0, 1.0}}, {{1, 1.0}}, {{2, 3.0}}});
  EXPECT_TRUE(matrix == RowsOf({{{0, 1.0}}, {{1, 1.0}}, {{2, 3.0}}}));
  EXPECT_FALSE(matrix == RowsOf({{{0, 1.0}}, {{1, 1.0}}, {{2, 4.0}}}));
  EXPECT_FALSE(matrix == RowsOf({{{0, 1.0}}, {{0, 1.0}}, {{2, 3.0}}}));
  EXPECT_FALSE(matrix == RowsOf({{{0, 1.0}}, {{1, 1.0}}}));
}

// The product as the sum of each row's entries, one after the other.
Values PlainProduct(const std::vector<Entries>& rows, const Values& v) {
  Values out;
  for (const Entries& row : rows) {
    out.push_back(0.0);
    for (const auto& [column, value] : row) out.back() += value * v[column];
  }
  return out;
}

// Runs of rows that are each the one before, shifted; a uniform grid makes rows of 13 entries.
RC_GTEST_PROP(CompressedRowsProperty, ClassesDoNotChangeTheProduct, ()) {
  std::vector<Entries> rows;
  std::uint32_t columns = 1;
  for (int run = *rc::gen::inRange(1, 6); run > 0; --run) {
    Entries row(*rc::gen::elementOf(std::vector<std::size_t>{0, 1, 5, 12, 13, 13, 13, 14}));
    for (auto& [column, value] : row) {
      column = *rc::gen::inRange<std::uint32_t>(0, 20);
      value = *rc::gen::inRange(-20, 20);
    }
    for (int length = *rc::gen::inRange(1, 15); length > 0; --length) {
      rows.push_back(row);
      for (auto& entry : row) columns = std::max(columns, ++entry.first);
    }
  }
  const CCompressedRows matrix = RowsOf(rows);
  Values v;
  for (const int value : *rc::gen::container<std::vector<int>>(columns, rc::gen::inRange(-1000, 1000)))
    v.push_back(value / 7.0);
  RC_ASSERT(Product(matrix, v) == PlainProduct(rows, v));
}

// Integers, whose products and sums are exact in any order.
RC_GTEST_PROP(CompressedRowsProperty, TransposedProductIsTheAdjointOfTheProduct, ()) {
  constexpr std::size_t kColumns = 6;
  const auto integers = [](std::size_t count) {
    const std::vector<int> v = *rc::gen::container<std::vector<int>>(count, rc::gen::inRange(-20, 20));
    return Values(v.begin(), v.end());
  };
  std::vector<Entries> rows(*rc::gen::inRange<std::size_t>(0, 8));
  for (Entries& row : rows) {
    for (const double value : integers(*rc::gen::inRange<std::size_t>(0, 9)))
      row.emplace_back(*rc::gen::inRange<std::uint32_t>(0, kColumns), value);
  }
  const CCompressedRows matrix = RowsOf(rows);
  const Values v = integers(kColumns);
  const Values w = integers(rows.size());
  const Values image = Product(matrix, v);
  Values transposed(kColumns, 0.0);
  matrix.AddTransposeTimes(w, transposed);
  RC_ASSERT(std::inner_product(image.begin(), image.end(), w.begin(), 0.0) ==
            std::inner_product(v.begin(), v.end(), transposed.begin(), 0.0));
}

}  // namespace
