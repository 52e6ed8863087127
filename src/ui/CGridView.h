#pragma once

#include <cstdint>
#include <string>

#include <FL/Fl_Gl_Window.H>

#include "model/WaveletMode.h"

class CGrid;
class ViewHost;

/// The right view: the surface in three dimensions.
class CGridView : public Fl_Gl_Window {
 public:
  /// Bits of the display-flag word. Besides these the word holds exactly one bit of the values of `WaveletMode`.
  static constexpr std::uint32_t kShowGrid = 2;

  CGridView(int x, int y, int w, int h);

  /// The grid to show; it must outlive the view. Without one the view draws nothing.
  void AttachGrid(CGrid& grid);

  std::uint32_t DisplayFlags() const { return m_uDisplayFlags; }
  void SetFlag(std::uint32_t flag, bool on) { m_uDisplayFlags = on ? m_uDisplayFlags | flag : m_uDisplayFlags & ~flag; }
  /// Converts the attached grid to the basis of `mode` and keeps the mode among the display flags.
  void SelectWaveletMode(WaveletMode mode);

  /// The window around the view; it must outlive it.
  void AttachHost(ViewHost& /*host*/) {}
  /// Has the view answer the mouse.
  void EnableEvents() {}
  void ResetCamera() { redraw(); }
  /// Ends the drag under way, if any, and lets the solver go on.
  void EndDrag() {}
  /// The model has changed: has the view drawn.
  void RedrawForModel() { redraw(); }
  /// Writes the view as it is drawn now to a picture file; false if that fails.
  bool SaveFrame(const std::string& file);

 protected:
  void draw() override;

 private:
  CGrid* m_pGrid = nullptr;
  std::uint32_t m_uDisplayFlags = kShowGrid | static_cast<std::uint32_t>(WaveletMode::None);
};
