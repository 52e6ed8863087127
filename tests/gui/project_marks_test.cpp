// The marks that a project brings hold while it is open; then the user's own come back, and those are remembered.

#include <optional>
#include <string>

#include "projects/ProjectFile.h"
#include "support/FileBuilders.h"
#include "support/gui/WindowTest.h"

namespace {

class ProjectMarksTest : public WindowTest {
 protected:
  // A project with proportions kept, which the user does not want otherwise.
  void SetUp() override {
    m_Window.Settings().KeepIn(m_Settings);
    m_Window.RestoreSwitches();
    CWindowServices services = Services();
    services.m_Model.m_ReadProject = ReadProject;
    services.m_Model.m_SaveProject = SaveProject;
    services.m_Model.m_LoadGrid = &CGrid::Load;
    services.m_Model.m_AskNewGrid = [](const CGrid&) { return CGridParameters{3, {0, 50, 0, 50}}; };
    m_Window.SetServices(std::move(services));
    WriteText(m_Other, GridText(CFullModel().m_Grid));
    Menu().Choose(MenuEntry::KeepProportions);
    Pick(MenuEntry::SaveProject, m_Project);
    ASSERT_TRUE(IsProjectFile(m_Project));
    Menu().Choose(MenuEntry::KeepProportions);
    Pick(MenuEntry::NewGrid);
    ASSERT_FALSE(Proportions());
  }

  // Once it is done.
  void Pick(MenuEntry entry, const std::string& file = {}) {
    m_Dialogs.m_File = file;
    Menu().Choose(entry);
    ASSERT_TRUE(RunToolkitUntil([this] { return !Grid().Run().HasPending(); }));
  }
  bool Proportions() {
    const bool checked = Menu().IsChecked(MenuEntry::KeepProportions);
    EXPECT_EQ(checked, (m_Window.GridView().DisplayFlags() & ModelFlag::kProportions) != 0);
    EXPECT_EQ(checked, (m_Window.ImageView().DisplayFlags() & ImageFlag::kProportions) != 0);
    return checked;
  }
  std::optional<bool> Remembered(const char* name) {
    CSettings file([](const std::string&) {});
    file.KeepIn(m_Settings);
    return file.Switch(name);
  }

  CGlobalScope<double> m_Tolerance{g_fPickTolerance, 1.0};
  const std::string m_Settings = m_Directory.File("settings.json");
  const std::string m_Project = m_Directory.File("kept.relievo");
  const std::string m_Other = m_Directory.File("other.grid");
};

}  // namespace

TEST_F(ProjectMarksTest, TheUsersOwnComeBackWithANewGridOrAnotherModel) {
  Pick(MenuEntry::OpenProject, m_Project);
  EXPECT_TRUE(Proportions());
  Pick(MenuEntry::NewGrid);
  EXPECT_FALSE(Proportions());
  Pick(MenuEntry::OpenProject, m_Project);
  Pick(MenuEntry::OpenProject, m_Project);
  EXPECT_TRUE(Proportions());
  Pick(MenuEntry::LoadGrid, m_Other);
  EXPECT_FALSE(Proportions());
}

TEST_F(ProjectMarksTest, AModelThatCannotBeOpenedLeavesThoseOfTheProject) {
  Pick(MenuEntry::OpenProject, m_Project);
  Pick(MenuEntry::LoadGrid, m_Directory.File("missing.grid"));
  EXPECT_TRUE(Proportions());
}

TEST_F(ProjectMarksTest, StepsThatLeaveTheProjectOrGoBackToItTakeItsMarksAlong) {
  Menu().Choose(MenuEntry::ImageGrid);
  const bool grid = Menu().IsChecked(MenuEntry::ImageGrid);
  Pick(MenuEntry::OpenProject, m_Project);
  Pick(MenuEntry::Undo);
  EXPECT_FALSE(Proportions());
  EXPECT_EQ(Menu().IsChecked(MenuEntry::ImageGrid), grid);
  Pick(MenuEntry::Redo);
  EXPECT_TRUE(Proportions());
  Pick(MenuEntry::NewGrid);
  Pick(MenuEntry::Undo);
  EXPECT_TRUE(Proportions()) << "the project is open again";
  Pick(MenuEntry::Redo);
  EXPECT_FALSE(Proportions());
}

TEST_F(ProjectMarksTest, RememberWithAProjectOpenKeepsTheUsersOwn) {
  Pick(MenuEntry::OpenProject, m_Project);
  ASSERT_TRUE(Proportions());
  Menu().Choose(MenuEntry::Remember);
  EXPECT_EQ(Remembered("switch_keep_proportions"), false);
  Menu().Choose(MenuEntry::NewHeightsAtLast);
  EXPECT_EQ(Remembered("switch_new_heights_at_the_last_value"), true);
  EXPECT_EQ(Remembered("switch_keep_proportions"), false);
  EXPECT_TRUE(Proportions());
}

TEST_F(ProjectMarksTest, WhatTheUserSwitchesMeanwhileIsTheirOwn) {
  Pick(MenuEntry::OpenProject, m_Project);
  Menu().Choose(MenuEntry::ClosedTears);
  Menu().Choose(MenuEntry::KeepProportions);
  Menu().Choose(MenuEntry::KeepProportions);
  Menu().Choose(MenuEntry::Remember);
  EXPECT_EQ(Remembered("switch_keep_proportions"), true);
  Pick(MenuEntry::NewGrid);
  EXPECT_TRUE(Menu().IsChecked(MenuEntry::ClosedTears));
  EXPECT_TRUE(Proportions());
}
