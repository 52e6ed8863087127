#include "support/gui/CHabits.h"

#include <array>
#include <vector>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>

#include "support/gui/CMonkey.h"
#include "ui/imageview/CImageView.h"
#include "ui/modelview/CGridView.h"
#include "ui/window/CImageViewUI.h"

namespace {

constexpr std::array kPressed{Control::PositionConstraint,
                              Control::NormalConstraint,
                              Control::CurveConstraint,
                              Control::CurveConstraint,
                              Control::CurveConstraint,
                              Control::PositionDiscontinuity,
                              Control::NormalDiscontinuity,
                              Control::FairnessConstraint,
                              Control::Select,
                              Control::SwitchResolution,
                              Control::ResumeSolver,
                              Control::ResumeSolver,
                              Control::Freeze,
                              Control::ResetImageView,
                              Control::ResetModelView};
constexpr std::array kTools{Control::LightSources, Control::Recorder, Control::Scissors};

struct CKeyStroke {
  int m_iKey;
  int m_iModifiers;
  const char* m_pText;
};
constexpr std::array kPictureKeys{CKeyStroke{FL_Enter, 0, "\r"},
                                  CKeyStroke{FL_Enter, 0, "\r"},
                                  CKeyStroke{FL_Enter, FL_SHIFT, "\r"},
                                  CKeyStroke{'p', 0, "p"},
                                  CKeyStroke{'n', 0, "n"},
                                  CKeyStroke{'f', 0, "f"},
                                  CKeyStroke{FL_Tab, 0, "\t"},
                                  CKeyStroke{FL_Tab, FL_SHIFT, "\t"},
                                  CKeyStroke{FL_Delete, 0, ""},
                                  CKeyStroke{'=', 0, "="},
                                  CKeyStroke{'-', 0, "-"},
                                  CKeyStroke{FL_BackSpace, 0, "\b"},
                                  CKeyStroke{'z', FL_CTRL, "\032"},
                                  CKeyStroke{'z', FL_CTRL, "\032"},
                                  CKeyStroke{'z', FL_CTRL | FL_SHIFT, "\032"},
                                  CKeyStroke{'y', FL_CTRL, "\031"}};
constexpr std::array kScissorsKeys{CKeyStroke{'z', FL_CTRL, "\032"},    CKeyStroke{FL_Enter, 0, "\r"},
                                   CKeyStroke{FL_Enter, FL_CTRL, "\r"}, CKeyStroke{'=', FL_CTRL, "="},
                                   CKeyStroke{'-', FL_CTRL, "-"},       CKeyStroke{FL_BackSpace, 0, "\b"}};

bool IsTool(const Fl_Window& window, const Fl_Window& main) {
  return &window != &main && window.parent() == nullptr && window.border() != 0 && window.modal() == 0;
}

void CollectButtons(Fl_Group& group, std::vector<Fl_Button*>& buttons) {
  for (int k = 0; k < group.children(); ++k) {
    Fl_Widget* child = group.child(k);
    if (auto* button = dynamic_cast<Fl_Button*>(child); button != nullptr && button->active_r() != 0)
      buttons.push_back(button);
    if (child->as_group() != nullptr) CollectButtons(*child->as_group(), buttons);
  }
}

}  // namespace

void CHabits::Act() {
  switch (m_Monkey.Below(16)) {
    case 0:
    case 1:
    case 2:
    case 3:
      return StrokeOnPicture(FL_LEFT_MOUSE);
    case 4:
      return StrokeOnPicture(1 + m_Monkey.Below(3));
    case 5:
      return StrokeAnywhere(m_Window.GridView(), 1 + m_Monkey.Below(3));
    case 6:
    case 7:
    case 8:
      return TypeAtPicture();
    case 9:
    case 10:
      return PressControl();
    case 11:
      return ResizeWindow();
    default:
      return UseTool();
  }
}

void CHabits::StrokeAnywhere(Fl_Window& window, int button) {
  m_Monkey.Stroke(window, m_Monkey.Below(window.w()), m_Monkey.Below(window.h()), button);
}

// Often where a stroke has begun before: what was made there can be taken hold of.
void CHabits::StrokeOnPicture(int button) {
  constexpr std::size_t kPlaces = 12;
  CImageView& view = m_Window.ImageView();
  const CPixel place = m_aPlaces.size() == kPlaces && m_Monkey.OneIn(2)
                           ? m_Monkey.OneOf(m_aPlaces)
                           : CPixel{m_Monkey.Below(view.w()), m_Monkey.Below(view.h())};
  if (m_aPlaces.size() == kPlaces) m_aPlaces.erase(m_aPlaces.begin());
  m_aPlaces.push_back(place);
  m_Monkey.Stroke(view, place.m_iX, place.m_iY, button);
}

void CHabits::TypeAtPicture() {
  const CKeyStroke& stroke = m_Monkey.OneOf(kPictureKeys);
  m_Window.ImageView().take_focus();
  m_Monkey.TypeKey(m_Window.ImageView(), stroke.m_iKey, stroke.m_iModifiers, stroke.m_pText);
}

void CHabits::PressControl() { m_Monkey.Press(m_Window.Widget(m_Monkey.OneOf(kPressed))); }

// As if the frame of the window had been dragged; the window manager holds it to its limits.
void CHabits::ResizeWindow() {
  constexpr int kLeastSide = 160;
  constexpr int kRange = 300;
  Fl_Window* tool = SomeTool();
  if (tool != nullptr && tool->resizable() != nullptr && m_Monkey.OneIn(2)) {
    tool->size(kLeastSide + m_Monkey.Below(kRange), kLeastSide + m_Monkey.Below(kRange));
  } else {
    m_Window.size(kMinDesignWidth + m_Monkey.Below(kRange), kMinDesignHeight + m_Monkey.Below(kRange));
  }
}

void CHabits::UseTool() {
  Fl_Window* tool = SomeTool();
  if (tool == nullptr || m_Monkey.OneIn(16)) return m_Monkey.Press(m_Window.Widget(m_Monkey.OneOf(kTools)));
  UseToolWindow(*tool);
}

void CHabits::UseToolWindow(Fl_Window& tool) {
  std::vector<Fl_Button*> buttons;
  CollectButtons(tool, buttons);
  if (!buttons.empty() && m_Monkey.OneIn(4)) return StrokeAnywhere(tool, FL_LEFT_MOUSE);
  if (!buttons.empty()) return m_Monkey.Press(*m_Monkey.OneOf(buttons));
  // The scissors, whose canvas is a window of its own.
  Fl_Window* canvas = tool.children() > 0 ? tool.child(0)->as_window() : nullptr;
  if (canvas == nullptr) return StrokeAnywhere(tool, FL_LEFT_MOUSE);
  if (m_Monkey.OneIn(2)) return StrokeAnywhere(*canvas, FL_LEFT_MOUSE);
  const CKeyStroke& stroke = m_Monkey.OneOf(kScissorsKeys);
  canvas->take_focus();
  m_Monkey.TypeKey(*canvas, stroke.m_iKey, stroke.m_iModifiers, stroke.m_pText);
}

void CHabits::CloseTools() {
  for (Fl_Window* tool = SomeTool(); tool != nullptr; tool = SomeTool()) tool->do_callback();
}

Fl_Window* CHabits::SomeTool() {
  std::vector<Fl_Window*> tools;
  for (Fl_Window* w = Fl::first_window(); w != nullptr; w = Fl::next_window(w)) {
    if (IsTool(*w, m_Window)) tools.push_back(w);
  }
  return tools.empty() ? nullptr : m_Monkey.OneOf(tools);
}
