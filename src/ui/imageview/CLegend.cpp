#include "ui/imageview/CLegend.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <utility>

#include <FL/Fl_Image_Surface.H>
#include <FL/Fl_Window.H>
#include <FL/fl_draw.H>
#include <GL/gl.h>

#include "drawing/COverlay.h"
#include "ui/seams/HelpTexts.h"

namespace {

// Pixels at scale 1.
constexpr double kFontSize = 11;
constexpr double kMargin = 8;   // around the plate
constexpr double kPadding = 6;  // within it
constexpr double kGap = 14;     // between two numbers, at least
constexpr double kBarWidth = 160;
constexpr double kBarHeight = 11;
constexpr std::uint8_t kPlate = 24;  // nearly black

// Coordinates are pixels from the lower left corner for as long as it lives, and nothing is hidden.
class CPixelScope {
 public:
  CPixelScope(int width, int height) {
    glDisable(GL_DEPTH_TEST);
    glMatrixMode(GL_PROJECTION);
    glPushMatrix();
    glLoadIdentity();
    glOrtho(0, width, 0, height, -1, 1);
    glMatrixMode(GL_MODELVIEW);
    glPushMatrix();
    glLoadIdentity();
  }
  ~CPixelScope() {
    glPopMatrix();
    glMatrixMode(GL_PROJECTION);
    glPopMatrix();
    glMatrixMode(GL_MODELVIEW);
    glEnable(GL_DEPTH_TEST);
  }
  CPixelScope(const CPixelScope&) = delete;
  CPixelScope& operator=(const CPixelScope&) = delete;
};

int WidthOf(const std::string& text) { return static_cast<int>(std::ceil(fl_width(text.c_str()))); }

// The texts below the bar, from left to right.
std::array<std::string, 3> ValueTexts(const COverlay& overlay) {
  std::array<std::string, 3> texts{CLegend::ValueText(overlay, overlay.m_fLow),
                                   CLegend::ValueText(overlay, (overlay.m_fLow + overlay.m_fHigh) / 2),
                                   CLegend::ValueText(overlay, overlay.m_fHigh)};
  if (overlay.m_bHighIsOpen) texts.back() += " and more";
  return texts;
}

}  // namespace

std::string CLegend::TitleOf(const COverlay& overlay) {
  return overlay.m_Unit.empty() ? overlay.m_Title : overlay.m_Title + " [" + overlay.m_Unit + "]";
}

std::string CLegend::ValueText(const COverlay& overlay, double value) {
  constexpr int kDigits = 4;
  if (value != 0 && std::isfinite(value)) {
    const double step = std::pow(10.0, std::floor(std::log10(std::abs(value))) + 1 - kDigits);
    // Tiny numbers have steps that are none.
    if (std::isnormal(step)) value = std::round(value / step) * step;
  }
  return HelpNumber(value, std::max(std::abs(overlay.m_fLow), std::abs(overlay.m_fHigh)));
}

void CLegend::Set(std::shared_ptr<const COverlay> overlay) {
  m_pOverlay = std::move(overlay);
  m_aPixels.clear();
}

int CLegend::Scaled(double length) const { return static_cast<int>(std::lround(length * m_fScale)); }

void CLegend::Draw(Fl_Window& view) {
  if (m_pOverlay == nullptr) return;
  if (m_aPixels.empty()) Make(view);
  const CPixelScope scope(view.w(), view.h());
  glPixelStorei(GL_UNPACK_ALIGNMENT, 1);
  glRasterPos2i(std::max(0, view.w() - Scaled(kMargin) - m_iWidth), Scaled(kMargin));
  glDrawPixels(m_iWidth, m_iHeight, GL_RGB, GL_UNSIGNED_BYTE, m_aPixels.data());
}

// By the toolkit, whose letters are those of all the window.
void CLegend::Make(Fl_Window& view) {
  // The picture is made for the window that is drawn in.
  view.top_window()->make_current();
  fl_font(FL_HELVETICA, Scaled(kFontSize));
  const int line = fl_height();
  int inner = WidthOf(TitleOf(*m_pOverlay));
  for (const std::string& note : m_pOverlay->m_asNotes) inner = std::max(inner, WidthOf(note));
  const int text = line * static_cast<int>(1 + m_pOverlay->m_asNotes.size());
  if (m_pOverlay->m_bHasBar) {
    int values = 2 * Scaled(kGap);
    for (const std::string& value : ValueTexts(*m_pOverlay)) values += WidthOf(value);
    inner = std::max({inner, values, Scaled(kBarWidth)});
  }
  m_iWidth = inner + 2 * Scaled(kPadding);
  m_iHeight = text + 2 * Scaled(kPadding);
  if (m_pOverlay->m_bHasBar) m_iHeight += Scaled(kBarHeight) + line + Scaled(kPadding) / 2;
  Fl_Image_Surface surface(m_iWidth, m_iHeight);
  surface.set_current();
  Paint(line, fl_descent());
  const std::unique_ptr<Fl_RGB_Image> image(surface.image());
  Fl_Display_Device::display_device()->set_current();
  const std::size_t row = 3 * static_cast<std::size_t>(m_iWidth);
  m_aPixels.resize(row * static_cast<std::size_t>(m_iHeight));
  for (int y = 0; y < m_iHeight; ++y)
    std::copy_n(image->array + static_cast<std::size_t>(y) * row, row,
                m_aPixels.end() - (y + 1) * static_cast<std::ptrdiff_t>(row));
}

void CLegend::Paint(int line, int descent) const {
  const int left = Scaled(kPadding);
  const int inner = m_iWidth - 2 * left;
  fl_rectf(0, 0, m_iWidth, m_iHeight, kPlate, kPlate, kPlate);
  fl_color(FL_WHITE);
  fl_font(FL_HELVETICA, Scaled(kFontSize));
  fl_draw(TitleOf(*m_pOverlay).c_str(), left, left + line - descent);
  int bottom = left + line;
  for (const std::string& note : m_pOverlay->m_asNotes) {
    bottom += line;
    fl_draw(note.c_str(), left, bottom - descent);
  }
  if (!m_pOverlay->m_bHasBar) return;
  const int top = bottom + left / 2;
  for (int x = 0; x < inner; ++x) {
    const auto [red, green, blue] = ColourAt(m_pOverlay->m_Map, x / (inner - 1.0));
    fl_rectf(left + x, top, 1, Scaled(kBarHeight), red, green, blue);
  }
  fl_color(FL_WHITE);
  const std::array<std::string, 3> texts = ValueTexts(*m_pOverlay);
  // The outer ones end with the bar, the middle one is in the middle of what they leave.
  const int base = top + Scaled(kBarHeight) + line - descent;
  const int last = left + inner - WidthOf(texts[2]);
  const int gap = last - left - WidthOf(texts[0]) - WidthOf(texts[1]);
  const int even = left + (inner - WidthOf(texts[1])) / 2;
  fl_draw(texts[0].c_str(), left, base);
  fl_draw(texts[1].c_str(), std::min(even, left + WidthOf(texts[0]) + gap / 2), base);
  fl_draw(texts[2].c_str(), last, base);
}
