#include "ui/window/Controls.h"

namespace {

using enum Control;
using Kind = ControlKind;

constexpr auto kHidden = StartState::kHidden;
constexpr auto kInactive = StartState::kInactive;
constexpr auto kOn = StartState::kOn;
constexpr Control kTop = Control::Window;

}  // namespace

// clang-format off
const std::array<CControlRow, kControlCount> kControls{{
  // control, kind, parent, column, geometry, label, help, label size, text size, label room, start state, value
  {MenuBar, Kind::MenuBar, kTop, Column::Window, {0, 0, 870, 20}, "", -1, 14, 14, 0, 0, 0},
  {ImageView, Kind::ImageView, kTop, Column::Window, {2, 23, 430, 430}, "", -1, 14, 14, 0, 0, 0},
  {ModelView, Kind::ModelView, kTop, Column::Window, {438, 23, 430, 430}, "", 19, 14, 14, 0, 0, 0},
  {HelpLine, Kind::HelpLine, kTop, Column::Window, {0, 639, 870, 20}, "", -1, 14, 9, 0, 0, 0},

  {LeftPanel, Kind::Panel, kTop, Column::Left, {0, 456, 435, 180}, "", -1, 14, 14, 0, 0, 0},
  {Constraints, Kind::Group, LeftPanel, Column::Constraints, {5, 476, 140, 66}, "Constraints:", -1, 12, 14, 0, 0, 0},
  {PositionConstraint, Kind::RoundRadio, Constraints, Column::Constraints, {5, 478, 140, 20}, "Position constraint", 2, 12, 14, 0, 0, 0},
  {NormalConstraint, Kind::RoundRadio, Constraints, Column::Constraints, {5, 498, 140, 20}, "Normal constraint", 3, 12, 14, 0, 0, 0},
  {CurveConstraint, Kind::RoundRadio, Constraints, Column::Constraints, {5, 518, 140, 20}, "Curve constraint", 4, 12, 14, 0, 0, 0},
  {CurveType, Kind::Group, LeftPanel, Column::CurveType, {260, 476, 168, 80}, "Curve Constraint Type :", -1, 12, 14, 0, 0, 0},
  {PositionDiscontinuity, Kind::HelpRadio, CurveType, Column::CurveType, {265, 481, 158, 18}, "[p] Position discontinuity", 5, 12, 14, 0, 0, 0},
  {NormalDiscontinuity, Kind::HelpRadio, CurveType, Column::CurveType, {265, 505, 158, 18}, "[n] Normal discontinuity", 6, 12, 14, 0, 0, 0},
  {FairnessConstraint, Kind::HelpRadio, CurveType, Column::CurveType, {265, 529, 158, 18}, "[f] Fairness constraint", 7, 12, 14, 0, 0, 0},
  {Popup, Kind::Button, LeftPanel, Column::SmallButtons, {150, 458, 38, 30}, "Popup", -1, 10, 14, 0, 0, 0},
  {NormalTest, Kind::Toggle, LeftPanel, Column::SmallButtons, {195, 458, 38, 30}, "Normal\ntest", -1, 10, 14, 0, 0, 0},
  {Select, Kind::HelpToggle, LeftPanel, Column::SmallButtons, {150, 493, 38, 30}, "Select", 10, 10, 14, 0, 0, 0},
  {Freeze, Kind::HelpToggle, LeftPanel, Column::SmallButtons, {195, 493, 38, 30}, "Freeze", 9, 10, 14, 0, kHidden, 0},
  {ResetImageView, Kind::HelpButton, LeftPanel, Column::SmallButtons, {150, 526, 83, 30}, "Reset\nthe\n2D view", 1, 10, 14, 0, 0, 0},
  {ConstraintCount, Kind::NumberOutput, LeftPanel, Column::Left, {90, 545, 40, 15}, "Number of\nactive constraints", -1, 9, 10, 84, 0, 0},
  {DebugZone, Kind::Text, LeftPanel, Column::Left, {15, 565, 80, 18}, "DEBUG ZONE:", -1, 10, 14, 0, 0, 0},
  {CellCount, Kind::NumberOutput, LeftPanel, Column::Left, {203, 565, 50, 18}, "Number of\nactive cells", -1, 9, 12, 64, 0, 0},
  {PointCount, Kind::NumberOutput, LeftPanel, Column::Left, {203, 600, 50, 18}, "Number of\nactive points", -1, 9, 12, 130, 0, 0},
  {HorizontalCoefs, Kind::Toggle, LeftPanel, Column::CurveType, {273, 558, 50, 32}, "HORIZ\nCOEFS", -1, 10, 14, 0, 0, 0},
  {VerticalCoefs, Kind::Toggle, LeftPanel, Column::CurveType, {325, 558, 50, 32}, "VERT\n COEFS", -1, 10, 14, 0, 0, 0},
  {TorsionCells, Kind::Toggle, LeftPanel, Column::CurveType, {377, 558, 50, 32}, "TORSION\nCELLS", -1, 10, 14, 0, 0, 0},
  {ShowLevel, Kind::Toggle, LeftPanel, Column::CurveType, {377, 592, 50, 42}, "SHOW\nH LEVEL", -1, 10, 14, 0, 0, 0},
  {Influence, Kind::CaptionedNumber, LeftPanel, Column::CurveType, {315, 600, 50, 18}, "Influence of\ncurrent point", -1, 9, 11, 60, kHidden, 0},
  {Level, Kind::NumberOutput, LeftPanel, Column::CurveType, {315, 600, 50, 18}, "H level", -1, 9, 12, 54, kHidden, 0},
  {PointNumber, Kind::NumberOutput, LeftPanel, Column::Left, {203, 600, 50, 18}, "H-Numerotation of\nselected point", -1, 9, 12, 130, kHidden, -1},
  {TestInterpolation, Kind::Toggle, LeftPanel, Column::Left, {15, 600, 50, 30}, "TEST\nINTERP", -1, 10, 14, 0, 0, 0},
  {PointerInside, Kind::Lamp, LeftPanel, Column::Left, {120, 565, 14, 14}, "", -1, 10, 14, 0, kInactive, 0},
  {Interpolation, Kind::Panel, LeftPanel, Column::Left, {68, 594, 205, 40}, "", -1, 14, 14, 0, kHidden, 0},
  {CentreName, Kind::TextOutput, Interpolation, Column::Left, {160, 595, 50, 12}, "P1 : Number & coef", -1, 9, 9, 88, 0, 0},
  {FirstNumber, Kind::NumberOutput, Interpolation, Column::Left, {160, 608, 50, 12}, "P2 : Number & coef", -1, 9, 9, 88, 0, 0},
  {SecondNumber, Kind::NumberOutput, Interpolation, Column::Left, {160, 621, 50, 12}, "P3 : Number & coef", -1, 9, 9, 88, 0, 0},
  {CentreCoef, Kind::NumberOutput, Interpolation, Column::Left, {212, 595, 60, 12}, "", -1, 9, 9, 0, 0, 0},
  {FirstCoef, Kind::NumberOutput, Interpolation, Column::Left, {212, 608, 60, 12}, "", -1, 9, 9, 0, 0, 0},
  {SecondCoef, Kind::NumberOutput, Interpolation, Column::Left, {212, 621, 60, 12}, "", -1, 9, 9, 0, 0, 0},

  {RightPanel, Kind::Panel, kTop, Column::Right, {435, 456, 435, 180}, "", -1, 14, 14, 0, 0, 0},
  {ResetModelView, Kind::HelpButton, RightPanel, Column::Resets, {767, 513, 100, 49}, "Reset\nthe 3D view", 14, 14, 14, 0, 0, 0},
  {ResetSolver, Kind::HelpButton, RightPanel, Column::Resets, {767, 460, 100, 49}, "Reset\nthe solver", 15, 14, 14, 0, 0, 0},
  {TestWavelets, Kind::Button, RightPanel, Column::Solver, {685, 584, 80, 49}, "Test\nW*invW", -1, 14, 14, 0, 0, 0},
  {Interfaces, Kind::Group, RightPanel, Column::Interfaces, {440, 476, 155, 66}, "Interfaces", -1, 12, 14, 0, 0, 0},
  {LightSources, Kind::HelpLight, Interfaces, Column::Interfaces, {444, 480, 146, 18}, "Light sources", 11, 12, 14, 0, kHidden, 0},
  {Recorder, Kind::HelpLight, Interfaces, Column::Interfaces, {444, 504, 146, 18}, "Record an animation", 12, 12, 14, 0, 0, 0},
  {Scissors, Kind::HelpLight, Interfaces, Column::Interfaces, {444, 504, 146, 18}, "Intelligent scissors", 13, 12, 14, 0, kInactive, 0},
  {SwitchResolution, Kind::HelpButton, RightPanel, Column::Solver, {685, 460, 80, 49}, "Switch to HR", 16, 11, 14, 0, 0, 0},
  {SolverRun, Kind::Panel, RightPanel, Column::Solver, {600, 513, 165, 49}, "", -1, 14, 14, 0, 0, 0},
  {StopSolver, Kind::HelpRadio, SolverRun, Column::Solver, {600, 513, 165, 24}, "Stop the solver", 17, 14, 14, 0, 0, 0},
  {ResumeSolver, Kind::HelpRadio, SolverRun, Column::Solver, {600, 538, 165, 24}, "Resume the solver", 18, 14, 14, 0, kOn, 0},
  {Iterations, Kind::NumberOutput, RightPanel, Column::Solver, {650, 565, 50, 16}, "Number of Iterations", -1, 12, 12, 200, 0, 0},
  {Slower, Kind::Button, RightPanel, Column::Solver, {705, 565, 16, 16}, "-", -1, 14, 14, 0, 0, 0},
  {Faster, Kind::Button, RightPanel, Column::Solver, {722, 565, 16, 16}, "+", -1, 14, 14, 0, 0, 0},
}};
// clang-format on

bool IsInDebugZone(Control control) {
  if (control == TestWavelets) return true;
  const bool isTool = control == Select || control == Freeze || control == ResetImageView;
  return control >= Popup && control <= SecondCoef && !isTool;
}
