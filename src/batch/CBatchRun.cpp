#include "batch/CBatchRun.h"

#include <chrono>
#include <filesystem>
#include <functional>
#include <iostream>
#include <new>
#include <optional>
#include <sstream>
#include <utility>
#include <vector>

#include "base/CTerminationSignals.h"
#include "base/Console.h"
#include "batch/CFindings.h"
#include "batch/CProgress.h"
#include "batch/ExitStatus.h"
#include "batch/OutputConflict.h"
#include "codecs/DepthMapFile.h"
#include "codecs/JpegFile.h"
#include "io/CFileReplacement.h"
#include "io/ModelFormats.h"
#include "model/RefusedCurves.h"
#include "projects/ModelInput.h"
#include "reference/SuggestTears.h"
#include "scissors/CLinkCosts.h"
#include "scissors/CTopDownImage.h"

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

/// Shows how far the exports are, and looks at the signals that end the process.
class CShownProgress : public ExportProgress {
 public:
  CShownProgress(bool wanted, std::function<void()> endIfAsked)
      : m_Progress(wanted), m_EndIfAsked(std::move(endIfAsked)) {}

  void Begin(const std::string& filename) { m_Filename = filename; }
  void End() { m_Progress.Erase(); }
  bool Goes(double share) override {
    m_Progress.Update(m_Filename, share);
    m_EndIfAsked();
    return true;
  }

 private:
  CProgress m_Progress;
  std::function<void()> m_EndIfAsked;
  std::string m_Filename;
};

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
  if (const std::string conflict = PhotographConflict(m_Options, m_PhotographFile); !conflict.empty()) {
    Complain(conflict);
    return ExitStatus::kUsage;
  }
  Solve();
  const bool written = WriteOutputs();
  const CFindings findings(m_Grid);
  for (const std::string& summary : SummariesOf(findings)) {
    if (!m_Options.m_bQuiet) Complain(summary);
  }
  if (const std::string inactive = InactiveSummary(m_Grid); !inactive.empty() && !m_Options.m_bQuiet)
    Complain(inactive);
  PrintReport(std::cout, m_Options.m_Report, m_Grid, m_Result, findings);
  if (!written || !std::cout.flush()) return ExitStatus::kOutput;
  if (m_Result.m_bDamaged) return ExitStatus::kDamaged;
  if (m_Options.m_bStrict && !findings.IsEmpty()) return ExitStatus::kUnsettled;
  return StatusOfStop();
}

int CBatchRun::StatusOfStop() const {
  const bool wanted = m_Result.m_Stopped == StopReason::Converged ||
                      (m_Result.m_Stopped == StopReason::Bound && m_Options.m_Iterations.has_value());
  return wanted ? ExitStatus::kDone : ExitStatus::kNotConverged;
}

bool CBatchRun::ReadInputs() {
  const CStopwatch watch(m_Result.m_Seconds.m_fLoad);
  CModelInput input = ReadModelInput(m_Grid, m_Options.m_Model, m_Options.m_Image);
  for (const std::string& notice : input.m_asNotices) Complain(notice);
  m_Result.m_bDamaged = input.m_bDamaged;
  if (input.m_bDamaged && m_Options.m_bStrict) {
    Complain("A damaged model is refused, as --strict wants it; nothing is written.");
    return false;
  }
  m_Photograph = std::move(input.m_Photograph);
  m_PhotographFile = std::move(input.m_PhotographFile);
  if (!input.m_bRead || !ReadReference()) return false;
  try {
    TakeSuggestedTears();
  } catch (const std::bad_alloc&) {
    Complain("There is not enough memory to look for tears.");
    return false;
  }
  return true;
}

