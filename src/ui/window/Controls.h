#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

/// Everything that lies in the main window. Groups come before what is in them; what comes later is drawn on top.
enum class Control : std::size_t {
  MenuBar,
  ImageView,
  ModelView,
  HelpLine,
  LeftPanel,
  Constraints,
  PositionConstraint,
  NormalConstraint,
  CurveConstraint,
  CurveType,
  PositionDiscontinuity,
  NormalDiscontinuity,
  FairnessConstraint,
  Popup,
  NormalTest,
  Select,
  Freeze,
  ResetImageView,
  ConstraintCount,
  DebugZone,
  CellCount,
  PointCount,
  HorizontalCoefs,
  VerticalCoefs,
  TorsionCells,
  ShowLevel,
  Influence,
  Level,
  PointNumber,
  TestInterpolation,
  PointerInside,
  Interpolation,
  CentreName,
  FirstNumber,
  SecondNumber,
  CentreCoef,
  FirstCoef,
  SecondCoef,
  RightPanel,
  ResetModelView,
  ResetSolver,
  TestWavelets,
  Interfaces,
  LightSources,
  Recorder,
  Scissors,
  SwitchResolution,
  SolverRun,
  StopSolver,
  ResumeSolver,
  Iterations,
  Slower,
  Faster,
  Window,  ///< the window itself, the parent of what is in no group
};

inline constexpr std::size_t kControlCount = static_cast<std::size_t>(Control::Window);

/// A rectangle in pixels from the window's upper left corner.
struct CRect {
  int x = 0;
  int y = 0;
  int w = 0;
  int h = 0;

  /// The first column to the right and the first row below.
  int Right() const { return x + w; }
  int Bottom() const { return y + h; }
  friend bool operator==(const CRect&, const CRect&) = default;
};

/// What widget a control is made as.
enum class ControlKind {
  MenuBar,
  ImageView,
  ModelView,
  HelpLine,
  Panel,            ///< a group without a frame
  Group,            ///< a group with a frame and its label above
  HelpButton,       ///< help-aware push button
  HelpToggle,       ///< help-aware button that stays down
  HelpLight,        ///< help-aware button with a lamp
  HelpRadio,        ///< help-aware button with a lamp, one of its group
  RoundRadio,       ///< help-aware round button, one of its group
  Button,           ///< push button
  Toggle,           ///< button that stays down
  Lamp,             ///< small button that only shows a state
  Text,             ///< box with a label
  NumberOutput,     ///< read-out with its label on the left
  CaptionedNumber,  ///< read-out with its label below
  TextOutput,
};

/// What the horizontal place of a control goes by when the window's width changes.
enum class Column { Window, Left, Constraints, SmallButtons, CurveType, Right, Interfaces, Solver, Resets };

/// Start states other than visible, active and off.
namespace StartState {
inline constexpr std::uint32_t kHidden = 1;
inline constexpr std::uint32_t kInactive = 2;
inline constexpr std::uint32_t kOn = 4;
}  // namespace StartState

/// One control as it is in the window of kDesignWidth by kDesignHeight pixels.
struct CControlRow {
  Control m_Control = Control::Window;
  ControlKind m_Kind = ControlKind::Panel;
  Control m_Parent = Control::Window;
  Column m_Column = Column::Window;
  CRect m_Design;
  const char* m_pLabel = "";
  int m_iHelp = -1;      ///< index of its help text, -1 for none
  int m_iLabelSize = 0;  ///< largest size of the label, pixels; it is set smaller where the text does not fit
  int m_iTextSize = 0;   ///< size of what an output shows
  int m_iLabelRoom = 0;  ///< width that a label beside or below an output may take, pixels
  std::uint32_t m_uStart = 0;
  double m_fValue = 0;  ///< what a read-out shows at the start
};

inline constexpr int kDesignWidth = 870;
inline constexpr int kDesignHeight = 660;
inline constexpr int kMinDesignWidth = 800;
inline constexpr int kMinDesignHeight = 190;

/// The rows, in the order of `Control`.
extern const std::array<CControlRow, kControlCount> kControls;

/// Its place in the table, and its row there.
inline constexpr std::size_t Index(Control control) { return static_cast<std::size_t>(control); }
inline const CControlRow& RowOf(Control control) { return kControls[Index(control)]; }

/// Whether the control belongs to the debug zone, which can be hidden as a whole.
bool IsInDebugZone(Control control);
