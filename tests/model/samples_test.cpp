// The finished models that come with the program.

#include <algorithm>
#include <cstdint>
#include <string>

#include <gtest/gtest.h>

#include "support/GridBuilders.h"
#include "support/UpdateBuilders.h"

namespace {

class Samples : public testing::TestWithParam<const char*> {
 protected:
  Samples() { m_State = m_Model.m_Grid.Load(RELIEVO_SAMPLES "/" + std::string(GetParam())); }

  std::size_t CurvesOf(std::uint32_t type) const {
    const auto& curves = m_Model.m_Grid.Curves();
    return static_cast<std::size_t>(
        std::count_if(curves.begin(), curves.end(), [&](const CCntrCtrl& curve) { return curve.Type() == type; }));
  }

  CTestGrid m_Model;
  GridFileState m_State = GridFileState::NotOpened;
};

}  // namespace

TEST_P(Samples, AreWholeAndShowWhatTheProgramCanDo) {
  ASSERT_EQ(m_State, GridFileState::Whole);
  EXPECT_GE(CurvesOf(CurveType::kPosition), 2U) << "tears";
  EXPECT_GE(CurvesOf(CurveType::kNormal), 3U) << "creases";
  EXPECT_GE(m_Model.m_Grid.PointConstraints().size(), 40U);
  EXPECT_GT(m_Model.m_Grid.MaxHeight(), 30);
  EXPECT_LT(m_Model.m_Grid.MinHeight(), -20);
}

TEST_P(Samples, AreConverged) {
  ASSERT_EQ(m_State, GridFileState::Whole);
  m_Model.m_Grid.PerformPendingWork();
  const auto saved = NodalHeights(m_Model.m_Grid);
  m_Model.m_Grid.SetRunning(true);
  ASSERT_TRUE(RunUntilPaused(m_Model.m_Grid, 20000));
  constexpr double kWrittenDigits =
      1e-3;  // of heights up to a hundred, six digits each, and of the places of constraints
  EXPECT_LT(LargestDifference(NodalHeights(m_Model.m_Grid), saved), kWrittenDigits);
}

INSTANTIATE_TEST_SUITE_P(All, Samples, testing::Values("coffee.grid", "cat.grid"));
