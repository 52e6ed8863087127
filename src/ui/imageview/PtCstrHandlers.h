#pragma once

#include <cstdint>

#include "ui/imageview/CPlaneHandler.h"
#include "ui/imageview/HandlerView.h"
#include "ui/seams/CValueMessages.h"

/// Creates, selects and edits the point constraints of one kind with the mouse and the keyboard.
class CPtCstrHandler : public CPlaneHandler {
 public:
  /// Forgets the press: the drag that goes on has no further effect.
  void EndDrag();
  bool HoldsExisting() const override;

 protected:
  /// `kind`: PtCstrKind::kPosition or kNormal.
  CPtCstrHandler(CGrid& grid, const CViewMapping& mapping, ViewHost& host, std::uint32_t kind)
      : CPlaneHandler(grid, mapping, host), m_uKind(kind), m_Values(grid, host, kind) {}

  double SurfaceHeightAt(const CPlanePoint& place) const;

  CPlanePoint m_Last;  ///< where the mouse hovered last, or where the press or the move came to

 private:
  virtual void Hovered() = 0;
  /// A press with `button` has taken hold of a constraint at `press`.
  virtual void Grab(int button, const CPlanePoint& press) = 0;
  /// A left press on nothing: creates a constraint there and selects it.
  virtual void Create(const CPlanePoint& press) = 0;
  /// Changes what the selected constraint asks for. The cursor is not held to the extent.
  virtual void Edit(const CPlanePoint& cursor) = 0;
  virtual void KeyTyped() const {}

  int Hover() override;
  void Press() override;
  void Drag() override;
  void Release() override { EndDrag(); }
  int Key() override;
  int Wheel() override;
  /// Everything up to the release is the button's.
  void Hold(int button);
  /// Whether the drag changes what the constraint asks for and not where it is.
  bool IsEditing() const;
  void Move(const CPlanePoint& cursor);
  void SelectNeighbour(bool next);

  std::uint32_t m_uKind;
  CValueMessages m_Values;
  int m_iButton = 0;            ///< whose drag it is; 0: none
  bool m_bJustCreated = false;  ///< the press has created the constraint that is dragged
};

/// Position constraints: dragging right or up raises the height.
class CPtPosCstrHandler : public CPtCstrHandler {
 public:
  /// All must outlive the object. `startAtLast`: whether new ones begin at the height that was asked for last.
  CPtPosCstrHandler(CGrid& grid, const CViewMapping& mapping, ViewHost& host, const bool& startAtLast);

 private:
  void Hovered() override;
  void Grab(int button, const CPlanePoint& press) override;
  void Create(const CPlanePoint& press) override;
  void Edit(const CPlanePoint& cursor) override;
  void KeyTyped() const override;
  double HeightOfNew(const CPlanePoint& place) const;

  const bool& m_bStartAtLast;
  double m_fHeightAtPress = 0.0;
};

/// Normal constraints: dragging right (up) lowers the slope in x (y), bit by bit.
class CPtNormCstrHandler : public CPtCstrHandler {
 public:
  /// Hovering switches the grid of `view` on, which must outlive the handler.
  CPtNormCstrHandler(CGrid& grid, const CViewMapping& mapping, ViewHost& host, HandlerView& view);

 private:
  void Hovered() override;
  void Grab(int button, const CPlanePoint& press) override;
  void Create(const CPlanePoint& press) override;
  void Edit(const CPlanePoint& cursor) override;

  HandlerView& m_View;
  CPlanePoint m_Anchor;  ///< where the last change of the slopes was made from
};
