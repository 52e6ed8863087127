// Estimators are shell scripts here, which end, fail, hang or write what they like.

#include <csignal>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>

#include <fcntl.h>
#include <gtest/gtest.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include "editing/CEstimate.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/gui/WaitUntil.h"

namespace {

namespace fs = std::filesystem;

CPicture GreyPicture() { return {4, 3, std::vector<std::uint8_t>(36, 128)}; }

// A ramp of four values as a PFM.
constexpr const char* kRamp =
    R"(printf 'Pf\n2 2\n-1.0\n\000\000\000\000\000\000\200\077\000\000\000\100\000\000\100\100' > "$2")";

// Neither a zombie nor gone.
bool Lives(pid_t process) {
  std::ifstream stat("/proc/" + std::to_string(process) + "/stat");
  std::string number;
  std::string name;
  std::string state;
  return stat >> number >> name >> state && state != "Z";
}

class EstimateTest : public ::testing::Test {
 protected:
  EstimateTest() { setenv("TMPDIR", m_Temporary.Path().c_str(), 1); }
  ~EstimateTest() override { unsetenv("TMPDIR"); }

  /// The command line of a script that gets the two files.
  std::string Script(const std::string& text) const {
    WriteText(m_Scratch.File("an estimator.sh"), text + "\n");
    return "sh '" + m_Scratch.File("an estimator.sh") + "' {image} {depth}";
  }
  CEstimate::CResult Run(const std::string& commandLine) {
    EXPECT_EQ(m_Estimate.Begin(commandLine, GreyPicture()), "");
    std::optional<CEstimate::CResult> result;
    EXPECT_TRUE(WaitUntil([&] { return (result = m_Estimate.Attend()).has_value(); }));
    return result.value_or(CEstimate::CResult{});
  }
  /// The number that the script has written there by now.
  pid_t ProcessIn(const std::string& name) const {
    pid_t process = 0;
    EXPECT_TRUE(WaitUntil([&] { return std::ifstream(m_Scratch.File(name)) >> process && process > 0; }));
    return process;
  }

  CTemporaryDirectory m_Scratch;
  CTemporaryDirectory m_Temporary;
  CEstimate m_Estimate;
};

}  // namespace

TEST_F(EstimateTest, AScriptThatWritesARampGivesAMap) {
  const CEstimate::CResult result = Run(Script(std::string("echo begun; ") + kRamp + "; echo done"));
  EXPECT_EQ(result.m_Trouble, "");
  ASSERT_TRUE(result.m_Map);
  EXPECT_EQ(result.m_Map.m_pMap->Width(), 2);
  EXPECT_EQ(result.m_Map.m_pMap->Values().back(), 3.0F);
  EXPECT_EQ(m_Estimate.LastLine(), "done");
  EXPECT_FALSE(m_Estimate.IsRunning());
  EXPECT_TRUE(fs::is_empty(m_Temporary.Path())) << "the folder is gone";
}

TEST_F(EstimateTest, TheScriptFindsThePhotographAsAPng) {
  const std::string copy = m_Scratch.File("copy.png");
  Run(Script("cp \"$1\" '" + copy + "'"));
  EXPECT_EQ(BytesOf(copy).substr(1, 3), "PNG");
}

TEST_F(EstimateTest, OneThatFailsIsToldWithItsLastLine) {
  const CEstimate::CResult result = Run(Script(std::string(kRamp) + "; echo first; echo 'no weights' >&2; exit 3"));
  EXPECT_FALSE(result.m_Map);
  EXPECT_EQ(result.m_Trouble, "The estimator has failed with status 3: no weights");
}

TEST_F(EstimateTest, OneThatIsNotThereIsTold) {
  EXPECT_EQ(Run("/no/such/estimator {depth}").m_Trouble,
            "The estimator has failed with status 127: /no/such/estimator: No such file or directory");
}

TEST_F(EstimateTest, OneThatIsKilledIsTold) {
  EXPECT_EQ(Run(Script("kill -9 $$")).m_Trouble, "The estimator has failed with status 137.");
}

TEST_F(EstimateTest, OneThatWritesNothingIsTold) {
  EXPECT_EQ(Run(Script("true")).m_Trouble, "The estimator has written no map to {depth}.");
}

