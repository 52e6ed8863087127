#pragma once

#include <cstddef>
#include <span>
#include <vector>

/// A full matrix of few columns, column by column.
class CSmallMatrix {
 public:
  CSmallMatrix() = default;
  /// All entries 0.
  CSmallMatrix(std::size_t rows, std::size_t columns)
      : m_uRows(rows), m_uColumns(columns), m_afValues(rows * columns) {}

  /// Its size, its entries, and its columns.
  std::size_t Rows() const { return m_uRows; }
  std::size_t Columns() const { return m_uColumns; }
  double& At(std::size_t row, std::size_t column) { return m_afValues[column * m_uRows + row]; }
  double At(std::size_t row, std::size_t column) const { return m_afValues[column * m_uRows + row]; }
  std::span<double> Column(std::size_t column) { return std::span(m_afValues).subspan(column * m_uRows, m_uRows); }
  std::span<const double> Column(std::size_t column) const {
    return std::span(m_afValues).subspan(column * m_uRows, m_uRows);
  }
  /// out = matrix times v, and out += that. Allocate nothing.
  void Times(std::span<const double> v, std::span<double> out) const;
  void AddTimes(std::span<const double> v, std::span<double> out) const;

 private:
  std::size_t m_uRows = 0;
  std::size_t m_uColumns = 0;
  std::vector<double> m_afValues;
};

/// The right singular vectors of a matrix, the columns of an orthogonal one, and how long the images of each are.
struct CRightSingular {
  CSmallMatrix m_Vectors;
  std::vector<double> m_afLengths;

  /// Whether the matrix takes vector `k` for 0: its image is shorter than a share `tolerance` of the longest.
  bool IsNull(std::size_t k, double tolerance) const;
};

/// By rotations of pairs of columns until all are perpendicular [Hestenes1958]. Also small singular values come out to
/// their last digits as far as the scale of the columns lets them. Cubic in the columns.
CRightSingular FindRightSingular(CSmallMatrix matrix);

/// The matrix that takes what a symmetric positive semidefinite one has made of a vector back to the shortest such
/// vector: its pseudo-inverse, with eigenvalues below `least` taken for 0.
CSmallMatrix PseudoInverse(const CSmallMatrix& symmetric, double least);

/// Rows of a matrix as they come, held as a triangle of as many rows as there are columns; what it does to a vector has
/// the same length.
class CRowTriangle {
 public:
  /// Of no row yet.
  explicit CRowTriangle(std::size_t columns) : m_Triangle(columns, columns) {}
  /// Takes the row in by plane rotations; it is used up. Quadratic in the columns.
  void Add(std::span<double> row);
  const CSmallMatrix& Triangle() const { return m_Triangle; }

 private:
  CSmallMatrix m_Triangle;
};
