#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include "scissors/PixelPosition.h"

class CMinimumPathTree;

/// A pixel of a traced contour.
struct CPathPixel {
  std::int16_t m_iColumn = 0;
  std::int16_t m_iRow = 0;
  bool m_bKeyPoint = false;  ///< set by the user, or else part of the path between two that were

  /// Column and row, row 0 at the top.
  CPixelPosition Position() const { return {m_iColumn, m_iRow}; }
  friend bool operator==(const CPathPixel&, const CPathPixel&) = default;
};

/// Pixels from the first key point on; a closed contour ends on the pixel that it began with.
struct CTracedContour {
  std::vector<CPathPixel> m_aPixels;
  bool m_bClosed = false;
};

/// What the user of the scissors has traced: the contour in progress and the finished ones that the model has not taken
/// yet.
class CScissorsContours {
 public:
  static constexpr int kNone = -1;

  /// Whether a contour has been begun and not finished.
  bool IsInProgress() const { return !m_InProgress.m_aPixels.empty(); }
  /// Without pixels where none is in progress.
  const CTracedContour& InProgress() const { return m_InProgress; }
  /// Where the contour in progress began, and where the path to the cursor begins.
  CPixelPosition FirstPixel() const { return m_InProgress.m_aPixels.front().Position(); }
  CPixelPosition Seed() const { return m_InProgress.m_aPixels.back().Position(); }

  /// Begins a contour at a key point; one in progress is dropped.
  void Begin(CPixelPosition first);
  /// Appends the path of `tree`, whose seed is the contour's, to the pixel `p`, which becomes a key point and the seed.
  /// The tree must know a path of `p`.
  void Commit(const CMinimumPathTree& tree, CPixelPosition p);
  /// Forgets the last key point with the path to it; the one before is the seed then, and without one no contour is in
  /// progress. False where none is.
  bool TakeBack();
  /// The contour in progress joins the traced ones.
  void Finish(bool closed);

  /// The finished ones, in the order they were traced.
  const std::vector<CTracedContour>& Traced() const { return m_aTraced; }
  /// Index of the selected contour, kNone without a selection.
  int Selected() const { return m_iSelected; }
  /// Selects the first traced contour that passes through `p`, if any; whether the selection has changed.
  bool SelectAt(CPixelPosition p);
  /// Removes the selected contour, the last one taking its place; false without a selection.
  bool RemoveSelected();

  /// Calls `take` with each traced contour in order and drops those for which it answers true. Nothing is selected
  /// after that.
  template <typename Take>
  void HandOver(Take&& take) {
    std::erase_if(m_aTraced, take);
    m_iSelected = kNone;
  }

 private:
  CTracedContour m_InProgress;
  std::vector<CTracedContour> m_aTraced;
  int m_iSelected = kNone;
};
