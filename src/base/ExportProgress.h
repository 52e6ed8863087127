#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>

/// Whom a long export tells how far it is, and asks whether it is still wanted.
class ExportProgress {
 public:
  ExportProgress() = default;
  ExportProgress(const ExportProgress&) = delete;
  ExportProgress& operator=(const ExportProgress&) = delete;
  virtual ~ExportProgress() = default;

  /// A share of the export, from 0 to 1, is done. False once the export has been cancelled, and from then on: the
  /// writer leaves nothing behind. Called several times a second.
  virtual bool Goes(double share) = 0;
};

/// The whole of an export or a part of it that follows others, for the function that does it.
class CExportSteps {
 public:
  /// A null progress is never cancelled.
  CExportSteps() = default;
  explicit CExportSteps(ExportProgress* progress) : m_pProgress(progress) {}

  /// The part between two shares of this one.
  CExportSteps Part(double from, double to) const {
    CExportSteps part(m_pProgress);
    part.m_fFrom = At(from);
    part.m_fTo = At(to);
    return part;
  }

  /// That a share of this part is done; false where the export has been cancelled.
  bool Goes(double share) const { return m_pProgress == nullptr || m_pProgress->Goes(At(share)); }

  /// Does a count of like things in blocks, `work(begin, end)` for each, and asks before each; false where the export
  /// has been cancelled.
  static constexpr std::size_t kBlock = std::size_t{1} << 16;
  template <typename Work>
  bool ForBlocks(std::size_t count, const Work& work, std::size_t block = kBlock) const {
    for (std::size_t begin = 0; begin < count; begin += block) {
      if (!Goes(static_cast<double>(begin) / static_cast<double>(count))) return false;
      work(begin, std::min(count, begin + block));
    }
    return Goes(1);
  }

 private:
  // Exact at both ends, so that a part ends where the next one begins and no share is below the one before.
  double At(double share) const { return std::lerp(m_fFrom, m_fTo, share); }

  ExportProgress* m_pProgress = nullptr;
  double m_fFrom = 0.0;
  double m_fTo = 1.0;
};
