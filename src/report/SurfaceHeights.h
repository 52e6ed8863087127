#pragma once

#include <vector>

class CGrid;

/// The heights of the surface by scan position (see CPointOrder), in which the system is written; model units.
std::vector<double> HeightsByScan(const CGrid& grid);

/// From the lowest to the highest of some heights, model units.
struct CHeightRange {
  double m_fLow = 0.0;
  double m_fHigh = 0.0;
};

/// Of the triangles in no tear. What tears have left over has no height of its own: it stays where the surface began.
/// Of all points where nothing is drawn.
CHeightRange DrawnRange(const CGrid& grid);

/// Half of z^T H z, which the surface minimises under its constraints.
double EnergyOf(const CGrid& grid);
/// The same by the point where it sits, by scan position, without that along fairness curves; they sum to the rest. The
/// system must have been built.
std::vector<double> BendingByScan(const CGrid& grid);
/// BendingByScan over the area around each point: the density of bending, per model unit squared.
std::vector<double> BendingDensity(const CGrid& grid);
