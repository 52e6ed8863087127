#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <vector>

#include "reference/CDepthMap.h"
#include "reference/CReference.h"
#include "reference/CReferenceFit.h"
#include "solver/CRestForces.h"

class CConstraints;
class CSurface;

/// The depth map that the surface of a model follows, if any, and what makes heights of it.
///
/// Nothing here posts work: the map is read at the points when the system is assembled, and fitted to the heights
/// whenever the rows of the constraints are made.
class CGridReference {
 public:
  /// Both must outlive the reference.
  CGridReference(const CSurface& surface, const CConstraints& constraints)
      : m_Surface(surface), m_Constraints(constraints) {}
  CGridReference(const CGridReference&) = delete;
  CGridReference& operator=(const CGridReference&) = delete;
  ~CGridReference() = default;

  /// What the user has chosen; without a map, nothing else counts.
  const CReference& Value() const { return m_Value; }
  void Set(CReference value);
  bool HasMap() const { return m_Reading.has_value(); }
  /// The map with its meaning of 0. Precondition: `HasMap()`.
  const CDepthReading& Reading() const { return *m_Reading; }

  /// The map's values at the points of the present subdivision, by scan position (see CValueSampler); empty without a
  /// map. The leaves must be listed. Nothing is read again while map, subdivision and tears are the same.
  std::span<const double> Sample();
  /// Fits the map to the heights as they are, and answers with the shape that the energy is to count from. While a hand
  /// holds something the response stays straight or bent. Without a map the shape is none.
  CRestShape Fit();
  /// As of the last `Fit`; its misfits are those of the heights at that time.
  const CReferenceFit& Fitted() const { return m_Fit; }

  /// A hand takes hold of something, or lets go.
  void SetHeld(bool held) { m_bHeld = held; }
  /// Whether the response would be another one now that nothing is held.
  bool IsChoiceDue() const;

 private:
  const CSurface& m_Surface;
  const CConstraints& m_Constraints;
  CReference m_Value;
  std::optional<CDepthReading> m_Reading;
  CReferenceFit m_Fit;
  bool m_bHeld = false;
  std::vector<CHeightOverMap> m_aHeights;
  std::vector<double> m_afValues;       ///< by scan position
  std::uint64_t m_uValuesRevision = 0;  ///< of the tree that they belong to; 0 for none
};
