// Films: in the eyes of readers that are not this program, and what becomes of one that is cancelled or fails.

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <iostream>
#include <limits>
#include <memory>
#include <set>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <webp/demux.h>

#include "exports/FilmFile.h"
#include "support/CFullDisk.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/ProgramRun.h"

namespace {

namespace fs = std::filesystem;

constexpr int kFrameWidth = 64;
constexpr int kFrameHeight = 48;

// A light column on dark ground, further to the right in each frame; the lower half is red.
CPicture FrameOf(std::size_t number) {
  CPicture frame{kFrameWidth, kFrameHeight, std::vector<std::uint8_t>(3 * kFrameWidth * kFrameHeight, 20)};
  for (int y = 0; y < kFrameHeight; ++y) {
    for (int x = 0; x < kFrameWidth; ++x) {
      const auto at = static_cast<std::size_t>(3 * (y * kFrameWidth + x));
      if (y < kFrameHeight / 2) frame.m_aPixels[at] = 200;
      if (x == static_cast<int>(number)) std::fill_n(&frame.m_aPixels[at], 3, std::uint8_t{250});
    }
  }
  return frame;
}

// Sixty recorded frames at the recorder's first interval.
CFilm RecordedFilm() {
  static const std::vector<std::size_t> frames = ResampledFrames(60, 0.02);
  return {kFrameWidth, kFrameHeight, frames.size(), [](std::size_t k) { return FrameOf(frames[k]); }};
}

const CFilmFormat& FormatOf(const std::string& suffix) {
  return *std::ranges::find_if(FilmFormats(), [&](const CFilmFormat& f) { return f.m_pSuffix == suffix; });
}

// Says no from some question on, or when there is a line in a file besides.
class CShortPatience : public ExportProgress {
 public:
  explicit CShortPatience(int questions, std::string awaited = {})
      : m_iLeft(questions), m_Awaited(std::move(awaited)) {}
  bool Goes(double /*share*/) override {
    return m_iLeft-- > 0 || (!m_Awaited.empty() && !BytesOf(m_Awaited).ends_with('\n'));
  }

 private:
  int m_iLeft;
  std::string m_Awaited;
};

/// A directory that is the only one in which programs are looked for, and what "ffmpeg" is there.
class CFakeProgram {
 public:
  // An empty script: there is no such program.
  explicit CFakeProgram(const std::string& script) : m_Path(std::getenv("PATH")) {
    if (!script.empty()) {
      WriteText(m_Directory.File("ffmpeg"), "#!/bin/sh\nPATH=" + m_Path + "\n" + script + '\n');
      fs::permissions(m_Directory.File("ffmpeg"), fs::perms::owner_all);
    }
    setenv("PATH", m_Directory.Path().c_str(), 1);
  }
  ~CFakeProgram() { setenv("PATH", m_Path.c_str(), 1); }
  CFakeProgram(const CFakeProgram&) = delete;
  CFakeProgram& operator=(const CFakeProgram&) = delete;

 private:
  CTemporaryDirectory m_Directory;
  std::string m_Path;
};

// What becomes of a film where "ffmpeg" is that script; nothing may be left behind.
CSaveOutcome WriteBy(const std::string& script, ExportProgress* progress = nullptr) {
  const CTemporaryDirectory directory;
  const CFakeProgram fake(script);
  const CSaveOutcome outcome = WriteFilm(FormatOf(".mp4"), RecordedFilm(), directory.File("a.mp4"), progress);
  EXPECT_TRUE(fs::is_empty(directory.Path()));
  EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process is left";
  return outcome;
}

// The text without the name of the file.
std::string ReasonOf(const CSaveOutcome& outcome) {
  return outcome.m_Trouble.substr(0, outcome.m_Trouble.find(" The file "));
}

struct CDeleteAnimation {
  void operator()(WebPAnimDecoder* decoder) const { WebPAnimDecoderDelete(decoder); }
};

// The ends of the frames in milliseconds, and how many of them differ from all others.
struct CSeenFilm {
  std::vector<int> m_aiTimes;
  std::set<std::string> m_Different;
  std::vector<std::uint8_t> m_auFirst;  ///< frame, from the top, four bytes each
};

CSeenFilm SeeWebp(const std::string& bytes) {
  CSeenFilm seen;
  const WebPData data{reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()};
  const std::unique_ptr<WebPAnimDecoder, CDeleteAnimation> decoder(WebPAnimDecoderNew(&data, nullptr));
  if (decoder == nullptr) return seen;
  constexpr std::size_t kBytes = std::size_t{4} * kFrameWidth * kFrameHeight;
  std::uint8_t* pixels = nullptr;
  int time = 0;
  while (WebPAnimDecoderHasMoreFrames(decoder.get()) != 0 &&
         WebPAnimDecoderGetNext(decoder.get(), &pixels, &time) != 0) {
    if (seen.m_aiTimes.empty()) seen.m_auFirst.assign(pixels, pixels + kBytes);
    seen.m_aiTimes.push_back(time);
    seen.m_Different.emplace(reinterpret_cast<const char*>(pixels), kBytes);
  }
  return seen;
}

}  // namespace

