#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "base/ExportProgress.h"
#include "mesh/CCutTriangulation.h"

class CTearPatch;

/// Which corners of the triangles of a patch are one point of the surface, and which triangles one piece of it.
///
/// A vertex has one copy per group of triangles around it that no cut side parts; each copy has a height of its own.
/// Two triangles belong to one piece where a way leads from one to the other through sides that are not cut.
class CTearSides {
 public:
  /// As the patch is now. Not whole where `steps` do not go on.
  explicit CTearSides(const CTearPatch& patch, const CExportSteps& steps = {});

  /// Copies, numbered from 0: that of a triangle's corner, its vertex, and whether the solver has its height: it is a
  /// lattice point with a leaf edge that is not cut, on that side of the tear, or the centre of a leaf that is in none.
  std::size_t CopyCount() const { return m_auVertices.size(); }
  std::uint32_t CopyOf(std::uint32_t t, std::uint32_t k) const { return m_auCopies[3 * t + k]; }
  std::uint32_t VertexOf(std::uint32_t copy) const { return m_auVertices[copy]; }
  bool IsKnown(std::uint32_t copy) const { return m_abKnown[copy]; }
  /// One triangle at the copy.
  std::uint32_t TriangleAt(std::uint32_t copy) const { return m_auTriangles[copy]; }
  /// Numbers of pieces, from 0.
  std::size_t PieceCount() const { return m_uPieces; }
  std::uint32_t PieceOf(std::uint32_t t) const { return m_auPieces[t]; }

 private:
  // Numbers that are found to belong together.
  class CGroups {
   public:
    explicit CGroups(std::size_t count);
    std::uint32_t Find(std::uint32_t k);
    void Join(std::uint32_t a, std::uint32_t b);

   private:
    std::vector<std::uint32_t> m_auParents;
  };

  static std::vector<bool> VerticesAtCuts(const CTearPatch& patch);
  static bool JoinCorners(const CTearPatch& patch, const std::vector<bool>& atCut, CGroups& groups,
                          const CExportSteps& steps);
  bool FindCopies(const CTearPatch& patch, const std::vector<bool>& atCut, CGroups& groups, const CExportSteps& steps);
  void FindPieces(const CTearPatch& patch, const CExportSteps& steps);
  void SpreadPiece(const CTearPatch& patch, std::uint32_t first);

  std::vector<std::uint32_t> m_auCopies;     ///< by triangle and corner
  std::vector<std::uint32_t> m_auVertices;   ///< by copy
  std::vector<std::uint32_t> m_auTriangles;  ///< by copy
  std::vector<bool> m_abKnown;               ///< by copy
  std::vector<std::uint32_t> m_auPieces;     ///< by triangle
  std::size_t m_uPieces = 0;
  std::vector<std::uint32_t> m_auLeft;  ///< triangles of the piece in hand that lead on
};
