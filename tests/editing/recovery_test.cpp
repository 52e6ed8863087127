// When work is kept, and what becomes of what was kept.

#include <chrono>
#include <filesystem>
#include <fstream>
#include <new>
#include <string>
#include <thread>

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/stat.h>

#include "editing/CRecovery.h"
#include "projects/ProjectFile.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/GridBuilders.h"

namespace {

namespace fs = std::filesystem;
using namespace std::chrono_literals;

bool IsReadable(int descriptor, std::chrono::milliseconds within) {
  pollfd waiting{descriptor, POLLIN, 0};
  return poll(&waiting, 1, static_cast<int>(within.count())) == 1;
}

class RecoveryTest : public ::testing::Test {
 protected:
  RecoveryTest() { m_Test.m_Grid.AddPtCstr({30, 40, PtCstrKind::kPosition, 7}); }

  CRecovery::CProgram Program() {
    return {[this] {
              ++m_iTaken;
              CProject project;
              project.m_Model = StateOf(m_Test.m_Grid);
              project.m_Picture.m_File = "/tmp/cup.bmp";
              return project;
            },
            [this] { return m_bHeld; }, [this](const std::string& text) { m_asTold.push_back(text); }};
  }
  /// Looks after the descriptors as the program does until nothing comes for a while.
  static void AttendFor(CRecovery& recovery, std::chrono::milliseconds time) {
    const auto end = std::chrono::steady_clock::now() + time;
    while (std::chrono::steady_clock::now() < end) {
      pollfd waiting[]{{recovery.TimerDescriptor(), POLLIN, 0}, {recovery.DoneDescriptor(), POLLIN, 0}};
      if (poll(waiting, 2, 20) > 0) recovery.Attend();
    }
  }
  CDocument Document() const { return DocumentOf(m_Test.m_Grid); }
  std::vector<fs::path> Files() const {
    std::vector<fs::path> files;
    if (!fs::exists(m_Folder)) return files;
    for (const auto& entry : fs::directory_iterator(m_Folder)) {
      if (entry.path().extension() == kProjectSuffix) files.push_back(entry.path());
    }
    return files;
  }

  ConsoleCapture m_Console;
  CTestGrid m_Test{3, 2};
  CTemporaryDirectory m_Scratch;
  fs::path m_Folder = m_Scratch.Path() / "relievo";
  int m_iTaken = 0;
  bool m_bHeld = false;
  std::vector<std::string> m_asTold;
};

}  // namespace

TEST_F(RecoveryTest, ASecondAfterAnEditTheWorkIsKept) {
  CRecovery recovery(m_Folder, Program());
  EXPECT_FALSE(IsReadable(recovery.TimerDescriptor(), 50ms)) << "nothing has been changed";
  recovery.NoteChanges(1);
  EXPECT_TRUE(IsReadable(recovery.TimerDescriptor(), 5s));
  AttendFor(recovery, 500ms);
  EXPECT_EQ(m_iTaken, 1);
  ASSERT_EQ(Files().size(), 1U);
  const CReadProject read = ReadProject(Files().front());
  ASSERT_EQ(read.m_Trouble, "");
  EXPECT_EQ(read.m_Project->m_Model.m_Document, DocumentOf(m_Test.m_Grid));
  EXPECT_EQ(read.m_Project->m_Picture.m_File, "/tmp/cup.bmp");
  EXPECT_EQ(read.m_Project->m_Picture.m_pBytes, nullptr);
}

TEST_F(RecoveryTest, EditsThatFollowWaitForTheirTime) {
  CRecovery recovery(m_Folder, Program());
  recovery.NoteChanges(1);
  AttendFor(recovery, 1500ms);
  ASSERT_EQ(m_iTaken, 1);
  for (std::uint64_t edit = 2; edit < 30; ++edit) {
    recovery.NoteChanges(edit);
    AttendFor(recovery, 50ms);
  }
  EXPECT_EQ(m_iTaken, 1) << "15 seconds have not passed";
  recovery.End();
  EXPECT_EQ(m_iTaken, 2) << "but the end does not wait";
  recovery.End();
  EXPECT_EQ(m_iTaken, 2) << "and writes nothing twice";
}

TEST_F(RecoveryTest, NothingIsTakenDuringADrag) {
  CRecovery recovery(m_Folder, Program());
  m_bHeld = true;
  recovery.NoteChanges(1);
  AttendFor(recovery, 2s);
  EXPECT_EQ(m_iTaken, 0);
  m_bHeld = false;
  AttendFor(recovery, 1s);
  EXPECT_EQ(m_iTaken, 1);
}

TEST_F(RecoveryTest, WhatAFileHoldsIsKeptNoLonger) {
  CRecovery recovery(m_Folder, Program());
  recovery.NoteChanges(1);
  recovery.End();
  ASSERT_EQ(Files().size(), 1U);
  recovery.NoteSaved(1, Document());
  EXPECT_TRUE(Files().empty());
  recovery.End();
  EXPECT_TRUE(Files().empty());
  EXPECT_EQ(m_iTaken, 1);
}

