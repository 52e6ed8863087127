#include "codecs/ColourProfile.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <utility>

#include <lcms2.h>

namespace {

struct CCloseProfile {
  void operator()(void* profile) const { cmsCloseProfile(profile); }
};
using Profile = std::unique_ptr<void, CCloseProfile>;

// Profiles that call themselves sRGB differ by as much in 8 bits.
constexpr int kRounding = 2;
constexpr Primaries kSrgb{0.64, 0.33, 0.30, 0.60, 0.15, 0.06, 0.3127, 0.3290};

Profile Opened(const std::string& bytes) {
  if (bytes.size() > std::numeric_limits<cmsUInt32Number>::max()) return nullptr;
  return Profile(cmsOpenProfileFromMem(bytes.data(), static_cast<cmsUInt32Number>(bytes.size())));
}

std::size_t ChannelsOf(void* profile) {
  switch (cmsGetColorSpace(profile)) {
    case cmsSigGrayData:
      return 1;
    case cmsSigRgbData:
      return 3;
    case cmsSigCmykData:
      return 4;
    default:
      return 0;
  }
}

cmsUInt32Number FormatOf(std::size_t channels, int bits) {
  const std::size_t bytes = static_cast<std::size_t>(bits) / 8;
  const unsigned colour = channels == 1 ? PT_GRAY : channels == 3 ? PT_RGB : PT_CMYK;
  return static_cast<cmsUInt32Number>(COLORSPACE_SH(colour) | CHANNELS_SH(channels) | BYTES_SH(bytes));
}

}  // namespace

std::string ProfileOf(const Primaries& primaries, double gamma) {
  constexpr double kSame = 0.002;
  constexpr double kSrgbGamma = 2.2;
  const auto same = [](double a, double b) { return std::abs(a - b) < kSame; };
  const bool usualCurve = gamma == 0.0 || std::abs(gamma - kSrgbGamma) < 0.01;
  if (usualCurve && std::ranges::equal(primaries, kSrgb, same)) return {};
  const auto [rx, ry, gx, gy, bx, by, wx, wy] = primaries;
  const cmsCIExyY white{wx, wy, 1.0};
  const cmsCIExyYTRIPLE colours{{rx, ry, 1.0}, {gx, gy, 1.0}, {bx, by, 1.0}};
  const std::array<cmsFloat64Number, 5> srgbCurve{2.4, 1 / 1.055, 0.055 / 1.055, 1 / 12.92, 0.04045};
  cmsToneCurve* const curve =
      gamma == 0.0 ? cmsBuildParametricToneCurve(nullptr, 4, srgbCurve.data()) : cmsBuildGamma(nullptr, gamma);
  const std::array<cmsToneCurve*, 3> curves{curve, curve, curve};
  const Profile profile(curve == nullptr ? nullptr : cmsCreateRGBProfile(&white, &colours, curves.data()));
  cmsFreeToneCurve(curve);
  cmsUInt32Number length = 0;
  if (profile == nullptr || cmsSaveProfileToMem(profile.get(), nullptr, &length) == 0) return {};
  std::string bytes(length, '\0');
  return cmsSaveProfileToMem(profile.get(), bytes.data(), &length) == 0 ? std::string() : bytes;
}

void CColourProfile::CDelete::operator()(void* transform) const { cmsDeleteTransform(transform); }

CColourProfile::CColourProfile(const CRaster& raster) {
  if (raster.m_Profile.empty()) return;
  const Profile from = Opened(raster.m_Profile);
  const Profile to(cmsCreate_sRGBProfile());
  const std::size_t channels = from == nullptr ? 0 : ChannelsOf(from.get());
  const std::size_t wanted = raster.Colours();
  m_bUnusable = channels == 0 || (channels != wanted && !(wanted == 1 && channels == 3));
  if (m_bUnusable) return;
  const auto transformOf = [&](int bits) {
    return std::unique_ptr<void, CDelete>(
        cmsCreateTransform(from.get(), FormatOf(channels, bits), to.get(), TYPE_RGB_8, INTENT_PERCEPTUAL, 0));
  };
  m_pTransform = transformOf(8);
  m_bUnusable = m_pTransform == nullptr;
  if (m_bUnusable) return;
  if (IsNearlySrgb(channels)) {
    m_pTransform.reset();
    return;
  }
  if (raster.m_iBits != 8) m_pTransform = transformOf(raster.m_iBits);
  if (channels != wanted) m_uRepeatedBytes = static_cast<std::size_t>(raster.m_iBits) / 8;
}

// Whether a net of colours stays what it is.
bool CColourProfile::IsNearlySrgb(std::size_t channels) const {
  if (channels == 4) return false;
  constexpr int kStep = 17;
  std::array<std::uint8_t, 3> colour{};
  std::array<std::uint8_t, 3> converted{};
  const auto isKept = [&] {
    cmsDoTransform(m_pTransform.get(), colour.data(), converted.data(), 1);
    return std::ranges::equal(colour, converted, [](int a, int b) { return std::abs(a - b) <= kRounding; });
  };
  for (int red = 0; red <= 255; red += kStep) {
    for (int green = channels == 1 ? red : 0; green <= (channels == 1 ? red : 255); green += kStep) {
      for (int blue = channels == 1 ? red : 0; blue <= (channels == 1 ? red : 255); blue += kStep) {
        colour = {static_cast<std::uint8_t>(red), static_cast<std::uint8_t>(green), static_cast<std::uint8_t>(blue)};
        if (!isKept()) return false;
      }
    }
  }
  return true;
}

void CColourProfile::Convert(const void* samples, std::uint8_t* rgb, std::size_t pixels) {
  if (m_uRepeatedBytes != 0) {
    m_acGreyAsRgb.resize(3 * pixels * m_uRepeatedBytes);
    const auto* grey = static_cast<const std::uint8_t*>(samples);
    for (std::size_t k = 0; k < 3 * pixels; ++k)
      std::memcpy(&m_acGreyAsRgb[k * m_uRepeatedBytes], grey + k / 3 * m_uRepeatedBytes, m_uRepeatedBytes);
    samples = m_acGreyAsRgb.data();
  }
  cmsDoTransform(m_pTransform.get(), samples, rgb, static_cast<cmsUInt32Number>(pixels));
}