TEST_F(EstimateTest, OneThatWritesRubbishIsTold) {
  const std::string trouble = Run(Script("echo rubbish > \"$2\"")).m_Trouble;
  EXPECT_TRUE(trouble.starts_with("What the estimator has written is not a depth map that can be read: ")) << trouble;
}

TEST_F(EstimateTest, OneThatMakesAFolderOrAPipeIsTold) {
  EXPECT_NE(Run(Script("mkdir \"$2\"")).m_Trouble, "");
  EXPECT_NE(Run(Script("mkfifo \"$2\"")).m_Trouble, "");
}

TEST_F(EstimateTest, CommandLinesWithoutSenseStartNothing) {
  for (const char* line : {"", "  ", "sh 'a {depth}", "sh {image}"}) {
    EXPECT_NE(m_Estimate.Begin(line, GreyPicture()), "") << line;
    EXPECT_FALSE(m_Estimate.IsRunning());
  }
  EXPECT_TRUE(fs::is_empty(m_Temporary.Path()));
}

TEST_F(EstimateTest, TheLastLineIsThatOfNow) {
  ASSERT_EQ(m_Estimate.Begin(Script(R"(printf '10 %%\r'; printf '50 %%\r\n\n  \n'; printf '\033half'; sleep 1000)"),
                             GreyPicture()),
            "");
  EXPECT_TRUE(WaitUntil([&] {
    m_Estimate.Attend();
    return m_Estimate.LastLine() == " half";
  })) << m_Estimate.LastLine();
}

TEST_F(EstimateTest, CancellingEndsAllThatItHasStarted) {
  const std::string text =
      "sleep 1000 & echo $! > " + m_Scratch.File("child") + "; echo $$ > " + m_Scratch.File("self");
  ASSERT_EQ(m_Estimate.Begin(Script(text + "; trap '' TERM INT HUP; wait"), GreyPicture()), "");
  const pid_t child = ProcessIn("child");
  const pid_t self = ProcessIn("self");
  EXPECT_EQ(m_Estimate.Attend(), std::nullopt);
  CEstimate::CancelAll();
  EXPECT_FALSE(m_Estimate.IsRunning());
  EXPECT_TRUE(WaitUntil([&] { return !Lives(child) && !Lives(self); }));
  EXPECT_TRUE(fs::is_empty(m_Temporary.Path()));
}

TEST_F(EstimateTest, CancellingEndsWhatHasLeftTheGroup) {
  const std::string text = "setsid sh -c 'echo $$ > " + m_Scratch.File("child") + R"(; setsid sh -c "echo \$\$ > )" +
                           m_Scratch.File("orphan") + R"(; exec sleep 1000" & exec sleep 1000' & sleep 1000)";
  ASSERT_EQ(m_Estimate.Begin(Script(text), GreyPicture()), "");
  const pid_t child = ProcessIn("child");
  const pid_t orphan = ProcessIn("orphan");
  kill(child, SIGKILL);
  EXPECT_TRUE(WaitUntil([&] { return !Lives(child); }));
  EXPECT_TRUE(Lives(orphan));
  m_Estimate.Cancel();
  EXPECT_TRUE(WaitUntil([&] { return !Lives(orphan); }));
}

// Its pipe holds a megabyte, and nobody has read any of it when it has ended. Its number is written by a shell of its
// own, as that has the file for output meanwhile.
TEST_F(EstimateTest, TheLastLineIsReadHoweverMuchIsBeforeIt) {
  const std::string text = "(echo $$ > " + m_Scratch.File("self") + "); while [ ! -e " + m_Scratch.File("wide") +
                           " ]; do sleep 0.02; done; head -c 900000 /dev/zero | tr '\\0' '\\n'; echo the last; " +
                           kRamp;
  ASSERT_EQ(m_Estimate.Begin(Script(text), GreyPicture()), "");
  const pid_t self = ProcessIn("self");
  const int pipe = open(("/proc/" + std::to_string(self) + "/fd/1").c_str(), O_WRONLY | O_NONBLOCK);
  ASSERT_GE(pipe, 0);
  const int size = fcntl(pipe, F_SETPIPE_SZ, 1 << 20);
  close(pipe);
  ASSERT_EQ(size, 1 << 20);
  WriteText(m_Scratch.File("wide"), "");
  EXPECT_TRUE(WaitUntil([&] { return !Lives(self); }));
  std::optional<CEstimate::CResult> result;
  EXPECT_TRUE(WaitUntil([&] { return (result = m_Estimate.Attend()).has_value(); }));
  EXPECT_EQ(m_Estimate.LastLine(), "the last");
}

