#pragma once

#include <FL/Fl_Value_Slider.H>

/// A horizontal slider with its number on the left, whose room grows with the size of the number's text: the toolkit
/// gives it 35 pixels, and cuts off what is larger.
class CValueSlider : public Fl_Value_Slider {
 public:
  using Fl_Value_Slider::Fl_Value_Slider;

  int handle(int event) override;

 protected:
  void draw() override;

 private:
  int NumberWidth() const;
  /// Where the knob runs begins here, and so wide it is.
  int TrackLeft() const;
  int TrackWidth() const;
};
