#pragma once

#include <functional>
#include <span>
#include <string>

#include "base/CByteSink.h"
#include "model/CSaveOutcome.h"

/// A file that is to be written.
struct CNewFile {
  std::string m_Name;
  std::string m_Bytes;
  /// Gives the bytes while they are written, in place of those; false where the rest is not wanted any more.
  std::function<bool(CByteSink&)> m_Put = {};
};

/// The outcome of a file that is not wanted any more.
CSaveOutcome Cancelled(const std::string& filename);

/// Writes files that belong together: the contents of all are on the disk before the first takes its place, the last
/// one's last. Where one cannot be written or put in place, the old ones of all stay, or come back. `goes` is told the
/// share of the bytes there are that is written, now and then before the first file takes its place; its false leaves
/// all as it was, with an outcome that says so.
CSaveOutcome SaveTogether(std::span<const CNewFile> files, const std::function<bool(double)>& goes = {});
