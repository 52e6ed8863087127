#pragma once

#include <optional>

#include "base/CPlanePoint.h"
#include "lattice/CLattice.h"

/// The rectangle that a drag of the left button spans, or the click that it is while the mouse stays near.
///
/// The mouse is where the toolkit's current event says; places are those under it, in the model.
class CRubberBand {
 public:
  /// What the button has done.
  struct CResult {
    bool m_bClick = false;
    CPlanePoint m_From;  ///< where the button was pressed
    CPlanePoint m_To;    ///< where it was let go
  };

  /// The button has gone down.
  void Begin(const CPlanePoint& place);
  /// The mouse has moved on; false while no button is held.
  bool Drag(const CPlanePoint& place);
  /// The button has been let go: what it was, and nothing is held any more. Nothing where none was held.
  std::optional<CResult> End(const CPlanePoint& place);
  /// Nothing is held any more.
  void Forget();
  bool IsHeld() const { return m_Press.has_value(); }
  /// What the drag under way spans; nothing while the mouse is near where it was pressed.
  std::optional<CExtent> Rectangle() const;

 private:
  struct CPress {
    CPlanePoint m_Place;
    int m_iX;
    int m_iY;
  };
  static bool IsFarFrom(const CPress& press);

  std::optional<CPress> m_Press;
  std::optional<CPlanePoint> m_Opposite;  ///< the corner of the rectangle under the mouse
};
