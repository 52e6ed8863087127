#include "support/gui/CDeedLog.h"

#include <iomanip>
#include <sstream>
#include <string_view>
#include <system_error>

#include <FL/Fl.H>

#include "model/CGrid.h"
#include "model/Globals.h"
#include "ui/modelview/CGridView.h"
#include "ui/recorder/AnimationRecorder.h"
#include "ui/window/CImageViewUI.h"

namespace {

constexpr std::array<const char*, kDeeds> kNames{
    "points added",      "points deleted",    "points changed",  "curves added",        "curves deleted",
    "curves changed",    "selections",        "subdivisions",    "resolution switches", "pictures loaded",
    "pictures refused",  "grids loaded",      "grids refused",   "grids saved",         "scenes saved",
    "height fields",     "frames shot",       "writing refused", "new grids",           "contours traced",
    "texel normals",     "relightings",       "frames recorded", "animations played",   "animations exported",
    "main window sizes", "tool window sizes", "cameras moved",
};

struct CConsoleRow {
  std::string_view m_Text;
  Deed m_Deed;
};

constexpr auto kConsoleRows = std::to_array<CConsoleRow>({
    {"Matrixes succesfully created", Deed::GridLoaded},
    {"Invalid format: attempting", Deed::GridRefused},
    {"Error opening the file", Deed::GridRefused},
    {"fail to open file", Deed::PictureRefused},
    {"file header not accepted", Deed::PictureRefused},
    {"format is not 24bit", Deed::PictureRefused},
    {"fail to write file", Deed::WritingFailed},
    {"contour with ", Deed::CurveAdded},
    {"CGrid::Initialize\t", Deed::NewGrid},
    {"CScissorsView::ExportContour()", Deed::ContourTraced},
    {"...ComputeNormalsOnly\t", Deed::TexelNormals},
    {"...GetKd\tdone", Deed::Relit},
    {"recMode_Play : add_timeout", Deed::AnimationPlayed},
});

// Large enough a number that no two sizes of a screen give the same.
int SizeOf(const Fl_Window& window) { return 10000 * window.w() + window.h(); }

double SumOf(const CPtCstr& point) {
  return point.m_fX + 3 * point.m_fY + 5 * point.m_fZ + 7 * point.m_fP + 11 * point.m_fQ;
}

}  // namespace

CDeedLog::CDeedLog(CImageViewUI& window, CGrid& grid) : m_Window(window), m_Grid(grid), m_Before(Present()) {}

CDeedLog::CState CDeedLog::Present() const {
  CState state;
  state.m_uPoints = m_Grid.Constraints().Points().size();
  state.m_uCurves = m_Grid.Constraints().Curves().size();
  for (const CPtCstr& point : m_Grid.Constraints().Points()) {
    state.m_fPointSum += SumOf(point);
    state.m_bSelected = state.m_bSelected || point.HasState(PtCstrState::kSelected);
  }
  for (const CCntrCtrl& curve : m_Grid.Constraints().Curves()) {
    state.m_bSelected = state.m_bSelected || curve.HasState(PtCstrState::kSelected);
    for (const CPtCstr& node : curve.Nodes()) state.m_fCurveSum += SumOf(node);
  }
  state.m_iLeaves = m_Grid.Surface().Tree().LeafCount();
  state.m_iHighResolution = g_bHighRes;
  state.m_uPicture = m_Grid.Relighting().Textures().Revision(CTextureImages::kPhotograph);
  state.m_iMainSize = SizeOf(m_Window);
  for (Fl_Window* w = Fl::first_window(); w != nullptr; w = Fl::next_window(w)) {
    if (const auto* recorder = dynamic_cast<CAnimationRecorder*>(w))
      state.m_uFrames = recorder->Recorder().Frames().size();
    if (w != &m_Window && w->parent() == nullptr && w->border() != 0 && w->modal() == 0) state.m_iToolSize = SizeOf(*w);
  }
  state.m_fCamera = m_Window.GridView().Camera().m_Eye.x + m_Window.GridView().Camera().m_fR;
  return state;
}

void CDeedLog::Look() {
  ReadConsole();
  LookAtFiles();
  const CState now = Present();
  const CState& before = m_Before;
  if (now.m_uPoints > before.m_uPoints) Add(Deed::PointAdded);
  if (now.m_uPoints < before.m_uPoints) Add(Deed::PointDeleted);
  if (now.m_uPoints == before.m_uPoints && now.m_fPointSum != before.m_fPointSum) Add(Deed::PointChanged);
  if (now.m_uCurves < before.m_uCurves) Add(Deed::CurveDeleted);
  if (now.m_uCurves == before.m_uCurves && now.m_fCurveSum != before.m_fCurveSum) Add(Deed::CurveChanged);
  if (now.m_bSelected && !before.m_bSelected) Add(Deed::Selected);
  if (now.m_iLeaves != before.m_iLeaves) Add(Deed::SubdivisionChanged);
  if (now.m_iHighResolution != before.m_iHighResolution) Add(Deed::ResolutionSwitched);
  if (now.m_uPicture != before.m_uPicture) Add(Deed::PictureLoaded);
  if (now.m_uFrames > before.m_uFrames) Add(Deed::FrameRecorded, static_cast<int>(now.m_uFrames - before.m_uFrames));
  if (now.m_iMainSize != before.m_iMainSize) Add(Deed::MainWindowResized);
  if (now.m_iToolSize != before.m_iToolSize && now.m_iToolSize != 0 && before.m_iToolSize != 0)
    Add(Deed::ToolWindowResized);
  if (now.m_fCamera != before.m_fCamera) Add(Deed::CameraMoved);
  m_Before = now;
}

void CDeedLog::ReadConsole() {
  std::istringstream lines(m_Console.Take());
  std::string line;
  while (std::getline(lines, line)) {
    for (const CConsoleRow& row : kConsoleRows) {
      if (line.find(row.m_Text) != std::string::npos) Add(row.m_Deed);
    }
    // Without the numbers, so that lines of one kind stand together.
    if (line.starts_with("Err")) ++m_aErrors[line.substr(0, line.find_first_of("0123456789/"))];
  }
}

void CDeedLog::LookAtFiles() {
  for (CFile& file : m_aFiles) {
    std::error_code missing;
    const auto written = std::filesystem::last_write_time(file.m_Path, missing);
    if (missing || written == file.m_Written) continue;
    file.m_Written = written;
    Add(file.m_Deed);
  }
}

void CDeedLog::Watch(const std::filesystem::path& file, Deed deed) {
  std::error_code missing;
  m_aFiles.push_back({file, deed, std::filesystem::last_write_time(file, missing)});
}

void CDeedLog::Print(std::ostream& out) const {
  for (std::size_t deed = 0; deed < kDeeds; ++deed)
    out << std::setw(8) << m_aiTimes[deed] << "  " << kNames[deed] << '\n';
  for (const auto& [line, times] : m_aErrors) out << std::setw(8) << times << "  " << line << '\n';
}
