#pragma once

#include <cstddef>

#include <FL/Fl_Group.H>

class Fl_Button;
class Fl_Output;
class Fl_Spinner;
class Fl_Value_Slider;
class ReferenceCommands;

/// The part of the panel of the reference depth in which tears are suggested, taken and dropped.
class CTearFields : public Fl_Group {
 public:
  static constexpr int kHeight = 116;

  /// From `y` on in the panel; the commands must outlive the object.
  CTearFields(int y, ReferenceCommands& commands);

  /// What has been suggested.
  struct CState {
    bool m_bPossible = false;  ///< there is a map
    bool m_bShown = false;     ///< tears have been suggested, be it none, and neither taken nor dropped
    std::size_t m_uSuggested = 0;
    std::size_t m_uTaken = 0;
    bool operator==(const CState&) const = default;
  };
  void Show(const CState& state);

 private:
  void Suggest();
  static void cb_Wishes(Fl_Widget* widget, void* fields);
  static void cb_Suggest(Fl_Widget* widget, void* fields);
  static void cb_Take(Fl_Widget* widget, void* fields);
  static void cb_Drop(Fl_Widget* widget, void* fields);

  ReferenceCommands& m_Commands;
  bool m_bShown = false;
  Fl_Value_Slider* m_pShare;
  Fl_Spinner* m_pCount;
  Fl_Button* m_pSuggest;
  Fl_Button* m_pTake;
  Fl_Button* m_pDrop;
  Fl_Output* m_pNumber;
};
