#pragma once

#include "drawing/CViewMapping.h"

class CGrid;

/// Paints the freeze map: the left button freezes the points of the grid under the brush, the right one sets them free.
///
/// Its place is kept in pixels, so that it stays under the mouse while the view zooms.
class CFreezeBrush {
 public:
  /// Whether the event has painted, and so is no edit. A stroke that begins with Shift is a drag of the view and does
  /// not paint.
  bool Handle(int event, CGrid& grid, const CViewMapping& mapping);
  void EndDrag() { m_iButton = 0; }

  /// Whether the mouse has been seen since the start; before that there is no place.
  bool IsPlaced() const { return m_bPlaced; }
  CPlanePoint Place(const CViewMapping& mapping) const { return mapping.ToModel(m_iPixelX, m_iPixelY); }

 private:
  bool Paint(CGrid& grid, const CViewMapping& mapping) const;

  int m_iButton = 0;  ///< of the stroke: 1 left, 2 middle, 3 right, 0 none
  bool m_bViewDrag = false;
  bool m_bPlaced = false;
  int m_iPixelX = 0;
  int m_iPixelY = 0;
};
