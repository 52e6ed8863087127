#include "ui/window/WindowLayout.h"

#include <algorithm>
#include <cmath>

#include "base/Console.h"

namespace {

// Edges of the design: the views' upper and lower edge, the lower edge of the panels with and without the debug zone.
constexpr int kViewTop = 23;
constexpr int kViewBottom = 453;
constexpr int kPanelBottom = 636;
constexpr int kPanelBottomWithoutDebugZone = 584;
constexpr int kHelpLineBottom = 659;
constexpr int kMargin = 1;  // below the lowest bar
constexpr int kCoordinates = 18;

// Shares of the columns in the two lower panels, and the pixels between and around them.
constexpr float kConstraintsShare = 163.0F / 421.0F;
constexpr float kCurveTypeShare = 168.0F / 421.0F;
constexpr int kLeftGaps = 14;
constexpr float kInterfacesShare = 155.0F / 417.0F;
constexpr float kResetsShare = 100.0F / 417.0F;
constexpr int kRightGaps = 18;

int Rounded(double value) { return static_cast<int>(std::floor(value + 0.5)); }

/// Maps the design's x coordinates linearly: `m_fFrom` lies at pixel `m_fAt`.
struct CStretch {
  double m_fAt = 0;
  double m_fFrom = 0;
  double m_fFactor = 1;

  int operator()(int x) const { return Rounded(m_fAt + (x - m_fFrom) * m_fFactor); }
};

class CLayouter {
 public:
  explicit CLayouter(const CLayoutOptions& options);
  CWindowLayout Layout() const;

 private:
  int Scaled(int length) const { return Rounded(length * m_Options.m_fScale); }
  void SetColumns();
  CStretch& Stretch(Column column) { return m_aStretches[static_cast<std::size_t>(column)]; }
  const CStretch& Stretch(Column column) const { return m_aStretches[static_cast<std::size_t>(column)]; }
  /// The control in the design as it is with these bars and tools, so that only stretching is left to do.
  CRect Arranged(const CControlRow& row) const;
  CRect View(Control control) const;
  CRect Coordinates() const;
  CRect Bar(int top, int bottom) const;
  int BelowViews(int y) const { return m_iViewBottom + Rounded((y - kViewBottom) * m_Options.m_fScale); }

