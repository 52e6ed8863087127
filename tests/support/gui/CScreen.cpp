#include "support/gui/CScreen.h"

#include <cstdlib>
#include <stdexcept>

#include <X11/Xatom.h>
#include <X11/Xlib.h>
#include <X11/Xutil.h>

namespace {

template <class T>
struct CXFree {
  void operator()(T* memory) const { XFree(memory); }
};
template <class T>
using XMemory = std::unique_ptr<T, CXFree<T>>;

// A window may go between two requests about it. The replies tell; the library would end the process.
int IgnoreError(Display* /*display*/, XErrorEvent* /*error*/) { return 0; }

[[noreturn]] void Fail(const std::string& what) {
  throw std::runtime_error(what + ". Windowed tests need a display with a window manager: start them with ./test.");
}

}  // namespace

class CScreen::CConnection {
 public:
  CConnection() {
    const char* name = std::getenv("DISPLAY");
    if (name == nullptr || *name == '\0') Fail("DISPLAY is not set");
    m_pDisplay.reset(XOpenDisplay(name));
    if (m_pDisplay == nullptr) Fail(std::string("display ") + name + " cannot be reached");
    XSetErrorHandler(IgnoreError);
  }

  Display* Get() const { return m_pDisplay.get(); }
  Window Root() const { return DefaultRootWindow(m_pDisplay.get()); }
  Atom Name(const char* name) const { return XInternAtom(m_pDisplay.get(), name, False); }

  // A property made of 32-bit numbers, which the library hands out as longs.
  std::vector<unsigned long> Numbers(Window window, const char* property, Atom type) const {
    constexpr long kAll = 1L << 20;
    Atom actualType = 0;
    int format = 0;
    unsigned long count = 0;
    unsigned long rest = 0;
    unsigned char* data = nullptr;
    const int status = XGetWindowProperty(Get(), window, Name(property), 0, kAll, False, type, &actualType, &format,
                                          &count, &rest, &data);
    const XMemory<unsigned char> memory(data);
    if (status != 0 || actualType != type || format != 32) return {};
    const auto* numbers = reinterpret_cast<const unsigned long*>(data);
    return {numbers, numbers + count};
  }

  // To the root window, where the window manager listens.
  void Tell(Window window, const char* request) const {
    XEvent event{};
    event.xclient.type = ClientMessage;
    event.xclient.window = window;
    event.xclient.message_type = Name(request);
    event.xclient.format = 32;
    XSendEvent(Get(), Root(), False, SubstructureRedirectMask | SubstructureNotifyMask, &event);
    XFlush(Get());
  }

 private:
  struct CClose {
    void operator()(Display* display) const { XCloseDisplay(display); }
  };
  std::unique_ptr<Display, CClose> m_pDisplay;
};

CScreen::CScreen() : m_pConnection(std::make_unique<CConnection>()) {
  if (m_pConnection->Numbers(m_pConnection->Root(), "_NET_SUPPORTING_WM_CHECK", XA_WINDOW).empty()) {
    Fail("no window manager runs on the display");
  }
}

CScreen::~CScreen() = default;

std::vector<WindowId> CScreen::WindowsOf(pid_t pid) const {
  const CConnection& display = *m_pConnection;
  std::vector<WindowId> own;
  for (const Window window : display.Numbers(display.Root(), "_NET_CLIENT_LIST", XA_WINDOW)) {
    const auto owner = display.Numbers(window, "_NET_WM_PID", XA_CARDINAL);
    if (owner.size() == 1 && owner.front() == static_cast<unsigned long>(pid)) own.push_back(window);
  }
  return own;
}

std::optional<WindowId> CScreen::FindWindow(pid_t pid, std::string_view title) const {
  for (const WindowId window : WindowsOf(pid)) {
    if (TitleOf(window) == title) return window;
  }
  return std::nullopt;
}

std::optional<std::string> CScreen::TitleOf(WindowId window) const {
  char* title = nullptr;
  XFetchName(m_pConnection->Get(), window, &title);
  const XMemory<char> memory(title);
  if (title == nullptr) return std::nullopt;
  return title;
}

std::string CScreen::ClassOf(WindowId window) const {
  XClassHint hint{};
  if (XGetClassHint(m_pConnection->Get(), window, &hint) == 0) return {};
  const XMemory<char> name(hint.res_name);
  const XMemory<char> type(hint.res_class);
  return hint.res_name;
}

