#include "ui/window/CMenuOverlay.h"

#include <FL/Fl.H>

#include "drawing/COverlay.h"
#include "model/CGrid.h"

bool IsWhole(const CGrid& grid) { return grid.Solver().Counter() >= 0 && !grid.Run().HasPending(); }

bool MayBeShown(const CGrid& grid) { return Fl::modal() == nullptr && IsWhole(grid); }

std::shared_ptr<const COverlay> CPlainOverlay::Update() {
  const CSurface& surface = m_Grid.Surface();
  const std::pair now{surface.Tree().Revision(), FollowsEditsAlone() ? m_Grid.Gate().Edits() : surface.Revision()};
  if (m_Made == now || !MayBeShown(m_Grid)) return nullptr;
  m_Made = now;
  return std::make_shared<const COverlay>(m_Make());
}
