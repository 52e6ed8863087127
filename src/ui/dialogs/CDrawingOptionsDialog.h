#pragma once

#include <array>
#include <cstddef>

#include <FL/Fl_Double_Window.H>

#include "drawing/DrawingSettings.h"

class Fl_Button;
class Fl_Value_Slider;
class ViewHost;

/// "Advanced drawing options": sizes, thicknesses and colours of what the two views draw. Every change takes effect
/// when it is made; "OK" and "Cancel" only hide the dialog.
class CDrawingOptionsDialog : public Fl_Double_Window {
 public:
  /// Hidden at first. `settings`, `views` and `mainWindow` must outlive the dialog.
  CDrawingOptionsDialog(CDrawingSettings& settings, ViewHost& views, const Fl_Window& mainWindow);

  /// Shows the dialog with the settings as they are now.
  void Open();
  /// Brings every slider and colour button up to date with the settings.
  void Refresh();

 private:
  static constexpr std::size_t kSlidersPerView = 7;
  static constexpr std::size_t kColours = 8;

  /// A widget and the dialog it belongs to; what it changes is in the row of the same number in the source's tables.
  struct CSliderSlot {
    CDrawingOptionsDialog* m_pDialog = nullptr;
    CViewDrawing* m_pView = nullptr;
    std::size_t m_uRow = 0;
    Fl_Value_Slider* m_pSlider = nullptr;
  };
  struct CColourSlot {
    CDrawingOptionsDialog* m_pDialog = nullptr;
    std::size_t m_uRow = 0;
    Fl_Button* m_pButton = nullptr;
  };

  void BuildColumn(CViewDrawing& view, int left, int width);
  void BuildColours();
  void BuildColourGroup(const char* label, int left, std::size_t first, std::size_t count);
  void BuildButtons();
  CSliderSlot& SlotOf(const CViewDrawing& view, std::size_t row);
  bool IsModelView(const CViewDrawing& view) const { return &view == &m_Settings.m_ModelView; }
  /// All four at once, whichever of their sliders has moved.
  void TakeNormalThicknesses();

  static void cb_Slider(Fl_Widget* widget, void* slot);
  static void cb_Colour(Fl_Widget* widget, void* slot);
  static void cb_Close(Fl_Widget* widget, void* dialog);

  CDrawingSettings& m_Settings;
  ViewHost& m_Views;
  const Fl_Window& m_MainWindow;
  std::array<CSliderSlot, 2 * kSlidersPerView> m_aSliders;
  std::array<CColourSlot, kColours> m_aColours;
};
