#pragma once

#include <optional>

#include "scissors/PixelPosition.h"

/// The part of a picture that an area of the screen shows, each pixel of the picture as a square of `Zoom()` screen
/// pixels; or all of a picture that is larger than the area, reduced.
///
/// Places are in screen pixels from the upper left corner of the area; the first visible pixel of the picture lies
/// there. The area never shows what is beside the picture as long as the picture fills it.
class CPixelViewport {
 public:
  static constexpr int kMinZoom = 1;
  static constexpr int kMaxZoom = 16;

  /// For a picture of this size, at zoom 1 from its upper left corner, in an area of size 0.
  CPixelViewport(int pictureWidth, int pictureHeight) : m_Picture{pictureWidth, pictureHeight} {}

  /// The area has another size.
  void Resize(int width, int height);

  /// Screen pixels per pixel of the picture; 1 where it is reduced.
  int Zoom() const { return m_iZoom; }
  /// Pixels of the picture per screen pixel, along either side; 1 where it is not reduced.
  int Reduction() const { return m_iReduction; }
  /// The first visible column and row.
  CPixelPosition First() const { return m_First; }
  /// Number of visible columns and rows, those cut by the edge of the area included.
  CPixelPosition VisibleSize() const;
  bool Shows(CPixelPosition pixel) const;
  /// Whether a place lies in the area.
  bool Covers(int x, int y) const { return x >= 0 && x < m_Area.m_iColumn && y >= 0 && y < m_Area.m_iRow; }
  /// The visible pixel at a place, where the picture is reduced the one in the middle of those that share it; nothing
  /// beside the picture and outside the area.
  std::optional<CPixelPosition> PixelAt(int x, int y) const;

  /// Zooms by whole steps within the limits, keeping the pixel at a place where it is as far as the picture reaches.
  /// From the reduced picture the first step leads to zoom 1, and none leads to it.
  void ZoomBy(int steps, int x, int y);
  /// Shows the whole picture, reduced as little as it takes, whatever size the area has meanwhile; the next time,
  /// unless it has been zoomed since, goes back to the zoom before with the pixel at a place kept there.
  void ToggleWhole(int x, int y);
  /// A drag that moves the picture along: where it starts, and where it has come to.
  void BeginPan(int x, int y);
  void PanTo(int x, int y);

 private:
  void MoveTo(CPixelPosition first);
  void FitWhole();
  CPixelPosition NearestPixel(int x, int y) const;
  void ZoomTo(int zoom, int x, int y);

  CPixelPosition m_Picture;
  CPixelPosition m_Area;
  CPixelPosition m_First;
  int m_iZoom = kMinZoom;
  int m_iReduction = 1;
  int m_iZoomBefore = 0;      ///< while the whole picture is shown, the zoom to go back to; else 0
  CPixelPosition m_PanStart;  ///< place
  CPixelPosition m_FirstAtPanStart;
};
