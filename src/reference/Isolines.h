#pragma once

#include <cstdint>
#include <vector>

#include "base/CPlanePoint.h"

class CDepthReading;

/// Part of an isoline, from one side between two pixels to the next, in pixels; a closed one does not come back to the
/// first place.
struct CIsoline {
  std::vector<CPlanePoint> m_aPlaces;
  bool m_bClosed = false;

  /// In pixels, from the last place to the first included where it is closed.
  double Length() const;
};

/// By pixel: 1 where the values (brought to -1..1) within `radius` pixels, of a square around it, span more than
/// `range`. Linear in the pixels.
std::vector<std::uint8_t> SteepPixels(const CDepthReading& reading, int radius, double range);

/// The isolines of a level (in -1..1) [LorensenCline1987], as far as they run between pixels of which one is steep.
/// Pixels without a value have none around them.
std::vector<CIsoline> IsolinesAt(const CDepthReading& reading, double level, const std::vector<std::uint8_t>& steep);
