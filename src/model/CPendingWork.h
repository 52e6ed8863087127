#pragma once

#include <cstddef>
#include <vector>

/// The work that waits for the next tick. Each code is a power of two; the value 0 means nothing.
enum class Operation {
  kNone = 0,
  kRestart = 1,            ///< rebuild the constraint rows, keep the matrix
  kRebuild = 2,            ///< rebuild numbering, matrix and rows
  kRebuildMaps = 4,        ///< rebuild tree and discontinuity maps, then as kRebuild
  kTransferToHigh = 8,     ///< switch to the high resolution, starting from the present surface
  kTransferToNormal = 16,  ///< the same to the normal resolution
  kRestoreHigh = 32,       ///< switch to the high resolution, taking up its own surface
  kRestoreNormal = 64,     ///< the same to the normal resolution
  kSubdivide = 128,
  kMerge = 256,
  kContourAttributes = 512,
  kNewCurve = 1024,
  kLoadGrid = 2048,
  kNewGrid = 4096,
  kSaveGrid = 8192,
  kLoadImage = 16384,
};

/// Whether the operation is an edit, which only says how much of the system is out of date, and not a command.
constexpr bool IsEdit(Operation operation) {
  return operation == Operation::kRestart || operation == Operation::kRebuild || operation == Operation::kRebuildMaps;
}

/// Whether the operation posted twice does more than posted once: each press of a key takes another step.
constexpr bool Repeats(Operation operation) {
  return operation == Operation::kSubdivide || operation == Operation::kMerge;
}

/// What a user asks for that has no code: a step on the way back through what was done, or forward again, or a new grid
/// in the proportions of the picture.
enum class UserStep { None, Undo, Redo, FitPicture };

/// What has been done of what waited.
enum class Performed { Nothing, Operations, Step };

/// Work in the order in which it is to be done: operations, then a step, if any.
struct CPendingRound {
  std::vector<Operation> m_aOperations;
  UserStep m_Step = UserStep::None;
  bool operator==(const CPendingRound&) const = default;
};

/// The work that commands and edits leave for the next tick: the code posted last, and what it was posted over.
///
/// Beside the codes wait the steps that the user has asked for, each after the codes posted before it.
///
/// One code is visible at a time, the last; but no posted work is lost. Overwritten codes wait in the order in which
/// they were posted, edits that follow each other merged into the most thorough one (maps over matrix over restart). A
/// code posted again at once stands for one, but for those that repeat.
class CPendingWork {
 public:
  /// The code posted last, Operation::kNone if there is none.
  Operation Next() const { return Next_Operation; }

  /// Nothing is gained by posting a code that was posted last and has not been performed, but for those that repeat.
  /// `Clear` forgets all.
  void Post(Operation code);
  /// Steps have no code: `Next` does not show them.
  void RequestStep(UserStep step);
  bool HasStep() const { return !m_aSteps.empty(); }
  void Clear();
  /// The codes to perform, in order, without the steps. Nothing is pending afterwards, so that what these post is kept
  /// for the next time.
  std::vector<Operation> Take();
  /// The same with the steps: the codes before each, then those after the last one. Empty where nothing is pending.
  std::vector<CPendingRound> TakeRounds();

 private:
  /// A step, and how many codes are to be performed before it.
  struct CWaitingStep {
    UserStep m_Step;
    std::size_t m_uAfter;
  };

  bool MergesInto(Operation code) const;
  void Remember(Operation code);

  Operation Next_Operation = Operation::kNone;
  std::vector<Operation> m_aOverwritten;
  std::vector<CWaitingStep> m_aSteps;
};
