#include "app/CReferenceTool.h"

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>
#include <utility>

#include <FL/Fl.H>

#include "codecs/DepthMapFile.h"
#include "constraints/CPtCstrList.h"
#include "editing/CCommandPause.h"
#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/window/CImageViewUI.h"

namespace {

bool IsSame(const CReferenceFit& a, const CReferenceFit& b) {
  return a.m_fOffset == b.m_fOffset && a.m_fLinear == b.m_fLinear && a.m_fSquare == b.m_fSquare &&
         a.m_bFitted == b.m_bFitted && a.m_bBent == b.m_bBent && a.m_bNearIsBright == b.m_bNearIsBright &&
         a.m_iHeights == b.m_iHeights && a.m_fRms == b.m_fRms && a.m_fWorst == b.m_fWorst && a.m_iWorst == b.m_iWorst;
}

// Heights before one in the list that stepping through them comes to, and itself.
std::size_t StepsTo(const CPtCstrList& points, std::size_t number) {
  std::size_t steps = 0;
  auto point = points.begin();
  for (std::size_t k = 0; k <= number; ++k, ++point) {
    if (point->HasKind(PtCstrKind::kPosition)) ++steps;
  }
  return steps;
}

}  // namespace

CReferenceTool::CReferenceTool(CImageViewUI& window, CGrid& grid)
    : m_Window(window),
      m_Grid(grid),
      m_Embedded(window),
      m_Estimate(window, grid, [this](CReadDepthMap map, const std::string& file) { Take(std::move(map), file); }),
      m_Tears(window, grid),
      m_Overlay(window, grid),
      m_Panel(grid, *this, window, [this] { Closed(); }) {}

CReferenceTool::~CReferenceTool() { Fl::remove_check(cb_Check, this); }

void CReferenceTool::Open() {
  if (!IsOpen()) {
    Fl::add_check(cb_Check, this);
    m_Panel.Estimate().SetCommandLine(m_Estimate.CommandLine());
  }
  m_Panel.Open();
  Follow();
}

void CReferenceTool::Closed() {
  Fl::remove_check(cb_Check, this);
  m_Tears.Take();
  m_Overlay.Show(false);
  // Or a map that has been removed would live on.
  m_Shown = {};
  m_ShownFit = {};
  ReportClosed();
}

void CReferenceTool::cb_Check(void* tool) { static_cast<CReferenceTool*>(tool)->Follow(); }

// Looked at each time the toolkit goes round, as rebuilds fit the map anew whoever has caused them.
void CReferenceTool::Follow() {
  m_Tears.Follow();
  m_Overlay.Follow();
  m_Panel.ShowEmbedded(m_Embedded.IsThere());
  m_Panel.ShowMapShown(m_Overlay.IsShown());
  m_Panel.Estimate().Show(m_Estimate.State());
  m_Panel.Tears().Show(m_Tears.State());
  const CGridReference& reference = m_Grid.Reference();
  if (reference.Value() == m_Shown && IsSame(reference.Fitted(), m_ShownFit)) return;
  m_Shown = reference.Value();
  m_ShownFit = reference.Fitted();
  m_Panel.Refresh(m_Grid);
}

void CReferenceTool::LoadReference() {
  const CCommandPause pause(m_Window.Solver());
  const std::optional<std::string> file = m_Window.ChooseFile(
      {.m_pTitle = "please input depth map file name", .m_pPattern = "*.{png,pfm,tif,tiff}", .m_Kind = "depth map"});
  if (file.has_value()) Load(*file);
}

void CReferenceTool::PictureLoaded() {
  m_Estimate.Cancel();
  m_Tears.PictureLoaded();
  m_Embedded.PictureLoaded();
}

void CReferenceTool::GridReplaced() {
  m_Estimate.Cancel();
  m_Panel.Refresh(m_Grid);
}

void CReferenceTool::TakeEmbedded() {
  if (m_Embedded.IsThere()) TakeRead(m_Embedded.Read(), m_Window.ImageView().TextureFileName());
}

void CReferenceTool::Load(const std::string& file) { TakeRead(ReadDepthMap(file), file); }

void CReferenceTool::TakeRead(CReadDepthMap read, const std::string& file) {
  if (!read) {
    const std::string text = "The file " + file + " is not a depth map that can be read: " + read.m_Reason + '.';
    return m_Window.Notice(text.c_str());
  }
  Take(std::move(read), std::filesystem::absolute(file).string());
}

void CReferenceTool::Take(CReadDepthMap read, const std::string& file) {
  const CTextureImages& textures = m_Grid.Relighting().Textures();
  const CExtent& extent = m_Grid.Surface().Lattice().Extent();
  const std::string proportions =
      textures.HasPicture() ? ProportionsNotice(*read.m_pMap, textures.PictureWidth(), textures.PictureHeight())
                            : ProportionsNotice(*read.m_pMap, extent.x1 - extent.x0, extent.y1 - extent.y0);
  const std::string subject = "The file " + file + ' ';
  for (const std::string& notice : {read.m_Notice, proportions}) {
    if (!notice.empty()) m_Window.Tell(subject + notice + '.');
  }
  m_Grid.ReferenceEdits().Load(std::move(read.m_pMap), file);
  m_Window.OfferDepth(false);
}

void CReferenceTool::SelectWorst() {
  // The heights that the fit knows are those of the last rebuild.
  m_Grid.PerformPendingWork();
  const int worst = m_Grid.Reference().Fitted().m_iWorst;
  const CPtCstrList& points = m_Grid.Constraints().Points();
  if (worst < 0 || static_cast<std::size_t>(worst) >= points.size()) return;
  m_Grid.UnselectAll();
  // By its number: several may lie within reach of its place.
  const std::size_t steps = StepsTo(points, static_cast<std::size_t>(worst));
  for (std::size_t k = 0; k < steps; ++k) m_Grid.SelectNextPtCstr(PtCstrKind::kPosition);
  m_Window.RequestRedraw();
}
