#include "model/CReferenceEdits.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/CEditGate.h"
#include "model/CGridReference.h"

namespace {

template <typename Change>
void Make(Edit edit, CGridReference& reference, CEditGate& gate, const Change& change) {
  CReference changed = reference.Value();
  change(changed);
  if (changed == reference.Value()) return;
  gate.Do(edit, [&] { reference.Set(std::move(changed)); });
}

}  // namespace

void CReferenceEdits::Load(std::shared_ptr<const CDepthMap> map, const std::string& file) {
  Make(Edit::LoadReference, m_Reference, m_Gate, [&](CReference& changed) {
    changed.m_pMap = std::move(map);
    changed.m_File = file;
  });
}

void CReferenceEdits::Remove() {
  Make(Edit::RemoveReference, m_Reference, m_Gate, [](CReference& changed) { changed = {}; });
}

void CReferenceEdits::SetStrength(double strength) {
  if (std::isnan(strength)) return;
  Make(Edit::SetReferenceStrength, m_Reference, m_Gate,
       [&](CReference& changed) { changed.m_Settings.m_fStrength = std::clamp(strength, 0.0, 1.0); });
}

void CReferenceEdits::SetNearIsBright(bool bright) {
  Make(Edit::SetReferenceOption, m_Reference, m_Gate,
       [&](CReference& changed) { changed.m_Settings.m_bNearIsBright = bright; });
}

void CReferenceEdits::SetResponse(ReferenceResponse response) {
  Make(Edit::SetReferenceOption, m_Reference, m_Gate,
       [&](CReference& changed) { changed.m_Settings.m_Response = response; });
}

void CReferenceEdits::SetZeroIsUnknown(bool unknown) {
  Make(Edit::SetReferenceValues, m_Reference, m_Gate,
       [&](CReference& changed) { changed.m_Settings.m_bZeroIsUnknown = unknown; });
}

void CReferenceEdits::SetSceneDepth(std::optional<double> depth) {
  if (depth.has_value() && !(std::isfinite(*depth) && *depth > 0)) return;
  Make(Edit::SetReferenceOption, m_Reference, m_Gate,
       [&](CReference& changed) { changed.m_Settings.m_SceneDepth = depth; });
}
