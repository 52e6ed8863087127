#pragma once

#include <functional>
#include <optional>
#include <string>
#include <utility>

#include <FL/Fl_Input.H>

/// A field for one number of something that lives elsewhere: what is typed counts once Return ends it or the field is
/// left, the up and down keys and the wheel go in steps, and Escape brings the old text back.
class CValueField : public Fl_Input {
 public:
  /// What the field does with a number that was typed, and with steps, ten at a time where Shift is held; each answers
  /// with nothing or with the reason why not. Rubbish counts as typed nothing.
  struct CActions {
    std::function<std::string(const std::optional<double>& number)> m_Typed;
    std::function<std::string(double steps)> m_Stepped;
    std::function<void(const std::string& refusal)> m_Tell;  ///< after each of them, empty where all is well
  };

  /// Place and size in the window, screen pixels, with the label on its left.
  CValueField(int x, int y, int w, int h, const char* label);
  /// To be set before the field is used.
  void SetActions(CActions actions) { m_Actions = std::move(actions); }

  /// Shows the number as `text`. A text that is being typed stays while the number has the same one.
  void Show(const std::string& text);

  /// What has been typed and does not count yet, in whose place the old text comes back; nothing where nothing has.
  std::optional<std::string> TakeTyped();

  int handle(int event) override;

 private:
  void Commit();
  bool HandleKey();
  bool StepBy(double steps);
  static void cb_Field(Fl_Widget* widget, void* data);

  CActions m_Actions;
  std::string m_Shown;  ///< as the field wrote it last
};
