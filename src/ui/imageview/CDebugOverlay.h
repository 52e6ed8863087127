#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>

#include "drawing/CViewMapping.h"

class CGrid;
class ViewHost;
struct CInterpolationTrace;
struct CProbedTerm;

/// The tools of the debug zone in the image view: what they look up under the mouse, tell the window and draw.
class CDebugOverlay {
 public:
  /// Looks up what `flags` (DebugFlag bits) ask for at `place`, model units, and shows the numbers.
  void Look(CGrid& grid, std::uint32_t flags, const CPlanePoint& place, ViewHost& host);
  /// Some tool has been switched off, `flags` are the others: forgets what it showed, and shows again what they look up
  /// at the place looked at last.
  void SwitchOff(const CGrid& grid, std::uint32_t flags, ViewHost& host);
  /// Keeps what an interpolation on `grid` was made of until the subdivision changes.
  void ShowInterpolation(const CGrid& grid, const CInterpolationTrace& trace);

  /// Into the current context, in model units.
  void Draw(const CGrid& grid, std::uint32_t flags) const;

 private:
  /// A coefficient beside its point.
  struct CLabel {
    CPlanePoint m_Place;
    double m_fValue = 0.0;
  };
  void LookUpTerms(const CGrid& grid, std::uint32_t flags, ViewHost& host);
  void LabelTerm(const CGrid& grid, const CProbedTerm& term);
  void DrawLabels() const;
  void DrawTrace() const;

  std::optional<CPlanePoint> m_Place;  ///< looked up last by the tools that show numbers
  std::array<CLabel, 12> m_aLabels;    ///< of up to three terms
  std::size_t m_uLabels = 0;
  std::uint64_t m_uLabelTree = 0;  ///< the subdivision that the labels belong to
  CExtent m_TracedCell;
  std::array<CPlanePoint, 8> m_aTraced;  ///< the ends of the sub-edge, if any, and the points of the centre
  std::size_t m_uTraced = 0;
  std::uint64_t m_uTracedTree = 0;
};
