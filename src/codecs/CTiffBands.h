#pragma once

#include <cstddef>
#include <cstdint>

#include "base/RawBytes.h"
#include "codecs/CTiffFile.h"

/// How the samples of a TIFF are stored.
struct CTiffLayout {
  std::uint32_t m_uWidth = 0;
  std::uint32_t m_uHeight = 0;
  std::uint16_t m_uBits = 1;     ///< of a sample: 1, 2, 4, 8, 16 or 32
  std::uint16_t m_uSamples = 1;  ///< of a pixel
  bool m_bTiled = false;
  bool m_bApart = false;         ///< each channel has strips or tiles of its own
  std::uint8_t m_uBlank = 0xFF;  ///< what fills the place of pixels that cannot be decoded

  /// Bytes of a sample in a band; those of less than a byte have one.
  std::size_t SampleBytes() const { return m_uBits > 8 ? m_uBits / std::size_t{8} : 1; }
};

/// How many of the strips or tiles of a band could be decoded, and how many could not.
struct CBandParts {
  std::size_t m_uSound = 0;
  std::size_t m_uDamaged = 0;
};

/// The rows of a TIFF, a strip or a row of tiles at a time, as samples that stand together by pixels.
class CTiffBands {
 public:
  /// Throws std::bad_alloc.
  CTiffBands(const CTiffFile& file, const CTiffLayout& layout);

  /// Whether there is anything to read; not where the strips or tiles have an impossible size.
  bool IsUsable() const { return m_pBlock != nullptr; }
  /// Rows of a band; the last one may have fewer.
  std::uint32_t RowsPerBand() const { return m_uRows; }
  /// Decodes the band that begins with a row, as far as it can be: what cannot is blank, but for a file that has ended,
  /// whose band is not to be used then.
  CBandParts Read(std::uint32_t row);
  /// Row k of the band, m_uWidth * m_uSamples samples. Those of less than 8 bits are not scaled.
  const std::uint8_t* Row(std::uint32_t k) const { return m_pBand.get() + k * m_uStride; }

 private:
  tmsize_t ReadBlock(std::uint32_t column, std::uint32_t row, std::uint16_t plane);
  void Unpack(std::uint32_t column, std::uint16_t plane, std::size_t rows);
  void UnpackRow(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const;

  const CTiffFile& m_File;
  const CTiffLayout m_Layout;
  std::uint32_t m_uColumns;  ///< of a block
  std::uint32_t m_uRows;
  std::size_t m_uStored;  ///< samples of a pixel in a block
  std::size_t m_uStride;  ///< bytes of a row of the band
  std::size_t m_uBlock;   ///< bytes of a block
  RawBytes m_pBlock;
  RawBytes m_pBand;
};
