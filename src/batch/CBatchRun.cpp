#include "batch/CBatchRun.h"

#include <chrono>
#include <iostream>
#include <new>
#include <optional>
#include <sstream>
#include <utility>

#include "base/CTerminationSignals.h"
#include "base/Console.h"
#include "batch/CProgress.h"
#include "batch/ExitStatus.h"
#include "formats/JpegFile.h"
#include "formats/ModelFormats.h"
#include "formats/PictureFormats.h"
#include "formats/ProjectFile.h"
#include "formats/ProjectPicture.h"
#include "io/CFileReplacement.h"
#include "io/GridFile.h"
#include "model/RefusedCurves.h"

namespace {

/// Adds the seconds of its life to a sum.
class CStopwatch {
 public:
  explicit CStopwatch(double& seconds) : m_fSeconds(seconds) {}
  ~CStopwatch() { m_fSeconds += Seconds(); }
  CStopwatch(const CStopwatch&) = delete;
  CStopwatch& operator=(const CStopwatch&) = delete;

  double Seconds() const { return std::chrono::duration<double>(std::chrono::steady_clock::now() - m_Start).count(); }

 private:
  double& m_fSeconds;
  std::chrono::steady_clock::time_point m_Start = std::chrono::steady_clock::now();
};

void Complain(const std::string& text) { std::cerr << "relievo-batch: " << text << '\n'; }

// Whether the file was written; if not, the user is told.
bool IsSaved(const CSaveOutcome& outcome) {
  if (!outcome) Complain(outcome.m_Trouble);
  return static_cast<bool>(outcome);
}

}  // namespace

CBatchRun::CBatchRun(const CBatchOptions& options, CTerminationSignals& signals)
    : m_Options(options), m_Signals(signals), m_Grid(options.m_uSeed) {
  m_Grid.Run().AttachHost(this);
}

void CBatchRun::CurvesRefused(int count) { Complain(RefusedCurvesText(count)); }

int CBatchRun::Run() {
  if (!ReadInputs()) return ExitStatus::kInput;
  Solve();
  const bool written = WriteOutputs();
  if (const std::string inactive = InactiveSummary(m_Grid); !inactive.empty() && !m_Options.m_bQuiet)
    Complain(inactive);
  PrintReport(std::cout, m_Options.m_Report, m_Grid, m_Result);
  if (!written || !std::cout.flush()) return ExitStatus::kOutput;
  if (m_Result.m_bDamaged) return ExitStatus::kDamaged;
  return StatusOfStop();
}

int CBatchRun::StatusOfStop() const {
  const bool wanted = m_Result.m_Stopped == StopReason::Converged ||
                      (m_Result.m_Stopped == StopReason::Bound && m_Options.m_Iterations.has_value());
  return wanted ? ExitStatus::kDone : ExitStatus::kNotConverged;
}

bool CBatchRun::ReadInputs() {
  const CStopwatch watch(m_Result.m_Seconds.m_fLoad);
  const bool read = IsProjectFile(m_Options.m_Model) ? ReadProjectFile() : ReadGridFile();
  return read && (m_Options.m_Image.empty() || ReadPhotograph());
}

bool CBatchRun::ReadProjectFile() {
  const CReadProject read = ReadProject(m_Options.m_Model);
  if (!read.m_Project.has_value()) {
    Complain(read.m_Trouble);
    return false;
  }
  try {
    CRestoration::RestoreState(m_Grid, read.m_Project->m_Model);
  } catch (const std::bad_alloc&) {
    Complain("The file " + m_Options.m_Model + " needs more memory than there is.");
    return false;
  }
  if (const int refused = m_Grid.CurveEdits().TakeRefused(); refused != 0) CurvesRefused(refused);
  const CProjectPicture& picture = read.m_Project->m_Picture;
  if (!m_Options.m_Image.empty() || picture.m_pBytes == nullptr) return true;
  CReadPicture loaded = PixelsOf(picture);
  if (!loaded) Complain("The photograph in " + m_Options.m_Model + " cannot be read.");
  m_Picture = std::move(loaded.m_Picture);
  return static_cast<bool>(loaded);
}

