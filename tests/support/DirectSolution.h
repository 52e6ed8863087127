#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <map>
#include <optional>
#include <span>
#include <vector>

#include <Eigen/Core>
#include <Eigen/SparseCore>

#include "support/GridBuilders.h"

/// The smoothness energy and the constraint rows of a subdivision, formed a second time from their definitions and
/// solved by factorisation in plain heights: what the product's matrices and its converged surface must be.
///
/// Of the tree only the active leaves and the flag words of the cells are read, of its lattice the extent and the
/// crease flags. Points, edges, marks, areas, neighbours and interpolation follow from the leaves. The unknowns are the
/// heights at the points in use, row by row.
class CDirectSystem {
 public:
  using CForm = std::map<int, double>;  ///< coefficients by unknown

  explicit CDirectSystem(const CQuadTree& tree);

  /// The matrix of the energy: z^T H z is the sum of the weighted squares.
  const Eigen::SparseMatrix<double>& H() const { return m_H; }
  /// The area around every lattice point, in lattice steps squared.
  std::span<const double> Areas() const { return m_afAreas; }

  /// Replaces the constraint rows by those of the records in the lists: all heights, then all normals.
  void SetConstraints(std::span<const CPtCstrList* const> lists);
  const Eigen::SparseMatrix<double>& C() const { return m_C; }
  const Eigen::VectorXd& Targets() const { return m_Targets; }

  /// The height at (x, y), model units, as a form of the unknowns; nothing outside.
  std::optional<CForm> HeightForm(double x, double y) const;

  /// The energy counts from a shape with these heights (one per unknown, not a number for none): terms with a point
  /// that has none count from the plane.
  void SetShape(std::span<const double> heights);
  const Eigen::VectorXd& Load() const { return m_Load; }

  /// [H C^T; C 0], over the heights and the multipliers.
  Eigen::SparseMatrix<double> Bordered() const;
  /// The heights that minimise the energy under the constraints. The rows must be independent of each
  /// other and determine every plane; otherwise the answer is empty or means nothing.
  std::vector<double> Solve() const;

 private:
  using CPoint = std::array<int, 2>;  ///< column, row
  using CEntries = std::vector<Eigen::Triplet<double>>;
  struct CRefLeaf {
    int m_iX0;
    int m_iY0;
    int m_iSize;
    std::uint32_t m_uFlags;
    double CentreX() const { return m_iX0 + 0.5 * m_iSize; }
    double CentreY() const { return m_iY0 + 0.5 * m_iSize; }
  };
  struct CSegment {  ///< from a point in use to the next one, to the right or upwards
    CPoint m_A;
    CPoint m_B;
    bool IsHorizontal() const { return m_A[1] == m_B[1]; }
  };
  struct CRow {
    CForm m_Form;
    double m_fTarget;
  };
  struct CTerm {
    double m_fWeight;
    CForm m_Form;
  };

  std::size_t Index(const CPoint& p) const {
    return static_cast<std::size_t>(p[1]) * static_cast<std::size_t>(m_iSide) + static_cast<std::size_t>(p[0]);
  }
  int Number(const CPoint& p) const { return m_aiNumbers[Index(p)]; }
  double X(int column) const { return m_Extent.x0 + column * (m_Extent.x1 - m_Extent.x0) / (m_iSide - 1); }
  double Y(int row) const { return m_Extent.y0 + row * (m_Extent.y1 - m_Extent.y0) / (m_iSide - 1); }
  double Column(double x) const { return (x - m_Extent.x0) / (m_Extent.x1 - m_Extent.x0) * (m_iSide - 1); }
  double Row(double y) const { return (y - m_Extent.y0) / (m_Extent.y1 - m_Extent.y0) * (m_iSide - 1); }

  void CollectLeaves(const CQuadTree& tree);
  std::vector<CPoint> PointsOnSide(const CRefLeaf& leaf, int side) const;
  std::vector<CSegment> SegmentsOfSide(const CRefLeaf& leaf, int side) const;
  bool IsCut(const CQuadTree& tree, const CSegment& segment) const;

  void AddAreas(const CRefLeaf& leaf, const CSegment& segment);
  void AddTwist(const CRefLeaf& leaf);
  void AddSecondDifference(const CSegment& before, const CSegment& after);
  void FormEnergy(const CQuadTree& tree);

  CForm CentreForm(const CRefLeaf& leaf) const;
  std::optional<CForm> FormInTriangle(const CRefLeaf& leaf, const CSegment& segment, double gx, double gy) const;
  const CRefLeaf* LeafHolding(double gx, double gy) const;
  void AppendNormalRows(const CPtCstr& constraint, std::vector<CRow>& rows) const;

  int m_iSide;
  int m_iUnknowns = 0;
  CExtent m_Extent;
  std::vector<CRefLeaf> m_aLeaves;
  // By lattice point.
  std::vector<bool> m_abCorner;  ///< whether it is a corner of a leaf
  std::vector<bool> m_abCrease;
  std::vector<int> m_aiNumbers;  ///< of the unknown; meaningful at corners of leaves
  std::vector<double> m_afAreas;
  std::vector<CTerm> m_aTerms;
  Eigen::SparseMatrix<double> m_H;
  Eigen::VectorXd m_Load;
  Eigen::SparseMatrix<double> m_C;
  Eigen::VectorXd m_Targets;
};

/// The rows as a full matrix of `columns` columns; values of one column in a row add up.
Eigen::MatrixXd Dense(const CCompressedRows& rows, std::size_t columns);

/// The values at the points in use, row by row, of an array with one entry per lattice point.
std::vector<double> InUse(const CLattice& lattice, std::span<const double> byPoint);

/// Gives the grid a map of random values to follow, which bends the surface between any two points.
void FollowRandomMap(CGrid& grid, std::uint32_t seed, double strength = 1.0);
/// The heights, one per unknown, that the energy of the grid counts from by now; empty without a map.
std::vector<double> ShapeHeights(CGrid& grid);

/// A grid to be solved, over its own extent, whose console lines are collected.
struct CSolverGrid {
  explicit CSolverGrid(int maxLevel, int baseLevel, const CExtent& extent = CExtent{},
                       WaveletMode mode = WaveletMode::New);

  /// Ticks until the solver clears the running flag; false where it has not done so after `ticks`, or has given up.
  bool Converge(int ticks = 20000);
  /// The heights at the points in use, row by row, that the present constraints, subdivision and map ask for.
  std::vector<double> DirectHeights();
  /// Largest distance of the surface from the given heights, as a share of their range.
  double ErrorAgainst(const std::vector<double>& heights) const;

  CResolutionScope m_Scope;
  ConsoleCapture m_Console;
  CGrid m_Grid;
};
