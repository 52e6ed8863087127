#include "reference/CReferenceFit.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <optional>

#include "constraints/CPtCstrList.h"
#include "lattice/CLattice.h"

namespace {

constexpr int kFewestHeights = 3;
constexpr int kFewestForBent = 12;
constexpr std::size_t kFewestValuesForBent = 6;
// Bent where its error is at most this share of the straight one's...
constexpr double kBetter = 0.9;
// ...which must be worth it: more than this share of the range of the heights.
constexpr double kWorthwhile = 1e-3;
// Values nearer to each other than this, of a range of 2, are one: the scale between them would be that of rounding.
constexpr double kOneValue = 1e-9;
// A determinant that is this share of its terms is 0.
constexpr double kSingular = 1e-13;
constexpr double kDefaultDepth = 1.0 / 3;

/// a + b v + c v^2
struct CParabola {
  double m_fA = 0.0;
  double m_fB = 0.0;
  double m_fC = 0.0;
  double At(double v) const { return m_fA + v * (m_fB + v * m_fC); }
};

/// Sums over heights of powers of v, and of these times z.
struct CMoments {
  std::array<double, 5> m_afV{};
  std::array<double, 3> m_afZ{};
  double m_fZZ = 0.0;

  void Add(double v, double z, double sign) {
    double power = sign;
    for (std::size_t k = 0; k < m_afV.size(); ++k, power *= v) {
      m_afV[k] += power;
      if (k < m_afZ.size()) m_afZ[k] += power * z;
    }
    m_fZZ += sign * z * z;
  }
  double Error(const CParabola& p) const {
    const auto& s = m_afV;
    return m_fZZ - 2 * (p.m_fA * m_afZ[0] + p.m_fB * m_afZ[1] + p.m_fC * m_afZ[2]) + p.m_fA * p.m_fA * s[0] +
           2 * p.m_fA * p.m_fB * s[1] + (2 * p.m_fA * p.m_fC + p.m_fB * p.m_fB) * s[2] + 2 * p.m_fB * p.m_fC * s[3] +
           p.m_fC * p.m_fC * s[4];
  }
};

// a + k f with a function f of v = f1 v + f2 v^2, by least squares; nothing where f is the same everywhere.
std::optional<CParabola> FitMultiple(const CMoments& m, double f1, double f2) {
  const double n = m.m_afV[0];
  const double f = f1 * m.m_afV[1] + f2 * m.m_afV[2];
  const double ff = f1 * f1 * m.m_afV[2] + 2 * f1 * f2 * m.m_afV[3] + f2 * f2 * m.m_afV[4];
  const double fz = f1 * m.m_afZ[1] + f2 * m.m_afZ[2];
  const double determinant = n * ff - f * f;
  if (!(determinant > kSingular * n * ff)) return std::nullopt;
  const double k = (n * fz - f * m.m_afZ[0]) / determinant;
  return CParabola{(m.m_afZ[0] - k * f) / n, k * f1, k * f2};
}

std::optional<CParabola> FitLine(const CMoments& m) { return FitMultiple(m, 1.0, 0.0); }

// By the deviations from the means, which keeps the determinant of values close to each other.
std::optional<CParabola> FitFree(const CMoments& m) {
  const double n = m.m_afV[0];
  const double v = m.m_afV[1] / n;
  const double w = m.m_afV[2] / n;
  const double vv = m.m_afV[2] - n * v * v;
  const double vw = m.m_afV[3] - n * v * w;
  const double ww = m.m_afV[4] - n * w * w;
  const double vz = m.m_afZ[1] - v * m.m_afZ[0];
  const double wz = m.m_afZ[2] - w * m.m_afZ[0];
  const double determinant = vv * ww - vw * vw;
  if (!(determinant > kSingular * vv * ww)) return std::nullopt;
  const double b = (ww * vz - vw * wz) / determinant;
  const double c = (vv * wz - vw * vz) / determinant;
  return CParabola{m.m_afZ[0] / n - b * v - c * w, b, c};
}

// The slope must not turn within -1..1. Where the best parabola's does at one end, the best with no slope at that end
// is the nearest; where neither of these will do, nothing that bends is better than a constant.
std::optional<CParabola> FitBent(const CMoments& m, double sign) {
  const auto rises = [sign](const CParabola& p) {
    return sign * (p.m_fB + 2 * p.m_fC) >= 0 && sign * (p.m_fB - 2 * p.m_fC) >= 0;
  };
  const std::optional<CParabola> best = FitFree(m);
  if (!best.has_value() || rises(*best)) return best;
  std::optional<CParabola> found;
  for (const double end : {-1.0, 1.0}) {
    if (sign * (best->m_fB + 2 * end * best->m_fC) >= 0) continue;
    const std::optional<CParabola> flat = FitMultiple(m, -2 * end, 1.0);
    if (!flat.has_value()) continue;
    const double tolerance = kOneValue * std::abs(flat->m_fC);
    const bool sound = sign * (flat->m_fB - 2 * end * flat->m_fC) >= -tolerance;
    if (sound && (!found.has_value() || m.Error(*flat) < m.Error(*found))) found = flat;
  }
  return found;
}

std::optional<CParabola> FitBentTo(const CMoments& m) {
  const std::optional<CParabola> line = FitLine(m);
  if (!line.has_value() || line->m_fB == 0.0) return std::nullopt;
  return FitBent(m, line->m_fB);
}

CMoments MomentsOf(std::span<const CHeightOverMap> heights, double level) {
  CMoments m;
  for (const CHeightOverMap& height : heights) m.Add(height.m_fValue, height.m_fZ - level, 1.0);
  return m;
}

// RMS of what each height is missed by when it is foretold from all others; infinite where it cannot be.
template <typename Fit>
double ForetellingError(std::span<const CHeightOverMap> heights, double level, const CMoments& all, const Fit& fit) {
  double sum = 0.0;
  for (const CHeightOverMap& height : heights) {
    CMoments others = all;
    others.Add(height.m_fValue, height.m_fZ - level, -1.0);
    const std::optional<CParabola> p = fit(others);
    if (!p.has_value()) return HUGE_VAL;
    const double missed = height.m_fZ - level - p->At(height.m_fValue);
    sum += missed * missed;
  }
  return std::sqrt(sum / static_cast<double>(heights.size()));
}

bool HasValuesForBent(std::span<const CHeightOverMap> heights) {
  if (heights.size() < kFewestForBent) return false;
  std::array<double, kFewestValuesForBent> values{};
  std::size_t count = 0;
  for (const CHeightOverMap& height : heights) {
    const auto isSame = [&](double value) { return std::abs(value - height.m_fValue) <= kOneValue; };
    if (std::ranges::any_of(std::span(values).first(count), isSame)) continue;
    values[count++] = height.m_fValue;
    if (count == values.size()) return true;
  }
  return false;
}

bool IsBentBetter(std::span<const CHeightOverMap> heights, double level, const CMoments& all) {
  const auto [lowest, highest] = std::ranges::minmax(heights, {}, &CHeightOverMap::m_fZ);
  const double straight = ForetellingError(heights, level, all, FitLine);
  if (!(straight > kWorthwhile * (highest.m_fZ - lowest.m_fZ))) return false;
  return ForetellingError(heights, level, all, FitBentTo) <= kBetter * straight;
}

bool IsDetermined(std::span<const CHeightOverMap> heights) {
  if (heights.size() < kFewestHeights) return false;
  const auto [lowest, highest] = std::ranges::minmax(heights, {}, &CHeightOverMap::m_fValue);
  return highest.m_fValue - lowest.m_fValue > kOneValue;
}

double MeanHeight(std::span<const CHeightOverMap> heights) {
  double sum = 0.0;
  for (const CHeightOverMap& height : heights) sum += height.m_fZ;
  return heights.empty() ? 0.0 : sum / static_cast<double>(heights.size());
}

CParabola OfSceneDepth(std::span<const CHeightOverMap> heights, const CReferenceSettings& settings,
                       const CDepthReading& reading, const CExtent& extent) {
  const double side = std::max(extent.x1 - extent.x0, extent.y1 - extent.y0);
  const double depth = settings.m_SceneDepth.value_or(kDefaultDepth * side);
  const double scale = (settings.m_bNearIsBright ? depth : -depth) / 2;
  double mean = reading.Mean();
  if (!heights.empty()) {
    mean = 0.0;
    for (const CHeightOverMap& height : heights) mean += height.m_fValue / static_cast<double>(heights.size());
  }
  return {MeanHeight(heights) - scale * mean, scale, 0.0};
}

void MeasureMisfit(std::span<const CHeightOverMap> heights, CReferenceFit& fit) {
  fit.m_iHeights = static_cast<int>(heights.size());
  double sum = 0.0;
  for (const CHeightOverMap& height : heights) {
    const double missed = height.m_fZ - fit.HeightOver(height.m_fValue);
    sum += missed * missed;
    if (fit.m_iWorst >= 0 && std::abs(missed) <= std::abs(fit.m_fWorst)) continue;
    fit.m_iWorst = height.m_iIndex;
    fit.m_fWorst = missed;
  }
  if (!heights.empty()) fit.m_fRms = std::sqrt(sum / static_cast<double>(heights.size()));
}

bool IsBentWanted(ReferenceResponse response, ResponseChoice choice, bool better) {
  if (response != ReferenceResponse::Automatic) return response == ReferenceResponse::Bent;
  return choice == ResponseChoice::Anew ? better : choice == ResponseChoice::KeepBent;
}

}  // namespace

