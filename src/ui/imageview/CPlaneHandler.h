#pragma once

#include "drawing/CViewMapping.h"

class CGrid;
class ViewHost;

/// What the handlers of mouse and keys in the image view have in common.
///
/// Events are read through the toolkit. The mapping must be up to date at every event; all references must outlive the
/// handler.
class CPlaneHandler {
 public:
  virtual ~CPlaneHandler() = default;
  CPlaneHandler(const CPlaneHandler&) = delete;
  CPlaneHandler& operator=(const CPlaneHandler&) = delete;

  /// 1 if the event was used, 0 if it is somebody else's.
  int Handle(int event);
  /// Whether the left button holds a constraint or node that was there before its press.
  virtual bool HoldsExisting() const { return false; }

 protected:
  CPlaneHandler(CGrid& grid, const CViewMapping& mapping, ViewHost& host)
      : m_Grid(grid), m_Mapping(mapping), m_Host(host) {}

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

 private:
  // The events, each answered as `Handle` answers. Presses, drags and releases are always used.
  virtual int Hover() { return 0; }  ///< the mouse has come or moved, with no button down
  virtual int Leave() { return 0; }
  virtual void Press() = 0;
  virtual void Drag() = 0;
  virtual void Release() = 0;
  virtual int Key() = 0;
  virtual int Wheel() { return 0; }
};
