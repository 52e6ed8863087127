// The finished models that come with the program.

#include <algorithm>
#include <array>
#include <cstdint>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>

#include "support/GridBuilders.h"
#include "support/TearFlood.h"
#include "support/UpdateBuilders.h"

namespace {

class Samples : public testing::TestWithParam<const char*> {
 protected:
  Samples() { m_State = m_Model.m_Grid.Load(RELIEVO_SAMPLES "/" + std::string(GetParam())); }

  std::size_t CurvesOf(CurveType type) const {
    const auto& curves = m_Model.m_Grid.Constraints().Curves();
    return static_cast<std::size_t>(
        std::count_if(curves.begin(), curves.end(), [&](const CCntrCtrl& curve) { return curve.Type() == type; }));
  }

  // The lattice points of the border on the two sides of each open end of a tear that lies next to it.
  std::vector<std::pair<std::array<int, 2>, std::array<int, 2>>> TornBorder() const {
    const CLattice& lattice = m_Model.m_Grid.Surface().Lattice();
    const int last = lattice.PointsPerSide() - 1;
    std::vector<std::pair<std::array<int, 2>, std::array<int, 2>>> torn;
    for (const CCntrCtrl& curve : m_Model.m_Grid.Constraints().Curves()) {
      if (!curve.HasType(CurveType::kPosition) || curve.IsClosed()) continue;
      for (const CCntrNode* end : {&curve.Nodes().front(), &curve.Nodes().back()}) {
        const double column = lattice.ColumnOf(end->m_fX);
        const double row = lattice.RowOf(end->m_fY);
        const auto border = [last](double g) { return g < 1 ? 0 : g > last - 1 ? last : -1; };
        const int low = static_cast<int>(border(row) >= 0 ? column : row);
        if (border(row) >= 0) torn.push_back({{low, border(row)}, {low + 1, border(row)}});
        if (border(column) >= 0) torn.push_back({{border(column), low}, {border(column), low + 1}});
      }
    }
    return torn;
  }

  CTestGrid m_Model;
  GridFileState m_State = GridFileState::NotOpened;
};

}  // namespace

TEST_P(Samples, AreWholeAndShowWhatTheProgramCanDo) {
  ASSERT_EQ(m_State, GridFileState::Whole);
  EXPECT_GE(CurvesOf(CurveType::kPosition), 2U) << "tears";
  EXPECT_GE(CurvesOf(CurveType::kNormal), 3U) << "creases";
  EXPECT_GE(m_Model.m_Grid.Constraints().Points().size(), 40U);
  EXPECT_GT(m_Model.m_Grid.Surface().MaxHeight(), 30);
  EXPECT_LT(m_Model.m_Grid.Surface().MinHeight(), -20);
}

TEST_P(Samples, AreConverged) {
  ASSERT_EQ(m_State, GridFileState::Whole);
  m_Model.m_Grid.PerformPendingWork();
  const auto saved = NodalHeights(m_Model.m_Grid);
  m_Model.m_Grid.Run().SetRunning(true);
  ASSERT_TRUE(RunUntilPaused(m_Model.m_Grid, 20000));
  constexpr double kWrittenDigits =
      1e-3;  // of heights up to a hundred, six digits each, and of the places of constraints
  EXPECT_LT(LargestDifference(NodalHeights(m_Model.m_Grid), saved), kWrittenDigits);
}

TEST_P(Samples, TearsOpenTheBorder) {
  ASSERT_EQ(m_State, GridFileState::Whole);
  m_Model.m_Grid.PerformPendingWork();
  const CQuadTree& tree = m_Model.m_Grid.Surface().Tree();
  const auto torn = TornBorder();
  EXPECT_EQ(torn.size(), std::string(GetParam()) == "cat.grid" ? 4U : 0U);
  for (const auto& [a, b] : torn) {
    const CEdge* edge = tree.FindEdge(a[0], a[1], b[0], b[1]);
    ASSERT_TRUE(edge != nullptr && edge->IsLeaf()) << testing::PrintToString(a);
    EXPECT_TRUE(edge->HasBothMarks()) << testing::PrintToString(a);
    EXPECT_FALSE(ReachableFrom(tree, a[0], a[1]).contains(b)) << testing::PrintToString(a);
  }
}

INSTANTIATE_TEST_SUITE_P(All, Samples, testing::Values("coffee.grid", "cat.grid"));