double CReferenceFit::Scale(const CDepthReading& reading) const {
  return reading.High() > reading.Low() ? 2 * m_fLinear / (reading.High() - reading.Low()) : 0.0;
}

double CReferenceFit::OffsetAtZero(const CDepthReading& reading) const { return HeightOver(reading.Normalised(0.0)); }

void CollectHeights(const CPtCstrList& points, const CExtent& extent, const CDepthReading& reading,
                    std::vector<CHeightOverMap>& heights) {
  heights.clear();
  int index = 0;
  for (const CPtCstr& point : points) {
    const int here = index++;
    const double u = (point.m_fX - extent.x0) / (extent.x1 - extent.x0);
    const double v = (point.m_fY - extent.y0) / (extent.y1 - extent.y0);
    if (!point.IsEnabled(PtCstrKind::kPosition) || !(u >= 0 && u <= 1 && v >= 0 && v <= 1)) continue;
    const double value = reading.Bilinear(reading.ColumnOf(u), reading.RowOf(v));
    if (!std::isnan(value)) heights.push_back({value, point.m_fZ, here});
  }
}

CReferenceFit FitReference(std::span<const CHeightOverMap> heights, const CReferenceSettings& settings,
                           const CDepthReading& reading, const CExtent& extent, ResponseChoice choice) {
  CReferenceFit fit;
  // Heights far from 0 would drown their own differences in the sums.
  const double level = MeanHeight(heights);
  const CMoments all = MomentsOf(heights, level);
  CParabola p = OfSceneDepth(heights, settings, reading, extent);
  const std::optional<CParabola> line = IsDetermined(heights) ? FitLine(all) : std::nullopt;
  if (line.has_value()) {
    const bool possible = HasValuesForBent(heights);
    const bool automatic = settings.m_Response == ReferenceResponse::Automatic;
    fit.m_bFitted = true;
    fit.m_bChoosesBent = automatic && possible && IsBentBetter(heights, level, all);
    const bool wanted = possible && IsBentWanted(settings.m_Response, choice, fit.m_bChoosesBent);
    const std::optional<CParabola> bent = wanted ? FitBentTo(all) : std::nullopt;
    fit.m_bBent = bent.has_value();
    p = bent.value_or(*line);
    p.m_fA += level;
  }
  fit.m_fOffset = p.m_fA;
  fit.m_fLinear = p.m_fB;
  fit.m_fSquare = p.m_fC;
  fit.m_bNearIsBright = line.has_value() ? line->m_fB >= 0 : settings.m_bNearIsBright;
  MeasureMisfit(heights, fit);
  return fit;
}
