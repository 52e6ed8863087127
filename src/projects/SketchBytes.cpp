#include "projects/SketchBytes.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <utility>
#include <vector>

#include "io/BinaryNumbers.h"

namespace {

constexpr std::size_t kPointBytes = 5 * sizeof(double) + sizeof(std::uint32_t);
constexpr std::size_t kNodeBytes = kPointBytes + 4 * sizeof(double);
constexpr std::size_t kCurveBytes = 1 + 2 * sizeof(std::uint32_t) + 4 * sizeof(double) + sizeof(std::uint64_t);
constexpr std::size_t kPlaceBytes = 2 * sizeof(double);

void PutPoint(CByteWriter& out, const CPtCstr& c) {
  for (const double number : {c.m_fX, c.m_fY, c.m_fZ, c.m_fP, c.m_fQ}) out.Put(number);
  out.Put(c.m_uKind);
}

void GetPoint(CByteReader& in, CPtCstr& c) {
  for (double* number : {&c.m_fX, &c.m_fY, &c.m_fZ, &c.m_fP, &c.m_fQ}) *number = in.Get<double>();
  c.m_uKind = in.Get<std::uint32_t>();
}

void PutCurve(CByteWriter& out, const CCntrCtrl& curve) {
  out.Put(curve.IsClosed());
  out.Put(static_cast<std::uint32_t>(curve.Type()));
  out.Put(curve.Options());
  for (const CurveSide side : {CurveSide::Left, CurveSide::Right}) {
    out.Put(curve.AutoBump(side).m_fDistance);
    out.Put(curve.AutoBump(side).m_fOrientation);
  }
  out.Put(std::uint64_t{curve.Nodes().size()});
  for (const CCntrNode& node : curve.Nodes()) {
    PutPoint(out, node);
    const CNodeWeights& w = node.m_Weights;
    for (const double weight : {w.m_fLeftCurvature, w.m_fLeftTorsion, w.m_fRightCurvature, w.m_fRightTorsion})
      out.Put(weight);
  }
}

void GetCurve(CByteReader& in, CCntrCtrl& curve) {
  curve.SetClosed(in.Get<bool>());
  curve.SetType(static_cast<CurveType>(in.Get<std::uint32_t>()));
  curve.SetOption(in.Get<std::uint32_t>(), true);
  for (const CurveSide side : {CurveSide::Left, CurveSide::Right}) {
    curve.SetDistance(side, in.Get<double>());
    curve.SetOrientation(side, in.Get<double>());
  }
  const auto count = in.Get<std::uint64_t>();
  if (!in.Has(count, kNodeBytes)) return;
  for (std::uint64_t k = 0; k < count; ++k) {
    CCntrNode& node = curve.Nodes().emplace_back();
    GetPoint(in, node);
    CNodeWeights& w = node.m_Weights;
    for (double* weight : {&w.m_fLeftCurvature, &w.m_fLeftTorsion, &w.m_fRightCurvature, &w.m_fRightTorsion})
      *weight = in.Get<double>();
  }
}

}  // namespace

std::string BytesOf(const CPtCstrList& points) {
  CByteWriter out;
  out.Put(std::uint64_t{points.size()});
  for (const CPtCstr& point : points) PutPoint(out, point);
  return out.Take();
}

bool ReadBytes(std::string_view bytes, CPtCstrList& points) {
  CByteReader in(bytes);
  const auto count = in.Get<std::uint64_t>();
  if (!in.Has(count, kPointBytes)) return false;
  for (std::uint64_t k = 0; k < count; ++k) {
    CPtCstr point;
    GetPoint(in, point);
    points.Add(point);
  }
  return in.IsWhole();
}

std::string BytesOf(const CCntrCtrlList& curves) {
  CByteWriter out;
  out.Put(std::uint64_t{curves.size()});
  for (const CCntrCtrl& curve : curves) PutCurve(out, curve);
  return out.Take();
}

bool ReadBytes(std::string_view bytes, CCntrCtrlList& curves) {
  CByteReader in(bytes);
  const auto count = in.Get<std::uint64_t>();
  if (!in.Has(count, kCurveBytes)) return false;
  for (std::uint64_t k = 0; k < count && in.IsSound(); ++k) GetCurve(in, curves.Add());
  return in.IsWhole();
}

std::string BytesOf(const CPendingCurve& curve) {
  CByteWriter out;
  out.Put(curve.ClosesOnValidate());
  out.Put(std::uint64_t{curve.Points().size()});
  for (const CPtCstr& point : curve.Points()) {
    out.Put(point.m_fX);
    out.Put(point.m_fY);
  }
  return out.Take();
}

bool ReadBytes(std::string_view bytes, CPendingCurve& curve) {
  CByteReader in(bytes);
  const auto closes = in.Get<bool>();
  const auto count = in.Get<std::uint64_t>();
  if (!in.Has(count, kPlaceBytes)) return false;
  for (std::uint64_t k = 0; k < count; ++k) {
    const auto x = in.Get<double>();
    curve.Append(x, in.Get<double>());
  }
  curve.SetClosedOnValidate(closes);
  return in.IsWhole();
}

std::string BytesOf(const CSubdivisionBits& bits) {
  CByteWriter out;
  out.Put(std::uint64_t{bits.Bits().size()});
  for (std::size_t k = 0; k < bits.Bits().size(); k += 8) {
    std::uint8_t byte = 0;
    for (std::size_t b = 0; b < 8 && k + b < bits.Bits().size(); ++b)
      byte = static_cast<std::uint8_t>(byte | (bits.Bits()[k + b] ? 1U << b : 0U));
    out.Put(byte);
  }
  return out.Take();
}

bool ReadBytes(std::string_view bytes, int depth, CSubdivisionBits& bits) {
  CByteReader in(bytes);
  const auto count = in.Get<std::uint64_t>();
  if (!in.Has(count / 8, 1)) return false;
  std::vector<bool> nodes(count);
  for (std::size_t k = 0; k < nodes.size(); k += 8) {
    const auto byte = in.Get<std::uint8_t>();
    for (std::size_t b = 0; b < 8 && k + b < nodes.size(); ++b) nodes[k + b] = (byte >> b & 1U) != 0;
  }
  std::optional<CSubdivisionBits> whole = CSubdivisionBits::FromBits(depth, std::move(nodes));
  if (!in.IsWhole() || !whole.has_value()) return false;
  bits = std::move(*whole);
  return true;
}