bool CBatchRun::ReadGridFile() {
  const GridFileState state = m_Grid.Load(m_Options.m_Model);
  if (const std::string trouble = TroubleWith(state, m_Options.m_Model); !trouble.empty()) Complain(trouble);
  if (const int refused = m_Grid.CurveEdits().TakeRefused(); refused != 0) CurvesRefused(refused);
  if (!IsRead(state)) return false;
  m_Result.m_bDamaged = state == GridFileState::Damaged;
  if (m_Result.m_bDamaged && m_Options.m_bStrict) {
    Complain("A damaged model is refused, as --strict wants it; nothing is written.");
    return false;
  }
  return true;
}

bool CBatchRun::ReadPhotograph() {
  CReadPicture loaded = ReadPicture(m_Options.m_Image);
  if (!loaded || loaded.m_Picture.m_aPixels.empty()) {
    const std::string reason = loaded ? "it has no pixels" : loaded.m_Reason;
    Complain("The file " + m_Options.m_Image + " is not a picture that can be read: " + reason + ".");
    return false;
  }
  if (loaded.m_bEndsEarly) {
    Complain("The file " + m_Options.m_Image + " is shorter than its header says.");
  } else if (!loaded.m_Notice.empty()) {
    Complain("The file " + m_Options.m_Image + ' ' + loaded.m_Notice + '.');
  }
  m_Picture = std::move(loaded.m_Picture);
  return true;
}

void CBatchRun::Solve() {
  const CStopwatch watch(m_Result.m_Seconds.m_fSolve);
  EndIfAsked();
  if (m_Options.m_bHighRes) m_Grid.Run().Post(Operation::kTransferToHigh);
  m_Grid.PerformPendingWork();
  if (m_Grid.Surface().Mode() != m_Options.m_Mode) m_Grid.Builder().SetWaveletMode(m_Options.m_Mode);
  CProgress progress(!m_Options.m_bQuiet);
  while (m_Grid.Run().IsRunning() && !IsAtBound(watch.Seconds())) {
    // Lines of the model must not end up behind the number.
    std::ostringstream lines;
    std::optional<CConsoleRedirect> redirect;
    if (progress.IsShown()) redirect.emplace(lines);
    Tick();
    redirect.reset();
    if (!lines.view().empty()) {
      progress.Erase();
      Console() << lines.view();
    }
    progress.Update(m_Result.m_iIterations);
    EndIfAsked();
  }
  progress.Erase();
  if (m_Result.m_Stopped == StopReason::GaveUp)
    Complain("The solver has given up: the surface is not what the constraints ask for.");
}

// Whether the run ends here although the solver would go on.
bool CBatchRun::IsAtBound(double seconds) {
  if (m_Result.m_iIterations >= m_Options.m_Iterations.value_or(m_Options.m_iMaxIterations)) return true;
  if (seconds < m_Options.m_fMaxSeconds) return false;
  m_Result.m_Stopped = StopReason::Time;
  return true;
}

void CBatchRun::Tick() {
  const int before = m_Grid.Solver().Counter();
  m_Grid.UpdateGrid();
  const int after = m_Grid.Solver().Counter();
  // Every restart sets the counter back.
  m_Result.m_iIterations += after > before && before > 0 ? after - before : after;
}

bool CBatchRun::WriteOutputs() {
  const CStopwatch watch(m_Result.m_Seconds.m_fWrite);
  m_Grid.PerformPendingWork();
  bool written = true;
  for (std::size_t k = 0; k < ModelFormats().size(); ++k) {
    if (!m_Options.m_asOutputs[k].empty()) written = WriteOutput(k) && written;
    EndIfAsked();
  }
  return written;
}

bool CBatchRun::WriteOutput(std::size_t format) {
  bool written =
      IsSaved(WriteModel(ModelFormats()[format], m_Grid, m_Options.m_asOutputs[format], m_Options.m_Writing));
  const std::string jpeg = m_Picture.m_aPixels.empty() ? std::string() : m_Options.PictureOf(format);
  if (!jpeg.empty() && !SaveJpeg(jpeg, m_Picture)) {
    Complain("The file " + jpeg + " could not be written.");
    written = false;
  }
  return written;
}

void CBatchRun::EndIfAsked() {
  const int signal = m_Signals.Take();
  if (signal == 0) return;
  CFileReplacement::RemoveUnfinished();
  CTerminationSignals::EndBy(signal);
}
