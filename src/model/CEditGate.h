#pragma once

#include <cstdint>
#include <utility>

#include "model/Edit.h"
#include "model/EditObserver.h"

class CConstraints;
class CGridReference;
class CGridRun;

/// The gate through which a hand changes the document: every edit of the model's parts is made in here, which then
/// posts what it has put out of date (PostedBy) and has it shown. Commands that replace the document pass it, too.
/// Nothing is computed here.
///
/// What a button does between its press and its release lies between `BeginGesture` and `EndGesture`, and is one edit
/// to the user.
class CEditGate {
 public:
  /// What a hand holds.
  enum class Hold { Nothing, Curve, Other };
  enum class GestureEnd {
    Released,     ///< by the button
    Interrupted,  ///< by a key, a dialog or another mode
  };

  /// All of them must outlive the gate.
  CEditGate(const CConstraints& constraints, CGridReference& reference, CGridRun& run)
      : m_Constraints(constraints), m_Reference(reference), m_Run(run) {}
  CEditGate(const CEditGate&) = delete;
  CEditGate& operator=(const CEditGate&) = delete;
  ~CEditGate() = default;

  /// Who hears of edits and gestures, or null. Must outlive the gate or be detached.
  void AttachObserver(EditObserver* observer) { m_pObserver = observer; }

  /// How often the document has been changed so far, by whatever.
  std::uint64_t Edits() const { return m_uEdits; }
  /// It has been given back a state that it had before.
  void NoteRestored() { ++m_uEdits; }

  /// A button has taken hold of something.
  void BeginGesture(Hold hold);
  /// Nothing is held afterwards. A curve that was held takes effect: kRebuildMaps is posted, unless its attributes are
  /// to be edited, which bring a rebuild of their own. Interrupted, a gesture does so only if it has changed anything.
  /// A reference whose response would be another one by now is fitted again: kRestart is posted.
  void EndGesture(GestureEnd end);

  /// Makes a change by calling `change`. Where that throws nothing is posted, and the observer hears of the end of an
  /// edit that may have changed nothing.
  template <typename Change>
  void Do(Edit edit, Change&& change) {
    if (m_pObserver != nullptr) m_pObserver->BeforeEdit(edit);
    try {
      std::forward<Change>(change)();
    } catch (...) {
      if (m_pObserver != nullptr) m_pObserver->AfterEdit(edit);
      throw;
    }
    Finish(edit);
    if (m_pObserver != nullptr) m_pObserver->AfterEdit(edit);
  }

 private:
  void Finish(Edit edit);

  const CConstraints& m_Constraints;
  CGridReference& m_Reference;
  CGridRun& m_Run;
  EditObserver* m_pObserver = nullptr;
  std::uint64_t m_uEdits = 0;
  Hold m_Held = Hold::Nothing;
  bool m_bChanged = false;  ///< by the gesture under way
};
