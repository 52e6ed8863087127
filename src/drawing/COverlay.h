#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "drawing/ColourMaps.h"

/// Values over the photograph, which the image view shows in colours that let it shine through, and the legend that
/// says what they are.
///
/// The values are those at the points of a subdivision or those of a raster over the whole model; of the two at least
/// one is empty, both where there is nothing to show but the legend, or nothing yet. Where a value is not a number the
/// photograph is as it was.
struct COverlay {
  /// Rows from the bottom; pixels are rectangles that cover the model evenly.
  struct CRaster {
    int m_iWidth = 0;
    int m_iHeight = 0;
    std::vector<float> m_afValues;
  };

  std::string m_Title;                 ///< of the legend
  std::vector<std::string> m_asNotes;  ///< lines below the title
  std::string m_Unit;                  ///< of the values; empty where they have none
  ColourMap m_Map = ColourMap::Perceptual;
  double m_fLow = 0.0;  ///< the values of the ends of the map, in ascending order
  double m_fHigh = 1.0;
  double m_fOpacity = 0.7;
  bool m_bHighIsOpen = false;  ///< there are values beyond, which have the last colour
  bool m_bHasBar = true;       ///< the legend shows map and range; without it, only the title and the unit

  std::vector<double> m_afAtPoints;  ///< by scan position (see CPointOrder)
  std::uint64_t m_uTree = 0;         ///< the revision of the tree whose points they are, or are going to be
  CRaster m_Raster;

  /// Where a value lies between the ends of the map, 0 to 1; in the middle of a range that is empty.
  double PlaceOf(double value) const { return m_fHigh > m_fLow ? (value - m_fLow) / (m_fHigh - m_fLow) : 0.5; }
};
