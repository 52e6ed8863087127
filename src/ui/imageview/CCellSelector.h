#pragma once

#include <optional>

#include "ui/imageview/CPlaneHandler.h"
#include "ui/imageview/CRubberBand.h"

/// The manual subdivision: a click refines the grid at a point, a drag selects the cells in a rectangle, keys split and
/// merge what is selected.
class CCellSelector final : public CPlaneHandler {
 public:
  /// All three must outlive the object.
  CCellSelector(CGrid& grid, const CViewMapping& mapping, ViewHost& host) : CPlaneHandler(grid, mapping, host) {}

  /// Forgets the press: its release does nothing.
  void EndDrag();
  /// Brings the cells' marks up to the selection.
  void Begin();
  /// The same, and ends the selection without splitting anything.
  void End();
  /// What the drag under way spans; nothing while the mouse is near where it was pressed.
  std::optional<CExtent> Rectangle() const { return m_Band.Rectangle(); }

 private:
  void Press() override;
  void Drag() override;
  void Release() override;
  int Key() override;
  void RefineAt(const CPlanePoint& place);
  void ClearSelection();

  CRubberBand m_Band;
};
