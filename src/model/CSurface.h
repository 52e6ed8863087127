#pragma once

#include <array>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "lattice/CLattice.h"
#include "lattice/WaveletMode.h"
#include "model/CSurfaceState.h"
#include "quadtree/CPointOrder.h"
#include "quadtree/CQuadTree.h"
#include "quadtree/Interpolation.h"
#include "solver/CHierarchicalBasis.h"

class CRandom;

/// The height field: the lattice, the tree over it, the numbers of the points in use and their heights, as coefficients
/// of the hierarchical basis and as they are.
///
/// Whatever is rebuilt, the surface stays as it was at every point in use afterwards: it is captured at all lattice
/// points before the tree first changes, and taken from the capture by the next numbering. What the solver holds of a
/// numbering or of a basis is for the grid to renew.
class CSurface {
 public:
  /// With a lattice of that level and nothing else: `Initialize` follows before any use.
  explicit CSurface(int maxLevel) : m_Lattice(maxLevel) {}
  CSurface(const CSurface&) = delete;
  CSurface& operator=(const CSurface&) = delete;
  ~CSurface() = default;

  // Beginning and end. `Initialize`, `SetExtent` and `ResetTree` follow each other.

  /// Starts over at a maximum level with all heights 0 and no point numbered. Begins with what has been set aside for
  /// that level, and allocates otherwise only if the level is another.
  void Initialize(int maxLevel);
  /// The rectangle of the lattice.
  void SetExtent(const CExtent& extent);
  /// Subdivides the tree, which is replaced for another maximum level, to `baseLevel` everywhere.
  void ResetTree(int baseLevel);
  /// Frees the arrays; `Initialize` must follow.
  void Free();
  /// Sets aside the memory that the next `Initialize` needs for this maximum level, while the present surface stays as
  /// it is. Throws std::bad_alloc, with nothing changed.
  void Reserve(int maxLevel);
  bool HasReserve(int maxLevel) const { return m_pReserve != nullptr && m_pReserve->m_Lattice.Level() == maxLevel; }
  void DropReserve() { m_pReserve.reset(); }
  /// Bytes that `Reserve` sets aside for a level at most.
  static double BytesOf(int maxLevel);

  // The subdivision and the numbering.

  /// Captures the surface and rebuilds the tree from a wanted subdivision. `BuildHNumerotation` must follow.
  void Replay(const CSubdivisionRecord& wanted, int baseLevel);
  /// Numbers the points of the present subdivision and sets the coefficients from the surface captured or, where none
  /// is, from the height array.
  void BuildHNumerotation();
  /// Switches to the other resolution, with its own surface or, with `transfer`, with the present one; the resolution
  /// left keeps its surface. A replay must follow, which takes up the heights.
  void SwapResolution(bool transfer);
  /// The surface of both resolutions as a value. Linear in the number of lattice points.
  CSurfaceState State() const;
  /// Takes over the mode and the surfaces of both resolutions; on a lattice of another size, the mode alone. A replay
  /// must follow, which takes the heights up.
  void Restore(const CSurfaceState& state);
  /// Number of unknowns.
  int ActivePointCount() const { return static_cast<int>(m_Order.Count()); }

  // Heights and coefficients.

  /// The basis that the coefficients belong to.
  WaveletMode Mode() const { return m_Mode; }
  /// Converts the coefficients to the basis of `mode`.
  void SetWaveletMode(WaveletMode mode);
  /// Coefficients of the unknowns, in the point order.
  std::span<double> Coefficients() { return std::span(m_pfWaveCoefGrid).first(m_Order.Count()); }
  std::span<const double> Coefficients() const { return std::span(m_pfWaveCoefGrid).first(m_Order.Count()); }
  /// Random coefficients in [0, limit], for as many points as the lattice has.
  void Randomise(CRandom& random, double limit);
  /// Heights, normals and height range from the coefficients.
  void Reconstruct();
  /// Gives the unknowns, in their order, new heights in place of those of both resolutions.
  void SetHeights(std::span<const double> heights);
  /// Largest difference between heights through the compiled inverse transform and back through the tree walk; logged.
  double TestWavelets();
  /// Height at fractional lattice indices; 0 outside.
  double HeightAt(double column, double row) const { return Interpolation().HeightAt(column, row); }
  /// Range of the heights at points in use, model units.
  double MinHeight() const { return m_fMinHeight; }
  double MaxHeight() const { return m_fMaxHeight; }
  /// Grows with every reconstruction; what is drawn of the surface is remade only then.
  std::uint64_t Revision() const { return m_uRevision; }

  // What it is made of.

  /// Points, subdivision, numbering and basis; an interpolation refers to them and holds nothing itself.
  CLattice& Lattice() { return m_Lattice; }
  const CLattice& Lattice() const { return m_Lattice; }
  CQuadTree& Tree() { return *m_pTree; }
  const CQuadTree& Tree() const { return *m_pTree; }
  const CPointOrder& Order() const { return m_Order; }
  const CHierarchicalBasis& Basis() const { return m_Basis; }
  CInterpolation Interpolation() const { return {*m_pTree, m_Order}; }

 private:
  /// What the next `Initialize` begins with instead of allocating it.
  struct CReserve {
    explicit CReserve(int maxLevel) : m_Lattice(maxLevel) {}
    CLattice m_Lattice;
    CPointOrder m_Order;
    std::array<std::vector<double>, 4> m_aSurfaces;
    std::unique_ptr<CQuadTree> m_pTree;  ///< only for another level than that of the present tree, which stays
  };

  std::array<std::vector<double>*, 4> Surfaces() {
    return {&m_pfWaveCoefGrid, &m_afNodalHeights, &m_afPresentSurface, &m_afOtherSurface};
  }
  void TakeReserve(int maxLevel);
  void Capture();
  void ScatterNodalHeights();
  void HeightsChanged();
  void RecomputeHeightRange();

  CLattice m_Lattice;
  std::unique_ptr<CQuadTree> m_pTree;
  std::unique_ptr<CReserve> m_pReserve;
  CPointOrder m_Order;
  CHierarchicalBasis m_Basis;
  WaveletMode m_Mode = WaveletMode::New;

  // One entry per lattice point, so that no renumbering allocates.
  std::vector<double> m_pfWaveCoefGrid;  ///< by unknown
  std::vector<double> m_afNodalHeights;  ///< by scan position
  // By lattice point. The whole surface as it was before the tree last changed, valid while m_bCaptured, and that of
  // the other resolution when it was left.
  std::vector<double> m_afPresentSurface;
  std::vector<double> m_afOtherSurface;
  bool m_bCaptured = false;
  double m_fMinHeight = 0.0;
  double m_fMaxHeight = 0.0;
  std::uint64_t m_uRevision = 0;
};