bool CBatchRun::ReadReference() {
  CReferenceEdits& edits = m_Grid.ReferenceEdits();
  if (!m_Options.m_Reference.empty()) {
    const std::string file = "The file " + m_Options.m_Reference;
    CReadDepthMap read = ReadDepthMap(m_Options.m_Reference);
    if (!read) {
      Complain(file + " is not a depth map that can be read: " + read.m_Reason + '.');
      return false;
    }
    const std::string notice = std::move(read.m_Notice);
    const CPicture& photograph = m_Photograph.m_Picture;
    const CExtent& e = m_Grid.Surface().Lattice().Extent();
    const std::string proportions = photograph.m_aPixels.empty()
                                        ? ProportionsNotice(*read.m_pMap, e.x1 - e.x0, e.y1 - e.y0)
                                        : ProportionsNotice(*read.m_pMap, photograph.m_iWidth, photograph.m_iHeight);
    // One that counts for nothing must not even have the system assembled again.
    const bool counts = m_Options.m_ReferenceStrength.value_or(m_Grid.Reference().Value().m_Settings.m_fStrength) > 0;
    if (!counts && m_Options.m_iSuggestedTears == 0 && !m_Grid.Reference().HasMap()) return true;
    edits.Load(std::move(read.m_pMap), std::filesystem::absolute(m_Options.m_Reference).string());
    if (m_Options.m_ReferenceStrength.has_value()) edits.SetStrength(*m_Options.m_ReferenceStrength);
    const auto complainOf = [&](const std::string& text) {
      const bool isUsed = m_Grid.Reference().Value().IsActive() || m_Options.m_iSuggestedTears > 0;
      if (isUsed && !text.empty()) Complain(file + ' ' + text + '.');
    };
    complainOf(notice);
    complainOf(proportions);
    return true;
  }
  // Of a grid file the options have been refused already.
  if (!m_Options.m_ReferenceStrength.has_value() && m_Options.m_iSuggestedTears == 0) return true;
  if (!m_Grid.Reference().HasMap()) {
    Complain("The project " + m_Options.m_Model + " has no depth map; --reference-depth names one.");
    return false;
  }
  if (m_Options.m_ReferenceStrength.has_value()) edits.SetStrength(*m_Options.m_ReferenceStrength);
  return true;
}

void CBatchRun::TakeSuggestedTears() {
  if (m_Options.m_iSuggestedTears == 0) return;
  std::optional<CLinkCosts> costs;
  if (!m_Photograph.m_Picture.m_aPixels.empty()) costs = ComputeLinkCosts(TopDown(m_Photograph.m_Picture));
  const std::vector<CTearProposal> proposals =
      SuggestTears(m_Grid.Reference().Reading(), {.m_iCount = m_Options.m_iSuggestedTears},
                   m_Grid.Surface().Lattice().Extent(), costs.has_value() ? &*costs : nullptr);
  for (const CTearProposal& proposal : proposals)
    m_Grid.AddTracedCurve(NodesOf(proposal), CurveType::kPosition, proposal.m_bClosed);
  m_Result.m_iSuggestedTears = static_cast<int>(proposals.size());
}

void CBatchRun::Solve() {
  const CStopwatch watch(m_Result.m_Seconds.m_fSolve);
  EndIfAsked();
  if (m_Options.m_bHighRes) m_Grid.Run().Post(Operation::kTransferToHigh);
  m_Grid.PerformPendingWork();
  if (m_Grid.Surface().Mode() != m_Options.m_Mode) m_Grid.Builder().SetWaveletMode(m_Options.m_Mode);
  if (m_Options.m_bSettle) m_Grid.SetSettling(true);
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
  return WriteExports() && written;
}

bool CBatchRun::WriteExports() {
  bool written = true;
  CExportSettings exporting = m_Options.m_Exporting;
  exporting.m_Name = std::filesystem::path(m_Options.m_Model).stem();
  exporting.m_pPhotograph = &m_Photograph;
  CExportPictures pictures(m_Grid, &m_Photograph);
  exporting.m_pPictures = &pictures;
  CShownProgress progress(!m_Options.m_bQuiet, [this] { EndIfAsked(); });
  exporting.m_pProgress = &progress;
  for (const std::string& file : m_Options.m_asExports) {
    progress.Begin(file);
    const CSaveOutcome outcome = ExportSurface(m_Grid, file, exporting);
    progress.End();
    written = IsSaved(outcome) && written;
    // Of a solver that has given up the user knows.
    if (outcome && (m_Result.m_Stopped == StopReason::Bound || m_Result.m_Stopped == StopReason::Time))
      Complain(NotConvergedText(file));
    EndIfAsked();
  }
  return written;
}

bool CBatchRun::WriteOutput(std::size_t format) {
  bool written =
      IsSaved(WriteModel(ModelFormats()[format], m_Grid, m_Options.m_asOutputs[format], m_Options.m_Writing));
  const std::string jpeg = m_Photograph.m_Picture.m_aPixels.empty() ? std::string() : m_Options.PictureOf(format);
  if (!jpeg.empty() && !SaveJpeg(jpeg, m_Photograph)) {
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
