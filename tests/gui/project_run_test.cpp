// One file for the whole work, saved and opened with mouse and keyboard.

#include <fstream>
#include <optional>
#include <string>

#include "formats/ProjectFile.h"
#include "support/FileBuilders.h"
#include "support/SamplePhotograph.h"
#include "support/gui/Input.h"
#include "support/gui/RunTest.h"
#include "support/gui/WaitUntil.h"

namespace {

constexpr int kSaveProject = 7;
constexpr int kOpenProject = 8;
constexpr CPixel kRim{186, 110};
constexpr CPixel kTable{540, 70};

class ProjectRunTest : public RunTest {
 protected:
  void Save(CUser& user, const std::filesystem::path& file) const {
    user.ChooseEntry(MenuTitle::File, kSaveProject);
    ASSERT_TRUE(user.ChooseFile("please input project file name", file));
    ASSERT_TRUE(WaitUntil([&] { return ReadProject(file.string()).m_Project.has_value(); }));
  }
  void Open(CUser& user, const std::filesystem::path& file) const {
    user.ChooseEntry(MenuTitle::File, kOpenProject);
    ASSERT_TRUE(user.ChooseFile("please input project file name", file));
  }
  static CProject Read(const std::filesystem::path& file) { return ReadProject(file.string()).m_Project.value(); }
};

}  // namespace

TEST_F(ProjectRunTest, AnotherRunGoesOnWhereOneHasStopped) {
  m_User.ClickOn(Control::PositionConstraint);
  PlaceHeight(kRim, 60);
  PlaceHeight(kTable, 0);
  const CPixel middle = m_User.AreaOf(Control::ModelView).Centre();
  m_User.DragSlowly(middle, {middle.m_iX + 40, middle.m_iY - 60}, 1);
  PressKey("ctrl+g");
  m_Program.Rests();
  Save(m_User, File("cup.relievo"));
  const CProject saved = Read(File("cup.relievo"));
  EXPECT_EQ(saved.m_Model.m_Document.m_Sketch.m_Points.size(), 2U);
  ASSERT_NE(saved.m_Picture.m_pBytes, nullptr);
  EXPECT_EQ(*saved.m_Picture.m_pBytes, BytesOf(kPhotograph)) << "the bytes that were loaded";

  CRelievo another;
  CUser user(another);
  Open(user, File("cup.relievo"));
  ASSERT_TRUE(another.Rests());
  const std::filesystem::path again = another.Directory() / "again.relievo";
  Save(user, again);
  const CProject reopened = Read(again);
  EXPECT_EQ(reopened.m_Model.m_Document, saved.m_Model.m_Document);
  EXPECT_EQ(*reopened.m_Picture.m_pBytes, *saved.m_Picture.m_pBytes);
  EXPECT_EQ(reopened.m_Views.m_uImageFlags, saved.m_Views.m_uImageFlags);
  EXPECT_EQ(reopened.m_Views.m_uModelFlags, saved.m_Views.m_uModelFlags);
  EXPECT_EQ(reopened.m_Views.m_iEditingMode, saved.m_Views.m_iEditingMode);
  EXPECT_EQ(reopened.m_Views.m_Eye, saved.m_Views.m_Eye);
  EXPECT_EQ(reopened.m_Views.m_fTheta, saved.m_Views.m_fTheta);
}

TEST_F(ProjectRunTest, ADamagedFileIsToldAndChangesNothing) {
  m_User.ClickOn(Control::PositionConstraint);
  PlaceHeight(kTable, 0);
  Save(m_User, File("cup.relievo"));
  std::filesystem::resize_file(File("cup.relievo"), 1000);
  Open(m_User, File("cup.relievo"));
  ASSERT_TRUE(m_User.Answer(true)) << "a notice";
  Save(m_User, File("after.relievo"));
  EXPECT_EQ(Read(File("after.relievo")).m_Model.m_Document.m_Sketch.m_Points.size(), 1U);
}
