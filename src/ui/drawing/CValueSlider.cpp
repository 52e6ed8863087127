#include "ui/drawing/CValueSlider.h"

#include <array>

#include <FL/Fl.H>
#include <FL/fl_draw.H>

namespace {

// Of the toolkit: the room for a number, and the size of text that it is meant for.
constexpr int kRoom = 35;
constexpr int kTextSize = 10;

}  // namespace

int CValueSlider::NumberWidth() const { return kRoom * textsize() / kTextSize; }

int CValueSlider::TrackLeft() const { return x() + NumberWidth() + Fl::box_dx(box()); }

int CValueSlider::TrackWidth() const { return w() - NumberWidth() - Fl::box_dw(box()); }

void CValueSlider::draw() {
  const int width = NumberWidth();
  if ((damage() & FL_DAMAGE_ALL) != 0) draw_box(box(), x() + width, y(), w() - width, h(), color());
  Fl_Slider::draw(TrackLeft(), y() + Fl::box_dy(box()), TrackWidth(), h() - Fl::box_dh(box()));
  draw_box(box(), x(), y(), width, h(), color());
  // As many as the toolkit itself has for it.
  std::array<char, 128> text{};
  format(text.data());
  fl_font(textfont(), textsize());
  fl_color(active_r() != 0 ? textcolor() : fl_inactive(textcolor()));
  fl_draw(text.data(), x(), y(), width, h(), FL_ALIGN_CLIP);
}

int CValueSlider::handle(int event) {
  if (event == FL_PUSH && Fl::visible_focus() != 0) {
    Fl::focus(this);
    redraw();
  }
  return Fl_Slider::handle(event, TrackLeft(), y() + Fl::box_dy(box()), TrackWidth(), h() - Fl::box_dh(box()));
}
