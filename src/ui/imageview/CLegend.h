#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

class Fl_Window;
struct COverlay;

/// What the colours of an overlay mean: title and unit above a bar of the colours, and below it the values of its ends
/// and its middle. It lies on a dark plate in the lower right corner, so that it can be read over any picture.
class CLegend {
 public:
  /// `scale` as of UiScale().
  explicit CLegend(double scale) : m_fScale(scale) {}

  /// Takes up another overlay, or none. What is drawn of it is made at the next drawing, once.
  void Set(std::shared_ptr<const COverlay> overlay);
  /// Into the current context, over what `view`, which is on the screen, has drawn. The matrices stay as they are.
  void Draw(Fl_Window& view);

  /// What stands in the first line; a value of the overlay as the legend shows it, of at most four digits.
  static std::string TitleOf(const COverlay& overlay);
  static std::string ValueText(const COverlay& overlay, double value);

 private:
  void Make(Fl_Window& view);
  void Paint(int line, int descent) const;
  int Scaled(double length) const;

  double m_fScale;
  std::shared_ptr<const COverlay> m_pOverlay;
  int m_iWidth = 0;  ///< of the plate, pixels
  int m_iHeight = 0;
  std::vector<std::uint8_t> m_aPixels;  ///< red, green and blue, rows from the bottom; empty until it is made
};