bool CScreen::HasIcon(WindowId window) const {
  // Width, height, then the pixels.
  const std::vector<unsigned long> icon = m_pConnection->Numbers(window, "_NET_WM_ICON", XA_CARDINAL);
  return icon.size() > 2 && icon.size() == 2 + icon[0] * icon[1];
}

CArea CScreen::AreaOf(WindowId window) const {
  XWindowAttributes attributes{};
  CArea area;
  Window child = 0;
  if (XGetWindowAttributes(m_pConnection->Get(), window, &attributes) == 0 ||
      XTranslateCoordinates(m_pConnection->Get(), window, m_pConnection->Root(), 0, 0, &area.m_iX, &area.m_iY,
                            &child) == 0) {
    return {};
  }
  area.m_iWidth = attributes.width;
  area.m_iHeight = attributes.height;
  return area;
}

std::vector<WindowId> CScreen::WindowsIn(WindowId window) const {
  Window root = 0;
  Window parent = 0;
  Window* children = nullptr;
  unsigned int count = 0;
  if (XQueryTree(m_pConnection->Get(), window, &root, &parent, &children, &count) == 0) return {};
  const XMemory<Window> memory(children);
  std::vector<WindowId> mapped;
  for (unsigned int k = 0; k < count; ++k) {
    XWindowAttributes attributes{};
    if (XGetWindowAttributes(m_pConnection->Get(), children[k], &attributes) != 0 &&
        attributes.map_state == IsViewable) {
      mapped.push_back(children[k]);
    }
  }
  return mapped;
}

CSizeLimits CScreen::SizeLimitsOf(WindowId window) const {
  XSizeHints hints{};
  long supplied = 0;
  if (XGetWMNormalHints(m_pConnection->Get(), window, &hints, &supplied) == 0) return {};
  CSizeLimits limits;
  if ((hints.flags & PMinSize) != 0) {
    limits.m_iMinWidth = hints.min_width;
    limits.m_iMinHeight = hints.min_height;
  }
  limits.m_bHasMaximum = (hints.flags & PMaxSize) != 0;
  return limits;
}

bool CScreen::HasFocus(WindowId window) const {
  Window focused = 0;
  int revertTo = 0;
  XGetInputFocus(m_pConnection->Get(), &focused, &revertTo);
  return focused == window;
}

WindowId CScreen::ClipboardOwner() const {
  return XGetSelectionOwner(m_pConnection->Get(), m_pConnection->Name("CLIPBOARD"));
}

void CScreen::AskForSize(WindowId window, int width, int height) {
  XResizeWindow(m_pConnection->Get(), window, static_cast<unsigned int>(width), static_cast<unsigned int>(height));
  XFlush(m_pConnection->Get());
}

void CScreen::AskToClose(WindowId window) { m_pConnection->Tell(window, "_NET_CLOSE_WINDOW"); }

void CScreen::ParkPointer() {
  Display* display = m_pConnection->Get();
  const int screen = DefaultScreen(display);
  XWarpPointer(display, None, m_pConnection->Root(), 0, 0, 0, 0, DisplayWidth(display, screen) - 1,
               DisplayHeight(display, screen) - 1);
  XSync(display, False);
}

CScreenshot CScreen::Capture(const CArea& area) const {
  struct CDestroy {
    void operator()(XImage* image) const { XDestroyImage(image); }
  };
  const std::unique_ptr<XImage, CDestroy> image(XGetImage(
      m_pConnection->Get(), m_pConnection->Root(), area.m_iX, area.m_iY, static_cast<unsigned int>(area.m_iWidth),
      static_cast<unsigned int>(area.m_iHeight), AllPlanes, ZPixmap));
  if (image == nullptr) throw std::runtime_error("the area to capture does not lie on the screen");
  CScreenshot shot(area.m_iWidth, area.m_iHeight);
  for (int y = 0; y < area.m_iHeight; ++y) {
    for (int x = 0; x < area.m_iWidth; ++x) {
      const unsigned long rgb = XGetPixel(image.get(), x, y);
      shot.Set({x, y}, {static_cast<std::uint8_t>(rgb >> 16), static_cast<std::uint8_t>(rgb >> 8),
                        static_cast<std::uint8_t>(rgb)});
    }
  }
  return shot;
}
