#pragma once

#include <optional>

#include "ui/imageview/CPlaneHandler.h"
#include "ui/imageview/CRubberBand.h"

/// Chooses a group of position constraints with the left button: a drag those in a rectangle, a click takes one into
/// the group or out of it.
class CGroupSelector final : public CPlaneHandler {
 public:
  /// All three must outlive the object.
  CGroupSelector(CGrid& grid, const CViewMapping& mapping, ViewHost& host) : CPlaneHandler(grid, mapping, host) {}

  /// Whether the toolkit's current event is the group's: the left button, or Escape.
  bool Takes(int event) const;
  /// Forgets the press: its release does nothing.
  void EndDrag() { m_Band.Forget(); }
  /// Nobody is in the group.
  void Clear();
  /// What the drag under way spans; nothing while the mouse is near where it was pressed.
  std::optional<CExtent> Rectangle() const { return m_Band.Rectangle(); }
  /// Marks those of the group; `pixel` is the size of one, model units.
  void DrawMarks(const CPlanePoint& pixel) const;

 private:
  void Press() override;
  void Drag() override;
  void Release() override;
  int Key() override;

  CRubberBand m_Band;
};
