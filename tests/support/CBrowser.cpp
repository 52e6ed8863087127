#include "support/CBrowser.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <stdexcept>
#include <system_error>

#include <fcntl.h>
#include <poll.h>
#include <spawn.h>
#include <sys/wait.h>
#include <unistd.h>

#include "codecs/PictureFormats.h"
#include "support/FileBuilders.h"

namespace {

using nlohmann::json;

constexpr int kPatience = 60'000;  // milliseconds for one message

// A pipe whose ends are no descriptors that the browser counts on.
std::array<int, 2> NewPipe() {
  std::array<int, 2> ends{};
  if (pipe(ends.data()) != 0) throw std::system_error(errno, std::generic_category(), "pipe");
  std::array<int, 2> high{};
  for (std::size_t k = 0; k < ends.size(); ++k) {
    high[k] = fcntl(ends[k], F_DUPFD_CLOEXEC, 10);
    close(ends[k]);
  }
  return high;
}

std::string Decoded(const std::string& base64) {
  std::string bytes;
  std::uint32_t bits = 0;
  int count = 0;
  const std::string digits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  for (const char c : base64) {
    const std::size_t digit = digits.find(c);
    if (digit == std::string::npos) break;
    bits = bits << 6 | static_cast<std::uint32_t>(digit);
    count += 6;
    if (count < 8) continue;
    count -= 8;
    bytes += static_cast<char>(bits >> count & 255);
  }
  return bytes;
}

}  // namespace

std::string CBrowser::Program() {
  for (const char* program : {"/usr/bin/chromium", "/usr/bin/chromium-browser", "/usr/bin/google-chrome"}) {
    if (access(program, X_OK) == 0) return program;
  }
  return {};
}

CBrowser::CBrowser(const std::string& file, int width, int height) {
  Start(Program());
  Attach();
  for (const char* domain : {"Page", "Runtime", "Log", "Network"}) Call(std::string(domain) + ".enable");
  Call("Network.emulateNetworkConditions",
       {{"offline", true}, {"latency", 0}, {"downloadThroughput", 0}, {"uploadThroughput", 0}});
  Call("Emulation.setDeviceMetricsOverride",
       {{"width", width}, {"height", height}, {"deviceScaleFactor", 1}, {"mobile", false}});
  Call("Emulation.setTouchEmulationEnabled", {{"enabled", true}});
  // Blanks and letters beyond ASCII have to be written as numbers in an address.
  std::string address = "file://";
  for (const char c : file) {
    std::array<char, 4> coded{};
    std::snprintf(coded.data(), coded.size(), "%%%02X", static_cast<unsigned>(static_cast<unsigned char>(c)));
    address += c == '/' ? "/" : coded.data();
  }
  m_bLoaded = false;
  Call("Page.navigate", {{"url", address}});
  while (!m_bLoaded) Note(Receive());
}

CBrowser::~CBrowser() {
  close(m_iToBrowser);
  close(m_iFromBrowser);
  // It has processes of its own, and nothing to keep.
  kill(-m_Process, SIGKILL);
  waitpid(m_Process, nullptr, 0);
}

void CBrowser::Start(const std::string& program) {
  const std::array<int, 2> there = NewPipe();
  const std::array<int, 2> back = NewPipe();
  posix_spawn_file_actions_t actions{};
  posix_spawn_file_actions_init(&actions);
  posix_spawn_file_actions_adddup2(&actions, there[0], 3);
  posix_spawn_file_actions_adddup2(&actions, back[1], 4);
  const std::string log = m_Profile.File("log");
  for (const int descriptor : {STDOUT_FILENO, STDERR_FILENO})
    posix_spawn_file_actions_addopen(&actions, descriptor, log.c_str(), O_WRONLY | O_CREAT | O_APPEND, 0600);
  posix_spawnattr_t attributes{};
  posix_spawnattr_init(&attributes);
  posix_spawnattr_setflags(&attributes, POSIX_SPAWN_SETPGROUP);
  std::vector<std::string> arguments{program,
                                     "--headless=new",
                                     "--remote-debugging-pipe",
                                     "--no-sandbox",
                                     "--disable-dev-shm-usage",
                                     "--no-first-run",
                                     "--use-angle=swiftshader",
                                     "--enable-unsafe-swiftshader",
                                     "--user-data-dir=" + m_Profile.File("profile"),
                                     "about:blank"};
  std::vector<char*> pointers;
  for (std::string& argument : arguments) pointers.push_back(argument.data());
  pointers.push_back(nullptr);
  const int error = posix_spawn(&m_Process, program.c_str(), &actions, &attributes, pointers.data(), environ);
  posix_spawnattr_destroy(&attributes);
  posix_spawn_file_actions_destroy(&actions);
  close(there[0]);
  close(back[1]);
  m_iToBrowser = there[1];
  m_iFromBrowser = back[0];
  if (error != 0) throw std::system_error(error, std::generic_category(), program);
}

