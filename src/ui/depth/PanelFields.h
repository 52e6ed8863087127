#pragma once

#include <string_view>

#include <FL/Fl_Output.H>

// What the parts of the panel of the reference depth have in common; pixels of the design.
namespace PanelField {
inline constexpr int kPanelWidth = 390;
inline constexpr int kLeft = 140;
inline constexpr int kWidth = 230;
inline constexpr int kHalfWidth = 110;
inline constexpr int kThirdWidth = 72;
inline constexpr int kHeight = 24;
inline constexpr int kButtonHeight = 26;
inline constexpr int kRow = 30;  ///< from one field to the next
}  // namespace PanelField

/// A field with its label to the left of it.
template <class Widget>
Widget* AddField(int y, int width, const char* label) {
  auto* widget = new Widget(PanelField::kLeft, y, width, PanelField::kHeight, label);
  widget->align(FL_ALIGN_LEFT);
  widget->labelsize(12);
  widget->textsize(12);
  return widget;
}

/// One that the user only reads.
inline Fl_Output* AddReadOut(int y, int width, const char* label) {
  auto* output = AddField<Fl_Output>(y, width, label);
  output->color(FL_BACKGROUND_COLOR);
  output->clear_visible_focus();
  return output;
}

/// Whether the user may do something with it.
inline void SetActive(Fl_Widget& widget, bool active) {
  if (active) {
    widget.activate();
  } else {
    widget.deactivate();
  }
}

/// The same text is not drawn again.
inline void ShowText(Fl_Output& output, const char* text) {
  if (std::string_view(output.value()) != text) output.value(text);
}