TEST(ResampledFramesTest, KeepsTheLengthOfTheRecording) {
  EXPECT_TRUE(ResampledFrames(0, 0.02).empty());
  EXPECT_EQ(ResampledFrames(1, 0.001), std::vector<std::size_t>{0});
  EXPECT_EQ(ResampledFrames(3, 1.0 / 30), (std::vector<std::size_t>{0, 1, 2}));
  EXPECT_EQ(ResampledFrames(2, 0.1), (std::vector<std::size_t>{0, 0, 0, 1, 1, 1}));
  const std::vector<std::size_t> frames = ResampledFrames(60, 0.02);
  EXPECT_EQ(frames.size(), 36U);
  EXPECT_TRUE(std::ranges::adjacent_find(frames, std::greater_equal<>()) == frames.end()) << "all are different";
  EXPECT_LE(frames.front(), 1U);
  EXPECT_GE(frames.back(), 58U);
}

TEST(FilmTest, OfARecordingHasThirtyFramesASecond) {
  const CTemporaryDirectory directory;
  ASSERT_TRUE(WriteFilm(FormatOf(".webp"), RecordedFilm(), directory.File("a.webp")));
  const CSeenFilm seen = SeeWebp(BytesOf(directory.File("a.webp")));
  ASSERT_EQ(seen.m_aiTimes.size(), 36U);
  EXPECT_EQ(seen.m_Different.size(), 36U);
  for (std::size_t k = 0; k < seen.m_aiTimes.size(); ++k)
    EXPECT_NEAR(seen.m_aiTimes[k], 1000.0 * static_cast<double>(k + 1) / 30, 0.6);
  // The red half is below.
  const auto redAt = [&](int row) { return seen.m_auFirst[static_cast<std::size_t>(4 * (row * kFrameWidth + 40))]; };
  EXPECT_NEAR(redAt(5), 20, 12);
  EXPECT_NEAR(redAt(kFrameHeight - 5), 200, 12);
}

TEST(FilmTest, IsReadByOtherPrograms) {
  if (!HasFilmProgram()) {
    std::cout << "There is no ffmpeg here: its films are not looked at.\n";
    return;
  }
  const CTemporaryDirectory directory;
  for (const char* suffix : {".mp4", ".webm"}) {
    const std::string name = std::string("a b") + suffix;
    const CSaveOutcome outcome = WriteFilm(FormatOf(suffix), RecordedFilm(), directory.File(name));
    ASSERT_TRUE(outcome) << outcome.m_Trouble;
    const std::string probe =
        "ffprobe -v error -count_frames -select_streams v -show_entries "
        "stream=width,height,avg_frame_rate,pix_fmt,nb_read_frames -of csv=p=0 '" +
        name + "'";
    ASSERT_EQ(RunIn(directory.Path(), probe), 0) << BytesOf(directory.File("err"));
    EXPECT_EQ(BytesOf(directory.File("out")), "64,48,yuv420p,30/1,36\n") << suffix;
    ASSERT_EQ(RunIn(directory.Path(), "ffmpeg -y -v error -i '" + name + "' -f framemd5 sums"), 0)
        << BytesOf(directory.File("err"));
    std::istringstream sums(BytesOf(directory.File("sums")));
    std::set<std::string> different;
    for (std::string line; std::getline(sums, line);) {
      if (!line.starts_with('#')) different.insert(line.substr(line.rfind(',')));
    }
    EXPECT_EQ(different.size(), 36U) << suffix;
  }
}

TEST(FilmTest, LeavesNothingBehindWhereverItIsCancelled) {
  for (const CFilmFormat& format : FilmFormats()) {
    if (format.m_bNeedsProgram && !HasFilmProgram()) {
      std::cout << "There is no ffmpeg here: no " << format.m_pSuffix << " is cancelled.\n";
      continue;
    }
    // A program is asked about while it encodes, too; each of its runs takes a while.
    for (int question = 0; question < 38; question += format.m_bNeedsProgram ? 7 : 1) {
      const CTemporaryDirectory directory;
      const std::string file = directory.File(std::string("a") + format.m_pSuffix);
      for (const bool existed : {false, true}) {
        if (existed) WriteText(file, "old");
        CShortPatience patience(question);
        const CSaveOutcome outcome = WriteFilm(format, RecordedFilm(), file, &patience);
        ASSERT_FALSE(outcome) << format.m_pSuffix << question;
        EXPECT_TRUE(outcome.m_bCancelled);
        EXPECT_EQ(directory.Names().size(), existed ? 1U : 0U) << format.m_pSuffix << question;
        EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process is left";
      }
      EXPECT_EQ(BytesOf(file), "old");
    }
  }
}