void CBrowser::Attach() {
  const json targets = Call("Target.getTargets");
  for (const json& target : targets.at("targetInfos")) {
    if (target.at("type") != "page") continue;
    m_Session = Call("Target.attachToTarget", {{"targetId", target.at("targetId")}, {"flatten", true}}).at("sessionId");
    return;
  }
  throw std::runtime_error("the browser has no page");
}

void CBrowser::SendText(const std::string& message) const {
  // The null at the end is part of the message.
  std::size_t sent = 0;
  while (sent <= message.size()) {
    const ssize_t more = write(m_iToBrowser, message.c_str() + sent, message.size() + 1 - sent);
    if (more < 0 && errno != EINTR) throw std::system_error(errno, std::generic_category(), "to the browser");
    if (more > 0) sent += static_cast<std::size_t>(more);
  }
}

json CBrowser::Receive() {
  std::size_t end = m_Received.find('\0');
  while (end == std::string::npos) {
    pollfd readable{m_iFromBrowser, POLLIN, 0};
    std::array<char, 65536> buffer{};
    const ssize_t more = poll(&readable, 1, kPatience) == 1 ? read(m_iFromBrowser, buffer.data(), buffer.size()) : -1;
    if (more <= 0) throw std::runtime_error("the browser is silent: " + BytesOf(m_Profile.File("log")));
    const std::size_t before = m_Received.size();
    m_Received.append(buffer.data(), static_cast<std::size_t>(more));
    end = m_Received.find('\0', before);
  }
  json message = json::parse(m_Received.substr(0, end));
  m_Received.erase(0, end + 1);
  return message;
}

void CBrowser::Note(const json& event) {
  const std::string method = event.value("method", "");
  m_bLoaded = m_bLoaded || method == "Page.loadEventFired";
  if (method == "Network.requestWillBeSent") {
    const std::string address = event.at("params").at("request").at("url");
    if (!address.starts_with("data:") && !address.starts_with("blob:")) m_asRequests.push_back(address);
  }
  const bool spoken = method == "Runtime.consoleAPICalled" && event.at("params").at("type") != "log";
  if (spoken || method == "Runtime.exceptionThrown" || method == "Log.entryAdded")
    m_asComplaints.push_back(event.dump());
}

json CBrowser::Call(const std::string& method, const json& parameters) {
  json message{{"id", ++m_iLastId}, {"method", method}, {"params", parameters}};
  if (!m_Session.empty()) message["sessionId"] = m_Session;
  SendText(message.dump());
  for (;;) {
    json answer = Receive();
    Note(answer);
    if (answer.value("id", 0) != m_iLastId) continue;
    if (answer.contains("error")) throw std::runtime_error(method + ": " + answer.dump());
    return answer.at("result");
  }
}

json CBrowser::Evaluate(const std::string& expression) {
  const json answer = Call("Runtime.evaluate", {{"expression", expression}, {"returnByValue", true}});
  if (answer.contains("exceptionDetails")) throw std::runtime_error(expression + ": " + answer.dump());
  return answer.at("result").value("value", json());
}

CPicture CBrowser::Shot() {
  const std::string file = m_Profile.File("shot.png");
  WriteText(file, Decoded(Call("Page.captureScreenshot", {{"format", "png"}}).at("data")));
  return ReadPicture(file).m_Picture;
}

void CBrowser::DragMouse(int x, int y, int dx, int dy) {
  const auto send = [&](const char* type, int done, int buttons) {
    Call("Input.dispatchMouseEvent", {{"type", type},
                                      {"x", x + dx * done / 4},
                                      {"y", y + dy * done / 4},
                                      {"button", "left"},
                                      {"buttons", buttons},
                                      {"clickCount", 1}});
  };
  send("mousePressed", 0, 1);
  for (int done = 1; done <= 4; ++done) send("mouseMoved", done, 1);
  send("mouseReleased", 4, 0);
}

void CBrowser::DragFinger(int x, int y, int dx, int dy) {
  const auto send = [&](const char* type, int done) {
    Call("Input.dispatchTouchEvent",
         {{"type", type}, {"touchPoints", json::array({{{"x", x + dx * done / 4}, {"y", y + dy * done / 4}}})}});
  };
  send("touchStart", 0);
  for (int done = 1; done <= 4; ++done) send("touchMove", done);
  Call("Input.dispatchTouchEvent", {{"type", "touchEnd"}, {"touchPoints", json::array()}});
}
