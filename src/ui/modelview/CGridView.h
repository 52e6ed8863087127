#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <utility>

#include <FL/Fl_Gl_Window.H>

#include "base/CPicture.h"
#include "drawing/CCamera.h"
#include "drawing/DisplayFlags.h"
#include "drawing/ModelPainter.h"
#include "lattice/WaveletMode.h"
#include "ui/seams/CValueMessages.h"
#include "ui/seams/ViewMoves.h"

class CGrid;
class CTextures;
class ViewHost;

/// The right view: the surface in three dimensions, which the mouse turns, rolls and zooms.
class CGridView : public Fl_Gl_Window {
 public:
  /// Place and size in the window, screen pixels.
  CGridView(int x, int y, int w, int h);

  /// The grid to show; it must outlive the view. Without one the view draws nothing. Resets the camera.
  void AttachGrid(CGrid& grid);
  /// The window around the view; it must outlive it.
  void AttachHost(ViewHost& host);
  /// Where the picture lies on the graphics card; it must outlive the view. Without it the model has no texture.
  void AttachTextures(CTextures& textures) { m_View.m_pTextures = &textures; }
  /// Has the view answer the mouse. Until then, and without a host, every event goes to the toolkit.
  void EnableEvents() { m_bEventsEnabled = true; }

  /// ModelFlag bits and the one bit of the wavelet mode.
  std::uint32_t DisplayFlags() const { return m_View.m_uFlags; }
  void SetFlag(std::uint32_t flag, bool on);
  /// Converts the attached grid to the basis of `mode` and keeps the mode among the display flags.
  void SelectWaveletMode(WaveletMode mode);
  /// Only keeps the mode among the display flags, where the grid has changed it by itself.
  void ShowWaveletMode(WaveletMode mode);
  /// One of DrawnTexture. Any other value is reported at every drawing, which then takes the
  /// texture used last.
  void SetDrawTexture(int which);
  int DrawTexture() const { return m_View.m_iDrawTexture; }
  /// Called at every drawing, before anything is drawn.
  void BeforeDrawing(std::function<void()> action) { m_BeforeDrawing = std::move(action); }

  /// What the view looks through; setting it redraws.
  const CCamera& Camera() const { return m_Camera; }
  void SetCamera(const CCamera& camera);
  /// Looks at the whole model from the front.
  void ResetCamera();
  /// Goes a tenth of what it shows to one side, or to where it shows all of the surface at this angle.
  void MoveView(ViewMove move);
  /// Ends the drag under way, if any, and lets the solver go on. For dialogs: they swallow the release of the button.
  void EndDrag();
  bool IsDragging() const { return m_iDragButton != 0; }

  /// Saves the view as it would be drawn now; false while it is not shown or if that fails.
  bool SaveFrame(const std::string& filename);
  /// What the view shows, as another camera would see it, in a picture of another size, whose shorter side shows 2 R:
  /// drawn by the answer, which the view must outlive. Nothing while the view is not shown, or where OpenGL cannot draw
  /// such pictures. The screen stays as it is.
  std::function<std::optional<CPicture>(const CCamera& camera)> DrawPictures(int width, int height);

  int handle(int event) override;

 protected:
  void draw() override;

 private:
  void ConnectMessages();
  void DrawScene(const CCamera& camera, const CHalfSizes& sizes);
  /// Of what the view shows on the screen.
  CHalfSizes Shown() const;
  bool IsProportional() const { return (m_View.m_uFlags & ModelFlag::kProportions) != 0; }
  bool HandleWheelZoom();
  int HandleInput(int event);
  void ShowCoordinates(int event) const;
  CSightLine LineUnderMouse() const;
  std::optional<Vector3> SurfaceUnderMouse() const;
  Vector3 PointUnderMouse() const;
  void BeginDrag();
  void Drag();
  void DragLeft(int dx, int dy);
  void TurnLights(int dx, int dy, bool removed, bool added);
  void TurnLight(int index, int type, int dx, int dy);
  void RaiseSelected(int dy);

  CGrid* m_pGrid = nullptr;
  ViewHost* m_pHost = nullptr;
  std::optional<CValueMessages> m_Values;  ///< as soon as there are both
  bool m_bEventsEnabled = false;
  CModelPainter::CView m_View;
  CModelPainter m_Painter;
  CCamera m_Camera;
  std::function<void()> m_BeforeDrawing;
  int m_iDragButton = 0;  ///< as it was pressed; 0 while nothing is dragged
  int m_iMouseX = 0;
  int m_iMouseY = 0;  ///< from the bottom
};
