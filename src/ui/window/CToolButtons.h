#pragma once

#include <array>
#include <functional>
#include <memory>
#include <optional>

#include "ui/seams/ToolWindow.h"
#include "ui/window/Controls.h"

class CControlSet;

/// The tools whose windows the buttons of "Interfaces" or the menu open and close, and the lamps of these buttons.
class CToolButtons {
 public:
  /// In the order of their buttons, then those of the menu.
  enum class Tool {
    LightSources,
    Recorder,
    Scissors,
    ReferenceDepth,
    ConstraintValues,
    ConstraintReport,
    Keys,
    HeightsAlongCurve
  };
  static constexpr std::array kTools{Tool::LightSources,   Tool::Recorder,         Tool::Scissors,
                                     Tool::ReferenceDepth, Tool::ConstraintValues, Tool::ConstraintReport,
                                     Tool::Keys,           Tool::HeightsAlongCurve};

  /// The controls must outlive the object.
  explicit CToolButtons(CControlSet& controls) : m_Controls(controls) {}

  /// The button that opens the tool's window; nothing for those of the menu.
  static std::optional<Control> ButtonOf(Tool tool);

  /// Takes over the window of a tool, or none. `closed` is called once it has closed, no matter what closed it.
  void Set(Tool tool, std::unique_ptr<ToolWindow> window, const std::function<void()>& closed);
  bool Has(Tool tool) const { return At(tool) != nullptr; }
  bool IsOpen(Tool tool) const { return Has(tool) && At(tool)->IsOpen(); }
  /// The tool must be there.
  void Open(Tool tool);
  void Close(Tool tool);

  // For all of them.
  /// Each window is told, open or not.
  void PictureLoaded();
  void GridReplaced();
  void AddTo(CProject& project) const;
  void TakeFrom(const CProject& project);

 private:
  using Window = std::unique_ptr<ToolWindow>;
  const Window& At(Tool tool) const { return m_apWindows[static_cast<std::size_t>(tool)]; }
  void ShowLamp(Tool tool, bool on);

  CControlSet& m_Controls;
  std::array<Window, kTools.size()> m_apWindows;
};
