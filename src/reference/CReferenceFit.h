#pragma once

#include <span>
#include <vector>

#include "reference/CReference.h"

class CDepthReading;
class CPtCstrList;
struct CExtent;

/// A height over a value of the map.
struct CHeightOverMap {
  double m_fValue = 0.0;  ///< of the map, brought to -1..1
  double m_fZ = 0.0;      ///< model units
  int m_iIndex = 0;       ///< of its record in the list
};

/// What makes heights of a map, and how well it goes with the heights that there are: the height over a value v
/// (brought to -1..1) is offset + linear * v + square * v * v.
struct CReferenceFit {
  double m_fOffset = 0.0;
  double m_fLinear = 0.0;
  double m_fSquare = 0.0;
  bool m_bFitted = false;       ///< scale and offset are those of the heights, else of the depth of the scene
  bool m_bBent = false;         ///< a bent response is used
  bool m_bChoosesBent = false;  ///< what Automatic would choose now; another one while a drag goes on
  bool m_bNearIsBright = true;  ///< larger values are higher, whatever the switch says
  int m_iHeights = 0;           ///< heights over a value
  double m_fRms = 0.0;          ///< of what the heights miss it by, model units
  double m_fWorst = 0.0;        ///< of these the one farthest from 0, height less map
  int m_iWorst = -1;            ///< index of its record; -1 without heights

  /// Height over a value.
  double HeightOver(double value) const { return m_fOffset + value * (m_fLinear + value * m_fSquare); }
  /// Model units in a unit of the map's own values, halfway between the lowest and the highest one, and the height over
  /// the value 0 of a straight response.
  double Scale(const CDepthReading& reading) const;
  double OffsetAtZero(const CDepthReading& reading) const;
};

/// The enabled position constraints over pixels with a value go to `heights`, whose memory is kept.
void CollectHeights(const CPtCstrList& points, const CExtent& extent, const CDepthReading& reading,
                    std::vector<CHeightOverMap>& heights);

/// How a response is to be chosen where the settings leave it open.
enum class ResponseChoice { Anew, KeepStraight, KeepBent };

/// Fits the map to heights by least squares. Three heights that are not all on one value give scale and offset; with
/// fewer the settings' depth of the scene is the range of heights, and the offset the mean of what the heights ask for,
/// or such that the mean height is 0.
///
/// A bent response needs 12 heights on 6 values. Its slope has the straight one's sign, or is 0, at both ends of the
/// map's range. Automatic takes it where it foretells each height from the others with at most 0.9 of the straight
/// one's RMS error, and where that is more than a thousandth of the range of the heights. Linear in the heights;
/// allocates nothing.
CReferenceFit FitReference(std::span<const CHeightOverMap> heights, const CReferenceSettings& settings,
                           const CDepthReading& reading, const CExtent& extent, ResponseChoice choice);