TEST(FilmTest, KeepsTheOldFileWhereAFrameCannotBeDrawn) {
  const CTemporaryDirectory directory;
  WriteText(directory.File("a.webp"), "old");
  const CFilm film{2, 2, 3, [](std::size_t) { return std::optional<CPicture>(); }};
  EXPECT_EQ(ReasonOf(WriteFilm(FormatOf(".webp"), film, directory.File("a.webp"))),
            "The frames cannot be drawn in this size.");
  EXPECT_EQ(BytesOf(directory.File("a.webp")), "old");
  EXPECT_EQ(directory.Names().size(), 1U);
}

TEST(FilmTest, KeepsTheOldFileOnAFullDisk) {
  const CTemporaryDirectory directory;
  WriteText(directory.File("a.webp"), "old");
  const CFullDisk full(500);
  EXPECT_EQ(WriteFilm(FormatOf(".webp"), RecordedFilm(), directory.File("a.webp")).m_Trouble,
            "The file " + directory.File("a.webp") + " could not be written. If it existed before, it is unchanged.");
  EXPECT_EQ(BytesOf(directory.File("a.webp")), "old");
  EXPECT_EQ(directory.Names().size(), 1U);
}

TEST(FilmProgramTest, IsAskedForWhereItIsMissing) {
  const CFakeProgram fake("");
  EXPECT_FALSE(HasFilmProgram());
  EXPECT_EQ(ReasonOf(WriteBy("")), "This kind of film needs the program ffmpeg, which is not installed.");
}

TEST(FilmProgramTest, IsFoundWhereItCanBeStarted) {
  const CFakeProgram fake("exit 0");
  EXPECT_TRUE(HasFilmProgram());
}

TEST(FilmProgramTest, HasItsFirstLineShownWhereItFails) {
  EXPECT_EQ(ReasonOf(WriteBy("echo 'No such codec' >&2; echo more >&2; exit 1")),
            "The program ffmpeg has failed: No such codec.");
  EXPECT_EQ(ReasonOf(WriteBy("cat >/dev/null; echo 'The end is wrong' >&2; exit 3")),
            "The program ffmpeg has failed: The end is wrong.");
  EXPECT_EQ(ReasonOf(WriteBy("kill -9 $$")), "The program ffmpeg has failed.");
}

// With a pipe, the signal would end the program.
TEST(FilmProgramTest, MayStopReading) {
  EXPECT_EQ(ReasonOf(WriteBy("exec <&-; echo 'no more' >&2; sleep 0.1; exit 1")),
            "The program ffmpeg has failed: no more.");
}

TEST(FilmProgramTest, IsEndedWhereTheFilmIsCancelled) {
  // One that reads nothing, and one that never ends.
  for (const std::string script : {"exec sleep 1000", "cat >/dev/null; exec sleep 1000"}) {
    const CTemporaryDirectory told;
    CShortPatience patience(45, told.File("process"));
    EXPECT_TRUE(WriteBy("echo $$ >'" + told.File("process") + "'; " + script, &patience).m_bCancelled) << script;
    const std::string process = BytesOf(told.File("process"));
    ASSERT_FALSE(process.empty());
    EXPECT_EQ(kill(std::stoi(process), 0), -1) << "it is still there";
    EXPECT_EQ(errno, ESRCH);
  }
}

TEST(FilmProgramTest, LeavesTheOldFileWhereItFailsOrIsCancelled) {
  for (const bool cancelled : {false, true}) {
    const CTemporaryDirectory directory;
    const std::string file = directory.File("a.webm");
    WriteText(file, "old");
    const CFakeProgram fake(cancelled ? "exec sleep 1000"
                                      : "cat >/dev/null; echo half >/dev/fd/3; echo no >&2; exit 1");
    CShortPatience patience(cancelled ? 20 : std::numeric_limits<int>::max());
    const CSaveOutcome outcome = WriteFilm(FormatOf(".webm"), RecordedFilm(), file, &patience);
    EXPECT_EQ(ReasonOf(outcome), cancelled ? "Cancelled." : "The program ffmpeg has failed: no.");
    EXPECT_EQ(outcome.m_bCancelled, cancelled);
    EXPECT_EQ(BytesOf(file), "old");
    EXPECT_EQ(directory.Names().size(), 1U);
    EXPECT_EQ(waitpid(-1, nullptr, WNOHANG), -1) << "a process is left";
  }
}

TEST(FilmProgramTest, WritesToAFileWithoutAName) {
  const CTemporaryDirectory directory;
  const CFakeProgram fake("cat >/dev/null; echo film >/dev/fd/3");
  ASSERT_TRUE(WriteFilm(FormatOf(".webm"), RecordedFilm(), directory.File("a.webm")));
  EXPECT_EQ(BytesOf(directory.File("a.webm")), "film\n");
  EXPECT_EQ(directory.Names().size(), 1U);
}
