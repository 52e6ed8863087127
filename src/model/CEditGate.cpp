#include "model/CEditGate.h"

#include "model/CConstraints.h"
#include "model/CGridReference.h"
#include "model/CGridRun.h"

void CEditGate::BeginGesture(Hold hold) {
  m_Held = hold;
  m_bChanged = false;
  m_Reference.SetHeld(true);
  if (m_pObserver != nullptr) m_pObserver->GestureBegins();
}

void CEditGate::EndGesture(GestureEnd end) {
  const bool curve = std::exchange(m_Held, Hold::Nothing) == Hold::Curve;
  const bool changed = std::exchange(m_bChanged, false) || end == GestureEnd::Released;
  if (curve && changed && m_Run.NextOperation() != Operation::kContourAttributes) Finish(Edit::ReleaseCurve);
  m_Reference.SetHeld(false);
  if (m_Reference.IsChoiceDue()) m_Run.Post(Operation::kRestart);
  if (m_pObserver != nullptr) m_pObserver->GestureEnds();
}

void CEditGate::Finish(Edit edit) {
  ++m_uEdits;
  m_bChanged = m_Held != Hold::Nothing;
  if (PostedBy(edit) != Operation::kNone) m_Run.Post(PostedBy(edit));
  if (ChangesPointCount(edit)) m_Run.Host().ShowConstraints(m_Constraints.ActiveCount());
  m_Run.Host().RequestRedraw();
}
