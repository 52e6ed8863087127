#pragma once

#include <span>
#include <string>

#include "model/CSaveOutcome.h"

/// A file that is to be written.
struct CNewFile {
  std::string m_Name;
  std::string m_Bytes;
};

/// Writes files that belong together: the contents of all are on the disk before the first takes its place, the last
/// one's last. Where one cannot be written, the old contents of all stay.
CSaveOutcome SaveTogether(std::span<const CNewFile> files);
