#include "formats/CPictureSink.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <utility>

#include "base/Memory.h"

namespace {

constexpr int kWhite = 255;

std::string SizeInWords(const CRaster& raster) {
  return "its " + std::to_string(raster.m_iWidth) + " x " + std::to_string(raster.m_iHeight) + " pixels";
}

std::string Gibibytes(double bytes) {
  constexpr double kGibibyte = 1 << 30;
  std::ostringstream out;
  out.imbue(std::locale::classic());
  out.precision(3);
  out << bytes / kGibibyte << " GiB";
  return out.str();
}

}  // namespace

bool CPictureSink::IsTooLarge(double bytes) {
  const std::string size = SizeInWords(m_Raster);
  if (std::max(m_Raster.m_iWidth, m_Raster.m_iHeight) > kMostPictureSide) {
    m_Reason = size + " are too many: a side may have " + std::to_string(kMostPictureSide);
  } else if (bytes > kMostPictureBytes) {
    m_Reason = size + " would take " + Gibibytes(bytes) + ", and 1 GiB is the most";
  }
  if (!m_Reason.empty()) m_Trouble = PictureTrouble::TooLarge;
  return !m_Reason.empty();
}

bool CPictureSink::Begin(const CRaster& raster) {
  m_Raster = raster;
  const double bytes = 3.0 * raster.m_iWidth * raster.m_iHeight;
  if (IsTooLarge(bytes)) return false;
  if (bytes > AvailableMemory()) {
    m_Trouble = PictureTrouble::NoMemory;
    m_Reason = "there is not enough memory for " + SizeInWords(raster);
    return false;
  }
  m_Converter = CRowConverter(raster);
  m_acRow.resize(std::size_t{3} * static_cast<std::size_t>(raster.m_iWidth));
  m_Picture = {raster.m_iWidth, raster.m_iHeight, {}};
  m_Picture.m_aPixels.reserve(static_cast<std::size_t>(bytes));
  return true;
}

void CPictureSink::Row(const void* samples) {
  m_Converter.Convert(samples, m_acRow.data());
  // Appended instead of written in place, so that no memory is touched for rows that never come.
  m_Picture.m_aPixels.insert(m_Picture.m_aPixels.end(), m_acRow.begin(), m_acRow.end());
}

CPicture CPictureSink::Take() {
  const std::size_t row = std::size_t{3} * static_cast<std::size_t>(m_Raster.m_iWidth);
  m_Picture.m_aPixels.resize(row * static_cast<std::size_t>(m_Raster.m_iHeight), kWhite);
  for (std::size_t top = 0, end = m_Picture.m_aPixels.size(); top + row < end; top += row) {
    end -= row;
    std::swap_ranges(&m_Picture.m_aPixels[top], &m_Picture.m_aPixels[top] + row, &m_Picture.m_aPixels[end]);
  }
  return std::move(m_Picture);
}
