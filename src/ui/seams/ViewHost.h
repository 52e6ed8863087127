#pragma once

#include <string>

#include "constraints/CCntrCtrl.h"
#include "ui/seams/HelpTexts.h"
#include "ui/seams/ViewMoves.h"

struct CPlanePoint;

/// What the two views ask of the window around them.
class ViewHost {
 public:
  virtual ~ViewHost() = default;

  /// Hold the solver during a drag or a command, and let it go on afterwards.
  virtual void PauseSolverForCommand() = 0;
  virtual void ResumeAfterCommand() = 0;

  /// Help line: show text `index`; go back to the text that stays.
  virtual void ShowHelp(HelpText::Index index) = 0;
  virtual void RestoreHelp() = 0;
  /// Show text `index` and make it the one that stays.
  virtual void SetCurrentHelp(HelpText::Index index) { ShowHelp(index); }
  /// Show a message (FormatHelp) in the help line until the text that stays is restored.
  virtual void ShowMessage(const std::string& /*text*/) {}
  /// The same, and as a line on the console, because the help line may be hidden.
  virtual void Tell(const std::string& /*text*/) {}

  /// The type of new curves is another now.
  virtual void ShowCurveType(CurveType /*type*/) {}
  /// Let the user edit the attributes of the curve at a place, as soon as no step of the solver is under way.
  virtual void EditCurveAttributes(const CPlanePoint& /*place*/) {}

  /// Open the window with the numbers of what is selected.
  virtual void OpenConstraintValues() {}
  /// The user wants to choose no group any more.
  virtual void EndChoosing() {}

  /// Draw the left view again, soon.
  virtual void RedrawImageView() = 0;
  /// The image view has switched its grid on by itself.
  virtual void ImageGridShown() {}
  virtual void RedrawModelView() = 0;
  virtual void FocusImageView() = 0;
  /// A key that moves a view was typed: true where the pointer is over the right view, which then has gone there.
  virtual bool MoveModelView(ViewMove /*move*/) { return false; }

  /// Whether the debug zone is on show, so that its read-outs are worth keeping up to date.
  virtual bool ShowsDebugZone() const = 0;
  /// Whether the point under the mouse lies inside the picture.
  virtual void ShowPointerInside(bool inside) = 0;
  /// Term of the nearest point or cell ("Influence of current point"), number and level code of the nearest point.
  virtual void ShowInfluence(double value) = 0;
  virtual void ShowNumber(int number, int levelCode) = 0;
  /// The light that drags turn while no digit is held, 0 to 3; any other number for none.
  virtual int CurrentLight() const { return -1; }
  /// A drag has turned lights of the grid: what was computed from them is out of date.
  virtual void LightsMoved() {}
  /// Whether the place under the mouse is shown; the mouse is over a place of the model (model units), or over none of
  /// it where this is null.
  virtual bool ShowsCoordinates() const { return false; }
  virtual void ShowCoordinates(const CPlanePoint* /*place*/) {}
  /// A message box that the user has to acknowledge; ends every drag.
  virtual void Notice(const char* text) = 0;
};
