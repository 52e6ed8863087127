// Which rows contradict each other: made cases with the rows, factors and amounts that they must come to, either side
// of each bound, and random ones against all combinations there are.

#include "insight/Contradictions.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include <Eigen/SVD>
#include <gtest/gtest.h>
#include <rapidcheck/gtest.h>

#include "report/ConstraintReport.h"
#include "report/ReportText.h"
#include "solver/CConstraintRows.h"
#include "support/CStaging.h"
#include "support/CurveBuilders.h"
#include "support/DirectSolution.h"
#include "support/UpdateBuilders.h"

namespace {

constexpr double kSide = 100.0 / 32;
constexpr double kDisagrees = 1e-6;

using Factors = std::vector<std::pair<std::uint32_t, double>>;
using LineLists = std::vector<std::vector<std::size_t>>;

// 100 by 100 units in 32 by 32 cells, at height 0, with the rows of the constraints: heights first, then the slope in y
// and in x of each normal.
struct CMadeRows {
  explicit CMadeRows(const std::vector<CPtCstr>& constraints, const CPlaces& tear = {}) : m_Scope(5, 5) {
    m_Grid.Initialize(5, false, 0, 0, 100, 100);
    if (!tear.empty()) m_Grid.AddCurve(PointsAt(tear), kTear, false);
    AddAll(m_Grid, constraints);
    m_Grid.PerformPendingWork();
    m_Grid.Run().SetRunning(false);
    m_Rows.Add(std::array<const CPtCstrList*, 1>{&m_Grid.Constraints().Points()}, m_Grid.Surface().Tree(),
               m_Grid.Surface().Interpolation());
    m_Relations = FindRowRelations(m_Rows);
    EXPECT_TRUE(m_Relations.m_bWhole);
    m_Judged = JudgeRelations(m_Relations.m_aRelations, m_Rows, kDisagrees);
  }
  std::vector<CContradiction> Told() const { return ReportOnConstraints(m_Grid).m_aContradictions; }
  std::string StateOf(std::size_t line) const { return StateText(ReportOnConstraints(m_Grid).m_aLines[line]); }

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
  CConstraintRows m_Rows;
  CRowRelations m_Relations;
  CJudgedRelations m_Judged;
};

void ExpectContradictions(const CMadeRows& made, const std::vector<std::pair<Factors, double>>& expected) {
  ASSERT_EQ(made.m_Judged.m_aContradictions.size(), expected.size());
  for (std::size_t k = 0; k < expected.size(); ++k) {
    const CRowContradiction& found = made.m_Judged.m_aContradictions[k];
    const auto& [factors, gap] = expected[k];
    Factors named;
    std::ranges::copy_if(found.m_Relation.m_aFactors, std::back_inserter(named),
                         [](const auto& of) { return std::abs(of.second) > 0.01; });
    ASSERT_EQ(named.size(), factors.size()) << k;
    const double turn = named.front().second * factors.front().second < 0 ? -1 : 1;
    for (std::size_t e = 0; e < factors.size(); ++e) {
      EXPECT_EQ(named[e].first, factors[e].first) << k;
      EXPECT_NEAR(turn * named[e].second, factors[e].second, 1e-9) << k << ' ' << e;
    }
    EXPECT_NEAR(turn * found.m_fGap, gap, 1e-9) << k;
    EXPECT_TRUE(found.m_Relation.Vanishes(made.m_Rows));
  }
}

// As lines of the report, with the state of each.
void ExpectTold(const CMadeRows& made, const LineLists& expected) {
  const CConstraintReport report = ReportOnConstraints(made.m_Grid);
  ASSERT_EQ(report.m_aContradictions.size(), expected.size());
  std::set<std::size_t> all;
  for (std::size_t k = 0; k < expected.size(); ++k) {
    EXPECT_EQ(report.m_aContradictions[k].m_auLines, expected[k]) << k;
    all.insert(expected[k].begin(), expected[k].end());
  }
  for (std::size_t line = 0; line < report.m_aLines.size(); ++line)
    EXPECT_EQ(report.m_aLines[line].m_State == ConstraintState::Contradicts, all.contains(line)) << line;
}

TEST(Contradictions, TwoHeightsAtOnePlace) {
  const CMadeRows made({HeightCstr(50, 50, 1), HeightCstr(50, 50, 4)});
  ExpectContradictions(made, {{{{0, 1}, {1, -1}}, -3}});
  ExpectTold(made, {{0, 1}});
}

// It repeats the first and contradicts the second.
TEST(Contradictions, AThirdHeightLikeTheFirst) {
  const CMadeRows made({HeightCstr(50, 50, 1), HeightCstr(50, 50, 4), HeightCstr(50, 50, 1)});
  ExpectContradictions(made, {{{{0, 1}, {1, -1}}, -3}, {{{1, 1}, {2, -1}}, 3}});
  ExpectTold(made, {{0, 1}, {1, 2}});
}

TEST(Contradictions, AThirdHeightAgainstTwoThatAgree) {
  const CMadeRows made({HeightCstr(50, 50, 1), HeightCstr(50, 50, 1), HeightCstr(50, 50, 4)});
  ExpectContradictions(made, {{{{0, 1}, {2, -1}}, -3}, {{{1, 1}, {2, -1}}, -3}});
  ExpectTold(made, {{0, 2}, {1, 2}});
}

TEST(Contradictions, HeightsAlongTheSideOfACell) {
  const CMadeRows made({HeightCstr(50, 50, 0), HeightCstr(50 + kSide / 2, 50, 4), HeightCstr(50 + kSide, 50, 0)});
  ExpectContradictions(made, {{{{0, 0.5}, {1, -1}, {2, 0.5}}, -4}});
  ExpectTold(made, {{0, 1, 2}});
}

TEST(Contradictions, AHeightInTheMiddleOfACellAgainstItsCorners) {
  const CMadeRows made({HeightCstr(50, 50, 1), HeightCstr(50 + kSide, 50, 2), HeightCstr(50, 50 + kSide, 3),
                        HeightCstr(50 + kSide, 50 + kSide, 6), HeightCstr(50 + kSide / 2, 50 + kSide / 2, 5)});
  ExpectContradictions(made, {{{{0, 0.25}, {1, 0.25}, {2, 0.25}, {3, 0.25}, {4, -1}}, -2}});
  ExpectTold(made, {{0, 1, 2, 3, 4}});
}

// Its probes are half a cell away on either side.
TEST(Contradictions, ANormalAgainstHeightsAroundIt) {
  const CMadeRows made({HeightCstr(50 - kSide / 2, 50, 1), HeightCstr(50 + kSide / 2, 50, 2), SlopeCstr(50, 50, 5, 0)});
  ExpectContradictions(made, {{{{0, 1}, {1, -1}, {3, 1}}, 5 * kSide - 1}});
  ExpectTold(made, {{0, 1, 2}});
}

TEST(Contradictions, BothSlopesOfANormalAgainstHeightsAroundIt) {
  const CMadeRows made({HeightCstr(50 - kSide / 2, 50, 0), HeightCstr(50 + kSide / 2, 50, 1),
                        HeightCstr(50, 50 - kSide / 2, 0), HeightCstr(50, 50 + kSide / 2, 2), SlopeCstr(50, 50, 0, 0)});
  ExpectContradictions(made, {{{{2, 1}, {3, -1}, {4, 1}}, -2}, {{{0, 1}, {1, -1}, {5, 1}}, -1}});
  ExpectTold(made, {{2, 3, 4}, {0, 1, 4}});
}

TEST(Contradictions, TwoNormalsOfOtherSlopesInOneDirection) {
  const CMadeRows made({SlopeCstr(50, 50, 0.5, 1), SlopeCstr(50, 50, 0.5, -1)});
  ExpectContradictions(made, {{{{0, 1}, {2, -1}}, 2 * kSide}});
  EXPECT_EQ(made.m_Judged.m_auAgreeing.size(), 1U);
  ExpectTold(made, {{0, 1}});
}

TEST(Contradictions, NormalsInARowBetweenTwoHeights) {
  const CMadeRows made({HeightCstr(50 - kSide / 2, 50, 0), HeightCstr(50 + 3 * kSide / 2, 50, 0),
                        SlopeCstr(50, 50, 1, 0), SlopeCstr(50 + kSide, 50, 1, 0)});
  ExpectContradictions(made, {{{{0, 1}, {1, -1}, {3, 1}, {5, 1}}, 2 * kSide}});
  ExpectTold(made, {{0, 1, 2, 3}});
}

// What three heights say of the place of the first contradicts the fourth as well.
TEST(Contradictions, AHeightAgainstOneThatOthersRepeat) {
  const CMadeRows made(
      {HeightCstr(50, 50, 0), HeightCstr(50 + kSide / 2, 50, 2), HeightCstr(50 + kSide, 50, 4), HeightCstr(50, 50, 7)});
  ExpectContradictions(made, {{{{0, 1}, {3, -1}}, -7}, {{{1, 1}, {2, -0.5}, {3, -0.5}}, -3.5}});
  ExpectTold(made, {{0, 3}, {1, 2, 3}});
}

TEST(Contradictions, RepetitionsElsewhereStayRepetitions) {
  const CMadeRows made({HeightCstr(50, 50, 1), HeightCstr(50, 50, 4), HeightCstr(20, 20, 1), HeightCstr(20, 20, 1),
                        SlopeCstr(70, 70, 1, 2), SlopeCstr(70, 70, 1, 2)});
  ExpectContradictions(made, {{{{0, 1}, {1, -1}}, -3}});
  EXPECT_EQ(made.m_Judged.m_auAgreeing.size(), 3U);
  ExpectTold(made, {{0, 1}});
  EXPECT_EQ(made.StateOf(3), "repeats");
  EXPECT_EQ(made.StateOf(5), "repeats");
}

// The tear takes the rows of the normal whose probes it parts.
TEST(Contradictions, NothingContradictsAcrossATear) {
  const std::vector<CPtCstr> constraints{HeightCstr(50 - kSide / 2, 50, 1), HeightCstr(50 + 3 * kSide / 2, 50, 2),
                                         SlopeCstr(50, 50, 5, 0), SlopeCstr(50 + kSide, 50, 5, 0)};
  ExpectTold(CMadeRows(constraints), {{0, 1, 2, 3}});
  const CMadeRows torn(constraints, {{51, 20}, {51, 80}});
  ExpectContradictions(torn, {});
  ExpectTold(torn, {});
  EXPECT_EQ(torn.StateOf(2), "in a tear");
}

TEST(Contradictions, ANormalAgainstWhatACurveGenerates) {
  CMadeRows made({HeightCstr(5, 5, 0), HeightCstr(95, 5, 10), HeightCstr(5, 95, 20)});
  made.m_Grid.AddCurve(PointsAt({{20, 60}, {80, 60}}), kCrease, false);
  CurveAt(CStaging::Constraints(made.m_Grid).Curves(), 0).SetOption(CurveOption::kLeftAutoBump, true);
  made.m_Grid.PerformPendingWork();
  const auto& generated = made.m_Grid.Constraints().Generated();
  ASSERT_GT(generated.size(), 0U);
  const CPtCstr first = *generated.begin();
  made.m_Grid.AddPtCstr(SlopeCstr(first.m_fX, first.m_fY, first.m_fP + 2, first.m_fQ));
  made.m_Grid.PerformPendingWork();
  const CConstraintReport report = ReportOnConstraints(made.m_Grid);
  ASSERT_EQ(report.m_aContradictions.size(), 1U);
  EXPECT_EQ(report.m_aContradictions[0].m_auLines, (std::vector<std::size_t>{3, 4}));
  EXPECT_NEAR(report.m_aContradictions[0].m_fGap, 2 * kSide, 1e-9);
  EXPECT_FALSE(report.m_aLines[3].m_Curve.has_value());
  EXPECT_EQ(report.m_aLines[4].m_Curve, 0U);
}

// Either side of the bounds.

// A surface from 0 to 10.
struct CRisingRows : CMadeRows {
  explicit CRisingRows(const std::vector<CPtCstr>& constraints) : CMadeRows(constraints) {
    SetSurface(m_Grid, CRamp{0.1, 0, 0});
  }
};

TEST(ContradictionBounds, AHeightIsKeptToOneTenThousandthOfTheRange) {
  EXPECT_EQ(CRisingRows({HeightCstr(50, 50, 5.00099)}).StateOf(0), "kept");
  EXPECT_EQ(CRisingRows({HeightCstr(50, 50, 5.00101)}).StateOf(0), "not kept");
}

// By what it makes across its cell.
TEST(ContradictionBounds, ASlopeIsKeptToOneTenThousandthOfTheRange) {
  EXPECT_EQ(CRisingRows({SlopeCstr(50, 50, 0.1 + 0.00099 / kSide, 0)}).StateOf(0), "kept");
  EXPECT_EQ(CRisingRows({SlopeCstr(50, 50, 0.1, -0.00101 / kSide)}).StateOf(0), "not kept");
}

TEST(ContradictionBounds, TargetsAgreeToOneMillionthOfTheRange) {
  EXPECT_TRUE(CRisingRows({HeightCstr(50, 50, 5), HeightCstr(50, 50, 5.0000099)}).Told().empty());
  EXPECT_EQ(CRisingRows({HeightCstr(50, 50, 5), HeightCstr(50, 50, 5.0000101)}).Told().size(), 1U);
}

// A height that lies by such a share of a cell beside another.
TEST(ContradictionBounds, CombinationsVanishToOneHundredMillionth) {
  const auto relationsBeside = [](double share) {
    return CMadeRows({HeightCstr(50, 50, 5), HeightCstr(50 + share * kSide, 50, 6)}).m_Relations.m_aRelations.size();
  };
  EXPECT_EQ(relationsBeside(0.9e-8), 1U);
  EXPECT_EQ(relationsBeside(1.1e-8), 0U);
}

// The middle one of three along the side of a cell takes such a share of the last.
TEST(ContradictionBounds, RowsAboveOneHundredthAreNamed) {
  const auto namedAt = [](double share) {
    const CMadeRows made({HeightCstr(50, 50, 0), HeightCstr(50 + kSide, 50, 0), HeightCstr(50 + share * kSide, 50, 4)});
    return made.Told().front().m_auLines;
  };
  EXPECT_EQ(namedAt(0.0099), (std::vector<std::size_t>{0, 2}));
  EXPECT_EQ(namedAt(0.0101), (std::vector<std::size_t>{0, 1, 2}));
}

// Random ones.

// Every row of a combination that contradicts and of which none can be left out, by trying all.
std::set<std::uint32_t> RowsThatContradict(const CMadeRows& made) {
  const std::size_t count = made.m_Rows.Count();
  Eigen::MatrixXd rows = Dense(made.m_Rows.Rows(), made.m_Grid.Surface().Order().Count());
  Eigen::VectorXd targets(static_cast<Eigen::Index>(count));
  for (std::size_t j = 0; j < count; ++j) {
    const double unit = (made.m_Rows.IsSlope(j) ? made.m_Rows.Span(j) : 1.0) / CConstraintRows::kWeight;
    rows.row(static_cast<Eigen::Index>(j)) *= unit;
    targets[static_cast<Eigen::Index>(j)] = unit * made.m_Rows.Targets()[j];
  }
  const Eigen::MatrixXd products = rows * rows.transpose();
  std::set<std::uint32_t> all;
  for (std::uint32_t subset = 1; subset < 1U << count; ++subset) {
    std::vector<Eigen::Index> of;
    for (std::uint32_t j = 0; j < count; ++j) {
      if ((subset >> j & 1U) != 0) of.push_back(j);
    }
    const Eigen::JacobiSVD<Eigen::MatrixXd> svd(products(of, of), Eigen::ComputeFullV);
    const auto& values = svd.singularValues();
    const Eigen::Index last = values.size() - 1;
    if (values[last] > 1e-9 || (last > 0 && values[last - 1] < 1e-9)) continue;
    const Eigen::VectorXd factors = svd.matrixV().col(last) / svd.matrixV().col(last).cwiseAbs().maxCoeff();
    if (factors.cwiseAbs().minCoeff() < 1e-6 || std::abs(factors.dot(targets(of))) < kDisagrees) continue;
    for (const Eigen::Index j : of) all.insert(static_cast<std::uint32_t>(j));
  }
  return all;
}

// Constraints at corners, on sides and in the middle of two cells, on a plane but for one or another.
CPtCstr AnyConstraint() {
  const double x = 50 + 0.5 * kSide * *rc::gen::inRange(0, 5);
  const double y = 50 + 0.5 * kSide * *rc::gen::inRange(0, 3);
  const int off = *rc::gen::weightedElement<int>({{4, 0}, {1, 1}, {1, 2}});
  if (*rc::gen::inRange(0, 4) == 0) return SlopeCstr(x, y, 0.25, 0.5 + off);
  return HeightCstr(x, y, 0.25 * x + 0.5 * y + off);
}

RC_GTEST_PROP(ContradictionsAtRandom, NameEveryRowOfEveryCombinationThatContradicts, ()) {
  std::vector<CPtCstr> constraints;
  std::size_t rows = 0;
  while (rows < 9) {
    constraints.push_back(AnyConstraint());
    rows += constraints.back().HasKind(PtCstrKind::kNormal) ? 2 : 1;
  }
  const CMadeRows made(constraints);
  std::set<std::uint32_t> named;
  for (const CRowContradiction& of : made.m_Judged.m_aContradictions) {
    const std::vector<std::uint32_t> rowsOf = of.m_Relation.NamedRows();
    named.insert(rowsOf.begin(), rowsOf.end());
    RC_ASSERT(of.m_Relation.Vanishes(made.m_Rows));
    RC_ASSERT(std::abs(of.m_fGap) > kDisagrees);
  }
  RC_CLASSIFY(made.m_Judged.m_aContradictions.size() > 1);
  RC_CLASSIFY(!made.m_Judged.m_auAgreeing.empty());
  RC_ASSERT(named == RowsThatContradict(made));
}

// The search.

TEST(RelationSearch, TellsThatItWasCutShort) {
  const CMadeRows made({HeightCstr(50, 50, 1), HeightCstr(50, 50, 4), HeightCstr(20, 50, 1), HeightCstr(20, 50, 4)});
  const CRowRelations some = FindRowRelations(made.m_Rows, 1);
  EXPECT_FALSE(some.m_bWhole);
  EXPECT_EQ(some.m_aRelations.size(), 1U);
  const CConstraintReport report = CConstraintReporter(1).Report(made.m_Grid);
  EXPECT_FALSE(report.m_bSearchedAll);
  EXPECT_NE(SummaryOf(report).find("; the search for contradictions was cut short"), std::string::npos);
  EXPECT_TRUE(ReportOnConstraints(made.m_Grid).m_bSearchedAll);
  EXPECT_EQ(SummaryOf(ReportOnConstraints(made.m_Grid)).find("cut short"), std::string::npos);
}

TEST(RelationSearch, IsMadeAgainOnlyForOtherRows) {
  CMadeRows made({HeightCstr(50, 50, 1), HeightCstr(50, 50, 4), HeightCstr(20, 50, 1), SlopeCstr(70, 70, 0, 0)});
  CConstraintReporter reporter;
  EXPECT_EQ(reporter.Report(made.m_Grid).m_aContradictions.size(), 1U);
  EXPECT_NEAR(reporter.Report(made.m_Grid).m_aLines[2].m_fMissed, 1, 1e-9);
  made.m_Grid.Run().SetRunning(true);
  for (int tick = 0; tick < 20; ++tick) made.m_Grid.UpdateGrid();
  EXPECT_LT(reporter.Report(made.m_Grid).m_aLines[2].m_fMissed, 0.5);
  EXPECT_EQ(reporter.SearchCount(), 1);
  // A wanted height is another target of the same row.
  made.m_Grid.SelectPtCstr(50, 50, PtCstrKind::kPosition);
  const double other = made.m_Grid.GetSelectedHeight() == 1 ? 4 : 1;
  made.m_Grid.SetSelectedHeight(other);
  made.m_Grid.PerformPendingWork();
  EXPECT_TRUE(reporter.Report(made.m_Grid).m_aContradictions.empty());
  EXPECT_EQ(reporter.SearchCount(), 1);
  made.m_Grid.AddPtCstr(HeightCstr(20, 50, 9));
  made.m_Grid.PerformPendingWork();
  EXPECT_EQ(reporter.Report(made.m_Grid).m_aContradictions.size(), 1U);
  EXPECT_EQ(reporter.SearchCount(), 2);
}

}  // namespace
