#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <list>
#include <string>
#include <vector>

#include "constraints/CCntrCtrlList.h"
#include "constraints/CPtCstrList.h"

inline constexpr CurveType kTear = CurveType::kPosition;
inline constexpr CurveType kCrease = CurveType::kNormal;
inline constexpr CurveType kFair = CurveType::kFairness;

/// A place of the picture, model units, as clicks leave it.
inline CPtCstr PlaceAt(double x, double y) {
  CPtCstr place;
  place.m_fX = x;
  place.m_fY = y;
  return place;
}

using CPlaces = std::vector<std::array<double, 2>>;

inline std::vector<CPtCstr> PointsAt(const CPlaces& places) {
  std::vector<CPtCstr> points;
  for (const auto& [x, y] : places) points.push_back(PlaceAt(x, y));
  return points;
}

/// One curve by itself.
struct CTestCurve {
  explicit CTestCurve(const CPlaces& places, bool closed = false, CurveType type = CurveType::kPosition)
      : m_Curve(m_List.Add(PointsAt(places), type, closed)) {}

  CCntrNode& Node(int k) { return *std::next(m_Curve.Nodes().begin(), k); }

  CCntrCtrlList m_List;
  CCntrCtrl& m_Curve;
};

inline CPlaces PlacesOf(const CCntrCtrl& curve) {
  CPlaces places;
  for (const CCntrNode& node : curve.Nodes()) places.push_back({node.m_fX, node.m_fY});
  return places;
}
inline CPlaces PlacesOf(const CPtCstrList& list) {
  CPlaces places;
  for (const CPtCstr& c : list) places.push_back({c.m_fX, c.m_fY});
  return places;
}

/// One group of digits per curve, in order: one digit for the curve and one per node, 1 where a state bit is set.
inline std::string States(const CCntrCtrlList& list, std::uint32_t mask) {
  std::string digits;
  for (const CCntrCtrl& curve : list) {
    if (!digits.empty()) digits += ' ';
    digits += curve.HasState(mask) ? '1' : '0';
    digits += ':';
    for (const CCntrNode& node : curve.Nodes()) digits += node.HasState(mask) ? '1' : '0';
  }
  return digits;
}
inline std::string Selection(const CCntrCtrlList& list) { return States(list, PtCstrState::kSelected); }
inline std::string Highlights(const CCntrCtrlList& list) { return States(list, PtCstrState::kHighlighted); }

inline CCntrCtrl& CurveAt(CCntrCtrlList& list, int place) { return *std::next(list.begin(), place); }
inline const CCntrCtrl& CurveAt(const CCntrCtrlList& list, int place) { return *std::next(list.begin(), place); }
