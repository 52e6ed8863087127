// A grid in the proportions of the picture, with real keys on the running program.

#include <string>
#include <vector>

#include "support/FileBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"

namespace {

class FitPictureRunTest : public RunTest {
 protected:
  void ChooseFromFile(const std::string& key) const {
    PressKey("alt+f");
    m_Program.Rests();
    m_User.Type(key);
  }
  CExtent SavedExtent() const {
    CTestGrid saved;
    EXPECT_TRUE(ReadModel(saved.m_Grid));
    return saved.m_Grid.Surface().Lattice().Extent();
  }
  /// An open menu takes the keyboard until Escape closes it.
  void CloseMenu() const { m_User.Type("Escape"); }
};

}  // namespace

TEST_F(FitPictureRunTest, TheMenuMakesItAndUndoTakesItBackByItsName) {
  ChooseFromFile("t");
  EXPECT_EQ(SavedExtent(), (CExtent{0, 150, 0, 100}));
  m_User.Type("ctrl+z");
  EXPECT_TRUE(m_User.Reads("Undone: Grid in the Picture's Proportions"));
  EXPECT_EQ(SavedExtent(), CExtent());
  m_User.Type("ctrl+y");
  EXPECT_TRUE(m_User.Reads("Done again: Grid in the Picture's Proportions"));
  EXPECT_EQ(SavedExtent(), (CExtent{0, 150, 0, 100}));
}

TEST_F(FitPictureRunTest, WithAConstraintTheEntryIsInactive) {
  m_User.ClickOn(Control::PositionConstraint);
  PlaceHeight({120, 100}, 0);
  ChooseFromFile("t");
  CloseMenu();
  EXPECT_EQ(SavedExtent(), CExtent());
  m_User.Type("ctrl+z");
  EXPECT_TRUE(m_User.Reads("Undone: add point"));
  ChooseFromFile("t");
  EXPECT_EQ(SavedExtent(), (CExtent{0, 150, 0, 100}));
}

TEST_F(FitPictureRunTest, ARunningSolverGoesOnWithIt) {
  m_User.ClickOn(Control::ResumeSolver);
  ChooseFromFile("t");
  EXPECT_EQ(SavedExtent(), (CExtent{0, 150, 0, 100}));
  PlaceHeight({120, 100}, 43);
  EXPECT_TRUE(m_Program.Rests());
}
