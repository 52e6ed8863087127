#include "ui/CImageViewUI.h"

#include <cstdlib>

#include <FL/Fl.H>

#include "model/CGrid.h"
#include "ui/CGridView.h"
#include "ui/CImageView.h"
#include "ui/ViewHost.h"

namespace {

// A window without controls: nothing to show and no solver to hold.
class CBareHost : public ViewHost {
 public:
  explicit CBareHost(CImageViewUI& window) : m_Window(window) {}
  void PauseSolverForCommand() override {}
  void ResumeAfterCommand() override {}
  void ShowHelp(int /*index*/) override {}
  void RestoreHelp() override {}
  void RedrawImageView() override { m_Window.ImageView().redraw(); }
  void RedrawModelView() override { m_Window.GridView().redraw(); }
  void FocusImageView() override { m_Window.ImageView().take_focus(); }
  bool ShowsDebugZone() const override { return false; }
  void ShowPointerInside(bool /*inside*/) override {}
  void ShowInfluence(double /*value*/) override {}
  void ShowNumber(int /*number*/, int /*levelCode*/) override {}
  void Notice(const char* /*text*/) override {}

 private:
  CImageViewUI& m_Window;
};

constexpr int kWidth = 870;
constexpr int kHeight = 660;
constexpr int kMinWidth = 800;
constexpr int kMinHeight = 190;
constexpr int kViewSize = 430;

// The toolkit remembers the last key typed, so a click on the title bar may find Escape as the key: the event must be
// one of the keyboard, too.
bool IsEscapeTyped() {
  const int event = Fl::event();
  return (event == FL_KEYBOARD || event == FL_SHORTCUT) && Fl::event_key() == FL_Escape;
}

}  // namespace

CImageViewUI::CImageViewUI(StartSolverTimer startTimer)
    : Fl_Window(kWidth, kHeight, "Image View"),
      m_pStartTimer(startTimer),
      m_pViewHost(std::make_unique<CBareHost>(*this)) {
  m_pImageView = new CImageView(2, 23, kViewSize, kViewSize);
  m_pGridView = new CGridView(438, 23, kViewSize, kViewSize);
  end();
  resizable(this);
  size_range(kMinWidth, kMinHeight);
  callback(cb_Window);
}

CImageViewUI::~CImageViewUI() {
  // Hiding sends events to the views, which still need their host then.
  hide();
  if (m_pGrid != nullptr) m_pGrid->AttachHost(nullptr);
}

void CImageViewUI::AttachGrid(CGrid& grid) {
  m_pGrid = &grid;
  m_pImageView->AttachGrid(grid, *m_pViewHost);
  m_pGridView->AttachGrid(grid);
  grid.AttachHost(this);
  m_pGridView->SelectWaveletMode(WaveletMode::New);
}

void CImageViewUI::RequestRedraw() {
  m_pImageView->redraw();
  m_pGridView->redraw();
}

void CImageViewUI::ShowInterpolation(const CInterpolationTrace& trace) { m_pImageView->ShowInterpolation(trace); }

void CImageViewUI::ProcessEvents() { Fl::check(); }

void CImageViewUI::PauseSolverConverged() { m_bPausedConverged = true; }

void CImageViewUI::ResumeAfterChange() {
  if (!m_bPausedConverged) return;
  m_bPausedConverged = false;
  m_pGrid->SetRunning(true);
  m_pStartTimer(*m_pGrid);
}

void CImageViewUI::cb_Window(Fl_Widget* widget, void* /*data*/) {
  if (IsEscapeTyped()) {
    widget->take_focus();
    return;
  }
  std::exit(EXIT_SUCCESS);
}
