#pragma once

#include <string>
#include <vector>

#include <FL/Fl.H>
#include <FL/Fl_Window.H>

#include "drawing/CTextures.h"
#include "support/BmpBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/gui/ToolkitTest.h"
#include "ui/imageview/CImageView.h"
#include "ui/seams/ViewHost.h"

inline constexpr int kLeftButton = FL_LEFT_MOUSE;
inline constexpr int kMiddleButton = FL_MIDDLE_MOUSE;
inline constexpr int kRightButton = FL_RIGHT_MOUSE;

/// Remembers what a view asked of the window around it.
class CRecordingViewHost : public ViewHost {
 public:
  void PauseSolverForCommand() override { ++m_iPauses; }
  void ResumeAfterCommand() override { ++m_iResumptions; }
  void ShowHelp(HelpText::Index /*index*/) override {}
  void RestoreHelp() override { ++m_iHelpsRestored; }
  void SetCurrentHelp(HelpText::Index index) override { m_aiHelps.push_back(index); }
  void ShowMessage(const std::string& text) override { m_aMessages.push_back(text); }
  void Tell(const std::string& text) override { m_aTold.push_back(text); }
  void ShowCurveType(CurveType type) override { m_aiCurveTypes.push_back(static_cast<int>(type)); }
  void EditCurveAttributes(const CPlanePoint& place) override { m_aAttributePlaces.push_back(place); }
  void RedrawImageView() override { ++m_iImageRedraws; }
  void RedrawModelView() override { ++m_iModelRedraws; }
  void FocusImageView() override {}
  void OpenConstraintValues() override { ++m_iValuesOpened; }
  void EndChoosing() override { ++m_iChoosingEnds; }
  bool ShowsDebugZone() const override { return m_bDebugZone; }
  void ShowPointerInside(bool inside) override { m_abInside.push_back(inside); }
  void ShowInfluence(double value) override { m_afInfluences.push_back(value); }
  void ShowNumber(int number, int levelCode) override {
    m_iNumber = number;
    m_iLevelCode = levelCode;
  }
  void Notice(const char* text) override { m_aNotices.emplace_back(text); }

  int m_iPauses = 0;
  int m_iResumptions = 0;
  int m_iImageRedraws = 0;
  int m_iModelRedraws = 0;
  int m_iHelpsRestored = 0;
  std::vector<std::string> m_aMessages;
  std::vector<std::string> m_aTold;
  std::vector<int> m_aiHelps;  ///< texts that stay
  std::vector<int> m_aiCurveTypes;
  std::vector<CPlanePoint> m_aAttributePlaces;
  bool m_bDebugZone = false;
  std::vector<bool> m_abInside;
  std::vector<double> m_afInfluences;
  int m_iValuesOpened = 0;
  int m_iChoosingEnds = 0;
  int m_iNumber = -2;
  int m_iLevelCode = -2;
  std::vector<std::string> m_aNotices;
};

/// An image view over a grid on 0..100 by 0..100, and the mouse and keys in it.
///
/// The view has 100 x 100 pixels, so that at zoom 1 the pixel (x, y) stands for the place (x + 0.5, 99.5 - y). The
/// mouse below is told places of the model.
class ImageViewTest : public ToolkitTest {
 protected:
  static constexpr int kSize = 100;

  ImageViewTest() {
    Grid().Initialize(2, false, 0, 0, 100, 100);
    m_pView = new CImageView(0, 0, kSize, kSize);
    m_Window.end();
    m_pView->AttachTextures(m_Textures);
    m_Grid.m_Console.Take();
  }
  void Attach() { m_pView->AttachGrid(Grid(), m_Host); }
  CImageView& View() { return *m_pView; }
  std::string TakeConsole() { return m_Grid.m_Console.Take(); }

  static int PixelX(double x) { return static_cast<int>(x - 0.5); }
  static int PixelY(double y) { return static_cast<int>(99.5 - y); }

  int SendAt(int event, double x, double y) {
    Fl::e_x = PixelX(x);
    Fl::e_y = PixelY(y);
    return View().handle(event);
  }
  int Move(double x, double y, int state = 0) {
    Fl::e_state = state;
    Fl::e_keysym = 0;
    return SendAt(FL_MOVE, x, y);
  }
  /// Hovers there first, as a mouse does.
  int Push(int button, double x, double y, int state = 0) {
    Move(x, y, state);
    return PushWithoutHovering(button, x, y, state);
  }
  int PushWithoutHovering(int button, double x, double y, int state = 0) {
    Fl::e_state = state;
    Fl::e_keysym = FL_Button + button;
    return SendAt(FL_PUSH, x, y);
  }
  /// With a key gone down since the press, so that the toolkit no longer knows the button.
  int Drag(double x, double y) {
    Fl::e_keysym = 'q';
    return SendAt(FL_DRAG, x, y);
  }
  int Release(int button = FL_LEFT_MOUSE) {
    Fl::e_keysym = FL_Button + button;
    return View().handle(FL_RELEASE);
  }
  int Key(int key, int state = 0) {
    Fl::e_state = state;
    Fl::e_keysym = key;
    return View().handle(FL_KEYBOARD);
  }
  int Wheel(int dy) {
    Fl::e_dy = dy;
    return View().handle(FL_MOUSEWHEEL);
  }

  CGlobalScope<double> m_Zoom{g_fZoom, 1.0};
  CGlobalScope<double> m_Tolerance{g_fPickTolerance, 1.0};
  CTextures m_Textures;
  CRecordingViewHost m_Host;
  Fl_Window m_Window{kSize, kSize, "image view test"};
  CImageView* m_pView = nullptr;  ///< owned by the window
};
