#pragma once

#include "reference/CReferenceFit.h"

class CDepthReading;
class CPtCstrList;
struct CExtent;
struct CReferenceSettings;

/// A fit of straight response to the heights as they are: its scale and offset stand beside a bent one, which has
/// neither.
CReferenceFit StraightFit(const CPtCstrList& points, const CExtent& extent, const CDepthReading& reading,
                          const CReferenceSettings& settings);
