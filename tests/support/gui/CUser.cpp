#include "support/gui/CUser.h"

#include <algorithm>
#include <array>
#include <bit>

#include "support/SamplePhotograph.h"
#include "support/gui/CClipboard.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"
#include "ui/window/WindowLayout.h"

namespace {

// Middle of each title from the left edge, and of all from the upper one.
constexpr std::array kTitles{20, 79, 152, 247, 350, 416, 461};
constexpr int kTitleHeight = 10;

// How the toolkit shows text that a paste will replace.
constexpr CRgb kMarkedText{0, 0, 128};
constexpr CRgb kPaper{255, 255, 255};
// A field shows its paper for the most part; a window that is being moved or drawn may show anything.
constexpr int kFieldPaper = 3000;

}  // namespace

CArea CUser::AreaOf(Control view) const {
  const CRect& rect = RowOf(view).m_Design;
  const CPixel corner = m_Program.MainArea().At({rect.x, rect.y});
  return {corner.m_iX, corner.m_iY, rect.w, rect.h};
}

CPixel CUser::PlaceOf(Control control) const {
  const CWindowLayout layout = ComputeLayout({kDesignWidth, kDesignHeight, 1.0, true, true, m_bPicture});
  const CRect& rect = layout.Of(control);
  return m_Program.MainArea().At({rect.x + rect.w / 2, rect.y + rect.h / 2});
}

CPixel CUser::OnPhotograph(CPixel pixel) const {
  const CArea view = AreaOf(Control::ImageView);
  return view.At({(2 * pixel.m_iX + 1) * view.m_iWidth / (2 * m_iPictureWidth),
                  (2 * pixel.m_iY + 1) * view.m_iHeight / (2 * m_iPictureHeight)});
}

void CUser::ClickAt(CPixel place, int button) const {
  // A view looks at what lies under the mouse before the button goes down.
  MovePointer(place);
  m_Program.Rests();
  Click(place, button);
  m_Program.Rests();
}

void CUser::Type(const std::string& keys) const {
  PressKey(keys);
  m_Program.Rests();
}

// The toolkit hands on the last of several motions only, and none that the release of the button has caught up with.
void CUser::DragSlowly(CPixel from, CPixel to, int button, const std::string& held, int steps) const {
  MovePointer(from);
  m_Program.Rests();
  if (!held.empty()) HoldKeys(held);
  PressButton(button);
  for (int step = 1; step <= steps; ++step) {
    MovePointer({from.m_iX + (to.m_iX - from.m_iX) * step / steps, from.m_iY + (to.m_iY - from.m_iY) * step / steps});
    m_Program.Rests();
  }
  ReleaseButton(button);
  if (!held.empty()) LetGoOfKeys(held);
  m_Program.Rests();
}

CPixel CUser::PlaceOf(MenuTitle title) const {
  return m_Program.MainArea().At({kTitles[static_cast<std::size_t>(title)], kTitleHeight});
}

void CUser::ChooseEntry(MenuTitle title, int entry) const {
  Click(PlaceOf(title));
  for (int k = 0; k <= entry; ++k) PressKey("Down");
  PressKey("Return");
}

void CUser::ChooseEntry(MenuTitle title, const std::string& letter) const {
  Click(PlaceOf(title));
  Type(letter);
}

bool CUser::IsGone(WindowId window) const {
  return WaitUntil([&] {
    const std::vector<WindowId> windows = m_Program.Screen().WindowsOf(m_Program.Pid());
    return std::find(windows.begin(), windows.end(), window) == windows.end();
  });
}

CScreenshot CUser::SeeName(WindowId chooser) const {
  constexpr int kNameFromLeft = 120;
  constexpr int kNameFromBottom = 70;
  constexpr int kNameWidth = 350;
  constexpr int kNameHeight = 20;
  const CArea area = m_Program.Screen().AreaOf(chooser);
  const CPixel name = area.At({kNameFromLeft, area.m_iHeight - kNameFromBottom});
  return See({name.m_iX, name.m_iY, kNameWidth, kNameHeight});
}

std::optional<WindowId> CUser::OpenedChooser(const std::string& title) const {
  const std::optional<WindowId> chooser = m_Program.WaitForWindow(title);
  if (!chooser.has_value()) return std::nullopt;
  const bool focused = WaitUntil([&] { return m_Program.Screen().HasFocus(*chooser); });
  if (!focused || !WaitUntil([&] { return SeeName(*chooser).Count(kMarkedText) > 0; })) return std::nullopt;
  return chooser;
}

// Pasted, which takes the same time for every name.
bool CUser::ChooseFile(const std::string& title, const std::filesystem::path& file) const {
  const std::optional<WindowId> chooser = OpenedChooser(title);
  if (!chooser.has_value()) return false;
  const CClipboard clipboard(m_Program.Screen(), file.string());
  PressKey("ctrl+v");
  const auto holdsPlainText = [&] {
    const CScreenshot name = SeeName(*chooser);
    return name.Count(kMarkedText) == 0 && name.Count(kPaper) > kFieldPaper;
  };
  if (!WaitUntil(holdsPlainText)) return false;
  PressKey("Return");
  return IsGone(*chooser);
}

std::optional<WindowId> CUser::FocusedQuestion() const {
  std::optional<WindowId> question;
  // Looked for anew each time: the one before may still be on the screen while it closes.
  const auto isAsked = [&] {
    question = m_Program.Screen().FindWindow(m_Program.Pid(), "");
    return question.has_value() && m_Program.Screen().HasFocus(*question);
  };
  if (!WaitUntil([&] { return isAsked() || !m_Program.IsRunning(); }) || !m_Program.IsRunning()) return std::nullopt;
  return question;
}

bool CUser::Answer(bool yes) const {
  const std::optional<WindowId> question = FocusedQuestion();
  if (!question.has_value()) return false;
  PressKey(yes ? "Return" : "Escape");
  return IsGone(*question);
}

bool CUser::AnswerText(const std::string& text) const {
  const std::optional<WindowId> question = FocusedQuestion();
  if (!question.has_value()) return false;
  TypeText(text);
  PressKey("Return");
  return IsGone(*question);
}

bool CUser::LoadPicture(const std::filesystem::path& file, int width, int height) {
  const auto side = [](int length) { return std::to_string(std::bit_ceil(static_cast<unsigned>(length))); };
  const std::string line =
      "CImageView::LoadImage\tNew texture generated. new_width : " + side(width) + ", new_height : " + side(height);
  const std::size_t before = Times(line);
  PressKey("alt+shift+o");
  m_bPicture = ChooseFile("please input image file name", file) && Reads(line, before);
  m_iPictureWidth = width;
  m_iPictureHeight = height;
  return m_bPicture;
}

bool CUser::LoadPhotograph() { return LoadPicture(kSamplePhotograph, kPhotographWidth, kPhotographHeight); }

std::size_t CUser::Times(std::string_view line) const {
  const std::vector<std::string> lines = m_Program.ConsoleLines();
  return static_cast<std::size_t>(std::count(lines.begin(), lines.end(), line));
}

bool CUser::Reads(std::string_view line, std::size_t before) const {
  return WaitUntil([&] { return Times(line) > before; });
}
