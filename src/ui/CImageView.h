#pragma once

#include <cstdint>
#include <string>

#include <FL/Fl_Gl_Window.H>

#include "ui/DisplayFlags.h"

class CGrid;
class ViewHost;
struct CInterpolationTrace;

/// The left view: the picture, and what is drawn over it.
class CImageView : public Fl_Gl_Window {
 public:
  CImageView(int x, int y, int w, int h);

  /// The grid to show; it must outlive the view, as must the host. Without one the view draws nothing.
  void AttachGrid(CGrid& grid, ViewHost& host);

  std::uint32_t DisplayFlags() const { return m_uDisplayFlags; }
  void SetDisplayFlags(std::uint32_t flags) { m_uDisplayFlags = flags; }
  std::uint32_t DebugFlags() const { return m_uDebugFlags; }
  void SetDebugFlags(std::uint32_t flags) { m_uDebugFlags = flags; }
  EditingMode Mode() const { return m_Mode; }
  void SetMode(EditingMode mode) { m_Mode = mode; }
  int CurveType() const { return m_iCurveType; }
  void SetCurveType(int type) { m_iCurveType = type; }

  /// False if there is no picture in the file; then the picture stays.
  bool LoadImage(const std::string& file);
  const std::string& TextureFileName() const { return m_TextureFileName; }
  void ResetView() { redraw(); }
  /// Ends the drag under way, if any, and lets the solver go on.
  void EndDrag() {}
  /// Shows what the interpolation traced last was made of.
  void ShowInterpolation(const CInterpolationTrace& /*trace*/) { redraw(); }
  /// Writes the view as it is drawn now to a picture file; false if that fails.
  bool SaveFrame(const std::string& file);

 protected:
  void draw() override;

 private:
  CGrid* m_pGrid = nullptr;
  std::uint32_t m_uDisplayFlags = ImageFlag::kAtStart;
  std::uint32_t m_uDebugFlags = 0;
  EditingMode m_Mode = EditingMode::Unset;
  int m_iCurveType = 0;
  std::string m_TextureFileName;
};
