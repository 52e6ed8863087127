#include "codecs/CPictureSink.h"

#include <algorithm>
#include <cstdint>
#include <sstream>
#include <utility>

#include "base/Memory.h"
#include "codecs/Orientation.h"

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

bool CPictureSink::IsTooLarge() {
  const std::string size = SizeInWords(m_Raster);
  if (std::max(m_Raster.m_iWidth, m_Raster.m_iHeight) > kMostPictureSide) {
    m_Reason = size + " are too many: a side may have " + std::to_string(kMostPictureSide);
  } else if (Bytes() > kMostPictureBytes) {
    m_Reason = size + " would take " + Gibibytes(Bytes()) + ", and 1 GiB is the most";
  }
  if (!m_Reason.empty()) m_Trouble = PictureTrouble::TooLarge;
  return !m_Reason.empty();
}

bool CPictureSink::HasMemory() {
  // To turn it takes a second picture.
  if (Bytes() * (IsTransposed(m_iOrientation) ? 2 : 1) <= AvailableMemory()) return true;
  m_Trouble = PictureTrouble::NoMemory;
  m_Reason = "there is not enough memory for " + SizeInWords(m_Raster);
  return false;
}

bool CPictureSink::Begin(const CRaster& raster) {
  m_Raster = raster;
  if (raster.m_iBits > 16) {
    m_Trouble = PictureTrouble::Damaged;
    m_Reason = "it holds floating-point numbers instead of colours";
  }
  if (m_Trouble != PictureTrouble::None || IsTooLarge() || !HasMemory()) return false;
  m_Converter = CRowConverter(raster);
  m_acRow.resize(std::size_t{3} * static_cast<std::size_t>(raster.m_iWidth));
  m_Picture = {raster.m_iWidth, raster.m_iHeight, {}};
  m_Picture.m_aPixels.reserve(static_cast<std::size_t>(Bytes()));
  return true;
}

void CPictureSink::Row(const void* samples) {
  m_Converter.Convert(samples, m_acRow.data());
  // Appended instead of written in place, so that no memory is touched for rows that never come.
  m_Picture.m_aPixels.insert(m_Picture.m_aPixels.end(), m_acRow.begin(), m_acRow.end());
}

bool CPictureSink::IsNearlyNothing(std::size_t length) const {
  constexpr double kHarmless = 64 << 20;
  constexpr double kMostPerFileByte = 4096;
  const double missing = Bytes() - static_cast<double>(m_Picture.m_aPixels.size());
  return missing > kHarmless && missing > kMostPerFileByte * static_cast<double>(length);
}

CPicture CPictureSink::Take() {
  m_Picture.m_aPixels.resize(static_cast<std::size_t>(Bytes()), kWhite);
  MakeUpright<3>(m_Picture.m_aPixels, m_Picture.m_iWidth, m_Picture.m_iHeight, m_iOrientation);
  return std::move(m_Picture);
}
