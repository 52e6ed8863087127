#include "support/gui/CRelievo.h"

#include <algorithm>
#include <fstream>
#include <stdexcept>
#include <thread>
#include <utility>

#include "support/gui/WaitUntil.h"

namespace {

std::vector<std::string> Command(const std::vector<std::string>& arguments, const std::filesystem::path& state) {
  std::vector<std::string> command{"env", "XDG_STATE_HOME=" + state.native(),
                                   "XDG_CONFIG_HOME=" + (state / "config").native(), RELIEVO_PROGRAM};
  command.insert(command.end(), arguments.begin(), arguments.end());
  return command;
}

}  // namespace

CRelievo::CRelievo(const std::vector<std::string>& arguments, const std::filesystem::path& state)
    : m_Output(m_OutputDirectory.Path() / "console"),
      m_Process(Command(arguments, state.empty() ? m_OutputDirectory.Path() / "state" : state), m_Directory.Path(),
                m_Output) {
  m_uMainWindow = WaitForWindow(kTitle).value_or(0);
  if (WaitUntil([this] { return IsReady() || !IsRunning(); }) && IsRunning()) return;
  std::string message = "the main window did not come up; the program wrote:";
  for (const std::string& line : ConsoleLines()) message += "\n  " + line;
  throw std::runtime_error(message);
}

bool CRelievo::HasKeyboard() const {
  const std::vector<WindowId> windows = m_Screen.WindowsOf(Pid());
  return std::any_of(windows.begin(), windows.end(), [this](WindowId window) { return m_Screen.HasFocus(window); });
}

// Drawing comes after what the window manager does to a new window, so no event of the start is on its way any more. A
// question of the start may have the keyboard before the main window does.
bool CRelievo::IsReady() const {
  const std::vector<CArea> views = ViewAreas();
  if (views.empty() || !HasKeyboard()) return false;
  const CPixel betweenViews = MainArea().At(views[0].At({views[0].m_iWidth + 2, views[0].m_iHeight / 2}));
  return !m_Screen.Capture({betweenViews.m_iX, betweenViews.m_iY, 1, 1}).IsAll(kBlack);
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

bool CRelievo::HandlesEvents() {
  constexpr int kWider = 40;
  const CArea area = MainArea();
  const std::vector<CArea> views = ViewAreas();
  const auto takesWidth = [&](int width, bool another) {
    m_Screen.AskForSize(m_uMainWindow, width, area.m_iHeight);
    return WaitUntil([&] { return (ViewAreas() != views) == another || !IsRunning(); });
  };
  return takesWidth(area.m_iWidth + kWider, true) && takesWidth(area.m_iWidth, false) && IsRunning();
}

// How often the system has let the program's threads run so far; nothing while one of them runs.
std::optional<long> CRelievo::TimesRun() const {
  long times = 0;
  std::error_code ignored;
  const std::filesystem::path threads = "/proc/" + std::to_string(Pid()) + "/task";
  for (const auto& thread : std::filesystem::directory_iterator(threads, ignored)) {
    std::string state;
    std::ifstream status(thread.path() / "status");
    for (std::string word; status >> word && word != "State:";) continue;
    status >> state;
    if (state != "S") return std::nullopt;
    long timeRun = 0;
    long timeWaited = 0;
    long count = 0;
    std::ifstream(thread.path() / "schedstat") >> timeRun >> timeWaited >> count;
    times += count;
  }
  return times;
}

bool CRelievo::Rests() const {
  using namespace std::chrono_literals;
  return WaitUntil([this] {
    const std::optional<long> before = TimesRun();
    std::this_thread::sleep_for(20ms);
    return before.has_value() && TimesRun() == before;
  });
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
