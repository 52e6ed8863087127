#pragma once

#include <cstddef>
#include <deque>
#include <map>
#include <string>
#include <utility>

/// A thing that several states hold together, null for none, and its memory.
struct CSharedMemory {
  const void* m_pThing = nullptr;
  std::size_t m_uBytes = 0;
};

/// The steps that can be taken back, and those taken back that can be done again, each with its name in words and the
/// state to return to.
///
/// `State` is a value with `std::size_t Bytes() const`, and `CSharedMemory Shared() const` where states share some of
/// their memory, which counts once. The oldest steps go when all states together take more than the bound; of the
/// latest one at least is kept, however large.
template <typename State>
class CUndoSteps {
 public:
  /// The bound, in bytes.
  explicit CUndoSteps(std::size_t mostBytes) : m_uMostBytes(mostBytes) {}

  /// How many steps there are, back and forward.
  std::size_t UndoCount() const { return m_aDone.size(); }
  std::size_t RedoCount() const { return m_aUndone.size(); }
  bool CanUndo() const { return !m_aDone.empty(); }
  bool CanRedo() const { return !m_aUndone.empty(); }
  /// Names of the steps that `Undo` and `Redo` would take; there must be one.
  const std::string& UndoName() const { return m_aDone.back().m_Name; }
  const std::string& RedoName() const { return m_aUndone.back().m_Name; }
  /// The state before the latest step, and after the next one that was taken back; there must be one.
  const State& UndoState() const { return m_aDone.back().m_State; }
  const State& RedoState() const { return m_aUndone.back().m_State; }
  /// Memory of all states, without what lies there whether they do or not.
  std::size_t Bytes() const {
    const auto held = m_aShared.find(m_pHeld);
    return m_uBytes - (held == m_aShared.end() ? 0 : held->second.m_uBytes);
  }
  /// What of the shared memory the present has, too: no step that went would free it.
  void SetHeld(const void* shared) { m_pHeld = shared; }

  /// A step has been done: what was taken back before it can no longer be done again.
  void Add(std::string name, State before) {
    ForgetRedo();
    Push(m_aDone, std::move(name), std::move(before));
    KeepBound();
  }
  /// The latest step is to be taken back. `present` is the state that `Redo` returns to.
  void Undo(State present) {
    Move(m_aDone, m_aUndone, std::move(present));
    KeepBound();
  }
  /// The way forward again.
  void Redo(State present) {
    Move(m_aUndone, m_aDone, std::move(present));
    KeepBound();
  }
  /// Forgets the latest step, which has changed nothing.
  void DropUndo() {
    Discount(m_aDone.back().m_State);
    m_aDone.pop_back();
  }
  /// Another step goes its own way.
  void ForgetRedo() { Clear(m_aUndone); }
  void Clear() {
    Clear(m_aDone);
    Clear(m_aUndone);
  }

 private:
  struct CStep {
    std::string m_Name;
    State m_State;
  };
  using CSteps = std::deque<CStep>;
  struct CSharing {
    std::size_t m_uBytes = 0;
    std::size_t m_uStates = 0;
  };

  void Count(const State& state) {
    m_uBytes += state.Bytes();
    if constexpr (requires { state.Shared(); }) {
      const CSharedMemory shared = state.Shared();
      if (shared.m_pThing == nullptr) return;
      CSharing& sharing = m_aShared[shared.m_pThing];
      if (sharing.m_uStates++ > 0) return;
      sharing.m_uBytes = shared.m_uBytes;
      m_uBytes += shared.m_uBytes;
    }
  }
  void Discount(const State& state) {
    m_uBytes -= state.Bytes();
    if constexpr (requires { state.Shared(); }) {
      const auto sharing = m_aShared.find(state.Shared().m_pThing);
      if (sharing == m_aShared.end() || --sharing->second.m_uStates > 0) return;
      m_uBytes -= sharing->second.m_uBytes;
      m_aShared.erase(sharing);
    }
  }

  void Push(CSteps& steps, std::string name, State state) {
    Count(state);
    steps.push_back({std::move(name), std::move(state)});
  }
  void Move(CSteps& from, CSteps& to, State present) {
    std::string name = std::move(from.back().m_Name);
    Discount(from.back().m_State);
    from.pop_back();
    Push(to, std::move(name), std::move(present));
  }
  // The oldest on either side is the one that is farthest away from the present.
  void KeepBound() {
    while (Bytes() > m_uMostBytes && m_aDone.size() + m_aUndone.size() > 1) {
      CSteps& steps = m_aDone.size() > 1 || m_aUndone.empty() ? m_aDone : m_aUndone;
      Discount(steps.front().m_State);
      steps.pop_front();
    }
  }
  void Clear(CSteps& steps) {
    for (const CStep& step : steps) Discount(step.m_State);
    steps.clear();
  }

  std::size_t m_uMostBytes;
  std::size_t m_uBytes = 0;  ///< of all states
  std::map<const void*, CSharing> m_aShared;
  const void* m_pHeld = nullptr;
  CSteps m_aDone;    ///< with the states before them
  CSteps m_aUndone;  ///< with the states after them, the next one last
};
