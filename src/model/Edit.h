#pragma once

#include "model/CPendingWork.h"

/// The edits that a hand or a command makes of a document, by what its owner would call them.
enum class Edit {
  AddPoint,
  AddAlongCurve,  ///< heights along a curve
  MovePoint,
  MoveHeight,
  TurnSlope,
  DeletePoint,
  MoveHeights,   ///< of several points
  DeletePoints,  ///< several
  DrawCurve,     ///< another point of the curve in progress
  GiveUpCurve,   ///< the curve in progress
  EndCurve,      ///< the curve in progress is one of the others now, or none
  AddCurve,
  MoveNode,
  SetCurveType,
  ReleaseCurve,  ///< what was moved or given another type by a gesture takes effect
  SetCurveAttributes,
  ExportConstraints,
  DeleteNode,
  DeleteCurve,
  RefineCell,
  SplitCells,
  MergeCells,
  SetLight,
  SetTone,
  LoadReference,
  RemoveReference,
  SetReferenceStrength,
  SetReferenceOption,
  SetReferenceValues,  ///< what counts as one of its values
  SwitchResolution,
  ResetSolver,
  NewGrid,
  FitPicture,  ///< a new grid in the proportions of the picture
  LoadGrid,
  OpenProject,
  RecoverWork,
};

/// Whether the surface is another one after it, which the iteration has not led to.
constexpr bool ReplacesSurface(Edit edit) { return edit >= Edit::SwitchResolution; }

/// Whether views, recording and photograph are others after it, too.
constexpr bool ReplacesWork(Edit edit) { return edit == Edit::OpenProject || edit == Edit::RecoverWork; }

/// What an edit leaves for the next tick.
constexpr Operation PostedBy(Edit edit) {
  switch (edit) {
    case Edit::MovePoint:
    case Edit::MoveHeight:
    case Edit::MoveHeights:
    case Edit::TurnSlope:
    case Edit::SetReferenceStrength:
    case Edit::SetReferenceOption:
      return Operation::kRestart;
    case Edit::AddPoint:
    case Edit::AddAlongCurve:
    case Edit::DeletePoint:
    case Edit::DeletePoints:
    case Edit::LoadReference:
    case Edit::RemoveReference:
    case Edit::SetReferenceValues:
      return Operation::kRebuild;
    case Edit::AddCurve:
      return Operation::kNewCurve;
    case Edit::ReleaseCurve:
    case Edit::SetCurveAttributes:
    case Edit::ExportConstraints:
    case Edit::DeleteNode:
    case Edit::DeleteCurve:
    case Edit::RefineCell:
      return Operation::kRebuildMaps;
    default:
      return Operation::kNone;
  }
}

/// Whether there may be another number of active point constraints after it.
constexpr bool ChangesPointCount(Edit edit) {
  return edit == Edit::AddPoint || edit == Edit::AddAlongCurve || edit == Edit::MovePoint ||
         edit == Edit::DeletePoint || edit == Edit::DeletePoints || edit == Edit::ExportConstraints;
}
