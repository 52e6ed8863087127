// What the help line tells of a point constraint, its value now and what the surface had there.

#include <gtest/gtest.h>

#include "support/CStaging.h"
#include "support/UpdateBuilders.h"
#include "ui/seams/CValueMessages.h"
#include "ui/seams/ViewHost.h"

namespace {

using Texts = std::vector<std::string>;

class CListeningHost : public ViewHost {
 public:
  void PauseSolverForCommand() override {}
  void ResumeAfterCommand() override {}
  void ShowHelp(HelpText::Index /*index*/) override {}
  void RestoreHelp() override { m_Shown = "help"; }
  void ShowMessage(const std::string& text) override { m_Shown = text; }
  void Tell(const std::string& text) override { m_aTold.push_back(text); }
  void RedrawImageView() override {}
  void RedrawModelView() override {}
  void FocusImageView() override {}
  bool ShowsDebugZone() const override { return false; }
  void ShowPointerInside(bool /*inside*/) override {}
  void ShowInfluence(double /*value*/) override {}
  void ShowNumber(int /*number*/, int /*levelCode*/) override {}
  void Notice(const char* /*text*/) override {}

  std::string m_Shown;
  Texts m_aTold;
};

// The surface rises by 0.25 to the right and falls by 1.5 upwards: -28 at (4, 22).
class ValueMessagesTest : public ::testing::Test {
 protected:
  ValueMessagesTest() { SetSurface(Grid(), CRamp{}); }
  CGrid& Grid() { return m_Test.m_Grid; }
  CPtCstr& Record(int place) { return RecordAt(CStaging::Constraints(Grid()).Points(), place); }
  // Selects it, and no other.
  void Add(const CPtCstr& record) {
    Grid().AddPtCstr(record);
    Grid().PerformPendingWork();
    Grid().UnselectAll();
    Record(static_cast<int>(Grid().Constraints().Points().size()) - 1).SetState(PtCstrState::kSelected, true);
    m_Test.m_Console.Take();
  }

  CTestGrid m_Test;
  CListeningHost m_Host;
  CValueMessages m_Heights{Grid(), m_Host, PtCstrKind::kPosition};
  CValueMessages m_Slopes{Grid(), m_Host, PtCstrKind::kNormal};
};

}  // namespace

TEST_F(ValueMessagesTest, ShowWhatTheSelectedOneAsksFor) {
  Add(HeightAndSlopeCstr(4, 22, 44.8, 0.5, -0.25));
  m_Heights.SelectionChanged();
  EXPECT_EQ(m_Host.m_Shown, "height 44.8");
  m_Slopes.SelectionChanged();
  EXPECT_EQ(m_Host.m_Shown, "slope (0.5, -0.25)");
  EXPECT_TRUE(m_Host.m_aTold.empty());
}

TEST_F(ValueMessagesTest, WithoutAnySelectedOfTheKindTheHelpComesBack) {
  Add(SlopeCstr(4, 22));
  m_Heights.SelectionChanged();
  EXPECT_EQ(m_Host.m_Shown, "help");
}

TEST_F(ValueMessagesTest, ADragShowsWhatTheSurfaceHadWhenItBegan) {
  Add(HeightCstr(4, 22, 2));
  m_Heights.BeginDrag();
  for (const auto& [height, text] : {std::pair{10.5, "height 10.5, was -28"}, {-3.0, "height -3, was -28"}}) {
    Grid().SetSelectedHeight(height);
    m_Heights.Dragged();
    EXPECT_EQ(m_Host.m_Shown, text);
    SetSurface(Grid(), CFlat{});
  }
}

TEST_F(ValueMessagesTest, ADragOfASlopeShowsThatOfTheSurface) {
  Add(SlopeCstr(4, 22));
  m_Slopes.BeginDrag();
  Grid().ChangeSelectedNormal(0.5, -2);
  m_Slopes.Dragged();
  EXPECT_EQ(m_Host.m_Shown, "slope (0.5, -2), was (0.25, -1.5)");
}

TEST_F(ValueMessagesTest, TheEndOfADragIsToldOnce) {
  Add(HeightCstr(4, 22, 2));
  m_Heights.BeginDrag();
  m_Heights.EndDrag();
  EXPECT_TRUE(m_Host.m_aTold.empty()) << "nothing was dragged";
  m_Heights.BeginDrag();
  m_Heights.Dragged();
  EXPECT_TRUE(m_Host.m_aTold.empty()) << "it goes on";
  m_Heights.EndDrag();
  m_Heights.EndDrag();
  EXPECT_EQ(m_Host.m_aTold, Texts{"height 2, was -28"});
}

TEST_F(ValueMessagesTest, AnotherOneSelectedBeginsAnotherDrag) {
  Add(HeightCstr(4, 22, 2));
  Add(HeightCstr(8, 22, 3));
  m_Heights.Dragged();
  EXPECT_EQ(m_Host.m_Shown, "height 3, was -27");
  SetSelection(CStaging::Constraints(Grid()).Points(), "10");
  m_Heights.Dragged();
  EXPECT_EQ(m_Host.m_Shown, "height 2, was -28");
  EXPECT_EQ(m_Host.m_aTold, Texts{"height 3, was -27"});
  SetSelection(CStaging::Constraints(Grid()).Points(), "00");
  m_Heights.Dragged();
  m_Heights.EndDrag();
  EXPECT_EQ(m_Host.m_aTold.size(), 2U);
}

TEST_F(ValueMessagesTest, WhereThereIsNoSurfaceOnlyTheValueIsShown) {
  Add(HeightCstr(400, 22, 2));
  m_Heights.BeginDrag();
  m_Heights.Dragged();
  EXPECT_EQ(m_Host.m_Shown, "height 2. It has no effect, because it lies outside");
  Add(SlopeCstr(400, 22));
  m_Slopes.BeginDrag();
  m_Slopes.Dragged();
  EXPECT_EQ(m_Host.m_Shown, "slope (0, 0). It has no effect, because it lies outside");
  EXPECT_EQ(m_Test.m_Console.Take(), "") << "no complaint";
}

TEST_F(ValueMessagesTest, TheReasonIsToldWhyOneHasNoEffect) {
  const std::vector<CPtCstr> tear{HeightCstr(-3.5, 22, 0), HeightCstr(12.5, 22, 0)};
  Grid().AddCurve(tear, CurveType::kPosition, false);
  Add(HeightCstr(4, 22, 2));
  m_Heights.SelectionChanged();
  EXPECT_EQ(m_Host.m_Shown, "height 2. It has no effect, because it lies in a tear");
  Grid().MoveSelectedPtCstr(0, 2);
  m_Heights.SelectionChanged();
  EXPECT_EQ(m_Host.m_Shown, "height 2");
  Add(SlopeCstr(12.5, 25));
  m_Slopes.SelectionChanged();
  EXPECT_EQ(m_Host.m_Shown, "slope (0, 0). It has no effect, because it lies on the border");
}
