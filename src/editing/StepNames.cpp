#include "editing/StepNames.h"

#include "model/CSketch.h"

namespace {

const char* NameOf(CurveType type) {
  switch (type) {
    case CurveType::kPosition:
      return "tear";
    case CurveType::kNormal:
      return "crease";
    case CurveType::kFairness:
      return "fairness curve";
    default:
      return "curve";
  }
}

const char* NameOf(Edit edit) {
  switch (edit) {
    case Edit::AddPoint:
      return "add point";
    case Edit::AddAlongCurve:
      return "heights along a curve";
    case Edit::MovePoint:
      return "move point";
    case Edit::MoveHeight:
      return "move height";
    case Edit::TurnSlope:
      return "turn slope";
    case Edit::DeletePoint:
      return "delete point";
    case Edit::MoveHeights:
      return "move heights";
    case Edit::DeletePoints:
      return "delete points";
    case Edit::DrawCurve:
      return "curve point";
    case Edit::GiveUpCurve:
      return "give up curve";
    case Edit::MoveNode:
      return "move node";
    case Edit::SetCurveType:
      return "curve type";
    case Edit::SetCurveAttributes:
      return "curve attributes";
    case Edit::ExportConstraints:
      return "export constraints";
    case Edit::DeleteNode:
      return "delete node";
    case Edit::DeleteCurve:
      return "delete curve";
    case Edit::RefineCell:
      return "refine cell";
    case Edit::SplitCells:
      return "split cells";
    case Edit::MergeCells:
      return "merge cells";
    case Edit::SetLight:
      return "light";
    case Edit::SetTone:
      return "soft light";
    case Edit::LoadReference:
      return "load reference depth";
    case Edit::RemoveReference:
      return "remove reference depth";
    case Edit::SetReferenceStrength:
      return "strength of reference depth";
    case Edit::SetReferenceOption:
    case Edit::SetReferenceValues:
      return "reference depth";
    case Edit::SwitchResolution:
      return "switch resolution";
    case Edit::ResetSolver:
      return "Reset the solver";
    case Edit::NewGrid:
      return "New Grid";
    case Edit::FitPicture:
      return "Grid in the Picture's Proportions";
    case Edit::LoadGrid:
      return "Load Grid";
    case Edit::OpenProject:
      return "Open Project";
    case Edit::RecoverWork:
      return "Recover Unsaved Work";
    default:
      return "curve";
  }
}

}  // namespace

const char* StepName(Edit edit, const CSketch& before, const CSketch& after) {
  const bool made = edit == Edit::AddCurve || edit == Edit::EndCurve;
  if (made && after.m_Curves.size() > before.m_Curves.size()) return NameOf(after.m_Curves.back().Type());
  return NameOf(edit);
}
