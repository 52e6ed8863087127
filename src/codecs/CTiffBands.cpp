#include "codecs/CTiffBands.h"

#include <algorithm>
#include <cstring>

namespace {

constexpr double kMostBytes = 1 << 30;

std::size_t BlockBytes(const CTiffFile& file, bool tiled) {
  const tmsize_t bytes = tiled ? TIFFTileSize(file.Handle()) : TIFFStripSize(file.Handle());
  return static_cast<std::size_t>(std::max<tmsize_t>(bytes, 0));
}

}  // namespace

CTiffBands::CTiffBands(const CTiffFile& file, const CTiffLayout& layout)
    : m_File(file),
      m_Layout(layout),
      m_uColumns(layout.m_bTiled ? file.Field<std::uint32_t>(TIFFTAG_TILEWIDTH) : layout.m_uWidth),
      m_uRows(file.Field<std::uint32_t>(layout.m_bTiled ? TIFFTAG_TILELENGTH : TIFFTAG_ROWSPERSTRIP)),
      m_uStored(layout.m_bApart ? 1 : layout.m_uSamples),
      m_uStride(std::size_t{layout.m_uWidth} * layout.m_uSamples * layout.SampleBytes()),
      m_uBlock(BlockBytes(file, layout.m_bTiled)) {
  m_uRows = std::min(m_uRows, layout.m_uHeight);
  const double band = static_cast<double>(m_uStride) * m_uRows;
  if (m_uRows == 0 || m_uColumns == 0 || m_uBlock == 0) return;
  if (static_cast<double>(m_uBlock) > kMostBytes || band > kMostBytes) return;
  // Nothing is written into them before there is something to show.
  m_pBlock = MakeRawBytes(m_uBlock);
  m_pBand = MakeRawBytes(m_uStride * m_uRows);
}

CBandParts CTiffBands::Read(std::uint32_t row) {
  const std::uint16_t planes = m_Layout.m_bApart ? m_Layout.m_uSamples : 1;
  const std::size_t rowBytes = (m_uColumns * m_uStored * m_Layout.m_uBits + 7) / 8;
  const std::size_t wanted = std::min(m_uRows, m_Layout.m_uHeight - row);
  CBandParts parts;
  for (std::uint16_t plane = 0; plane < planes; ++plane) {
    for (std::size_t column = 0; column < m_Layout.m_uWidth; column += m_uColumns) {
      const tmsize_t length = ReadBlock(static_cast<std::uint32_t>(column), row, plane);
      if (length < 0 && m_File.HasEnded()) return {parts.m_uSound, parts.m_uDamaged + 1};
      const std::size_t rows = static_cast<std::size_t>(std::max<tmsize_t>(length, 0)) / rowBytes;
      if (rows < wanted) {
        std::memset(m_pBlock.get(), m_Layout.m_uBlank, m_uBlock);
      }
      ++(rows < wanted ? parts.m_uDamaged : parts.m_uSound);
      Unpack(static_cast<std::uint32_t>(column), plane, std::min(wanted, m_uBlock / rowBytes));
    }
  }
  return parts;
}

tmsize_t CTiffBands::ReadBlock(std::uint32_t column, std::uint32_t row, std::uint16_t plane) {
  TIFF* const tiff = m_File.Handle();
  const auto most = static_cast<tmsize_t>(m_uBlock);
  const std::uint32_t number =
      m_Layout.m_bTiled ? TIFFComputeTile(tiff, column, row, 0, plane) : TIFFComputeStrip(tiff, row, plane);
  // Of one that the file does not list the library would take whatever stands at the beginning of the file.
  if (TIFFGetStrileByteCount(tiff, number) == 0) return -1;
  return m_Layout.m_bTiled ? TIFFReadEncodedTile(tiff, number, m_pBlock.get(), most)
                           : TIFFReadEncodedStrip(tiff, number, m_pBlock.get(), most);
}

void CTiffBands::Unpack(std::uint32_t column, std::uint16_t plane, std::size_t rows) {
  const std::size_t rowBytes = (m_uColumns * m_uStored * m_Layout.m_uBits + 7) / 8;
  const std::size_t pixels = std::min(m_uColumns, m_Layout.m_uWidth - column);
  const std::size_t at = (std::size_t{column} * m_Layout.m_uSamples + plane) * m_Layout.SampleBytes();
  for (std::size_t k = 0; k < rows; ++k)
    UnpackRow(m_pBlock.get() + k * rowBytes, m_pBand.get() + k * m_uStride + at, pixels);
}

void CTiffBands::UnpackRow(const std::uint8_t* from, std::uint8_t* to, std::size_t pixels) const {
  const std::size_t size = m_Layout.SampleBytes();
  const std::size_t bits = m_Layout.m_uBits;
  if (bits >= 8 && !m_Layout.m_bApart) {
    std::memcpy(to, from, pixels * m_uStored * size);
    return;
  }
  const std::size_t step = m_Layout.m_bApart ? m_Layout.m_uSamples * size : size;
  for (std::size_t k = 0; k < pixels * m_uStored; ++k, to += step) {
    if (bits >= 8) {
      std::memcpy(to, from + k * size, size);
    } else {
      const std::size_t bit = k * bits;
      *to = static_cast<std::uint8_t>((from[bit / 8] >> (8 - bits - bit % 8)) & ((1U << bits) - 1));
    }
  }
}