TEST_F(RecoveryTest, SavedWhileItIsWrittenItGoesWhenThatIsDone) {
  CRecovery recovery(m_Folder, Program());
  recovery.NoteChanges(1);
  ASSERT_TRUE(IsReadable(recovery.TimerDescriptor(), 5s));
  recovery.Attend();
  recovery.NoteSaved(1, Document());
  recovery.End();
  EXPECT_TRUE(Files().empty());
}

TEST_F(RecoveryTest, AnEmptyModelIsNoWork) {
  CRecovery recovery(m_Folder, Program());
  recovery.NoteChanges(1);
  recovery.End();
  m_Test.m_Grid.SelectNextPtCstr(PtCstrKind::kPosition);
  m_Test.m_Grid.DeleteSelectedPtCstr();
  recovery.NoteChanges(2);
  recovery.End();
  ASSERT_EQ(Files().size(), 1U) << "what was kept before may be worth more";
  EXPECT_EQ(ReadProject(Files().front()).m_Project->m_Model.m_Document.m_Sketch.m_Points.size(), 1U);
}

TEST_F(RecoveryTest, AnEmptyModelDelaysNoWork) {
  m_Test.m_Grid.SelectNextPtCstr(PtCstrKind::kPosition);
  m_Test.m_Grid.DeleteSelectedPtCstr();
  CRecovery recovery(m_Folder, Program());
  recovery.NoteChanges(1);
  AttendFor(recovery, 1500ms);
  EXPECT_TRUE(Files().empty());
  m_Test.m_Grid.AddPtCstr({30, 40, PtCstrKind::kPosition, 7});
  recovery.NoteChanges(2);
  AttendFor(recovery, 2s);
  EXPECT_EQ(Files().size(), 1U);
}

TEST_F(RecoveryTest, AModelThatCannotBeCopiedEndsNothingAndIsToldOnce) {
  CRecovery::CProgram program = Program();
  program.m_Take = [this]() -> CProject {
    ++m_iTaken;
    throw std::bad_alloc();
  };
  CRecovery recovery(m_Folder, std::move(program));
  recovery.NoteChanges(1);
  AttendFor(recovery, 1500ms);
  EXPECT_EQ(m_iTaken, 1);
  recovery.End();
  EXPECT_EQ(m_iTaken, 2) << "tried again";
  EXPECT_TRUE(Files().empty());
  EXPECT_EQ(m_asTold, std::vector<std::string>{
                          "What is not saved cannot be kept for the next start: there is not enough memory."});
}

TEST_F(RecoveryTest, TheNextProgramIsOfferedIt) {
  {
    CRecovery recovery(m_Folder, Program());
    recovery.NoteChanges(1);
    recovery.End();
  }
  std::ofstream(m_Folder / "bad.relievo") << "no archive";
  fs::last_write_time(m_Folder / "bad.relievo", fs::file_time_type::clock::now() - 1h);
  CRecovery next(m_Folder, Program());
  const std::vector<CUnsavedWork> works = next.List();
  ASSERT_EQ(works.size(), 2U);
  EXPECT_FALSE(works.front().m_bDamaged);
  EXPECT_EQ(works.front().m_Note.m_Picture, "/tmp/cup.bmp");
  EXPECT_LT(std::abs(std::difftime(std::time(nullptr), works.front().m_Note.m_iTime)), 600);
  EXPECT_TRUE(works.back().m_bDamaged);
  ASSERT_TRUE(next.TakeUp(works.front().m_File));
  CRecovery third(m_Folder, Program());
  EXPECT_EQ(third.List().size(), 1U);
  EXPECT_FALSE(third.TakeUp(works.front().m_File));
  next.NoteSaved(1, Document());
  EXPECT_FALSE(fs::exists(works.front().m_File)) << "a file holds it";
  EXPECT_TRUE(fs::exists(works.back().m_File)) << "left alone";
}

TEST_F(RecoveryTest, WhatIsTakenUpIsThereAgainIfNothingIsSaved) {
  {
    CRecovery recovery(m_Folder, Program());
    recovery.NoteChanges(1);
    recovery.End();
  }
  {
    CRecovery next(m_Folder, Program());
    ASSERT_TRUE(next.TakeUp(next.List().front().m_File));
  }
  EXPECT_EQ(CRecovery(m_Folder, Program()).List().size(), 1U);
}

TEST_F(RecoveryTest, WhatIsGivenUpAgainIsOfferedAgain) {
  {
    CRecovery recovery(m_Folder, Program());
    recovery.NoteChanges(1);
    recovery.End();
  }
  CRecovery next(m_Folder, Program());
  ASSERT_TRUE(next.TakeUp(next.List().front().m_File));
  next.PutBack();
  next.NoteSaved(3, Document());
  EXPECT_EQ(CRecovery(m_Folder, Program()).List().size(), 1U);
}

