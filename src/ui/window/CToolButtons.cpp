#include "ui/window/CToolButtons.h"

#include <utility>

#include <FL/Fl_Button.H>

#include "ui/window/CControlSet.h"

std::optional<Control> CToolButtons::ButtonOf(Tool tool) {
  constexpr std::array kButtons{Control::LightSources, Control::Recorder, Control::Scissors};
  const auto index = static_cast<std::size_t>(tool);
  return index < kButtons.size() ? std::optional(kButtons[index]) : std::nullopt;
}

void CToolButtons::Set(Tool tool, std::unique_ptr<ToolWindow> window, const std::function<void()>& closed) {
  if (window != nullptr) {
    window->OnClosed([this, tool, closed] {
      ShowLamp(tool, false);
      closed();
    });
  }
  m_apWindows[static_cast<std::size_t>(tool)] = std::move(window);
}

void CToolButtons::Open(Tool tool) {
  At(tool)->Open();
  ShowLamp(tool, IsOpen(tool));
}

void CToolButtons::Close(Tool tool) {
  At(tool)->Close();
  ShowLamp(tool, IsOpen(tool));
}

void CToolButtons::PictureLoaded() {
  for (const Window& window : m_apWindows) {
    if (window != nullptr) window->PictureLoaded();
  }
}

void CToolButtons::GridReplaced() {
  for (const Window& window : m_apWindows) {
    if (window != nullptr) window->GridReplaced();
  }
}

void CToolButtons::AddTo(CProject& project) const {
  for (const Window& window : m_apWindows) {
    if (window != nullptr) window->AddTo(project);
  }
}

void CToolButtons::TakeFrom(const CProject& project) {
  for (const Window& window : m_apWindows) {
    if (window != nullptr) window->TakeFrom(project);
  }
}

void CToolButtons::ShowLamp(Tool tool, bool on) {
  const std::optional<Control> button = ButtonOf(tool);
  if (!button.has_value()) return;
  m_Controls.Button(*button).value(on ? 1 : 0);
  // Until a picture is loaded one button lies over another and has to be drawn after it.
  m_Controls.Widget(Control::Interfaces).redraw();
}
