#include "support/gui/CDragSource.h"

#include <array>
#include <stdexcept>
#include <utility>

#include <X11/Xatom.h>
#include <X11/Xlib.h>

#include "support/gui/WaitUntil.h"

/// The messages of the protocol, from the side of the source.
class CDragSource::CProtocol {
 public:
  CProtocol(std::string type, std::string contents) : m_Type(std::move(type)), m_Contents(std::move(contents)) {
    if (m_pDisplay == nullptr) throw std::runtime_error("the display cannot be reached");
    m_uSource = XCreateSimpleWindow(Get(), DefaultRootWindow(Get()), 0, 0, 1, 1, 0, 0, 0);
    XSetSelectionOwner(Get(), Name("XdndSelection"), m_uSource, CurrentTime);
  }

  bool Enter(Window target, CPixel place) {
    constexpr long kVersion = 5;
    m_bAccepted = false;
    m_bAnswered = false;
    Send(target, "XdndEnter", {kVersion << 24, static_cast<long>(Name(m_Type.c_str()))});
    const long where = (static_cast<long>(place.m_iX) << 16) | place.m_iY;
    Send(target, "XdndPosition", {0, where, CurrentTime, static_cast<long>(Name("XdndActionCopy"))});
    return Await(m_bAnswered) && m_bAccepted;
  }
  void Leave(Window target) { Send(target, "XdndLeave", {}); }
  bool Drop(Window target) {
    m_bFinished = false;
    Send(target, "XdndDrop", {0, CurrentTime});
    return Await(m_bFinished);
  }

 private:
  struct CClose {
    void operator()(Display* display) const { XCloseDisplay(display); }
  };

  Display* Get() const { return m_pDisplay.get(); }
  Atom Name(const char* name) const { return XInternAtom(Get(), name, False); }

  void Send(Window target, const char* message, const std::array<long, 4>& values) {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = target;
    event.xclient.message_type = Name(message);
    event.xclient.format = 32;
    event.xclient.data.l[0] = static_cast<long>(m_uSource);
    for (std::size_t k = 0; k < values.size(); ++k) event.xclient.data.l[k + 1] = values[k];
    XSendEvent(Get(), target, False, NoEventMask, &event);
    XFlush(Get());
  }
  bool Await(const bool& condition) {
    return WaitUntil([&] {
      while (XPending(Get()) > 0) {
        XEvent event{};
        XNextEvent(Get(), &event);
        Handle(event);
      }
      return condition;
    });
  }
  void Handle(const XEvent& event) {
    if (event.type == SelectionRequest) return Answer(event.xselectionrequest);
    if (event.type != ClientMessage) return;
    if (event.xclient.message_type == Name("XdndFinished")) m_bFinished = true;
    if (event.xclient.message_type != Name("XdndStatus")) return;
    m_bAccepted = (event.xclient.data.l[1] & 1) != 0;
    m_bAnswered = true;
  }
  // The target asks for the contents.
  void Answer(const XSelectionRequestEvent& request) {
    XEvent answer{};
    answer.xselection.type = SelectionNotify;
    answer.xselection.requestor = request.requestor;
    answer.xselection.selection = request.selection;
    answer.xselection.target = request.target;
    answer.xselection.time = request.time;
    answer.xselection.property = request.property;
    XChangeProperty(Get(), request.requestor, request.property, request.target, 8, PropModeReplace,
                    reinterpret_cast<const unsigned char*>(m_Contents.data()), static_cast<int>(m_Contents.size()));
    XSendEvent(Get(), request.requestor, False, NoEventMask, &answer);
    XFlush(Get());
  }

  std::string m_Type;
  std::string m_Contents;
  std::unique_ptr<Display, CClose> m_pDisplay{XOpenDisplay(nullptr)};
  Window m_uSource = 0;
  bool m_bAnswered = false;
  bool m_bAccepted = false;
  bool m_bFinished = false;
};

CDragSource::CDragSource(std::string type, std::string contents)
    : m_pProtocol(std::make_unique<CProtocol>(std::move(type), std::move(contents))) {}

CDragSource::~CDragSource() = default;

bool CDragSource::IsWelcome(WindowId window, CPixel place) {
  const bool welcome = m_pProtocol->Enter(window, place);
  m_pProtocol->Leave(window);
  return welcome;
}

bool CDragSource::Drop(WindowId window, CPixel place) {
  return m_pProtocol->Enter(window, place) && m_pProtocol->Drop(window);
}
