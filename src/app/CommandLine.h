#pragma once

#include <optional>

#include "editing/CWorkFiles.h"

/// What the program was started for.
struct CCommandLine {
  bool m_bDefaults = false;          ///< nothing that was remembered is to hold
  CWorkFiles m_Files;                ///< to be opened, the last of each kind that is named
  std::optional<int> m_iExitStatus;  ///< all is done already, and this is what to end with
};

/// Reads the arguments. Answers --help and --version on standard output and refuses other options on standard error.
/// After "--" everything is a file.
CCommandLine ReadCommandLine(int count, const char* const* arguments);
