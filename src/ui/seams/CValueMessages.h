#pragma once

#include <cstdint>
#include <optional>
#include <string>

#include "base/CPlanePoint.h"

class CGrid;
class ViewHost;
struct CPtCstr;

/// Tells in the help line what the selected point constraint asks for and, where it is so, why it has no effect; during
/// a drag also what the surface had there when the drag began. When the drag ends, the same becomes a line on the
/// console.
class CValueMessages {
 public:
  /// `kind`: PtCstrKind::kPosition or kNormal; constraints of no other kind are looked at. The grid and the host must
  /// outlive the object.
  CValueMessages(const CGrid& grid, ViewHost& host, std::uint32_t kind) : m_Grid(grid), m_Host(host), m_uKind(kind) {}

  /// Another constraint may be selected now. Without one the help that stays comes back.
  void SelectionChanged();
  /// A drag begins that may change what the selected constraint asks for. Descends the tree once.
  void BeginDrag();
  /// The selected constraint asks for something else now. If it is not the one the drag began with, a new drag has
  /// begun.
  void Dragged();
  /// Nothing happens unless something was dragged.
  void EndDrag();

 private:
  struct CSurfacePlace {
    double m_fZ = 0.0;
    CPlanePoint m_Slope;  ///< dz/dx, dz/dy
  };

  const CPtCstr* Selected() const;
  std::optional<CSurfacePlace> SurfaceUnder(const CPtCstr& constraint) const;
  void Describe(const CPtCstr& constraint, const std::optional<CSurfacePlace>& past);
  std::string Height(double z) const;

  const CGrid& m_Grid;
  ViewHost& m_Host;
  std::uint32_t m_uKind;
  const CPtCstr* m_pDragged = nullptr;  ///< never looked into: it may be gone
  std::optional<CSurfacePlace> m_Past;  ///< under it when the drag began; none outside the surface
  bool m_bDragged = false;              ///< the drag has changed something
  std::string m_Text;                   ///< as it was shown last
  std::string m_Whole;                  ///< memory for the same with what is added to it
};
