#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>

#include <FL/Fl_Window.H>

#include "scissors/CScissorsTool.h"
#include "ui/seams/ToolWindow.h"

class CGrid;
class CScissorsCanvas;
class Fl_Box;
class ScissorsHost;

/// The window of the intelligent scissors: a copy of the photograph on which contours are traced.
///
/// Left click: next key point; with Ctrl the first one of a new contour. Enter: end the contour at the cursor; with
/// Ctrl close it. Ctrl + Z: take the last key point back. Right drag: move the picture. Ctrl + "=" and Ctrl + "-":
/// zoom, as does Ctrl + wheel; Ctrl + "0": the whole picture, reduced if it is large, and back. "c": show and hide the
/// curves that the model has. BackSpace: remove the selected contour. A status line shows the pixel under the mouse,
/// and the progress while the paths of a large picture are being looked for.
class CScissorsView : public Fl_Window, public ToolWindow {
 public:
  /// Both must outlive the window. It is built closed.
  CScissorsView(CGrid& grid, ScissorsHost& host);
  ~CScissorsView() override;
  CScissorsView(const CScissorsView&) = delete;
  CScissorsView& operator=(const CScissorsView&) = delete;

  bool IsOpen() const override { return m_pTool != nullptr; }
  /// Takes the grid's photograph. Without one, with one that is too large (CScissorsTool::kMostSide, or for the
  /// memory), and while it is open, nothing happens.
  void Open() override;
  void Close() override;
  /// Closes it: the contours belong to the picture that has gone.
  void PictureLoaded() override { Close(); }

  /// Nothing while the window is closed.
  CScissorsTool* Tool() { return m_pTool.get(); }
  const CPixelViewport& Viewport() const { return *m_Viewport; }
  bool ShowsCurves() const { return m_bCurves; }
  const char* StatusText() const { return m_Status.c_str(); }

  /// It keeps its size for the next opening.
  void resize(int x, int y, int w, int h) override;

 private:
  static void cb_Window(Fl_Widget* widget, void* data);
  static void cb_Idle(void* view);
  static void cb_Check(void* view);

  bool OnEvent(int event);
  bool OnKey();
  bool OnWheel();
  bool OnZoomKey(int key);
  bool OnContourKey(int key, bool control);
  void ShowCurves(bool shown);
  void FindMouse();
  void OnPush();
  void OnMove();
  void ExportContour();
  /// Has the toolkit call for the next slice exactly while there is something to build.
  void ScheduleSlices();
  void BuildSlice();
  void FitViewport();
  /// The visible pixel under the mouse; nothing beside the picture and while the mouse is elsewhere.
  std::optional<CPixelPosition> PixelUnderMouse() const;
  void SelectUnderMouse();
  void ShowCursor();
  void ShowStatus();

  CGrid& m_Grid;
  ScissorsHost& m_Host;
  CScissorsCanvas* m_pCanvas = nullptr;
  Fl_Box* m_pStatusBox = nullptr;
  std::string m_Status;
  std::unique_ptr<CScissorsTool> m_pTool;
  std::optional<CPixelViewport> m_Viewport;
  CPixelPosition m_Mouse;  ///< last place of the mouse on the canvas
  bool m_bMouseInside = false;
  bool m_bPanning = false;
  bool m_bScheduled = false;
  bool m_bCurves = false;      ///< those of the model are shown
  std::uint64_t m_uEdits = 0;  ///< of the model whose curves were drawn
};
