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
/// one's last. Where the contents of one cannot be written, the old ones of all stay; a failure after that, which takes
/// a folder that changes under the program's hands, leaves those in place that came before.
CSaveOutcome SaveTogether(std::span<const CNewFile> files);
