#include "reference/StraightFit.h"

#include <vector>

CReferenceFit StraightFit(const CPtCstrList& points, const CExtent& extent, const CDepthReading& reading,
                          const CReferenceSettings& settings) {
  std::vector<CHeightOverMap> heights;
  CollectHeights(points, extent, reading, heights);
  CReferenceSettings straight = settings;
  straight.m_Response = ReferenceResponse::Straight;
  return FitReference(heights, straight, reading, extent, ResponseChoice::Anew);
}
