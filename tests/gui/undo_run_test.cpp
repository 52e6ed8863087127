// Everything that a hand can do to a model, taken back with the real keys of the running program: the file is the same.

#include <string>

#include "support/gui/Input.h"
#include "support/gui/UndoTest.h"

namespace {

class UndoRunTest : public UndoTest {
 protected:
  void UndoPoints() const {
    m_User.ClickOn(Control::PositionConstraint);
    m_User.ClickAt(At(kFree));
    UndoIs("add point");
    m_User.DragSlowly(At(kHeight), At({160, 130}), 1);
    UndoIs("move point");
    m_User.DragSlowly(At(kHeight), At({120, 60}), 3);
    UndoIs("move height");
    m_User.ClickAt(At(kHeight));
    m_User.Type("Delete");
    UndoIs("delete point");
    m_User.ClickOn(Control::NormalConstraint);
    m_User.DragSlowly(At(kSlope), At({500, 130}), 3);
    UndoIs("turn slope");
  }
  void UndoCurves() const {
    m_User.ClickOn(Control::CurveConstraint);
    m_User.ClickOn(Control::FairnessConstraint);
    m_User.ClickAt(At({100, 50}));
    m_User.ClickAt(At({300, 60}));
    Over({400, 50});
    m_User.Type("Return");
    UndoIs("fairness curve");
    m_User.Type("Escape");
    UndoIs("give up curve");
    UndoIs("curve point");
    UndoIs("curve point");
    m_User.ClickAt(At(kNode), 2);
    UndoIs("curve type");
    m_User.DragSlowly(At(kNode), At({270, 180}), 1);
    UndoIs("move node");
    m_User.ClickAt(At(kNode));
    m_User.Type("BackSpace");
    UndoIs("delete node");
    m_User.ClickAt(At(kNode));
    m_User.Type("Delete");
    UndoIs("delete curve");
  }
  void UndoCells() const {
    m_User.ClickOn(Control::Select);
    m_User.ClickAt(At(kFree));
    UndoIs("refine cell");
    m_User.DragSlowly(At({350, 100}), At({450, 200}), 1);
    m_User.Type("plus");
    UndoIs("split cells");
    m_User.Type("plus");
    m_User.Type("minus");
    UndoIs("merge cells");
    UndoIs("split cells");
    m_User.ClickOn(Control::Select);
  }
  void UndoSurfaces() const {
    m_User.ClickOn(Control::ResetSolver);
    UndoIs("Reset the solver");
    m_User.ClickOn(Control::SwitchResolution);
    ASSERT_TRUE(m_User.Answer(true));
    UndoIs("switch resolution");
    PressKey("alt+n");
    ASSERT_TRUE(m_Program.WaitForWindow("Grid Initial Parameters").has_value() && m_Program.Rests());
    PressKey("Return");
    m_Program.Rests();
    UndoIs("New Grid");
  }
};

}  // namespace

TEST_F(UndoRunTest, WhateverAHandHasDoneIsTakenBackToTheLastBit) {
  Prepare();
  const std::string before = Saved("before.grid");
  UndoPoints();
  EXPECT_EQ(Saved("points.grid"), before);
  UndoCurves();
  EXPECT_EQ(Saved("curves.grid"), before);
  UndoCells();
  EXPECT_EQ(Saved("cells.grid"), before);
  UndoSurfaces();
  EXPECT_EQ(Saved("surfaces.grid"), before);
}

TEST_F(UndoRunTest, TheWayForwardLeadsToTheSameFile) {
  Prepare();
  m_User.ClickOn(Control::PositionConstraint);
  m_User.ClickAt(At(kFree));
  m_User.DragSlowly(At(kHeight), At({160, 130}), 1);
  const std::string last = Saved("last.grid");
  for (const char* name : {"move point", "add point", "tear"}) UndoIs(name);
  RedoIs("tear", "ctrl+shift+z");
  RedoIs("add point", "ctrl+y");
  m_User.ChooseEntry(MenuTitle::Edit, 1);
  EXPECT_TRUE(m_User.Reads("Done again: move point"));
  EXPECT_EQ(Saved("again.grid"), last);
}

TEST_F(UndoRunTest, DuringADragAKeyTakesNothingBack) {
  Prepare();
  m_User.ClickOn(Control::PositionConstraint);
  Over(kHeight);
  PressButton(3);
  MovePointer(At({120, 60}));
  m_Program.Rests();
  m_User.Type("ctrl+z");
  ReleaseButton(3);
  m_Program.Rests();
  EXPECT_EQ(m_User.Times("Undone: tear"), 0U);
  UndoIs("move height");
  UndoIs("tear");
}

TEST_F(UndoRunTest, InTheScissorsKeyPointsAreTakenBackFirst) {
  Prepare();
  m_User.ClickOn(Control::Scissors);
  const auto window = m_Program.WaitForWindow("Click to set key points - Press Enter set the last point and finish");
  ASSERT_TRUE(window.has_value() && m_Program.Rests());
  const CArea canvas = m_Program.Screen().AreaOf(*window);
  m_User.ClickAt(canvas.At({100, 100}));
  m_User.ClickAt(canvas.At({160, 120}));
  const std::string seed = "current seed position: (  100 ,  100 ).";
  const std::size_t before = m_User.Times(seed);
  m_User.Type("ctrl+z");
  EXPECT_TRUE(m_User.Reads(seed, before));
  m_User.Type("ctrl+z");
  EXPECT_EQ(m_User.Times("Undone: tear"), 0U);
  UndoIs("tear");
}
