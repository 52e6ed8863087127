// One file for the whole work, opened, changed and saved with mouse and keyboard.

#include <filesystem>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "drawing/DisplayFlags.h"
#include "projects/ProjectFile.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/ProjectBuilders.h"
#include "support/SamplePhotograph.h"
#include "support/gui/CRelievo.h"
#include "support/gui/CUser.h"
#include "support/gui/Input.h"

namespace {

class ProjectRunTest : public ::testing::Test {
 protected:
  /// A project of one height on the photograph, without lines of the grid, in which clicks add heights.
  void Write() const {
    CProject project = ProjectOfOneHeight();
    project.m_Views.m_iEditingMode = static_cast<int>(EditingMode::Position);
    project.m_Views.m_uImageFlags = ImageFlag::kPointConstraints | ImageFlag::kImage;
    project.m_Views.m_uModelFlags = ModelFlag::kTexturedModel;
    project.m_Views.m_fR = project.m_Views.m_fR0 = 70;
    project.m_Picture = {"/photos/cup.bmp", {}, std::make_shared<const std::string>(BytesOf(kSamplePhotograph))};
    ASSERT_TRUE(SaveProject(project, m_File));
  }
  CProject Read() const { return ReadProject(m_File).m_Project.value(); }
  /// Saves without a question, as the project has a name.
  void SaveAgain(CUser& user) const {
    PressKey("ctrl+s");
    ASSERT_TRUE(user.Reads(m_File + " is saved"));
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("cup.relievo");
};

}  // namespace

TEST_F(ProjectRunTest, AnotherRunGoesOnWhereOneHasStopped) {
  Write();
  {
    CRelievo program({m_File});
    CUser user(program);
    const CArea view = user.AreaOf(Control::ImageView);
    user.ClickAt(view.At({300, 100}));
    SaveAgain(user);
  }
  const CProject saved = Read();
  EXPECT_EQ(saved.m_Model.m_Document.m_Sketch.m_Points.size(), 2U);
  EXPECT_EQ(*saved.m_Picture.m_pBytes, BytesOf(kSamplePhotograph)) << "the bytes that were loaded";
  EXPECT_EQ(saved.m_Picture.m_File, "/photos/cup.bmp");
  EXPECT_EQ(saved.m_Views.m_uImageFlags, ImageFlag::kPointConstraints | ImageFlag::kImage);
  EXPECT_EQ(saved.m_Views.m_Eye, (Vector3{50, 50, 200}));

  CRelievo another({m_File});
  CUser user(another);
  SaveAgain(user);
  const CProject again = Read();
  EXPECT_EQ(again.m_Model.m_Document, saved.m_Model.m_Document);
  EXPECT_EQ(*again.m_Picture.m_pBytes, *saved.m_Picture.m_pBytes);
  EXPECT_EQ(again.m_Views.m_uImageFlags, saved.m_Views.m_uImageFlags);
  EXPECT_EQ(again.m_Views.m_uModelFlags, saved.m_Views.m_uModelFlags);
  EXPECT_EQ(again.m_Views.m_iEditingMode, saved.m_Views.m_iEditingMode);
  EXPECT_EQ(again.m_Views.m_Eye, saved.m_Views.m_Eye);
}
