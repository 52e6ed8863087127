#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <span>
#include <vector>

#include "base/CPlanePoint.h"
#include "reference/CTearSight.h"

class CDepthReading;
class CPointOrder;
class CQuadTree;

/// Reads a depth map at the points of a surface.
///
/// A point whose spacing, the longest leaf edge that ends there, spans at most two pixels takes the map's value at its
/// place. Any other takes the mean over a rectangle as wide as its spacing around it, for second differences would
/// amplify the noise of single pixels: of those pixels that no tear parts from it, or the nearest such pixel where
/// there is none. Where it would reach beyond the map it is moved inside, and the plane of its pixels is taken at the
/// point: as many pixels as elsewhere, and planes stay planes.
class CValueSampler {
 public:
  /// All of them must outlive the sampler; the leaves of the tree must be listed. `tears` are lines as of TearLines.
  CValueSampler(const CDepthReading& reading, const CQuadTree& tree, const CPointOrder& order,
                std::span<const CGridSegment> tears);

  /// The values (brought to -1..1, not a number for none) at the points, by scan position. Linear in the points and in
  /// the pixels under them.
  void Sample(std::vector<double>& values);

 private:
  /// What is known of one point.
  struct CPoint {
    int m_iSpacing = 0;  ///< lattice steps
    // Where the points lie that edges outside discontinuities join to it: the sum of the directions.
    int m_iJoinedX = 0;
    int m_iJoinedY = 0;
  };
  /// Pixels along one side and the weights that a point has for them.
  struct CWindow {
    int m_iFirst = 0;
    std::vector<double> m_afWeights;
    bool m_bMoved = false;  ///< it does not lie around the point
    double m_fUnit = 1.0;   ///< its width or more, in pixels
  };

  void SurveyEdges();
  void Place(double centre, double half, int count, CWindow& window) const;
  double ValueAt(std::uint32_t position);
  double MeanInSight(const CPlanePoint& eye, const CPlanePoint& place);
  double NearestInSight(const CPlanePoint& eye, const CPlanePoint& place);
  bool IsInSight(const CPlanePoint& eye, int column, int row) const;
  CPlanePoint LatticePlace(double column, double row) const;

  const CDepthReading& m_Reading;
  const CQuadTree& m_Tree;
  const CPointOrder& m_Order;
  CTearSight m_Sight;
  std::vector<CPoint> m_aPoints;  ///< by scan position
  CWindow m_Columns;
  CWindow m_Rows;
  std::vector<CGridSegment> m_aNear;  ///< the tears near the point at hand
};
