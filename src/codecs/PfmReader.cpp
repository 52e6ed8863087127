#include "codecs/PfmReader.h"

#include <bit>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <string>
#include <system_error>

#include "base/Memory.h"
#include "codecs/SameSample.h"

namespace {

constexpr const char* kDamaged = "its header is damaged";
constexpr std::size_t kColours = 3;

struct CHeader {
  int m_iWidth = 0;
  int m_iHeight = 0;
  bool m_bColours = false;
  bool m_bLittleEndian = false;
};

bool IsSpace(char c) { return c == ' ' || c == '\n' || c == '\r' || c == '\t'; }

CReadChannel Refused(PictureTrouble trouble, const std::string& reason) {
  CReadChannel none;
  none.m_Trouble = trouble;
  none.m_Reason = reason;
  return none;
}

// Takes white space and a number off the bytes.
template <typename Number>
bool TakeNumber(std::string_view& bytes, Number& number) {
  const std::size_t before = bytes.size();
  while (!bytes.empty() && IsSpace(bytes.front())) bytes.remove_prefix(1);
  const auto [end, error] = std::from_chars(bytes.data(), bytes.data() + bytes.size(), number);
  if (bytes.size() == before || error != std::errc()) return false;
  bytes.remove_prefix(static_cast<std::size_t>(end - bytes.data()));
  return true;
}

// What is left of the bytes are the numbers.
bool TakeHeader(std::string_view& bytes, CHeader& header) {
  header.m_bColours = bytes[1] == 'F';
  bytes.remove_prefix(2);
  double scale = 0.0;
  if (!TakeNumber(bytes, header.m_iWidth) || !TakeNumber(bytes, header.m_iHeight) || !TakeNumber(bytes, scale))
    return false;
  if (header.m_iWidth < 1 || header.m_iHeight < 1 || scale == 0.0 || !std::isfinite(scale)) return false;
  header.m_bLittleEndian = scale < 0;
  if (bytes.starts_with("\r\n")) bytes.remove_prefix(1);
  if (bytes.empty() || !IsSpace(bytes.front())) return false;
  bytes.remove_prefix(1);
  return true;
}

float FloatAt(const char* bytes, bool littleEndian) {
  std::uint32_t value = 0;
  for (int k = 0; k < 4; ++k) value = value << 8 | static_cast<unsigned char>(bytes[littleEndian ? 3 - k : k]);
  return std::bit_cast<float>(value);
}

}  // namespace

bool IsPfm(std::string_view bytes) {
  return bytes.size() >= kPfmKindBytes && bytes[0] == 'P' && (bytes[1] == 'f' || bytes[1] == 'F') && IsSpace(bytes[2]);
}

CReadChannel ReadPfm(std::string_view bytes) {
  CHeader header;
  if (!IsPfm(bytes) || !TakeHeader(bytes, header)) return Refused(PictureTrouble::Damaged, kDamaged);
  const std::string size = std::to_string(header.m_iWidth) + " x " + std::to_string(header.m_iHeight) + " values";
  const double count = static_cast<double>(header.m_iWidth) * header.m_iHeight;
  if (header.m_iWidth > kMostPictureSide || header.m_iHeight > kMostPictureSide ||
      count * sizeof(float) > kMostPictureBytes)
    return Refused(PictureTrouble::TooLarge, "its " + size + " are too many: a side may have " +
                                                 std::to_string(kMostPictureSide) + ", and all of them 1 GiB");
  const std::size_t channels = header.m_bColours ? kColours : 1;
  if (count * static_cast<double>(channels * sizeof(float)) != static_cast<double>(bytes.size()))
    return Refused(PictureTrouble::Damaged, "its length is not that of the " + size + " that its header announces");
  if (count * sizeof(float) > AvailableMemory())
    return Refused(PictureTrouble::NoMemory, "there is not enough memory for its " + size);
  CReadChannel read;
  read.m_iWidth = header.m_iWidth;
  read.m_iHeight = header.m_iHeight;
  read.m_iBits = 32;
  read.m_afValues.reserve(static_cast<std::size_t>(count));
  for (const char* at = bytes.data(); at != bytes.data() + bytes.size(); at += channels * sizeof(float)) {
    const float value = FloatAt(at, header.m_bLittleEndian);
    for (std::size_t c = 1; c < channels; ++c) {
      if (!IsSameSample(value, FloatAt(at + c * sizeof(float), header.m_bLittleEndian)))
        return Refused(PictureTrouble::NotOneChannel, kColoursInsteadOfOne);
    }
    read.m_afValues.push_back(value);
  }
  return read;
}
