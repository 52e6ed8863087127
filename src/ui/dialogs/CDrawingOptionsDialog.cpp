#include "ui/dialogs/CDrawingOptionsDialog.h"

#include <algorithm>

#include <FL/Fl_Button.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Return_Button.H>

#include "ui/drawing/CValueSlider.h"
#include "ui/drawing/ColourChoice.h"
#include "ui/drawing/DialogPlacement.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/seams/ViewHost.h"

namespace {

enum class Redraw { OwnView, ImageView, BothViews };

struct CSliderRow {
  const char* m_pLabel;
  int m_iTop;
  double m_fMinimum;
  double m_fMaximum;
  double m_fBuilt;  ///< before the dialog is first opened
  float CViewDrawing::*m_pSetting;
  Redraw m_Redraw;
};

constexpr std::size_t kRowsPerView = 7;
constexpr std::size_t kUnselectedNormal = 1;
constexpr std::size_t kSelectedNormal = 2;

// The blanks in the labels break their lines. The thicknesses of position constraints run from 8 down to 1.
constexpr std::array<CSliderRow, kRowsPerView> kImageRows{{
    {"Adjust the thickness of grid lines                  (2d view)", 30, 1, 5, 1.0, &CViewDrawing::m_fGridThickness,
     Redraw::OwnView},
    {"Adjust the thickness of an unselected normal constraint", 114, 1.3, 8, 5,
     &CViewDrawing::m_fUnselectedNormalThickness, Redraw::BothViews},
    {"Adjust the thickness of a selected    normal constraint", 174, 1.3, 8, 5,
     &CViewDrawing::m_fSelectedNormalThickness, Redraw::BothViews},
    {"Adjust the radius of a normal constraint", 234, 0.5, 5, 1.5, &CViewDrawing::m_fNormalRadius, Redraw::OwnView},
    {"Adjust the size of a position constraint", 316, 0.5, 8, 1.5, &CViewDrawing::m_fPositionSize, Redraw::ImageView},
    {"Adjust the thickness of an unselected position constraint", 376, 8, 1, 1.5,
     &CViewDrawing::m_fUnselectedPositionThickness, Redraw::OwnView},
    {"Adjust the thickness of a highlighted position constraint", 436, 8, 1, 1.5,
     &CViewDrawing::m_fHighlightedPositionThickness, Redraw::OwnView},
}};

constexpr std::array<CSliderRow, kRowsPerView> kModelRows{{
    {"Adjust the thickness of grid lines           (3d view)", 30, 0.5, 6, 1.3, &CViewDrawing::m_fGridThickness,
     Redraw::OwnView},
    {"Adjust the thickness of an unselected normal constraint", 114, 1.3, 8, 5,
     &CViewDrawing::m_fUnselectedNormalThickness, Redraw::BothViews},
    {"Adjust the thickness of a selected     normal constraint", 174, 1.3, 8, 5,
     &CViewDrawing::m_fSelectedNormalThickness, Redraw::BothViews},
    {"Adjust the radius of a normal constraint", 234, 1, 10, 1.5, &CViewDrawing::m_fNormalRadius, Redraw::OwnView},
    {"Adjust the size of a position constraint", 316, 0.5, 8, 1.5, &CViewDrawing::m_fPositionSize, Redraw::ImageView},
    {"Adjust the thickness of an unselected position constraint", 376, 8, 1, 1.5,
     &CViewDrawing::m_fUnselectedPositionThickness, Redraw::OwnView},
    {"Adjust the thickness of a highlighted position constraint", 436, 8, 1, 1.5,
     &CViewDrawing::m_fHighlightedPositionThickness, Redraw::OwnView},
}};

struct CColourRow {
  const char* m_pLabel;
  const char* m_pTitle;  ///< of the colour chooser
  CColour (*m_pGet)(const CDrawingSettings& settings);
  void (*m_pSet)(CDrawingSettings& settings, const CColour& colour);
  bool m_bRedrawsImageView;
  bool m_bRedrawsModelView;
};

template <CConstraintColours CDrawingSettings::*kKind, CColour CConstraintColours::*kState>
constexpr CColourRow ConstraintColour(const char* label) {
  return {label,
          "Unselected postition constraint",
          [](const CDrawingSettings& settings) { return settings.*kKind.*kState; },
          [](CDrawingSettings& settings, const CColour& colour) { settings.*kKind.*kState = colour; },
          true,
          false};
}

CColour Background(const CDrawingSettings& settings) {
  const auto& rgba = settings.m_afBackground;
  return {rgba[0], rgba[1], rgba[2]};
}

void SetBackground(CDrawingSettings& settings, const CColour& colour) {
  std::ranges::transform(colour, settings.m_afBackground.begin(),
                         [](double channel) { return static_cast<float>(channel); });
  settings.m_afBackground[3] = 0;
}

using Settings = CDrawingSettings;
using Colours = CConstraintColours;

constexpr std::array<CColourRow, 8> kColourRows{{
    ConstraintColour<&Settings::m_PositionColours, &Colours::m_Unselected>("Unselected"),
    ConstraintColour<&Settings::m_PositionColours, &Colours::m_Highlighted>("Highlighted"),
    ConstraintColour<&Settings::m_PositionColours, &Colours::m_Selected>("Selected"),
    ConstraintColour<&Settings::m_NormalColours, &Colours::m_Unselected>("Unselected"),
    ConstraintColour<&Settings::m_NormalColours, &Colours::m_Highlighted>("Highlighted"),
    ConstraintColour<&Settings::m_NormalColours, &Colours::m_Selected>("Selected"),
    {"Background Color", "Background color", Background, SetBackground, true, true},
    {"Grey Grid Color", "Grey Grid Color", [](const Settings& settings) { return settings.m_GreyGrid; },
     [](Settings& settings, const CColour& colour) { settings.m_GreyGrid = colour; }, false, true},
}};

const CSliderRow& RowOf(bool modelView, std::size_t row) { return modelView ? kModelRows[row] : kImageRows[row]; }

Fl_Group* BeginFrame(int x, int y, int w, int h, const char* label) {
  auto* group = new Fl_Group(x, y, w, h, label);
  group->box(FL_ENGRAVED_FRAME);
  group->labelsize(12);
  return group;
}

}  // namespace

