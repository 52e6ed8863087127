#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <set>
#include <vector>

#include <Eigen/Core>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "solver/CCompressedRows.h"
#include "solver/CEnergyTerms.h"
#include "support/DirectSolution.h"

namespace {

using Form = std::vector<CEnergyTerms::CEntry>;
using Matrix = Eigen::MatrixXd;

struct CTerm {
  double m_fWeight = 0.0;
  Form m_Form;
};

Matrix AssembledRows(const CEnergyTerms& terms, std::size_t unknowns) {
  CCompressedRows rows;
  terms.Assemble(unknowns, rows);
  EXPECT_EQ(rows.RowCount(), unknowns);
  return Dense(rows, unknowns);
}

Matrix Symmetric2(double a, double b, double c) {
  Matrix m(2, 2);
  m << a, b, b, c;
  return m;
}

TEST(EnergyTermsTest, MatrixOfOneTermIsTheWeightedOuterProduct) {
  CEnergyTerms terms;
  terms.Add(2.0, {{0, 3.0}, {1, -1.0}});
  EXPECT_EQ(AssembledRows(terms, 2), Symmetric2(18, -6, 2));
  EXPECT_EQ(terms.Count(), 1U);
}

TEST(EnergyTermsTest, TermsAddUp) {
  CEnergyTerms terms;
  terms.Add(1.0, {{0, 1.0}, {1, 1.0}});
  terms.Add(0.5, {{1, 4.0}});
  terms.Add(1.0, {{1, 2.0}, {0, -1.0}});
  EXPECT_EQ(AssembledRows(terms, 2), Symmetric2(2, -1, 13));
  EXPECT_EQ(terms.Count(), 3U);
}

TEST(EnergyTermsTest, CoefficientsOfAnUnknownThatOccursTwiceAddUp) {
  CEnergyTerms terms;
  terms.Add(1.0, {{0, 1.0}, {1, 2.0}, {0, 3.0}});
  EXPECT_EQ(AssembledRows(terms, 2), Symmetric2(16, 8, 4));
}

TEST(EnergyTermsTest, UnknownWithoutATermHasAnEmptyRow) {
  CEnergyTerms terms;
  terms.Add(1.0, {{2, 1.0}});
  CCompressedRows rows;
  terms.Assemble(4, rows);
  EXPECT_EQ(rows.RowCount(), 4U);
  EXPECT_EQ(rows.EntryCount(), 1U);
  EXPECT_EQ(rows.Columns(2).size(), 1U);
}

TEST(EnergyTermsTest, WithoutTermsTheMatrixIsZero) {
  const CEnergyTerms terms;
  EXPECT_EQ(AssembledRows(terms, 3), Matrix::Zero(3, 3));
}

TEST(EnergyTermsTest, FormsMayBeGivenAsARange) {
  const Form form{{0, 1.0}, {1, -1.0}};
  CEnergyTerms terms;
  terms.Add(3.0, form.data(), form.data() + form.size());
  EXPECT_EQ(AssembledRows(terms, 2), Symmetric2(3, -3, 3));
}

TEST(EnergyTermsTest, ClearForgetsAllTerms) {
  CEnergyTerms terms;
  terms.Add(1.0, {{0, 1.0}, {1, 1.0}});
  terms.Clear();
  EXPECT_EQ(terms.Count(), 0U);
  terms.Add(2.0, {{1, 1.0}});
  EXPECT_EQ(AssembledRows(terms, 2), Symmetric2(0, 0, 2));
}

TEST(EnergyTermsTest, AssemblingReplacesTheMatrix) {
  CEnergyTerms terms;
  terms.Add(1.0, {{0, 1.0}, {1, 1.0}});
  CCompressedRows rows;
  terms.Assemble(5, rows);
  terms.Assemble(2, rows);
  EXPECT_EQ(rows.RowCount(), 2U);
  EXPECT_EQ(Dense(rows, 2), Symmetric2(1, 1, 1));
}

constexpr std::uint32_t kUnknowns = 7;

std::vector<CTerm> GenTerms() {
  std::vector<CTerm> terms(*rc::gen::inRange<std::size_t>(0, 12));
  for (CTerm& term : terms) {
    term.m_fWeight = *rc::gen::inRange(1, 1000) / 7.0;
    const std::size_t size = *rc::gen::inRange<std::size_t>(1, 9);
    for (std::size_t k = 0; k < size; ++k) {
      // Sevenths, so that the order of a sum shows in its last digits.
      term.m_Form.emplace_back(*rc::gen::inRange<std::uint32_t>(0, kUnknowns), *rc::gen::inRange(-100, 100) / 7.0);
    }
  }
  return terms;
}

CCompressedRows Assembled(const std::vector<CTerm>& terms) {
  CEnergyTerms energy;
  for (const CTerm& term : terms)
    energy.Add(term.m_fWeight, term.m_Form.data(), term.m_Form.data() + term.m_Form.size());
  CCompressedRows rows;
  energy.Assemble(kUnknowns, rows);
  return rows;
}

RC_GTEST_PROP(EnergyTermsProperty, MatrixIsTheSumOfTheOuterProducts, ()) {
  const std::vector<CTerm> terms = GenTerms();
  Matrix wanted = Matrix::Zero(kUnknowns, kUnknowns);
  double scale = 1.0;
  for (const CTerm& term : terms) {
    Eigen::VectorXd a = Eigen::VectorXd::Zero(kUnknowns);
    for (const auto& [unknown, coef] : term.m_Form) a[unknown] += coef;
    wanted += term.m_fWeight * a * a.transpose();
    for (const auto& entry : term.m_Form) scale += term.m_fWeight * entry.second * entry.second;
  }
  RC_ASSERT((Dense(Assembled(terms), kUnknowns) - wanted).cwiseAbs().maxCoeff() <= 1e-13 * scale);
}

RC_GTEST_PROP(EnergyTermsProperty, MatrixIsExactlySymmetric, ()) {
  const Matrix matrix = Dense(Assembled(GenTerms()), kUnknowns);
  RC_ASSERT(matrix == matrix.transpose());
}

RC_GTEST_PROP(EnergyTermsProperty, EveryColumnOccursOncePerRow, ()) {
  const CCompressedRows rows = Assembled(GenTerms());
  for (std::size_t row = 0; row < rows.RowCount(); ++row) {
    const std::set<std::uint32_t> columns(rows.Columns(row).begin(), rows.Columns(row).end());
    RC_ASSERT(columns.size() == rows.Columns(row).size());
  }
}

}  // namespace
