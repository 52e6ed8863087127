#include "app/ValuesTool.h"

#include <functional>
#include <optional>
#include <utility>

#include <FL/Fl.H>

#include "base/CPlanePoint.h"
#include "editing/CSelectedValues.h"
#include "model/CGrid.h"
#include "ui/imageview/CImageView.h"
#include "ui/seams/CValueMessages.h"
#include "ui/values/CValuesPanel.h"
#include "ui/values/ValuesCommands.h"
#include "ui/window/CImageViewUI.h"

namespace {

class CValuesTool : public ToolWindow, private ValuesCommands {
 public:
  CValuesTool(CImageViewUI& window, CGrid& grid)
      : m_Window(window), m_Grid(grid), m_Values(grid), m_Panel(grid, *this, window, [this] {
          Fl::remove_check(cb_Check, this);
          ReportClosed();
        }) {}
  ~CValuesTool() override { Fl::remove_check(cb_Check, this); }
  CValuesTool(const CValuesTool&) = delete;
  CValuesTool& operator=(const CValuesTool&) = delete;

  bool IsOpen() const override { return m_Panel.visible() != 0; }
  void Open() override {
    if (!IsOpen()) Fl::add_check(cb_Check, this);
    m_Panel.Open();
  }
  void Close() override { m_Panel.hide(); }

 private:
  void TakeNextHeight(std::function<void()> ended) override;
  void DropNextHeight() override;
  void ValueChanged() override;
  bool IsChoosing() const override { return m_Window.ImageView().IsChoosing(); }
  bool TakeHeight(const std::optional<CPlanePoint>& place);
  static void cb_Check(void* tool);

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  CSelectedValues m_Values;
  std::function<void()> m_Ended;  ///< to be called once no click is waited for
  CValuesPanel m_Panel;
};

// Looked at each time the toolkit goes round. A button of the panel that is held down shows what the user makes of it.
void CValuesTool::cb_Check(void* tool) {
  auto& self = *static_cast<CValuesTool*>(tool);
  const Fl_Widget* held = Fl::pushed();
  if (held == nullptr || held->top_window() != &self.m_Panel) self.m_Panel.Refresh();
}

void CValuesTool::TakeNextHeight(std::function<void()> ended) {
  m_Ended = std::move(ended);
  m_Window.ImageView().TakeNextPress([this](const std::optional<CPlanePoint>& place) { return TakeHeight(place); });
  m_Window.ShowMessage(FormatHelp(HelpText::kHeightWanted));
}

void CValuesTool::DropNextHeight() {
  m_Window.ImageView().TakeNextPress(nullptr);
  if (const auto ended = std::exchange(m_Ended, nullptr)) ended();
}

// As the help line follows a drag, so it does a number: what it said before would be wrong.
void CValuesTool::ValueChanged() {
  const CPtCstr* selected = m_Grid.Constraints().Points().FirstSelected();
  if (selected == nullptr) return;
  const bool height = m_Values.Value(ConstraintValue::Z).has_value();
  CValueMessages(m_Grid, m_Window, height ? PtCstrKind::kPosition : PtCstrKind::kNormal).SelectionChanged();
}

bool CValuesTool::TakeHeight(const std::optional<CPlanePoint>& place) {
  if (place.has_value() && !m_Values.TakeHeightOf(place->x, place->y, PickReach())) {
    m_Window.Tell(FormatHelp(HelpText::kNoHeightThere));
    return false;
  }
  m_Window.RestoreHelp();
  if (place.has_value()) ValueChanged();
  m_Window.RequestRedraw();
  if (const auto ended = std::exchange(m_Ended, nullptr)) ended();
  return true;
}

}  // namespace

std::unique_ptr<ToolWindow> MakeValuesTool(CImageViewUI& window, CGrid& grid) {
  return std::make_unique<CValuesTool>(window, grid);
}
