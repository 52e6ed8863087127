#pragma once

#include <string>
#include <utility>
#include <vector>

#include "editing/CEditHistory.h"
#include "editing/CEditingHost.h"
#include "editing/HistoryHost.h"
#include "editing/ModelDisplay.h"
#include "support/ConstraintBuilders.h"
#include "support/CurveBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/WindowBuilders.h"

/// A window that remembers the steps that it was told of.
class RecordingHistoryHost : public HistoryHost {
 public:
  bool IsDragging() const override { return m_bDragging; }
  bool IsTyping() const override { return m_bTyping; }
  CSurroundings Surroundings() const override { return m_Surroundings; }
  void StepTaken(const CTakenStep& step) override {
    m_asTaken.push_back((step.m_bUndone ? "undone " : "done ") + step.m_Name);
    m_bLights = step.m_bLightsChanged;
    m_bRectangle = step.m_bRectangleChanged;
    if (step.m_pRestored != nullptr) m_Surroundings = *step.m_pRestored;
  }
  void StepFailed() override { m_asTaken.emplace_back("failed"); }

  bool m_bDragging = false;
  bool m_bTyping = false;
  CSurroundings m_Surroundings;
  std::vector<std::string> m_asTaken;
  bool m_bLights = false;
  bool m_bRectangle = false;
};

/// A display that shows nothing.
class BlankDisplay : public ModelDisplay {
 public:
  void RequestRedraw() override {}
  void ShowInterpolation(const CInterpolationTrace& /*trace*/) override {}
  void SetNumberIter(int /*n*/) override {}
  void SetNumberOfConstraints(int /*n*/) override {}
  void SetNumberOfCells(int /*n*/) override {}
  void SetNumberOfPoints(int /*n*/) override {}
  void TellSolverGaveUp() override {}
  void TellSolverStopped() override {}
  void ProcessEvents() override {}
};

/// A grid with commands and a history, in which time is told; no tick is registered.
struct CTestHistory {
  CTestHistory() {
    m_Commands.AttachGrid(Grid());
    m_Services.m_AskNewGrid = [this](const CGrid&) { return m_NewGrid; };
    m_Commands.SetServices(m_Services);
    m_GridHost.AttachGrid(Grid());
    m_GridHost.AttachHistory(m_History);
    m_History.AttachGrid(Grid());
  }
  ~CTestHistory() {
    g_nSolverTimers = 0;
    g_fPickTolerance = 1.0;
  }
  CTestHistory(const CTestHistory&) = delete;
  CTestHistory& operator=(const CTestHistory&) = delete;

  CGrid& Grid() { return m_Test.Grid(); }
  /// What the toolkit does once per round.
  void Round() {
    m_GridHost.PerformPendingWork(m_Host.m_bDragging);
    m_History.Settle(m_Host.m_bDragging);
  }
  void Step(UserStep step) {
    m_History.Request(step);
    Round();
  }
  void Undo() { Step(UserStep::Undo); }
  void Redo() { Step(UserStep::Redo); }
  std::size_t Count() const { return m_History.Steps().UndoCount(); }
  std::vector<std::string> Taken() { return std::exchange(m_Host.m_asTaken, {}); }
  void NewGrid(int level, const CExtent& extent, bool keep = false) {
    m_NewGrid = CGridParameters{level, extent, keep};
    m_Commands.Request(Operation::kNewGrid);
  }

  CTestSolver m_Test;
  ScriptedHost m_CommandHost;
  BlankDisplay m_Display;
  RecordingHistoryHost m_Host;
  double m_fTime = 0.0;
  std::optional<CGridParameters> m_NewGrid;
  CModelServices m_Services;
  CGridCommands m_Commands{m_CommandHost, m_Test.m_Solver};
  CEditHistory m_History{m_Host, m_Test.m_Solver, [this] { return m_fTime; }};
  CEditingHost m_GridHost{m_Display, m_Test.m_Solver, m_Commands};
};
