#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include "base/Vector3.h"
#include "quadtree/CentreWeights.h"

class CEdge;
class CLattice;
class CPointOrder;
class CQuadT;
class CQuadTree;

/// A height as a linear combination of unknowns: up to eight pairs (unknown number, coefficient).
/// Pairs 0 to 5 are the nodes of the cell's centre, pairs 6 and 7 the ends of the border sub-edge; `kEmptySlot` marks
/// an unused pair.
struct CStencil {
  static constexpr std::uint32_t kEmptySlot = 0xFFFFFFFF;
  std::array<std::uint32_t, 8> m_auNodes{kEmptySlot, kEmptySlot, kEmptySlot, kEmptySlot,
                                         kEmptySlot, kEmptySlot, kEmptySlot, kEmptySlot};
  std::array<double, 8> m_afCoefs{};
};

/// Short form of an interpolation: barycentric coordinates in the triangle (A, B, centre) of one active leaf.
struct CTriangleStencil {
  const CQuadT* m_pCell = nullptr;
  std::size_t m_uA = 0;  ///< lattice index of the first end of the border sub-edge
  std::size_t m_uB = 0;  ///< and of the second
  double m_fCa = 0.0;
  double m_fCb = 0.0;
  double m_fCCenter = 0.0;

  /// Whether the point is the leaf's centre, in which no side takes part: A and B then mean nothing.
  bool IsCentre() const { return m_fCa == 0 && m_fCb == 0; }
  bool HasNegative() const { return m_fCa < 0 || m_fCb < 0 || m_fCCenter < 0; }
};

/// The unit normal at barycentric coordinates (ca, cb, cCenter) of a triangle between two points and a cell's centre
/// [Phong1975]. Not a number where a normal blended is, or where they cancel.
inline Vector3 BlendedNormal(double ca, const Vector3& a, double cb, const Vector3& b, double cCenter,
                             const Vector3& centre) {
  Vector3 sum = ca * a + cb * b;
  // On the cell's border its own normal has no part, so one that is not a number must not reach the sum.
  if (cCenter != 0) sum += cCenter * centre;
  return Normalised(sum);
}

/// What one traced interpolation was made of, for showing it: the short form and the centre's weights as they enter it.
struct CInterpolationTrace {
  CTriangleStencil m_Triangle;
  CCentreWeights m_Centre;
};

/// Heights and normals at any place of the surface over the present subdivision.
///
/// A leaf is cut into four triangles by its diagonals; inside each the surface is linear between the centre and the
/// leaf sub-edges of the side, so that it stays continuous where a finer neighbour splits the side. The centre's
/// value is that of `CentreWeightsOf`. Nothing here allocates; a look-up descends the tree once, O(level).
class CInterpolation {
 public:
  /// Both must outlive the object. The order gives the numbers of the stencils, and may be renumbered at any time.
  CInterpolation(const CQuadTree& tree, const CPointOrder& order) : m_pTree(&tree), m_pOrder(&order) {}

  /// Stencil of the height at (x, y), model units, in the first leaf in child order that holds the point. False outside
  /// the model, with `stencil` empty, and where a coefficient comes out negative. `trace`, if given, receives what the
  /// stencil was made of.
  bool GetBilinearInterpolation(double x, double y, CStencil& stencil, CInterpolationTrace* trace = nullptr) const;
  /// The same inside a given active leaf, (gx, gy) in lattice coordinates. A point outside the leaf has a negative
  /// coefficient: the answer is false and a console line is written.
  bool InterpolateInLeaf(const CQuadT& leaf, double gx, double gy, CStencil& stencil,
                         CInterpolationTrace* trace = nullptr) const;

  /// Short form inside a leaf where the ray from the centre leaves through the bottom or top side (2a), through the
  /// right or left side (2b). Nothing where it does not, and, with console lines, where a coefficient is negative.
  std::optional<CTriangleStencil> GetBilinearInterpolation2a(const CQuadT& leaf, double gx, double gy) const;
  std::optional<CTriangleStencil> GetBilinearInterpolation2b(const CQuadT& leaf, double gx, double gy) const;
  /// Short form at (gx, gy), lattice coordinates, in the leaf that `GetBilinearInterpolation` takes; nothing outside
  /// the tree. `near`, an active leaf of the present subdivision or null, saves the descent where it holds the point
  /// and never changes the answer.
  std::optional<CTriangleStencil> ShortStencil(double gx, double gy, const CQuadT* near = nullptr) const;

  /// Short form inside a given active leaf without the check of signs, which a point outside the leaf fails; nothing,
  /// with a console line, where no leaf sub-edge is met.
  std::optional<CTriangleStencil> LocateInLeaf(const CQuadT& leaf, double gx, double gy) const;

  /// Height at (gx, gy), lattice coordinates, from the lattice's height array; 0 outside the tree.
  double HeightAt(double gx, double gy) const;
  /// Heights at all lattice points (row * n + column) of the surface over the present subdivision: those of the height
  /// array at points in use, interpolated ones in between. Linear in the number of lattice points.
  void SampleLattice(std::span<double> heights) const;
  /// Height at the centre of an active leaf.
  double CentreHeight(const CQuadT& leaf) const;
  /// Height in the triangle of a short form.
  double HeightOf(const CTriangleStencil& triangle) const;
  /// Unit normal at (x, y), model units, blended from the normals of the triangle's two points and of the cell as the
  /// last `ComputeNormals` left them; (0, 0, 1), with a console line, outside the model.
  Vector3 GetNormal(double x, double y) const;
  /// Unit normal in the triangle of a short form. Not a number where the normals blended are, or where they cancel.
  Vector3 NormalOf(const CTriangleStencil& triangle) const;

  /// What it interpolates on.
  const CQuadTree& Tree() const { return *m_pTree; }
  const CLattice& Lattice() const;
  const CPointOrder& Order() const { return *m_pOrder; }

 private:
  const CQuadTree* m_pTree;
  const CPointOrder* m_pOrder;
};