  const CLayoutOptions& m_Options;
  int m_iPanelBottom;  // in the design
  int m_iViewBottom;   // in the window
  std::array<CStretch, 9> m_aStretches;
};

// What lies below the views, in pixels of the design.
int DesignHeightBelowViews(const CLayoutOptions& options) {
  const int panels = (options.m_bDebugZone ? kPanelBottom : kPanelBottomWithoutDebugZone) - kViewBottom;
  return panels + (options.m_bHelpLine ? kHelpLineBottom - kPanelBottom : 0) + kMargin;
}

CLayouter::CLayouter(const CLayoutOptions& options)
    : m_Options(options), m_iPanelBottom(options.m_bDebugZone ? kPanelBottom : kPanelBottomWithoutDebugZone) {
  const int free = options.m_iHeight - Scaled(kViewTop) - Scaled(DesignHeightBelowViews(options));
  m_iViewBottom = Scaled(kViewTop) + std::max(0, free);
  SetColumns();
}

void CLayouter::SetColumns() {
  const double scale = m_Options.m_fScale;
  const int half = m_Options.m_iWidth / 2;
  const auto [constraints, curveType, smallButtons] =
      SplitInThree(half - Scaled(kLeftGaps), kConstraintsShare, kCurveTypeShare);
  Stretch(Column::Left) = {0, 0, half / 435.0};
  Stretch(Column::Constraints) = {5 * scale, 5, constraints / 163.0};
  Stretch(Column::SmallButtons) = {Stretch(Column::Constraints)(145) + 5 * scale, 150, smallButtons / 90.0};
  Stretch(Column::CurveType) = {half - 7 * scale - curveType, 260, curveType / 168.0};

  const int otherHalf = m_Options.m_iWidth - half;
  const auto [interfaces, resets, solver] =
      SplitInThree(otherHalf - Scaled(kRightGaps), kInterfacesShare, kResetsShare);
  Stretch(Column::Right) = {static_cast<double>(half), 435, otherHalf / 435.0};
  Stretch(Column::Interfaces) = {half + 5 * scale, 440, interfaces / 155.0};
  Stretch(Column::Resets) = {m_Options.m_iWidth - 3 * scale - resets, 767, resets / 100.0};
  // The widgets of the solver reach 3 pixels into the gap beside them.
  Stretch(Column::Solver) = {Stretch(Column::Interfaces)(595) + 5 * scale, 600, (solver + 3 * scale) / 165.0};
}

CRect CLayouter::Arranged(const CControlRow& row) const {
  CRect rect = row.m_Design;
  if (row.m_Kind == ControlKind::Panel && row.m_Parent == Control::Window) rect.h = m_iPanelBottom - rect.y;
  // Without the debug zone the tools below it move up, and the reset button grows into the row that is left.
  if (!m_Options.m_bDebugZone) {
    if (row.m_Control == Control::Select || row.m_Control == Control::Freeze) rect.y = RowOf(Control::Popup).m_Design.y;
    if (row.m_Control == Control::ResetImageView) rect = {rect.x, 493, rect.w, rect.Bottom() - 493};
  }
  if (m_Options.m_bPictureLoaded) {
    if (row.m_Control == Control::Recorder) rect.y = 500;
    if (row.m_Control == Control::Scissors) rect.y = 520;
  }
  return rect;
}

CRect CLayouter::View(Control control) const {
  const int half = m_Options.m_iWidth / 2;
  const int width = half - Scaled(3) - Scaled(2);
  const int left = control == Control::ImageView ? Scaled(2) : m_Options.m_iWidth - Scaled(2) - width;
  const int top = Scaled(kViewTop);
  const int line = m_Options.m_bCoordinates ? Scaled(kCoordinates) : 0;
  return {left, top, width, std::max(0, m_iViewBottom - line - top)};
}

CRect CLayouter::Coordinates() const {
  const CRect view = View(Control::ImageView);
  return {view.x, view.Bottom() + 1, m_Options.m_iWidth - 2 * view.x, std::max(0, m_iViewBottom - view.Bottom() - 1)};
}

CRect CLayouter::Bar(int top, int bottom) const { return {0, top, m_Options.m_iWidth, bottom - top}; }

CWindowLayout CLayouter::Layout() const {
  CWindowLayout layout;
  for (const CControlRow& row : kControls) {
    CRect& rect = layout.m_aRects[Index(row.m_Control)];
    if (row.m_Column != Column::Window) {
      const CRect design = Arranged(row);
      const CStretch& stretch = Stretch(row.m_Column);
      const int left = stretch(design.x);
      const int top = BelowViews(design.y);
      rect = {left, top, stretch(design.Right()) - left, BelowViews(design.Bottom()) - top};
    } else if (row.m_Control == Control::MenuBar) {
      rect = Bar(0, Scaled(row.m_Design.h));
    } else if (row.m_Control == Control::HelpLine) {
      const int top = m_iPanelBottom + row.m_Design.y - kPanelBottom;
      rect = Bar(BelowViews(top), BelowViews(top + row.m_Design.h));
    } else {
      rect = View(row.m_Control);
    }
  }
  if (m_Options.m_bCoordinates) layout.m_Coordinates = Coordinates();
  const CRect& reset = layout.Of(Control::ResetImageView);
  const CRect& design = RowOf(Control::ResetImageView).m_Design;
  layout.m_bRoomyReset = reset.w > Scaled(design.w) || reset.h > Scaled(design.h);
  return layout;
}

}  // namespace

CWindowLayout ComputeLayout(const CLayoutOptions& options) { return CLayouter(options).Layout(); }

CThreeParts SplitInThree(int length, float f1, float f2) {
  const std::array<double, 3> fractions{f1, f2, 1.0 - f1 - f2};
  CThreeParts parts{};
  std::array<double, 3> errors{};
  for (std::size_t k = 0; k < parts.size(); ++k) {
    const double exact = length * fractions[k];
    parts[k] = Rounded(exact);
    errors[k] = parts[k] - exact;
  }
  CorrectSplit(parts, errors, length);
  return parts;
}

void CorrectSplit(CThreeParts& parts, const std::array<double, 3>& errors, int length) {
  const int sum = parts[0] + parts[1] + parts[2];
  if (sum > length) {
    const auto* const most = std::max_element(errors.begin(), errors.end());
    if (*most >= 0) {
      --parts[static_cast<std::size_t>(most - errors.begin())];
    } else {
      Console() << "Erreur de repartition sum > t\n";
    }
  } else if (sum < length) {
    const auto* const least = std::min_element(errors.begin(), errors.end());
    if (*least <= 0) {
      ++parts[static_cast<std::size_t>(least - errors.begin())];
    } else {
      Console() << "Erreur de repartition sum < t\n";
    }
  }
}
