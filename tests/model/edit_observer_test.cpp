// Who hears of edits, of what lies within them, and of gestures.

#include <new>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "support/CurveGrid.h"

namespace {

class CListener : public EditObserver {
 public:
  explicit CListener(CGrid& grid) : m_Grid(grid) { grid.Gate().AttachObserver(this); }
  ~CListener() override { m_Grid.Gate().AttachObserver(nullptr); }
  CListener(const CListener&) = delete;
  CListener& operator=(const CListener&) = delete;

  void BeforeEdit(Edit edit) override { Note("before ", edit); }
  void AfterEdit(Edit edit) override { Note("after ", edit); }
  void GestureBegins() override { m_asHeard.emplace_back("begin"); }
  void GestureEnds() override { m_asHeard.emplace_back("end"); }

  std::vector<std::string> m_asHeard;
  std::vector<std::size_t> m_auPoints;

 private:
  void Note(const std::string& when, Edit edit) {
    m_asHeard.push_back(when + std::to_string(static_cast<int>(edit)));
    m_auPoints.push_back(m_Grid.Constraints().Points().size());
  }

  CGrid& m_Grid;
};

std::string Before(Edit edit) { return "before " + std::to_string(static_cast<int>(edit)); }
std::string After(Edit edit) { return "after " + std::to_string(static_cast<int>(edit)); }

using Lines = std::vector<std::string>;

TEST(EditObserverTest, HearsOfAnEditBeforeAndAfterIt) {
  CTestGrid test;
  const CListener listener(test.m_Grid);
  test.m_Grid.AddPtCstr(HeightCstr(7, 21.5, 2));
  EXPECT_EQ(listener.m_asHeard, (Lines{Before(Edit::AddPoint), After(Edit::AddPoint)}));
  EXPECT_EQ(listener.m_auPoints, (std::vector<std::size_t>{0, 1}));
}

TEST(EditObserverTest, HearsOfWhatLiesWithinAnEdit) {
  CCurveGrid test;
  test.Click({{0, 21}, {4, 22}});
  const CListener listener(test.m_Grid);
  test.m_Grid.CurveEdits().ValidatePending(5, 24, false, kTear);
  EXPECT_EQ(listener.m_asHeard,
            (Lines{Before(Edit::EndCurve), Before(Edit::AddCurve), After(Edit::AddCurve), After(Edit::EndCurve)}));
}

TEST(EditObserverTest, HearsOfTheEndOfAnEditThatFails) {
  CTestGrid test;
  const CListener listener(test.m_Grid);
  EXPECT_THROW(test.m_Grid.Gate().Do(Edit::AddPoint, [] { throw std::bad_alloc(); }), std::bad_alloc);
  EXPECT_EQ(listener.m_asHeard, (Lines{Before(Edit::AddPoint), After(Edit::AddPoint)}));
  EXPECT_EQ(test.m_Grid.Run().NextOperation(), Operation::kNone);
}

TEST(EditObserverTest, HearsOfGestures) {
  CCurveGrid test;
  test.Add(kPath);
  const CListener listener(test.m_Grid);
  test.m_Grid.Gate().BeginGesture(CEditGate::Hold::Curve);
  test.m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Released);
  EXPECT_EQ(listener.m_asHeard, (Lines{"begin", "end"}));
}

TEST(EditObserverTest, HearsOfCommandsWhenTheyArePerformed) {
  CTestGrid test;
  test.m_Grid.CellEdits().Select(0, 20.5, 4, 22);
  const CListener listener(test.m_Grid);
  test.m_Grid.CellEdits().SplitSelected();
  test.m_Grid.CellEdits().MergeSelected();
  test.m_Grid.Run().Post(Operation::kTransferToHigh);
  EXPECT_TRUE(listener.m_asHeard.empty());
  test.m_Grid.PerformPendingWork();
  EXPECT_EQ(listener.m_asHeard,
            (Lines{Before(Edit::SplitCells), After(Edit::SplitCells), Before(Edit::MergeCells), After(Edit::MergeCells),
                   Before(Edit::SwitchResolution), After(Edit::SwitchResolution)}));
}

TEST(EditObserverTest, HearsOfAReset) {
  CTestGrid test;
  const CListener listener(test.m_Grid);
  test.m_Grid.Reset();
  EXPECT_EQ(listener.m_asHeard, (Lines{Before(Edit::ResetSolver), After(Edit::ResetSolver)}));
}

TEST(EditObserverTest, KnowsWhatReplacesTheSurface) {
  for (const Edit edit : {Edit::SwitchResolution, Edit::ResetSolver, Edit::NewGrid, Edit::LoadGrid})
    EXPECT_TRUE(ReplacesSurface(edit));
  for (const Edit edit : {Edit::AddPoint, Edit::RefineCell, Edit::SplitCells, Edit::MergeCells, Edit::SetLight})
    EXPECT_FALSE(ReplacesSurface(edit));
}

}  // namespace