TEST_F(EstimateTest, FoldersOfProcessesThatWereKilledAreSwept) {
  const pid_t gone = fork();
  if (gone == 0) _exit(0);
  waitpid(gone, nullptr, 0);
  const fs::path temporary = m_Temporary.Path();
  const fs::path left = temporary / ("relievo-estimate-" + std::to_string(gone) + "-Ab12Cd");
  const fs::path living = temporary / ("relievo-estimate-" + std::to_string(getppid()) + "-Ab12Cd");
  const fs::path other = temporary / ("relievo-" + std::to_string(gone) + "-Ab12Cd");
  const fs::path elsewhere = m_Scratch.Path() / "elsewhere";
  const fs::path link = temporary / ("relievo-estimate-" + std::to_string(gone) + "-Linked");
  for (const fs::path& folder : {left, living, other, elsewhere}) {
    fs::create_directory(folder);
    WriteText((folder / "image.png").string(), "old");
  }
  fs::create_directory_symlink(elsewhere, link);
  Run(Script(kRamp));
  EXPECT_FALSE(fs::exists(left));
  EXPECT_TRUE(fs::exists(living));
  EXPECT_TRUE(fs::exists(other));
  EXPECT_TRUE(fs::exists(elsewhere / "image.png"));
}

TEST_F(EstimateTest, WhatItLeavesRunningEndsWithIt) {
  Run(Script("sleep 1000 & echo $! > " + m_Scratch.File("child") + "; " + kRamp));
  const pid_t child = ProcessIn("child");
  EXPECT_TRUE(WaitUntil([&] { return !Lives(child); }));
}

// Each in a session of its own: one that the script has started, and one whose parent has ended before.
TEST_F(EstimateTest, WhatHasLeftTheGroupEndsWithTheProgram) {
  const std::string child = m_Scratch.File("child");
  const std::string orphan = m_Scratch.File("orphan");
  const std::string text = "setsid sh -c 'echo $$ > " + child +
                           R"(; exec sleep 1000' & setsid sh -c 'setsid sh -c "echo \$\$ > )" + orphan +
                           R"(; exec sleep 1000" &'; while [ ! -s )" + child + " ] || [ ! -s " + orphan +
                           " ]; do sleep 0.02; done; " + kRamp + "; echo done; exit 0";
  const CEstimate::CResult result = Run(Script(text));
  EXPECT_EQ(result.m_Trouble, "");
  EXPECT_TRUE(result.m_Map);
  EXPECT_EQ(m_Estimate.LastLine(), "done");
  EXPECT_FALSE(Lives(ProcessIn("child")));
  EXPECT_FALSE(Lives(ProcessIn("orphan")));
}

// Its status is that of the program, not of what it leaves behind.
TEST_F(EstimateTest, WhatHasLeftTheGroupEndsWithAProgramThatFails) {
  const std::string child = m_Scratch.File("child");
  EXPECT_EQ(Run(Script("setsid sh -c 'echo $$ > " + child + "; exec sleep 1000' & while [ ! -s " + child +
                       " ]; do sleep 0.02; done; echo no weights; exit 3"))
                .m_Trouble,
            "The estimator has failed with status 3: no weights");
  EXPECT_FALSE(Lives(ProcessIn("child")));
}

TEST_F(EstimateTest, ItEndsWithAProcessThatIsKilled) {
  const std::string line = Script("sleep 1000 & echo $! > " + m_Scratch.File("child") + "; setsid sh -c 'echo $$ > " +
                                  m_Scratch.File("away") + "; exec sleep 1000' & wait");
  const pid_t program = fork();
  if (program == 0) {
    CEstimate estimate;
    estimate.Begin(line, GreyPicture());
    for (;;) pause();
  }
  const pid_t child = ProcessIn("child");
  const pid_t away = ProcessIn("away");
  kill(program, SIGKILL);
  waitpid(program, nullptr, 0);
  EXPECT_TRUE(WaitUntil([&] { return !Lives(child) && !Lives(away); }));
}
