#pragma once

#include <FL/Fl_Value_Output.H>

/// A read-out whose number always fits it: of a fraction as many digits are shown as there is room for, at most six;
/// a whole number is shown whole, in smaller figures where it has to be.
class CNumberOutput : public Fl_Value_Output {
 public:
  using Fl_Value_Output::Fl_Value_Output;

  /// Room for 128 characters.
  int format(char* text) override;

 protected:
  void draw() override;

 private:
  bool Fits(const char* text, Fl_Fontsize size) const;
};
