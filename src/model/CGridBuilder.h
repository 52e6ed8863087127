#pragma once

#include <span>

#include "lattice/WaveletMode.h"

class CConstraints;
class CGridReference;
class CGridRun;
class CGridSolver;
class CSurface;
class CWantedSubdivisions;

/// Brings tree, maps, numbering and system up to the wanted subdivision and the constraints, and has the iteration
/// start afresh where the coefficients change. A rebuild leaves the surface as it is at every point in use
/// afterwards.
class CGridBuilder {
 public:
  /// All of them must outlive the builder.
  CGridBuilder(CSurface& surface, const CWantedSubdivisions& wanted, CConstraints& constraints,
               CGridReference& reference, CGridSolver& solver, CGridRun& run)
      : m_Surface(surface),
        m_Wanted(wanted),
        m_Constraints(constraints),
        m_Reference(reference),
        m_Solver(solver),
        m_Run(run) {}

  /// Rebuilds the tree from the wanted subdivision, the discontinuity maps and the whole system.
  void SetDiscMap();
  /// Rebuilds the tree from the wanted subdivision, and numbers its points.
  void ReplaySubdivision();
  /// Numbers the points of the present subdivision and sets the coefficients from the height array.
  void BuildHNumerotation();
  /// Sets up the system: with the solver's counter at -1 renumbers the points, assembles the matrix and sets the
  /// counter to 0; in any case rebuilds the constraint rows and fits the reference to the heights.
  void SetSparseH();
  /// Converts the coefficients to the basis of `mode`.
  void SetWaveletMode(WaveletMode mode);
  /// Gives the unknowns, in their order, new heights in place of those of both resolutions.
  void SetHeights(std::span<const double> heights);

 private:
  void RasteriseCurves();

  CSurface& m_Surface;
  const CWantedSubdivisions& m_Wanted;
  CConstraints& m_Constraints;
  CGridReference& m_Reference;
  CGridSolver& m_Solver;
  CGridRun& m_Run;
};
