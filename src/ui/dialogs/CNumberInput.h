#pragma once

#include <optional>
#include <string>

#include <FL/Fl_Value_Input.H>

/// An input for one number whose text can be checked before it is used.
///
/// The toolkit's own input takes an empty or half-written number for some number, and shows six digits of a preset, so
/// that a preset which is read back has changed.
class CNumberInput : public Fl_Value_Input {
 public:
  using Fl_Value_Input::Fl_Value_Input;

  /// Shows `number`, which is then the exact number of the input while its text stays the same.
  void Preset(double number);
  /// The number in the input; none if its text is no finite number. The decimal sign is the point under every locale.
  std::optional<double> Number() const;

 private:
  double m_fPreset = 0;
  std::string m_sPresetText;
};
