#pragma once

#include <atomic>
#include <functional>
#include <optional>
#include <thread>

/// Work done in the background, in one thread of its own, while the program goes on. All functions belong to the thread
/// that has made the object.
class CBackgroundTask {
 public:
  CBackgroundTask();
  /// Waits for the end of the work under way.
  ~CBackgroundTask();
  CBackgroundTask(const CBackgroundTask&) = delete;
  CBackgroundTask& operator=(const CBackgroundTask&) = delete;

  /// Begins `work`, which must touch nothing that anybody else changes, and throw nothing. Nothing else may be under
  /// way, or done and not taken. Where no thread can be had, it is done at once.
  void Begin(std::function<bool()> work);
  /// Whether work has begun whose answer has not been taken.
  bool IsBusy() const { return m_Thread.joinable() || m_bAtOnce; }
  /// Becomes readable when the work is done; -1 where the system has no descriptor left.
  int Descriptor() const { return m_iDone; }
  /// What the work has answered; nothing while it goes on, and where there is none.
  std::optional<bool> Take();
  /// The same after waiting for it.
  std::optional<bool> Wait();

 private:
  std::thread m_Thread;
  std::atomic<bool> m_bDone = false;
  bool m_bAnswer = false;  ///< belongs to the thread until m_bDone
  bool m_bAtOnce = false;
  int m_iDone;
};
