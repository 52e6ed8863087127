#pragma once

#include <string>

/// What has become of a file that was to be written; true if it was.
struct CSaveOutcome {
  /// Whether the file was written.
  explicit operator bool() const { return m_Trouble.empty(); }

  std::string m_Trouble;      ///< what the user is to be told; empty where all is well
  bool m_bCancelled = false;  ///< because the user wanted it no more; the trouble says so
};
