#include "support/gui/CRelievo.h"

#include <fstream>
#include <stdexcept>
#include <utility>

#include "support/gui/WaitUntil.h"

CRelievo::CRelievo()
    : m_Output(m_OutputDirectory.Path() / "console"), m_Process({RELIEVO_PROGRAM}, m_Directory.Path(), m_Output) {
  const std::optional<WindowId> window = WaitForWindow(kTitle);
  if (!window.has_value()) {
    std::string message = "no main window appeared; the program wrote:";
    for (const std::string& line : ConsoleLines()) message += "\n  " + line;
    throw std::runtime_error(message);
  }
  m_uMainWindow = *window;
}

std::vector<WindowId> CRelievo::Views() const {
  std::vector<WindowId> views = m_Screen.WindowsIn(m_uMainWindow);
  if (views.size() != 2) return {};
  if (m_Screen.AreaOf(views[0]).m_iX > m_Screen.AreaOf(views[1]).m_iX) std::swap(views[0], views[1]);
  return views;
}

std::vector<CArea> CRelievo::ViewAreas() const {
  const CArea main = MainArea();
  std::vector<CArea> areas;
  for (const WindowId view : Views()) {
    CArea area = m_Screen.AreaOf(view);
    area.m_iX -= main.m_iX;
    area.m_iY -= main.m_iY;
    areas.push_back(area);
  }
  return areas;
}

std::optional<WindowId> CRelievo::WaitForWindow(const std::string& title) {
  std::optional<WindowId> window;
  WaitUntil([&] {
    window = m_Screen.FindWindow(m_Process.Pid(), title);
    return window.has_value() || !IsRunning();
  });
  return window;
}

std::vector<std::string> CRelievo::ConsoleLines() const {
  std::ifstream file(m_Output);
  std::vector<std::string> lines;
  for (std::string line; std::getline(file, line) && !file.eof();) lines.push_back(line);
  return lines;
}
