#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <vector>

#include "base/CPlanePoint.h"
#include "scissors/CLinkCosts.h"
#include "scissors/CPixelViewport.h"
#include "scissors/CScissorsContours.h"
#include "scissors/CTopDownImage.h"
#include "scissors/MinimumPathTree.h"

struct CExtent;

/// Intelligent scissors without a window: the user sets key points, and from one to the next the contour follows the
/// cheapest path along the edges of the picture.
///
/// The paths to the last key point, the seed, are found in slices (`Advance`), so that a large picture does not hold up
/// the program. What needs a path before its slice has come finds it at once.
class CScissorsTool {
 public:
  /// Of a picture; places in contours are kept in 16 bits.
  static constexpr int kMostSide = 32767;

  /// Takes the picture, whose sides are at most kMostSide, and computes its link costs; logs its size.
  explicit CScissorsTool(CTopDownImage image);
  ~CScissorsTool() = default;
  CScissorsTool(const CScissorsTool&) = delete;
  CScissorsTool& operator=(const CScissorsTool&) = delete;

  /// The picture, row 0 at the top, the paths from the present seed, and the contours.
  const CTopDownImage& Image() const { return m_Image; }
  const CMinimumPathTree& Tree() const { return m_Tree; }
  const CScissorsContours& Contours() const { return m_Contours; }
  CScissorsContours& Contours() { return m_Contours; }

  /// A click on a visible pixel: the next key point, or with `begin` or without a contour in progress the first one of
  /// a new contour.
  void Press(CPixelPosition pixel, bool begin, const CPixelViewport& view);
  /// Ends the contour in progress at the pixel under the cursor, or with `close` at its first pixel; without a cursor
  /// it stays in progress. False without a contour in progress.
  bool Enter(std::optional<CPixelPosition> cursor, bool close);

  /// Takes the last key point back; the paths lead to the one before then. False without a contour in progress.
  bool TakeBack();

  /// Whether the paths to the seed are still being looked for.
  bool IsBuilding() const { return m_Contours.IsInProgress() && !m_Tree.IsComplete(); }
  /// The share of the pixels whose path is known, in percent.
  int PercentBuilt() const;
  /// Looks at `count` more pixels while building.
  void Advance(std::size_t count);
  /// Whether the path from a pixel to the seed can be shown.
  bool HasPath(CPixelPosition pixel) const { return m_Contours.IsInProgress() && m_Tree.IsExpanded(pixel); }

  /// "x = ... y = ... r = ... g = ... b = ..." for a place in the window and the pixel shown there; beside the picture
  /// the colour is that of the background.
  std::string StatusText(int x, int y, std::optional<CPixelPosition> pixel) const;

 private:
  void BuildFrom(CPixelPosition seed);
  void CommitTo(CPixelPosition pixel);
  template <typename Grow>
  void GrowTree(Grow&& grow);

  CTopDownImage m_Image;
  CLinkCosts m_Costs;
  CMinimumPathTree m_Tree;
  CScissorsContours m_Contours;
};

/// Where the tool would rather have a seed than at `clicked`: on a strong edge nearby. It says that it cannot do that
/// yet, and answers `clicked`.
CPixelPosition SeedSnap(CPixelPosition clicked);

/// The snapped seed if it is visible; the clicked one, with a line to the console, otherwise.
CPixelPosition ChooseSeed(CPixelPosition clicked, CPixelPosition snapped, const CPixelViewport& view);

/// The centres of a contour's pixels in the model rectangle; the picture, `width` x `height`, is stretched over it.
std::vector<CPlanePoint> PlanePointsOf(const CTracedContour& contour, const CExtent& extent, int width, int height);
