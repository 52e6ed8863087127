#include "codecs/DepthMapFile.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <new>
#include <sstream>
#include <utility>
#include <vector>

#include "codecs/ChannelFormats.h"
#include "codecs/FileBytes.h"
#include "codecs/PfmReader.h"

namespace {

constexpr int kFewestPixels = 2;
constexpr double kSameProportions = 0.02;
// Three floats for each value of the largest map that is read, and its header.
constexpr std::size_t kMostBytes = std::size_t{3} << 30;

CReadDepthMap Refused(std::string reason) { return {nullptr, std::move(reason), {}}; }

CReadDepthMap MapOf(CReadChannel read) {
  if (!read) return Refused(std::move(read.m_Reason));
  if (std::min(read.m_iWidth, read.m_iHeight) < kFewestPixels)
    return Refused("it has " + std::to_string(read.m_iWidth) + " x " + std::to_string(read.m_iHeight) +
                   " values; two on each side are the least");
  if (std::ranges::none_of(read.m_afValues, [](float value) { return std::isfinite(value); }))
    return Refused("none of its values is a number");
  return {std::make_shared<const CDepthMap>(read.m_iWidth, read.m_iHeight, read.m_iBits, std::move(read.m_afValues)),
          {},
          std::move(read.m_Notice)};
}

template <typename Read>
CReadDepthMap Guarded(const Read& read) {
  try {
    return MapOf(read());
  } catch (const std::bad_alloc&) {
    return Refused("there is not enough memory to read it");
  }
}

CReadChannel ReadFile(const std::string& filename) {
  const CFileBytes beginning = ReadFileBytes(filename, kPfmKindBytes);
  if (beginning.m_pBytes == nullptr || !IsPfm(*beginning.m_pBytes)) return ReadChannel(filename);
  const CFileBytes whole = ReadFileBytes(filename, kMostBytes);
  if (whole.m_pBytes != nullptr) return ReadPfm(*whole.m_pBytes);
  CReadChannel none;
  none.m_Trouble = whole.m_Trouble;
  none.m_Reason = whole.m_Reason;
  return none;
}

}  // namespace

CReadDepthMap ReadDepthMap(const std::string& filename) {
  return Guarded([&] { return ReadFile(filename); });
}

CReadDepthMap ReadDepthMap(std::string_view bytes, const std::string& name) {
  return Guarded([&] { return IsPfm(bytes) ? ReadPfm(bytes) : ReadChannel(bytes, name); });
}

std::string ProportionsNotice(const CDepthMap& map, double width, double height) {
  const double stretched = map.Width() * height / (width * map.Height());
  if (!(std::abs(stretched - 1) > kSameProportions) && !(std::abs(1 / stretched - 1) > kSameProportions)) return {};
  std::ostringstream text;
  text.imbue(std::locale::classic());
  text << "has other proportions (" << map.Width() << " x " << map.Height() << ") than what it is stretched over ("
       << width << " x " << height << ')';
  return text.str();
}
