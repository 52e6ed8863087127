// How many constraints all curves together may generate.

#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "model/CGrid.h"
#include "model/RefusedCurves.h"
#include "support/CStaging.h"
#include "support/SanitizerShare.h"
#include "support/UpdateBuilders.h"

namespace {

class CNotedHost : public CActingHost {
 public:
  using CActingHost::CActingHost;
  void CurvesRefused(int count) override { m_asNotices.push_back(RefusedCurvesText(count)); }

  std::vector<std::string> m_asNotices;
};

constexpr double kDistance = 0.25 / 8000;

class GeneratedBoundTest : public testing::Test {
 protected:
  CGrid& Grid() { return m_Test.m_Grid; }
  // A straight curve whose segments, each within its own bound, generate about 8,000 constraints.
  CCntrCtrl& AddLine(int segments) {
    std::vector<CPtCstr> places;
    for (int k = 0; k <= segments; ++k) places.push_back({-3 + 0.25 * k, 22.2});
    Grid().AddCurve(places, CurveType::kFairness, false);
    CCntrCtrl& curve = CStaging::Constraints(Grid()).Curves().back();
    curve.SetOption(CurveOption::kLeftAutoBump, true);
    curve.SetDistance(CurveSide::Left, kDistance);
    return curve;
  }

  CTestGrid m_Test{4, 2};
  CNotedHost m_Host{Grid()};
};

TEST_F(GeneratedBoundTest, ACurveBeyondItGeneratesNothingAndTheOthersGoOn) {
  AddLine(2);
  AddLine(24);
  AddLine(2);
  Grid().UpdateGrid();
  const double each = static_cast<double>(Grid().Constraints().Generated().size()) / 4;
  EXPECT_NEAR(each, 8000, 1);
  EXPECT_EQ(m_Host.m_asNotices, std::vector<std::string>{"The curves would generate more than 200000 constraints. 1 of "
                                                         "them generate none: make their distances larger."});
  Grid().Run().Post(Operation::kRebuildMaps);
  Grid().UpdateGrid();
  EXPECT_EQ(m_Host.m_asNotices.size(), 1U) << "told once";
}

TEST_F(GeneratedBoundTest, WhatIsWithinItIsNotTold) {
  const CCntrCtrl& curve = AddLine(RepetitionsOf(14));
  Grid().UpdateGrid();
  EXPECT_NEAR(static_cast<double>(Grid().Constraints().Generated().size()), curve.GeneratedCount(), 2);
  EXPECT_TRUE(m_Host.m_asNotices.empty());
}

TEST_F(GeneratedBoundTest, ALargerDistanceLetsACurveInAndAnotherSlipIsToldAgain) {
  CCntrCtrl& curve = AddLine(40);
  Grid().UpdateGrid();
  EXPECT_TRUE(Grid().Constraints().Generated().empty());
  curve.SetDistance(CurveSide::Left, 1);
  Grid().Run().Post(Operation::kRebuildMaps);
  Grid().UpdateGrid();
  EXPECT_GT(Grid().Constraints().Generated().size(), 8U);
  curve.SetDistance(CurveSide::Left, kDistance);
  Grid().Run().Post(Operation::kRebuildMaps);
  Grid().UpdateGrid();
  EXPECT_EQ(m_Host.m_asNotices.size(), 2U);
}

TEST_F(GeneratedBoundTest, BeyondItNothingIsExported) {
  const CCntrCtrl& curve = AddLine(40);
  Grid().UpdateGrid();
  EXPECT_FALSE(Grid().CurveEdits().ExportConstraints(curve.Id()));
  EXPECT_TRUE(Grid().Constraints().Points().empty());
  EXPECT_EQ(curve.Options(), CurveOption::kLeftAutoBump);
}

}  // namespace