CDrawingOptionsDialog::CDrawingOptionsDialog(CDrawingSettings& settings, ViewHost& views, const Fl_Window& mainWindow)
    : Fl_Double_Window(570, 730, "Advanced drawing options"),
      m_Settings(settings),
      m_Views(views),
      m_MainWindow(mainWindow) {
  BuildColumn(m_Settings.m_ImageView, 2, 256);
  BuildColumn(m_Settings.m_ModelView, 260, 308);
  BuildColours();
  BuildButtons();
  end();
  ScaleWidgets(*this);
  set_non_modal();
}

void CDrawingOptionsDialog::BuildColumn(CViewDrawing& view, int left, int width) {
  constexpr int kSliderWidth = 205;
  constexpr int kSliderHeight = 25;
  const bool modelView = IsModelView(view);
  Fl_Group* column = BeginFrame(left, 22, width, 478, modelView ? "3D view (right)" : "2D view (left)");
  column->labelfont(FL_HELVETICA_BOLD);
  BeginFrame(left + 6, 108, width - 12, 184, "Normal Constraints")->end();
  BeginFrame(left + 6, 310, width - 12, 184, "Position Constraints")->end();
  for (std::size_t k = 0; k < kSlidersPerView; ++k) {
    const CSliderRow& row = RowOf(modelView, k);
    auto* slider =
        new CValueSlider(left + (width - kSliderWidth) / 2, row.m_iTop, kSliderWidth, kSliderHeight, row.m_pLabel);
    slider->type(FL_HOR_NICE_SLIDER);
    slider->box(FL_FLAT_BOX);
    slider->labelsize(11);
    slider->align(FL_ALIGN_BOTTOM | FL_ALIGN_WRAP);
    slider->step(0.01);
    slider->bounds(row.m_fMinimum, row.m_fMaximum);
    slider->value(row.m_fBuilt);
    CSliderSlot& slot = SlotOf(view, k);
    slot = {this, &view, k, slider};
    slider->callback(cb_Slider, &slot);
  }
  column->end();
}

void CDrawingOptionsDialog::BuildColours() {
  Fl_Group* section = BeginFrame(2, 522, 566, 150, "Changing the colors");
  section->labelfont(FL_HELVETICA_BOLD);
  BuildColourGroup("Position Constraints Colors", 8, 0, 3);
  BuildColourGroup("Normal Constraints Colors", 196, 3, 3);
  BuildColourGroup("Grid Colors", 384, 6, 2);
  section->end();
}

