#include "support/gui/Input.h"

#include <stdexcept>
#include <vector>

#include "support/gui/CChildProcess.h"

namespace {

using Words = std::vector<std::string>;

void Send(const Words& events) {
  Words command{"xdotool"};
  command.insert(command.end(), events.begin(), events.end());
  CChildProcess sender(command, ".", "/dev/null");
  if (sender.WaitForExit() != 0) throw std::runtime_error("xdotool could not send an event");
}

void Add(Words& events, const Words& more) { events.insert(events.end(), more.begin(), more.end()); }

Words Move(CPixel place) { return {"mousemove", std::to_string(place.m_iX), std::to_string(place.m_iY)}; }

}  // namespace

void PressKey(const std::string& keys) { Send({"key", keys}); }

void TypeText(const std::string& text, int delay) { Send({"type", "--delay", std::to_string(delay), text}); }

void MovePointer(CPixel place) { Send(Move(place)); }

void Click(CPixel place, int button) {
  Words events = Move(place);
  Add(events, {"click", std::to_string(button)});
  Send(events);
}

void PressButton(int button) { Send({"mousedown", std::to_string(button)}); }

void ReleaseButton(int button) { Send({"mouseup", std::to_string(button)}); }

void HoldKeys(const std::string& keys) { Send({"keydown", keys}); }

void LetGoOfKeys(const std::string& keys) { Send({"keyup", keys}); }

void Drag(CPixel from, CPixel to, int button, const std::string& held) {
  constexpr int kSteps = 10;
  Words events = Move(from);
  if (!held.empty()) Add(events, {"keydown", held});
  Add(events, {"mousedown", std::to_string(button)});
  for (int step = 1; step <= kSteps; ++step) {
    Add(events,
        Move({from.m_iX + (to.m_iX - from.m_iX) * step / kSteps, from.m_iY + (to.m_iY - from.m_iY) * step / kSteps}));
  }
  Add(events, {"mouseup", std::to_string(button)});
  if (!held.empty()) Add(events, {"keyup", held});
  Send(events);
}
