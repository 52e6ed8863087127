#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include "base/CPicture.h"

/// The photograph and the two images computed from it, padded to sizes that a graphics card takes.
///
/// All three have the same size: the smallest powers of two not below the sides of the picture. The picture lies in the
/// lower left corner, what is beside and above it is white. Rows run from the bottom, RGB bytes, TextureWidth() pixels
/// each.
class CTextureImages {
 public:
  /// Which of the images.
  enum Which : std::size_t {
    kPhotograph = 0,
    kKd = 1,            ///< the photograph freed of the removed lights; the photograph itself until that is computed
    kIllumination = 2,  ///< the same under the added lights
  };

  /// The smallest power of two not below `side` (1 for sides below 2).
  static int PaddedSide(int side);

  /// Takes up a new picture: all three images show it. Where there is no memory for them it throws std::bad_alloc and
  /// the images stay as they were.
  void SetPicture(const CPicture& picture);

  /// Sizes in pixels; all are 0 without a picture. A texture is the picture padded to powers of two.
  bool HasPicture() const { return m_iTextureWidth > 0; }
  int PictureWidth() const { return m_iPictureWidth; }
  int PictureHeight() const { return m_iPictureHeight; }
  int TextureWidth() const { return m_iTextureWidth; }
  int TextureHeight() const { return m_iTextureHeight; }

  /// The photograph without what is beside and above it. Throws std::bad_alloc.
  CPicture Photograph() const;

  /// Red, green and blue of each texel, row by row, row 0 at the bottom.
  std::span<const std::uint8_t> Image(Which which) const { return m_aaImages[which]; }
  /// For writing; `MarkChanged` when done.
  std::span<std::uint8_t> Image(Which which) { return m_aaImages[which]; }
  void MarkChanged(Which which) { ++m_auRevisions[which]; }
  /// Grows with every change of the image, so that it need be sent to the graphics card only then.
  unsigned Revision(Which which) const { return m_auRevisions[which]; }

 private:
  int m_iPictureWidth = 0;
  int m_iPictureHeight = 0;
  int m_iTextureWidth = 0;
  int m_iTextureHeight = 0;
  std::array<std::vector<std::uint8_t>, 3> m_aaImages;
  std::array<unsigned, 3> m_auRevisions{};
};