void CDrawingOptionsDialog::BuildColourGroup(const char* label, int left, std::size_t first, std::size_t count) {
  constexpr int kTop = 546;
  constexpr int kSpacing = 38;
  Fl_Group* group = BeginFrame(left, kTop, 178, 120, label);
  for (std::size_t k = 0; k < count; ++k) {
    CColourSlot& slot = m_aColours[first + k];
    auto* button =
        new Fl_Button(left + 10, kTop + 8 + kSpacing * static_cast<int>(k), 44, 28, kColourRows[first + k].m_pLabel);
    // Beside the colour, where every label can be read.
    button->align(FL_ALIGN_RIGHT);
    button->labelsize(12);
    slot = {this, first + k, button};
    button->callback(cb_Colour, &slot);
  }
  group->end();
}

void CDrawingOptionsDialog::BuildButtons() {
  Fl_Button* ok = new Fl_Return_Button(170, 686, 105, 30, "OK");
  auto* cancel = new Fl_Button(295, 686, 105, 30, "Cancel");
  for (Fl_Button* button : {ok, cancel}) {
    button->callback(cb_Close, this);
    add(button);
  }
}

CDrawingOptionsDialog::CSliderSlot& CDrawingOptionsDialog::SlotOf(const CViewDrawing& view, std::size_t row) {
  return m_aSliders[(IsModelView(view) ? kSlidersPerView : 0) + row];
}

void CDrawingOptionsDialog::Open() {
  Refresh();
  OpenBeside(*this, m_MainWindow);
}

void CDrawingOptionsDialog::Refresh() {
  for (const CSliderSlot& slot : m_aSliders) {
    slot.m_pSlider->value(slot.m_pView->*RowOf(IsModelView(*slot.m_pView), slot.m_uRow).m_pSetting);
  }
  for (const CColourSlot& slot : m_aColours) {
    const Fl_Color colour = NearestCubeColour(kColourRows[slot.m_uRow].m_pGet(m_Settings));
    slot.m_pButton->color(colour, colour);
    slot.m_pButton->redraw();
  }
}

void CDrawingOptionsDialog::TakeNormalThicknesses() {
  for (CViewDrawing* view : {&m_Settings.m_ImageView, &m_Settings.m_ModelView}) {
    view->m_fUnselectedNormalThickness = static_cast<float>(SlotOf(*view, kUnselectedNormal).m_pSlider->value());
    view->m_fSelectedNormalThickness = static_cast<float>(SlotOf(*view, kSelectedNormal).m_pSlider->value());
  }
}

void CDrawingOptionsDialog::cb_Slider(Fl_Widget* /*widget*/, void* slot) {
  const auto& moved = *static_cast<const CSliderSlot*>(slot);
  CDrawingOptionsDialog& dialog = *moved.m_pDialog;
  const bool modelView = dialog.IsModelView(*moved.m_pView);
  const CSliderRow& row = RowOf(modelView, moved.m_uRow);
  if (moved.m_uRow == kUnselectedNormal || moved.m_uRow == kSelectedNormal) {
    dialog.TakeNormalThicknesses();
  } else {
    moved.m_pView->*row.m_pSetting = static_cast<float>(moved.m_pSlider->value());
  }
  const bool both = row.m_Redraw == Redraw::BothViews;
  const bool own = row.m_Redraw == Redraw::OwnView;
  if (both || row.m_Redraw == Redraw::ImageView || (own && !modelView)) dialog.m_Views.RedrawImageView();
  if (both || (own && modelView)) dialog.m_Views.RedrawModelView();
}

void CDrawingOptionsDialog::cb_Colour(Fl_Widget* /*widget*/, void* slot) {
  const auto& pressed = *static_cast<const CColourSlot*>(slot);
  CDrawingOptionsDialog& dialog = *pressed.m_pDialog;
  const CColourRow& row = kColourRows[pressed.m_uRow];
  CColour colour = row.m_pGet(dialog.m_Settings);
  if (!ChooseColour(row.m_pTitle, colour)) return;
  row.m_pSet(dialog.m_Settings, colour);
  dialog.Refresh();
  if (row.m_bRedrawsImageView) dialog.m_Views.RedrawImageView();
  if (row.m_bRedrawsModelView) dialog.m_Views.RedrawModelView();
}

void CDrawingOptionsDialog::cb_Close(Fl_Widget* /*widget*/, void* dialog) {
  static_cast<CDrawingOptionsDialog*>(dialog)->hide();
}
