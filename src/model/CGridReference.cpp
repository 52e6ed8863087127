#include "model/CGridReference.h"

#include <utility>

#include "base/Memory.h"
#include "constraints/TearLines.h"
#include "model/CConstraints.h"
#include "model/CSurface.h"
#include "reference/CValueSampler.h"

void CGridReference::Set(CReference value) {
  const bool same = m_Value.HasSameValues(value);
  const bool anotherResponse = m_Value.m_Settings.m_Response != value.m_Settings.m_Response;
  m_Value = std::move(value);
  if (!same || anotherResponse) m_Fit = {};
  if (same && HasMap() && &m_Reading->Map() == m_Value.m_pMap.get()) return;
  m_Reading.reset();
  m_uValuesRevision = 0;
  Release(m_afValues);
  if (m_Value.m_pMap != nullptr) m_Reading.emplace(*m_Value.m_pMap, m_Value.m_Settings.m_bZeroIsUnknown);
}

// Curves that tear mark the tree, so that other tears come with another revision.
std::span<const double> CGridReference::Sample() {
  if (!HasMap()) return {};
  const CQuadTree& tree = m_Surface.Tree();
  if (m_uValuesRevision != tree.Revision() || m_afValues.size() != m_Surface.Order().Count()) {
    const std::vector<CGridSegment> tears = TearLines(m_Constraints.Curves(), m_Surface.Lattice());
    CValueSampler(*m_Reading, tree, m_Surface.Order(), tears).Sample(m_afValues);
    m_uValuesRevision = tree.Revision();
  }
  return m_afValues;
}

CRestShape CGridReference::Fit() {
  if (!HasMap()) return {};
  const CExtent& extent = m_Surface.Lattice().Extent();
  CollectHeights(m_Constraints.Points(), extent, *m_Reading, m_aHeights);
  const ResponseChoice kept = m_Fit.m_bBent ? ResponseChoice::KeepBent : ResponseChoice::KeepStraight;
  m_Fit = FitReference(m_aHeights, m_Value.m_Settings, *m_Reading, extent, m_bHeld ? kept : ResponseChoice::Anew);
  const double strength = m_Value.m_Settings.m_fStrength;
  return {strength * m_Fit.m_fLinear, strength * m_Fit.m_fSquare};
}

bool CGridReference::IsChoiceDue() const {
  return HasMap() && m_Value.m_Settings.m_Response == ReferenceResponse::Automatic &&
         m_Fit.m_bChoosesBent != m_Fit.m_bBent;
}
