#pragma once

/// The signals that ask a process to end (SIGINT, SIGTERM, SIGHUP), as something to read instead of a sudden end, so
/// that the program can clean up between two steps of its work and then end by the same signal.
///
/// There is one object at a time. A signal that was ignored when the program was started stays ignored. For the life of
/// the process SIGXFSZ is ignored, too: a file that grows too large is then an error of the write, like a full disk.
class CTerminationSignals {
 public:
  CTerminationSignals();
  /// The signals end the process again.
  ~CTerminationSignals();
  CTerminationSignals(const CTerminationSignals&) = delete;
  CTerminationSignals& operator=(const CTerminationSignals&) = delete;

  /// Becomes readable when a signal has come; -1 where the system had no pipe left, and signals then end the process.
  int Descriptor() const { return m_iReadEnd; }
  /// The first signal that has come since the last call; 0 where none has.
  int Take() const;
  /// Ends the process by the default action of the signal, as if it had never been caught.
  [[noreturn]] static void EndBy(int signal);

 private:
  int m_iReadEnd = -1;
};
