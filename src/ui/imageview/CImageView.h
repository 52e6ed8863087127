#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <utility>

#include <FL/Fl_Gl_Window.H>

#include "base/CPicture.h"
#include "codecs/PictureFormats.h"
#include "drawing/COverlayPainter.h"
#include "drawing/CViewMapping.h"
#include "drawing/DisplayFlags.h"
#include "drawing/PicturePainter.h"
#include "ui/imageview/CCellSelector.h"
#include "ui/imageview/CDebugOverlay.h"
#include "ui/imageview/CDoubleClick.h"
#include "ui/imageview/CFreezeBrush.h"
#include "ui/imageview/CGroupSelector.h"
#include "ui/imageview/CLegend.h"
#include "ui/imageview/CPressTaker.h"
#include "ui/imageview/CProposalPicker.h"
#include "ui/imageview/CurveHandler.h"
#include "ui/imageview/HandlerView.h"
#include "ui/imageview/PlacePreview.h"
#include "ui/imageview/PtCstrHandlers.h"
#include "ui/seams/ViewMoves.h"

class CGrid;
class CTearProposals;
class CTextures;
class ViewHost;
struct CInterpolationTrace;

/// The left view: the picture, what is drawn over it, and the mouse and keys that edit constraints on it.
class CImageView : public Fl_Gl_Window, private HandlerView {
 public:
  /// Place and size in the window, screen pixels.
  CImageView(int x, int y, int w, int h);

  /// The grid to show and the window around the view; both must outlive it. Until then the view draws nothing and
  /// leaves all events to the toolkit.
  void AttachGrid(CGrid& grid, ViewHost& host);
  /// Where the picture lies on the graphics card; it must outlive the view. Without it no picture is drawn.
  void AttachTextures(CTextures& textures) { m_pTextures = &textures; }

  /// ImageFlag and DebugFlag bits.
  std::uint32_t DisplayFlags() const { return m_uDisplayFlags; }
  void SetDisplayFlags(std::uint32_t flags);
  std::uint32_t DebugFlags() const { return m_uDebugFlags; }
  void SetDebugFlags(std::uint32_t flags);
  EditingMode Mode() const { return m_Mode; }
  /// Clears every selection.
  void SetMode(EditingMode mode);
  /// Of new curves; kNone until one is chosen. Setting it clears every selection.
  ::CurveType CurveType() const override { return m_CurveType; }
  void SetCurveType(::CurveType type);

  /// While it is on, the left button chooses a group of position constraints. Switched, nobody is in the group.
  bool IsChoosing() const { return m_bChoosing; }
  void SetChoosing(bool on);
  /// The next press of the left button is `taker`'s and does nothing else (see CPressTaker). Null: nobody waits.
  void TakeNextPress(CPressTaker::Taker taker) { m_PressTaker.Wait(std::move(taker)); }

  /// Takes up the picture in a file. A file that is refused leaves picture and file name as they are, and the user is
  /// told, as of one that ends early or is damaged, which is taken up all the same. Whether there is a new picture.
  /// Needs an attached grid.
  bool LoadImage(const std::string& filename);
  /// The same for a picture that has been read, or could not be. `filename` is what it is called.
  bool TakePicture(const CReadPicture& read, const std::string& filename);
  /// File of the picture; empty while there is none.
  const std::string& TextureFileName() const { return m_TextureFileName; }

  /// Zoom and pan as at the start.
  void ResetView();
  /// Goes a tenth of what it shows to one side, or back to the start.
  void MoveView(ViewMove move);
  /// Which part of the model the view shows.
  const CViewMapping& Mapping() const { return m_Mapping; }
  void SetZoomAndPan(double zoom, const CPlanePoint& pan);
  /// Ends the drag under way, if any, and lets the solver go on. For dialogs: they swallow the release of the button.
  void EndDrag();
  /// Takes note that the document is another one, with the mouse where it was.
  void DocumentChanged();
  /// Shows what the interpolation traced last was made of.
  void ShowInterpolation(const CInterpolationTrace& trace);
  /// Whether new position constraints begin at the height that was asked for last, where there has been one, instead of
  /// the surface's.
  void StartHeightsAtLast(bool on) { m_bHeightsAtLast = on; }
  /// Shows these places over all else, until others are given.
  void ShowPreview(CPlacePreview preview);
  /// Shows an overlay and its legend over the photograph; null for none. One over points belongs to the present
  /// subdivision, whose leaves are listed. Needs an attached grid.
  void ShowOverlay(std::shared_ptr<const COverlay> made);
  /// The overlay on show, or null.
  const COverlay* Overlay() const { return m_Overlay.Shown(); }

  /// The view as it would be drawn now, whatever lies over it on the screen; nothing while it is not shown.
  std::optional<CPicture> DrawnPicture();
  /// Shows tears that the mouse takes and drops; null for none. They must live until others are shown or none. While
  /// cells are selected or a curve is in progress they are neither seen nor found.
  void ShowProposals(CTearProposals* proposals);
  /// Saves the view as it would be drawn now; false while it is not shown or if that fails.
  bool SaveFrame(const std::string& filename);

  int handle(int event) override;

 protected:
  void draw() override;

 private:
  bool ShowPicture(const CPicture& picture);
  void PrepareToDraw();
  void DrawScene();
  void DrawBrush() const;
  void DrawTools() const;
  bool HasProposals() const;
  void UpdateMapping();
  void Unselect();
  void ShowPointer();
  void ShowCoordinates(int event) const;
  bool HandleUsed(int event);
  bool HandleWheelZoom(int event);
  bool HandleViewMove(int event);
  bool HandleViewDrag(int event);
  void BeginViewDrag();
  void ContinueViewDrag();
  void EndViewDrag();
  void KeepCurveType(::CurveType type) override { m_CurveType = type; }
  bool ShowGrid() override;
  CPlaneHandler& Handler();

  CGrid* m_pGrid = nullptr;
  ViewHost* m_pHost = nullptr;
  CTextures* m_pTextures = nullptr;
  std::string m_TextureFileName;
  std::uint32_t m_uDisplayFlags = ImageFlag::kAtStart;
  std::uint32_t m_uDebugFlags = 0;
  EditingMode m_Mode = EditingMode::Unset;
  ::CurveType m_CurveType = ::CurveType::kNone;

  CViewMapping m_Mapping;
  std::optional<CPtPosCstrHandler> m_PositionHandler;
  std::optional<CPtNormCstrHandler> m_NormalHandler;
  std::optional<CCurveHandler> m_CurveHandler;
  std::optional<CCellSelector> m_Selector;
  std::optional<CGroupSelector> m_Group;
  bool m_bChoosing = false;
  CPressTaker m_PressTaker;
  CDoubleClick m_DoubleClick;
  CFreezeBrush m_Brush;
  CProposalPicker m_Proposals;
  CDebugOverlay m_Debug;
  CPicturePainter m_Painter;
  COverlayPainter m_Overlay;
  CLegend m_Legend;
  CPlacePreview m_Preview;
  bool m_bHeightsAtLast = false;

  int m_iDragButton = 0;  ///< that drags the view, as it was pressed; 0 while none does
  int m_iMouseX = 0;
  int m_iMouseY = 0;
  CPlanePoint m_DragPlace;  ///< under the mouse at the last event of the drag, without the pan
};
