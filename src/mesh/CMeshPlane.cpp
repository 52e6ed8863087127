#include "mesh/CMeshPlane.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace {

// A float holds every whole number up to 2^24.
constexpr int kFloatBits = 24;

}  // namespace

CMeshPlane::CAxis::CAxis(int cells, double length) : m_fHalf(cells / 2.0) {
  int exponent = 0;
  std::frexp(length / 2, &exponent);
  m_fStep = std::ldexp(1.0, exponent - kFloatBits);
  m_fUnits = length / m_fStep / cells;
  m_fCells = 1.0 / m_fUnits;
  m_aiHalves.reserve(2 * static_cast<std::size_t>(cells) + 1);
  for (int half = 0; half <= 2 * cells; ++half) m_aiHalves.push_back(Rounded(half / 2.0));
}

std::int32_t CMeshPlane::CAxis::Rounded(double lattice) const {
  return static_cast<std::int32_t>(std::lround((lattice - m_fHalf) * m_fUnits));
}

std::vector<float> CMeshPlane::CAxis::WrittenHalves() const {
  std::vector<float> written;
  written.reserve(m_aiHalves.size());
  for (const std::int32_t place : m_aiHalves) written.push_back(static_cast<float>(place * m_fStep));
  return written;
}

CMeshPlane::CMeshPlane(int cells, double width, double height) : m_X(cells, width), m_Y(cells, height) {}

bool CMeshPlane::AreOnOneBorder(const CMeshPlace& a, const CMeshPlace& b) const {
  const CMeshPlace far = At(2.0 * m_X.m_fHalf, 2.0 * m_Y.m_fHalf);
  return (a.x == b.x && std::abs(a.x) == far.x) || (a.y == b.y && std::abs(a.y) == far.y);
}

CMeshPlace CMeshPlane::OntoBorder(const CMeshPlace& place, const CMeshPlace& a, const CMeshPlace& b) const {
  const auto within = [](std::int32_t value, std::int32_t p, std::int32_t q) {
    return std::clamp(value, std::min(p, q), std::max(p, q));
  };
  return {within(place.x, a.x, b.x), within(place.y, a.y, b.y)};
}

double CMeshPlane::Distance(const CMeshPlace& a, const CMeshPlace& b) const {
  return std::hypot((static_cast<double>(b.x) - a.x) / m_X.m_fUnits, (static_cast<double>(b.y) - a.y) / m_Y.m_fUnits);
}

double CMeshPlane::Nearest(const CMeshPlace& place, const CMeshPlace& a, const CMeshPlace& b) const {
  const double dx = (static_cast<double>(b.x) - a.x) / m_X.m_fUnits;
  const double dy = (static_cast<double>(b.y) - a.y) / m_Y.m_fUnits;
  const double px = (static_cast<double>(place.x) - a.x) / m_X.m_fUnits;
  const double py = (static_cast<double>(place.y) - a.y) / m_Y.m_fUnits;
  const double square = dx * dx + dy * dy;
  return square > 0.0 ? std::clamp((px * dx + py * dy) / square, 0.0, 1.0) : 0.0;
}

double CMeshPlane::Distance(const CMeshPlace& place, const CMeshPlace& a, const CMeshPlace& b) const {
  const double share = Nearest(place, a, b);
  const auto off = [share](std::int32_t p, std::int32_t from, std::int32_t to, double units) {
    return (static_cast<double>(p) - from - share * (static_cast<double>(to) - from)) / units;
  };
  return std::hypot(off(place.x, a.x, b.x, m_X.m_fUnits), off(place.y, a.y, b.y, m_Y.m_fUnits));
}

CMeshPlace CMeshPlane::Between(const CMeshPlace& a, const CMeshPlace& b, double share) {
  const auto between = [share](std::int32_t from, std::int32_t to) {
    return static_cast<std::int32_t>(std::lround(from + share * (static_cast<double>(to) - from)));
  };
  return {between(a.x, b.x), between(a.y, b.y)};
}
