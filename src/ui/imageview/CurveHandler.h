#pragma once

#include <optional>

#include "ui/imageview/CPlaneHandler.h"
#include "ui/imageview/HandlerView.h"

struct CCntrNode;

/// Draws, selects and edits curves with the mouse and the keyboard.
class CCurveHandler final : public CPlaneHandler {
 public:
  /// Keys and clicks on curves change the type of new curves that `view` keeps. It must outlive the handler.
  CCurveHandler(CGrid& grid, const CViewMapping& mapping, ViewHost& host, HandlerView& view)
      : CPlaneHandler(grid, mapping, host), m_View(view) {}

  /// Ends the drag under way, if any; what it has changed takes effect. The release that follows does nothing.
  void EndDrag();
  bool HoldsExisting() const override;
  /// The document has changed under a mouse that rests, over the view or elsewhere.
  void DocumentChanged();
  /// Where the line from the last point of the curve in progress leads: to the mouse, as far as it is over the view.
  const std::optional<CPlanePoint>& LooseEnd() const { return m_LooseEnd; }

 private:
  int Hover() override;
  int Leave() override;
  void Press() override;
  void Drag() override;
  void Release() override;
  int Key() override;
  void Look();
  void LookForEnd();
  void Grab(int button, CurveType type);
  void Append();
  void ChooseType(CurveType type);
  void Validate();
  void Cancel();
  const CCntrNode* SelectedNode() const;

  HandlerView& m_View;
  CPlanePoint m_Cursor;  ///< where the mouse was at the last of its events, held to the extent
  std::optional<CPlanePoint> m_LooseEnd;
  CPlanePoint m_DragPlace;  ///< where the mouse has dragged the node to
  int m_iButton = 0;        ///< that holds a curve; 0: none
};
