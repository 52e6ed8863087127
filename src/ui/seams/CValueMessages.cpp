#include "ui/seams/CValueMessages.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "model/CGrid.h"
#include "ui/seams/HelpTexts.h"
#include "ui/seams/ViewHost.h"

namespace {

// A slope of 1 rises by 45 degrees, whatever the size of the model.
std::string Slope(double slope) { return HelpNumber(slope, 1.0); }

}  // namespace

const CPtCstr* CValueMessages::Selected() const { return m_Grid.Constraints().Points().FirstSelected(m_uKind); }

void CValueMessages::SelectionChanged() {
  const CPtCstr* selected = Selected();
  if (selected == nullptr) {
    m_Host.RestoreHelp();
  } else {
    Describe(*selected, std::nullopt);
    m_Host.ShowMessage(m_Text);
  }
}

void CValueMessages::BeginDrag() {
  m_pDragged = Selected();
  m_Past = m_pDragged == nullptr ? std::nullopt : SurfaceUnder(*m_pDragged);
}

void CValueMessages::Dragged() {
  const CPtCstr* selected = Selected();
  if (selected == nullptr) return;
  if (selected != m_pDragged) {
    EndDrag();
    BeginDrag();
  }
  Describe(*selected, m_Past);
  m_bDragged = true;
  m_Host.ShowMessage(m_Text);
}

void CValueMessages::EndDrag() {
  m_pDragged = nullptr;
  if (std::exchange(m_bDragged, false)) m_Host.Tell(m_Text);
}

// A normal that is not a number, as in a tear, has no slope.
std::optional<CValueMessages::CSurfacePlace> CValueMessages::SurfaceUnder(const CPtCstr& constraint) const {
  const CLattice& lattice = m_Grid.Surface().Lattice();
  const CInterpolation surface = m_Grid.Surface().Interpolation();
  const auto triangle = surface.ShortStencil(lattice.ColumnOf(constraint.m_fX), lattice.RowOf(constraint.m_fY));
  if (!triangle) return std::nullopt;
  if (m_uKind == PtCstrKind::kPosition) return CSurfacePlace{surface.HeightOf(*triangle), {}};
  const Vector3 normal = surface.NormalOf(*triangle);
  const CPlanePoint slope{-normal.x / normal.z, -normal.y / normal.z};
  if (!std::isfinite(slope.x) || !std::isfinite(slope.y)) return std::nullopt;
  return CSurfacePlace{0.0, slope};
}

// Numbers are short enough to need no memory of their own: a drag allocates nothing.
void CValueMessages::Describe(const CPtCstr& constraint, const std::optional<CSurfacePlace>& past) {
  if (m_uKind == PtCstrKind::kPosition) {
    FormatHelp(m_Text, past ? HelpText::kHeightDragged : HelpText::kHeight,
               {Height(constraint.m_fZ), past ? Height(past->m_fZ) : std::string()});
  } else {
    const CPlanePoint was = past ? past->m_Slope : CPlanePoint{};
    FormatHelp(m_Text, past ? HelpText::kSlopeDragged : HelpText::kSlope,
               {Slope(constraint.m_fP), Slope(constraint.m_fQ), Slope(was.x), Slope(was.y)});
  }
  const Inactivity reason = m_Grid.Constraints().WhyInactive(constraint);
  if (reason == Inactivity::None) return;
  FormatHelp(m_Whole, HelpText::kNoEffect, {m_Text, InactivityText(reason)});
  m_Text.swap(m_Whole);
}

std::string CValueMessages::Height(double z) const {
  const CExtent& extent = m_Grid.Surface().Lattice().Extent();
  return HelpNumber(z, std::max(extent.x1 - extent.x0, extent.y1 - extent.y0));
}
