#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include "base/AreaFilter.h"
#include "base/CPicture.h"

/// How often the sides of a picture are halved: each pixel of the copy stands for 2^m_iX by 2^m_iY.
struct CHalvings {
  int m_iX = 0;
  int m_iY = 0;

  friend bool operator==(const CHalvings&, const CHalvings&) = default;
};

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
  void MarkChanged(Which which) {
    m_pPreview.reset();
    ++m_auRevisions[which];
  }
  /// The part of an image that is the picture.
  CPixelRows Pixels(Which which) const {
    return {Image(which), m_iPictureWidth, m_iPictureHeight, 3 * static_cast<std::size_t>(m_iTextureWidth)};
  }

  /// Has smaller images shown instead of those that are computed, with the picture's sides halved so often, until one
  /// of these is marked as changed.
  void ShowPreview(std::shared_ptr<const CTextureImages> images, const CHalvings& halvings);
  /// The images that are shown instead of an image, and what they are reduced by; null where it is shown itself.
  const CTextureImages* PreviewOf(Which which) const { return which == kPhotograph ? nullptr : m_pPreview.get(); }
  const CHalvings& PreviewHalvings() const { return m_PreviewHalvings; }

  /// Grows with every change of the image, so that it need be sent to the graphics card only then.
  unsigned Revision(Which which) const { return m_auRevisions[which]; }

 private:
  int m_iPictureWidth = 0;
  int m_iPictureHeight = 0;
  int m_iTextureWidth = 0;
  int m_iTextureHeight = 0;
  std::array<std::vector<std::uint8_t>, 3> m_aaImages;
  std::array<unsigned, 3> m_auRevisions{};
  std::shared_ptr<const CTextureImages> m_pPreview;
  CHalvings m_PreviewHalvings;
};
