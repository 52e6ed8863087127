#pragma once

#include <vector>

/// Codes of the work that waits for the next tick. Each is a power of two; the value 0 means nothing.
namespace Operation {
inline constexpr int kNone = 0;
inline constexpr int kRestart = 1;            ///< constraint rows anew, the matrix stays
inline constexpr int kRebuild = 2;            ///< numbering, matrix and rows anew
inline constexpr int kRebuildMaps = 4;        ///< tree and discontinuity maps anew, then as kRebuild
inline constexpr int kTransferToHigh = 8;     ///< switch to the high resolution, starting from the present surface
inline constexpr int kTransferToNormal = 16;  ///< the same to the normal resolution
inline constexpr int kRestoreHigh = 32;       ///< switch to the high resolution, taking up its own surface
inline constexpr int kRestoreNormal = 64;     ///< the same to the normal resolution
inline constexpr int kSubdivide = 128;
inline constexpr int kMerge = 256;
inline constexpr int kContourAttributes = 512;
inline constexpr int kNewCurve = 1024;
inline constexpr int kLoadGrid = 2048;
inline constexpr int kNewGrid = 4096;
inline constexpr int kSaveGrid = 8192;
inline constexpr int kLoadImage = 16384;

/// Whether the operation is an edit, which only says how much of the system is out of date, and not a command.
inline constexpr bool IsEdit(int operation) {
  return operation == kRestart || operation == kRebuild || operation == kRebuildMaps;
}

/// Whether the operation posted twice does more than posted once: each press of a key takes another step.
inline constexpr bool Repeats(int operation) { return operation == kSubdivide || operation == kMerge; }
}  // namespace Operation

/// The work that commands and edits leave for the next tick: the code posted last, and what it was posted over.
///
/// One code is visible at a time, the last; but no posted work is lost. Overwritten codes wait in the order in which
/// they were posted, edits that follow each other merged into the most thorough one (maps over matrix over restart). A
/// code posted again at once stands for one, but for those that repeat.
class CPendingWork {
 public:
  /// The code posted last, Operation::kNone if there is none.
  int Next() const { return Next_Operation; }

  void Post(int code);
  void Clear();
  /// The codes to perform, in order. Nothing is pending afterwards, so that what these post is kept for the next time.
  std::vector<int> Take();

 private:
  void Remember(int code);

  int Next_Operation = Operation::kNone;
  std::vector<int> m_aiOverwritten;
};
