#include "insight/SmallMatrix.h"

#include <algorithm>
#include <cmath>
#include <limits>
#include <numeric>
#include <utility>

namespace {

// Two columns are perpendicular when the cosine between them is below this, which is rounding.
constexpr double kPerpendicular = 1e-15;
// Rounds over all pairs. Six to ten do; what rounding keeps turning is as good as done.
constexpr int kMostSweeps = 40;

double Dot(std::span<const double> a, std::span<const double> b) {
  return std::transform_reduce(a.begin(), a.end(), b.begin(), 0.0);
}

void Rotate(std::span<double> a, std::span<double> b, double c, double s) {
  for (std::size_t i = 0; i < a.size(); ++i) {
    const double before = a[i];
    a[i] = c * before - s * b[i];
    b[i] = s * before + c * b[i];
  }
}

// Turns the two columns, and the vectors with them, until they are perpendicular. Whether they had not been.
bool Part(CSmallMatrix& matrix, CSmallMatrix& vectors, std::size_t p, std::size_t q) {
  const double pp = Dot(matrix.Column(p), matrix.Column(p));
  const double qq = Dot(matrix.Column(q), matrix.Column(q));
  const double pq = Dot(matrix.Column(p), matrix.Column(q));
  if (!(std::abs(pq) > kPerpendicular * std::sqrt(pp * qq))) return false;
  // The smaller root of t^2 + 2 zeta t = 1, t the tangent of the angle.
  const double zeta = (qq - pp) / (2.0 * pq);
  const double t = std::copysign(1.0, zeta) / (std::abs(zeta) + std::hypot(1.0, zeta));
  const double c = 1.0 / std::hypot(1.0, t);
  Rotate(matrix.Column(p), matrix.Column(q), c, c * t);
  Rotate(vectors.Column(p), vectors.Column(q), c, c * t);
  return true;
}

}  // namespace

void CSmallMatrix::Times(std::span<const double> v, std::span<double> out) const {
  std::ranges::fill(out, 0.0);
  AddTimes(v, out);
}

void CSmallMatrix::AddTimes(std::span<const double> v, std::span<double> out) const {
  for (std::size_t j = 0; j < m_uColumns; ++j) {
    for (std::size_t i = 0; i < m_uRows; ++i) out[i] += At(i, j) * v[j];
  }
}

bool CRightSingular::IsNull(std::size_t k, double tolerance) const {
  return !(m_afLengths[k] > tolerance * std::ranges::max(m_afLengths));
}

CRightSingular FindRightSingular(CSmallMatrix matrix) {
  const std::size_t n = matrix.Columns();
  CRightSingular found{CSmallMatrix(n, n), std::vector<double>(n)};
  for (std::size_t k = 0; k < n; ++k) found.m_Vectors.At(k, k) = 1.0;
  bool turned = true;
  for (int sweep = 0; turned && sweep < kMostSweeps; ++sweep) {
    turned = false;
    for (std::size_t p = 0; p < n; ++p) {
      for (std::size_t q = p + 1; q < n; ++q) turned = Part(matrix, found.m_Vectors, p, q) || turned;
    }
  }
  for (std::size_t k = 0; k < n; ++k) found.m_afLengths[k] = std::sqrt(Dot(matrix.Column(k), matrix.Column(k)));
  return found;
}

CSmallMatrix PseudoInverse(const CSmallMatrix& symmetric, double least) {
  const std::size_t n = symmetric.Columns();
  const CRightSingular own = FindRightSingular(symmetric);
  CSmallMatrix inverse(n, n);
  for (std::size_t k = 0; k < n; ++k) {
    if (!(own.m_afLengths[k] > least)) continue;
    const std::span<const double> v = own.m_Vectors.Column(k);
    for (std::size_t i = 0; i < n; ++i) {
      for (std::size_t j = 0; j < n; ++j) inverse.At(i, j) += v[i] * v[j] / own.m_afLengths[k];
    }
  }
  return inverse;
}

void CRowTriangle::Add(std::span<double> row) {
  for (std::size_t k = 0; k < row.size(); ++k) {
    if (row[k] == 0.0) continue;
    const double length = std::hypot(m_Triangle.At(k, k), row[k]);
    const double c = m_Triangle.At(k, k) / length;
    const double s = row[k] / length;
    for (std::size_t j = k; j < row.size(); ++j) {
      const double before = m_Triangle.At(k, j);
      m_Triangle.At(k, j) = c * before + s * row[j];
      row[j] = c * row[j] - s * before;
    }
    row[k] = 0.0;
  }
}