TEST_F(RecoveryTest, UndoneToWhatAFileHoldsItIsKeptNoLonger) {
  CRecovery recovery(m_Folder, Program());
  const CDocument saved = Document();
  recovery.NoteSaved(1, saved);
  m_Test.m_Grid.AddPtCstr({60, 40, PtCstrKind::kPosition, 7});
  recovery.NoteChanges(2);
  AttendFor(recovery, 1500ms);
  ASSERT_EQ(Files().size(), 1U);
  CRestoration::RestoreDocument(m_Test.m_Grid, saved);
  recovery.NoteChanges(3);
  recovery.End();
  EXPECT_TRUE(Files().empty());
  m_Test.m_Grid.AddPtCstr({60, 40, PtCstrKind::kPosition, 7});
  recovery.NoteChanges(4);
  recovery.End();
  EXPECT_EQ(Files().size(), 1U) << "changed again";
}

TEST_F(RecoveryTest, WorkThatAnotherModelReplacesStays) {
  CRecovery recovery(m_Folder, Program());
  recovery.NoteChanges(1);
  recovery.End();
  recovery.SetAside();
  ASSERT_EQ(Files().size(), 1U);
  const fs::path aside = Files().front();
  m_Test.m_Grid.AddPtCstr({60, 40, PtCstrKind::kPosition, 7});
  recovery.NoteSaved(2, Document());
  EXPECT_TRUE(fs::exists(aside)) << "no file of the user's holds it";
  EXPECT_EQ(recovery.List().size(), 1U) << "it can be taken up at once";
  m_Test.m_Grid.AddPtCstr({60, 60, PtCstrKind::kPosition, 7});
  recovery.NoteChanges(3);
  recovery.End();
  EXPECT_EQ(Files().size(), 2U);
}

TEST_F(RecoveryTest, WhoComesBackToWhatWasReplacedKeepsItOnce) {
  CRecovery recovery(m_Folder, Program());
  recovery.NoteChanges(1);
  recovery.End();
  recovery.SetAside();
  recovery.NoteChanges(2);
  recovery.End();
  EXPECT_EQ(Files().size(), 1U);
  recovery.SetAside();
  recovery.NoteSaved(3, Document());
  EXPECT_TRUE(Files().empty()) << "a file holds it now";
}

TEST_F(RecoveryTest, WhatWasTakenUpOutlivesAModelThatReplacesIt) {
  {
    CRecovery recovery(m_Folder, Program());
    recovery.NoteChanges(1);
    recovery.End();
  }
  CRecovery next(m_Folder, Program());
  ASSERT_TRUE(next.TakeUp(next.List().front().m_File));
  next.SetAside();
  m_Test.m_Grid.AddPtCstr({60, 40, PtCstrKind::kPosition, 7});
  next.NoteSaved(2, Document());
  EXPECT_EQ(Files().size(), 1U);
}

TEST_F(RecoveryTest, WhatIsTakenUpIsNotOneTooMany) {
  for (std::size_t k = 0; k < CRecoveryFolder::kMostFiles; ++k) {
    CRecovery recovery(m_Folder, Program());
    recovery.NoteChanges(1);
    recovery.End();
  }
  CRecovery next(m_Folder, Program());
  const fs::path oldest = next.List().back().m_File;
  next.NoteChanges(1);
  ASSERT_TRUE(next.TakeUp(oldest));
  EXPECT_TRUE(fs::exists(oldest));
  EXPECT_EQ(Files().size(), CRecoveryFolder::kMostFiles);
  for (std::uint64_t change = 2; change < 5; ++change) {
    m_Test.m_Grid.AddPtCstr({60, 10.0 * static_cast<double>(change), PtCstrKind::kPosition, 7});
    next.NoteChanges(change);
    next.End();
    next.SetAside();
  }
  EXPECT_EQ(Files().size(), CRecoveryFolder::kMostFiles) << "nor are those that are set aside";
}

TEST_F(RecoveryTest, WhatIsTakenUpReplacesUnsavedWork) {
  {
    CRecovery recovery(m_Folder, Program());
    recovery.NoteChanges(1);
    recovery.End();
  }
  CRecovery next(m_Folder, Program());
  const fs::path earlier = next.List().front().m_File;
  m_Test.m_Grid.AddPtCstr({60, 40, PtCstrKind::kPosition, 7});
  next.NoteChanges(1);
  ASSERT_TRUE(next.TakeUp(earlier));
  EXPECT_EQ(Files().size(), 2U);
}

TEST_F(RecoveryTest, WhereNothingCanBeWrittenThatIsToldOnce) {
  for (const fs::path& folder : {fs::path(), fs::path("/proc/none")}) {
    m_asTold.clear();
    CRecovery recovery(folder, Program());
    EXPECT_TRUE(recovery.List().empty());
    for (std::uint64_t edit = 1; edit < 4; ++edit) {
      recovery.NoteChanges(edit);
      recovery.End();
    }
    EXPECT_EQ(m_asTold,
              std::vector<std::string>{
                  "What is not saved cannot be kept for the next start: its folder is missing, full or read-only."});
  }
}
