#pragma once

#include <optional>

#include "scissors/PixelPosition.h"

/// The part of a picture that an area of the screen shows, each pixel of the picture as a square of `Zoom()` screen
/// pixels.
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

  /// Screen pixels per pixel of the picture.
  int Zoom() const { return m_iZoom; }
  /// The first visible column and row.
  CPixelPosition First() const { return m_First; }
  /// Number of visible columns and rows, those cut by the edge of the area included.
  CPixelPosition VisibleSize() const;
  bool Shows(CPixelPosition pixel) const;
  /// Whether a place lies in the area.
  bool Covers(int x, int y) const { return x >= 0 && x < m_Area.m_iColumn && y >= 0 && y < m_Area.m_iRow; }
  /// The visible pixel at a place; nothing beside the picture and outside the area.
  std::optional<CPixelPosition> PixelAt(int x, int y) const;

  /// Zooms by whole steps within the limits, keeping the pixel at a place where it is as far as the picture reaches.
  void ZoomBy(int steps, int x, int y);
  /// A drag that moves the picture along: where it starts, and where it has come to.
  void BeginPan(int x, int y);
  void PanTo(int x, int y);

 private:
  void MoveTo(CPixelPosition first);

  CPixelPosition m_Picture;
  CPixelPosition m_Area;
  CPixelPosition m_First;
  int m_iZoom = kMinZoom;
  CPixelPosition m_PanStart;  ///< place
  CPixelPosition m_FirstAtPanStart;
};
