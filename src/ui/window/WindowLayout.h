#pragma once

#include <array>

#include "ui/window/Controls.h"

/// What the places of the controls depend on.
struct CLayoutOptions {
  int m_iWidth = kDesignWidth;  ///< of the window, pixels
  int m_iHeight = kDesignHeight;
  double m_fScale = 1.0;  ///< pixels per pixel of the design, for screens of high density
  bool m_bDebugZone = true;
  bool m_bHelpLine = true;
  bool m_bPictureLoaded = false;  ///< the tools that need a picture have a row of their own each
  bool m_bCoordinates = false;    ///< the views leave 18 pixels of the design to a line below them
};

/// Where every control lies.
struct CWindowLayout {
  std::array<CRect, kControlCount> m_aRects;
  /// The line below the views; of no height where there is none.
  CRect m_Coordinates{};
  /// Whether "Reset the 2D view" has more room than in the design, where its label takes three lines.
  bool m_bRoomyReset = false;

  /// Place and size of a control in the window, screen pixels.
  const CRect& Of(Control control) const { return m_aRects[Index(control)]; }
};

/// Lays out the window. At the size of the design this gives the geometry of the table of controls.
///
/// Widths grow with the window, in proportion or with the columns of the lower panels; heights are those of the design
/// but for the two views, which take what is left. A window too low for panels and bars has views of height 0, and what
/// lies lowest is cut off.
CWindowLayout ComputeLayout(const CLayoutOptions& options);

using CThreeParts = std::array<int, 3>;

/// Divides a length into three whole parts by the fractions f1, f2 and 1 - f1 - f2.
CThreeParts SplitInThree(int length, float f1, float f2);
/// Second half of the split: takes 1 from the part that was rounded up most if the sum exceeds `length`, adds 1 to the
/// part rounded down most if it falls short; of equal ones the first. `errors` are the parts minus what they were
/// rounded from. Where none qualifies the console is told and the parts stay.
void CorrectSplit(CThreeParts& parts, const std::array<double, 3>& errors, int length);
