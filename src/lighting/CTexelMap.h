#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "base/Vector3.h"
#include "quadtree/CInterpCoefs.h"

/// Where the texels of the picture lie on the surface: per texel its interpolation record, its normal, and whether it
/// lies in a discontinuity. All in row order, index = row * width + column, row 0 at the bottom.
///
/// Records and mask are of one subdivision. Every pass first brings them up to the present one, so that none reads
/// coefficients of an earlier tree; as long as the tree does not change no pass touches it. Records and normals are
/// asked for when a pass first needs them, and the mask with the first texel in a discontinuity: most pictures are
/// never relit, and the records of a large one take up much more than the picture. Where there is no memory the passes
/// throw std::bad_alloc before they have changed anything.
class CTexelMap {
 public:
  /// What the record and the normal of one texel take up.
  static constexpr std::size_t kBytesPerTexel = sizeof(CInterpCoefs) + sizeof(Vector3);

  CTexelMap() = default;
  /// For a picture of `width` x `height` texels, all with the normal (0, 0, 1), which stands for the present
  /// subdivision until a pass has run.
  CTexelMap(int width, int height, const CInterpolation& surface);

  /// Of the picture, pixels.
  int Width() const { return m_iWidth; }
  int Height() const { return m_iHeight; }

  /// Asks for the memory of records and normals, as the passes would; none is taken where it does not do for both.
  /// Throws std::bad_alloc.
  void Reserve();
  /// Bytes that `Reserve` would ask for.
  double Missing() const;

  /// Puts records and normals back to what they were at construction.
  void InitializeCoords(const CInterpolation& surface);
  /// Recomputes the mask: one step per leaf and one per texel in a discontinuity. Throws std::bad_alloc, the mask empty
  /// then, where its memory is not there.
  void TestDiscontinuities(const CInterpolation& surface);
  /// Coefficients and normal of every texel outside the mask. One that cannot be found keeps its normal, with two
  /// console lines. Linear in the number of texels, with one descent of the tree per leaf that a row crosses.
  void ComputeCoefs(const CInterpolation& surface);
  /// The normal of every texel, in the mask or not, from the stored coefficients.
  void ComputeNormals(const CInterpolation& surface);
  /// `ComputeCoefs` if the normals are of an earlier subdivision.
  void UpdateNormals(const CInterpolation& surface);
  /// Whether `UpdateNormals` has nothing to do.
  bool HasNormalsOf(const CInterpolation& surface) const;
  /// `UpdateNormals` in pieces, for those who must not stop for all of it: the beginning, and then rows one after the
  /// other, row 0 first, with the normals of points and cells given. After the last row all is as after
  /// `UpdateNormals`. The pieces must be of one subdivision; if they end before the last row any other pass begins
  /// afresh.
  void BeginNormals(const CInterpolation& surface);
  void UpdateNormalsOfRow(const CInterpolation& surface, int row, std::span<const Vector3> points,
                          std::span<const Vector3> cells);
  /// Finds every texel again if the records are of an earlier subdivision. The normals stay.
  void UpdateRecords(const CInterpolation& surface);

  // Records and normals are empty until the first call of one of the passes above.

  /// One per texel, row by row, row 0 at the bottom, like the two below.
  std::span<const CInterpCoefs> Records() const { return m_aRecords; }
  /// Unit normals; not a number where the surface has none.
  std::span<const Vector3> Normals() const { return m_aNormals; }
  /// The normal of one texel, whose normals must be there.
  const Vector3& NormalAt(int column, int row) const { return m_aNormals[IndexOf(column, row)]; }
  /// The normal that `UpdateNormals` would give it. The search begins at `leaf`, which becomes the leaf found.
  Vector3 NextNormalAt(int column, int row, const CInterpolation& surface, const CQuadT*& leaf) const;
  /// 1 for texels in a cell with a triangle in a discontinuity, else 0; empty as long as there has been none.
  std::span<const std::uint8_t> Mask() const { return m_auMask; }
  /// Grows with every change of the normals.
  unsigned Revision() const { return m_uRevision; }
  /// Grows whenever the mask is made again.
  unsigned MaskRevision() const { return m_uMaskRevision; }

 private:
  void WriteCoords();
  void WriteCoordsOfRow(int row);
  void ComputeCoefsOfRow(const CInterpolation& surface, int row, std::span<const Vector3> points,
                         std::span<const Vector3> cells);
  void UpdateMask(const CInterpolation& surface);
  bool IsMasked(std::size_t texel) const { return !m_auMask.empty() && m_auMask[texel] != 0; }
  std::size_t IndexOf(int column, int row) const {
    return static_cast<std::size_t>(row) * static_cast<std::size_t>(m_iWidth) + static_cast<std::size_t>(column);
  }
  std::size_t TexelCount() const { return static_cast<std::size_t>(m_iWidth) * static_cast<std::size_t>(m_iHeight); }
  bool HasRecordsOf(const CInterpolation& surface) const;

  int m_iWidth = 0;
  int m_iHeight = 0;
  std::vector<CInterpCoefs> m_aRecords;
  std::vector<Vector3> m_aNormals;
  std::vector<std::uint8_t> m_auMask;
  unsigned m_uRevision = 0;
  unsigned m_uMaskRevision = 0;
  // Revisions of the tree that each array is of.
  std::optional<std::uint64_t> m_uTreeOfRecords;
  std::optional<std::uint64_t> m_uTreeOfNormals;
  std::optional<std::uint64_t> m_uTreeOfMask;
  bool m_bRecordsDue = false;  ///< in the pieces under way each texel is to be found again
  bool m_bNormalsDue = false;  ///< and is to have another normal
};
