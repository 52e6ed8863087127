#pragma once

#include <array>
#include <cstddef>
#include <initializer_list>
#include <string>
#include <string_view>

/// The texts of the help line, by index. Those from HelpText::kFirstMessage on are messages: they come up by
/// themselves, leave open what %1, %2 and so on stand for, and never become the text that stays, but for an offer.
inline constexpr std::array kHelpTexts{
    "",
    "Reset the left view",
    "Left-click on the left window to create new position constraints. Left-click and drag to move them, Right click "
    "and "
    "drag to change the height",
    "Left-click on the left window to create new normal constraints. Left-click and drag to move them, Right click and "
    "drag to change the orientation",
    "Left-click on the left window to start creating a curve. Right click on an existing curve do modify its "
    "parameters.",
    "Create Position Discontinuities to deal with depth gaps",
    "Create Normal Discontinuities to render sharp edges",
    "Create Fairing curves to smoothen the model along a line",
    "Left-Click on the left window to go on creating a piece-wise linear curve. Press Enter to validate it, or Escape "
    "to "
    "cancel it",
    "This feature hasn't been fully implemented yet",
    "Use this tool to modify the grid resolution manually",
    "Use this feature to extract and modify the illumination of the model",
    "Use this feature to record and save an animation",
    "Use this feature to draw discontinuities easier using intelligent scissors",
    "Reset the right view",
    "Reset the solver by setting the height field to 0",
    "Switch between normal grid resolution and highest grid resolution",
    "Manualy stop the solver",
    "Manualy resume the solver",
    "Click and drag to change the 3D view : left-click and right-click to rotate, middle-click to zoom",
    "Frame nb %4d recorded.",
    "Choose the type of the curve first: type p, n or f, or click on one of the three types. Then press Enter again.",
    "The solver has given up: the surface is not what the constraints ask for. It goes on when you change one of them.",
    "height %1",
    "height %1, was %2",
    "slope (%1, %2)",
    "slope (%1, %2), was (%3, %4)",
    "The solver is stopped: Resume the solver lets it go on",
    "%1. It has no effect, because it lies %2",
    "%1 is saved",
    "What was dropped is no file of this machine",
    "Unsaved work of %1 is kept: File, Recover Unsaved Work",
    "Undone: %1",
    "Done again: %1",
    "There is not the memory to go that step: the model stays as it is",
    "File, Grid in the Picture's Proportions, begins a grid that does not stretch this picture",
    "Cancelled: %1 is not written",
    "%1 is saved without the reference depth, which a project keeps",
    "%1 heights placed along the curve",
    "%1 heights placed along the curve, %2 left out",
    "Open a photograph (Alt+Shift+O, or drop it here), choose Position constraint, and click",
    "This curve has no influence of its own: only heights, slopes and curves with auto bump have one",
    "This photograph carries a depth map: Edit, Reference Depth, takes it",
    "Click on the position constraint whose height the selected one is to have, or press Escape",
    "There is no other position constraint at that place: click on one, or press Escape",
    "What Live computes is seen with Show New Illumination, or with Show Kd texture",
};

/// Indices of the texts that are not tied to a button. The table of controls has those of the buttons as numbers.
namespace HelpText {
/// Rows of `kHelpTexts`.
enum Index : int {
  kNone = 0,
  kPositions = 2,
  kNormals = 3,
  kCurves = 4,
  kCurveInProgress = 8,
  kSelectCells = 10,
  kModelView = 19,
  kFrameRecorded = 20,  ///< a format that takes the number of the frame
  kFirstMessage = 21,
  kCurveTypeWanted = 21,  ///< a curve is to end, but its type has not been chosen
  kSolverGaveUp = 22,     ///< the solver has stopped itself without having converged
  kHeight = 23,           ///< what a position constraint asks for
  kHeightDragged = 24,    ///< the same, and what the surface had there when the drag began
  kSlope = 25,            ///< dz/dx and dz/dy
  kSlopeDragged = 26,
  kSolverStopped = 27,
  kNoEffect = 28,  ///< what a constraint asks for, and why the system does not know it
  kSaved = 29,
  kNoFileDropped = 30,
  kUnsavedWork = 31,  ///< when work of an earlier run was changed last that no file holds
  kStepUndone = 32,   ///< what has been taken back
  kStepRedone = 33,   ///< what has been done again
  kStepFailed = 34,
  kFitOffered = 35,  ///< after a picture that the grid stretches
  kCancelled = 36,   ///< an export that the user wanted no more
  kSavedWithoutReference = 37,
  kHeightsAlong = 38,     ///< how many have been placed
  kHeightsAlongBut = 39,  ///< and how many would have had no effect
  kFirstStep = 40,        ///< what to do at the start
  kNoInfluence = 41,
  kDepthOffered = 42,  ///< after a photograph with one
  kHeightWanted = 43,  ///< of the constraint that is clicked next
  kNoHeightThere = 44,
  kLiveUnseen = 45,  ///< the light follows, but the model does not show it
};
}  // namespace HelpText

/// The text of an index; the empty one for an index that has none.
inline constexpr const char* HelpTextOf(int index) {
  const bool known = index >= 0 && static_cast<std::size_t>(index) < kHelpTexts.size();
  return known ? kHelpTexts[static_cast<std::size_t>(index)] : kHelpTexts.front();
}

/// The text of an index with each %1, %2 ... replaced by the value of that place.
std::string FormatHelp(HelpText::Index index, std::initializer_list<std::string_view> values = {});
/// The same in place of `text`, whose memory is used again.
void FormatHelp(std::string& text, HelpText::Index index, std::initializer_list<std::string_view> values);

/// A number as the help line shows it: at most six digits, the same under every locale, and 0 for what is less than a
/// billionth of `unit`, the size that matters.
std::string HelpNumber(double value, double unit);
