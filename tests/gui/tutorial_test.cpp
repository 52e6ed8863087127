// The tutorial from the menu, with a desktop of the test's own.

#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>

#include "app/CToolSet.h"
#include "app/HelpTool.h"
#include "support/gui/WindowTest.h"

namespace {

class TutorialTest : public WindowTest {
 protected:
  TutorialTest() { setenv("PATH", m_Directory.Path().c_str(), 1); }
  ~TutorialTest() override { setenv("PATH", m_Path.c_str(), 1); }

  // Notes what it is told to open.
  void AddOpener() {
    const std::string file = m_Directory.File("xdg-open");
    std::ofstream(file) << "#!/bin/sh\nprintf '%s' \"$1\" >\"" << Opened() << ".new\" && /bin/mv \"" << Opened()
                        << ".new\" \"" << Opened() << "\"\n";
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
  }
  std::string Opened() { return m_Directory.File("opened"); }
  std::string WhatWasOpened() {
    EXPECT_TRUE(RunToolkitUntil([this] { return std::filesystem::exists(Opened()); }));
    std::ifstream file(Opened());
    return {std::istreambuf_iterator<char>(file), {}};
  }
  std::filesystem::path AddFile(const char* name) {
    const std::filesystem::path file = m_Directory.Path() / name;
    std::filesystem::create_directories(file.parent_path());
    std::ofstream(file) << "text\n";
    return file;
  }

  const std::string m_Path = std::getenv("PATH");
  CToolSet m_Tools{m_Window, Grid()};
};

}  // namespace

TEST_F(TutorialTest, IsOpenedByTheDesktop) {
  AddOpener();
  Menu().Choose(MenuEntry::Tutorial);
  const std::string opened = WhatWasOpened();
  EXPECT_TRUE(opened.starts_with("file:///")) << opened;
  EXPECT_TRUE(opened.ends_with("/docs/tutorial.md")) << opened;
  EXPECT_TRUE(m_Dialogs.m_asNotices.empty());
}

TEST_F(TutorialTest, InstalledOneIsFoundBesideTheProgram) {
  const std::filesystem::path program = AddFile("some where/bin/relievo");
  const std::filesystem::path tutorial = AddFile("some where/share/doc/relievo/docs/tutorial.md");
  EXPECT_EQ(TutorialOf(program), tutorial);
  AddOpener();
  OpenTutorial(m_Window, program);
  EXPECT_EQ(WhatWasOpened(),
            "file://" + m_Directory.Path().string() + "/some%20where/share/doc/relievo/docs/tutorial.md");
}

TEST_F(TutorialTest, MissingOneIsTold) {
  const std::filesystem::path program = AddFile("bin/relievo");
  EXPECT_EQ(TutorialOf(program), std::nullopt);
  AddOpener();
  OpenTutorial(m_Window, program);
  ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U);
  EXPECT_TRUE(m_Dialogs.m_asNotices[0].starts_with("The tutorial is not installed")) << m_Dialogs.m_asNotices[0];
  EXPECT_FALSE(std::filesystem::exists(Opened()));
}

TEST_F(TutorialTest, DesktopThatOpensNothingIsTold) {
  Menu().Choose(MenuEntry::Tutorial);
  ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U);
  EXPECT_TRUE(m_Dialogs.m_asNotices[0].starts_with("The desktop opens no such file. The tutorial is /"));
  EXPECT_TRUE(m_Dialogs.m_asNotices[0].ends_with("/docs/tutorial.md")) << m_Dialogs.m_asNotices[0];
}
