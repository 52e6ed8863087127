#pragma once

#include "ui/imageview/CViewMapping.h"

class CGrid;
class ViewHost;

/// What the handlers of mouse and keys in the image view have in common.
///
/// Events are read through the toolkit. The mapping must be up to date at every event; all references must outlive the
/// handler.
class CPlaneHandler {
 public:
  CPlaneHandler(const CPlaneHandler&) = delete;
  CPlaneHandler& operator=(const CPlaneHandler&) = delete;

 protected:
  CPlaneHandler(CGrid& grid, const CViewMapping& mapping, ViewHost& host)
      : m_Grid(grid), m_Mapping(mapping), m_Host(host) {}
  ~CPlaneHandler() = default;

  /// The place under the mouse.
  CPlanePoint Cursor() const;
  /// The same, held to where a constraint may lie.
  CPlanePoint ClampedCursor() const { return m_Mapping.Clamped(Cursor()); }
  /// How far something at `from` may go to keep up with the mouse, which has moved from `last` to `now`: it stops where
  /// a constraint may not lie.
  CPlanePoint AllowedStep(const CPlanePoint& from, const CPlanePoint& last, const CPlanePoint& now) const;
  void RedrawBoth();

  CGrid& m_Grid;
  const CViewMapping& m_Mapping;
  ViewHost& m_Host;
};
