#pragma once

#include <vector>

#include "support/gui/CScreenshot.h"

class CImageViewUI;
class CMonkey;
class Fl_Window;

/// What users of the program do more often than chance would: they edit on the picture, turn the model, open the tools
/// and press the buttons there, switch resolutions and give windows other sizes.
class CHabits {
 public:
  /// Both must outlive the object.
  CHabits(CMonkey& monkey, CImageViewUI& window) : m_Monkey(monkey), m_Window(window) {}

  /// One action, chosen at random.
  void Act();
  /// Closes all windows beside the main one.
  void CloseTools();

 private:
  void StrokeOnPicture(int button);
  void StrokeAnywhere(Fl_Window& window, int button);
  void TypeAtPicture();
  void PressControl();
  void ResizeWindow();
  void UseTool();
  void UseToolWindow(Fl_Window& tool);
  /// One of the open windows beside the main one; null if there is none.
  Fl_Window* SomeTool();

  CMonkey& m_Monkey;
  CImageViewUI& m_Window;
  std::vector<CPixel> m_aPlaces;  ///< in the image view, of the last strokes
};
