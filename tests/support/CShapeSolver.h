#pragma once

#include <array>
#include <cstddef>
#include <span>
#include <vector>

#include <Eigen/QR>

#include "solver/CGridSolver.h"
#include "support/DirectSolution.h"

/// A solver of its own over the surface of a grid, whose energy counts from a shape.
class CShapeSolver {
 public:
  /// Performs what waits in the grid, which must outlive the solver.
  explicit CShapeSolver(CGrid& grid) : m_Grid(grid), m_Solver(grid.Surface().Basis(), m_Random) {
    grid.PerformPendingWork();
  }

  /// Values by scan position, and what makes heights of them. The coefficients stay where they are.
  void SetShape(const std::vector<double>& values, const CRestShape& shape) {
    CSurface& surface = m_Grid.Surface();
    m_Solver.Assemble(surface.Tree(), surface.Interpolation(), m_Grid.Constraints().Curves(), values);
    m_Solver.SetConstraints(Lists(), surface.Tree(), surface.Interpolation());
    m_Solver.SetRestShape(shape);
  }
  /// Ticks until the solver stops itself; whether the surface is then the one asked for.
  bool Converge(int ticks = 20000) {
    const ConsoleCapture console;
    m_afX.resize(m_Grid.Surface().Basis().Size());
    for (; ticks > 0 && !m_Solver.HasStopped(); --ticks) m_Solver.Tick(m_afX, 10, nullptr);
    return m_Solver.HasConverged();
  }
  /// By scan position: where the iteration has come to, and what it must come to for a shape of these heights.
  std::vector<double> Heights() const {
    std::vector<double> heights(m_afX.size());
    m_Grid.Surface().Basis().invW(m_afX, heights);
    return heights;
  }
  std::vector<double> DirectHeights(const std::vector<double>& shape) const {
    CDirectSystem system(m_Grid.Surface().Tree());
    system.SetConstraints(Lists());
    system.SetShape(shape);
    return system.Solve();
  }
  /// Heights in one cell may depend on each other, and a factorisation means nothing then.
  bool HasIndependentRows() const {
    CDirectSystem system(m_Grid.Surface().Tree());
    system.SetConstraints(Lists());
    const Eigen::MatrixXd rows = Eigen::MatrixXd(system.C()).transpose();
    return Eigen::ColPivHouseholderQR<Eigen::MatrixXd>(rows).rank() == rows.cols();
  }
  std::size_t PointCount() const { return m_Grid.Surface().Order().Count(); }
  CGridSolver& Solver() { return m_Solver; }
  std::vector<double>& Coefficients() { return m_afX; }

 private:
  std::array<const CPtCstrList*, 2> Lists() const {
    return {&m_Grid.Constraints().Points(), &m_Grid.Constraints().Generated()};
  }

  CGrid& m_Grid;
  CRandom m_Random{1};
  CGridSolver m_Solver;
  std::vector<double> m_afX;
};

/// Largest distance of two lists of heights, as a share of the range of the second.
inline double ErrorOf(const std::vector<double>& heights, const std::vector<double>& wanted) {
  if (wanted.empty()) return HUGE_VAL;
  const auto [lowest, highest] = std::ranges::minmax(wanted);
  return LargestDifference(heights, wanted) / (highest - lowest);
}
