#pragma once

#include <functional>
#include <span>
#include <string>
#include <utility>
#include <vector>

#include "model/CGrid.h"
#include "model/Globals.h"
#include "support/ConstraintBuilders.h"
#include "support/GridBuilders.h"

/// Gives a process-wide variable a value for one test and puts the old one back.
template <typename T>
class CGlobalScope {
 public:
  CGlobalScope(T& variable, T value) : m_Variable(variable), m_Old(std::exchange(variable, value)) {}
  ~CGlobalScope() { m_Variable = m_Old; }
  CGlobalScope(const CGlobalScope&) = delete;
  CGlobalScope& operator=(const CGlobalScope&) = delete;

 private:
  T& m_Variable;
  T m_Old;
};

/// Lets the solver process events between its steps.
class CPollingScope : public CGlobalScope<int> {
 public:
  CPollingScope() : CGlobalScope(g_bNoEventPolling, 0) {}
};

/// The host of a grid for as long as it lives. Resumes the grid after a change, as the program does, and acts as told
/// when the grid lets it process events or perform a command.
class CActingHost : public RecordingHost {
 public:
  explicit CActingHost(CGrid& grid) : m_Grid(grid) { grid.Run().AttachHost(this); }
  ~CActingHost() override { m_Grid.Run().AttachHost(nullptr); }
  CActingHost(const CActingHost&) = delete;
  CActingHost& operator=(const CActingHost&) = delete;

  void ProcessEvents() override {
    RecordingHost::ProcessEvents();
    if (m_OnEvents) m_OnEvents(m_iEventRounds);
  }
  void PerformCommand(Operation operation) override {
    RecordingHost::PerformCommand(operation);
    if (m_OnCommand) m_OnCommand(CodeOf(operation));
  }
  void ResumeAfterChange() override {
    RecordingHost::ResumeAfterChange();
    m_Grid.Run().SetRunning(true);
  }

  std::function<void(int round)> m_OnEvents;  ///< rounds count from 1
  std::function<void(int operation)> m_OnCommand;

 private:
  CGrid& m_Grid;
};

/// Ticks until the grid stops itself, at most `ticks` times. Whether it did.
inline bool RunUntilPaused(CGrid& grid, int ticks = 1000) {
  for (; grid.Run().IsRunning() && ticks > 0; --ticks) grid.UpdateGrid();
  return !grid.Run().IsRunning();
}

/// A tick that ends before its first iteration: the system is set up and the iteration started.
inline void StartIteration(CGrid& grid) {
  const CPollingScope polling;
  CActingHost host(grid);
  host.m_OnEvents = [&grid](int round) {
    if (round == 2) grid.Run().Post(Operation::kSaveGrid);
  };
  grid.UpdateGrid();
  host.m_OnEvents = nullptr;
  grid.PerformPendingWork();
}

/// Three heights and a slope on `kOblong` that determine one surface.
inline std::vector<CPtCstr> SomeConstraints() {
  return {HeightCstr(0.5, 21.25, 1), HeightCstr(10, 22, -2), HeightCstr(3, 25, 3), SlopeCstr(6, 23.5, 0.25, -0.5)};
}
inline void AddAll(CGrid& grid, const std::vector<CPtCstr>& constraints) {
  for (const CPtCstr& c : constraints) grid.AddPtCstr(c);
}

/// A grid that has converged on `SomeConstraints`.
struct CConvergedGrid : CTestGrid {
  explicit CConvergedGrid(int maxLevel = 4, int baseLevel = 2) : CTestGrid(maxLevel, baseLevel) {
    AddAll(m_Grid, SomeConstraints());
    RunUntilPaused(m_Grid);
    m_Console.Take();
  }
};

/// Height of the surface at (x, y), model units.
inline double SurfaceHeight(const CGrid& grid, double x, double y) {
  return grid.GetHeightAt(grid.Surface().Lattice().ColumnOf(x), grid.Surface().Lattice().RowOf(y));
}

inline std::vector<double> Copied(std::span<const double> values) { return {values.begin(), values.end()}; }

/// How often `part` occurs in `text`.
inline int Occurrences(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + part.size())) ++count;
  return count;
}
