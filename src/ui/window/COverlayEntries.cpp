#include "ui/window/COverlayEntries.h"

#include <algorithm>
#include <utility>

#include "drawing/COverlay.h"
#include "drawing/OverlayValues.h"
#include "model/CGrid.h"
#include "ui/window/COverlays.h"

COverlayEntries::COverlayEntries(CGrid& grid, CMainMenu& menu, COverlays& overlays, CInfluenceOverlay::CWindow window)
    : m_Grid(grid), m_Menu(menu), m_Overlays(overlays) {
  using Follows = CPlainOverlay::Follows;
  const auto add = [this](MenuEntry entry, Follows follows, const CPlainOverlay::Make& make) {
    m_apEntries.push_back(std::make_unique<CPlainOverlay>(entry, m_Menu, m_Grid, follows, make));
  };
  add(MenuEntry::FloatingRegions, Follows::Edits, [this] { return FloatingOverlay(m_Grid); });
  m_apEntries.push_back(std::make_unique<CInfluenceOverlay>(m_Menu, m_Grid, std::move(window)));
  add(MenuEntry::Misfit, Follows::Surface, [this] { return MisfitOverlay(m_Grid, m_Saved); });
  add(MenuEntry::Bending, Follows::Surface, [this] { return BendingOverlay(m_Grid); });
}

COverlayEntries::~COverlayEntries() {
  for (const auto& entry : m_apEntries) m_Overlays.Hide(*entry);
}

bool COverlayEntries::Chosen(MenuEntry entry) {
  const auto found = std::ranges::find(m_apEntries, entry, [](const auto& overlay) { return overlay->Entry(); });
  if (found == m_apEntries.end()) return false;
  if (m_Menu.IsChecked(entry)) {
    m_Overlays.Show(found->get());
  } else if ((*found)->ShowsMore()) {
    m_Menu.SetChecked(entry, true);
  } else {
    m_Overlays.Hide(**found);
  }
  return true;
}

void COverlayEntries::MakeAnew() {
  for (const auto& entry : m_apEntries) entry->MakeAnew();
}

// At once where it can be, as the tick under way may go on to change it.
void COverlayEntries::SurfaceSaved() {
  m_bTakeDue = true;
  Follow();
}

void COverlayEntries::SurfaceReplaced() {
  m_Saved.Forget();
  m_bTakeDue = false;
  MakeAnew();
}

void COverlayEntries::Follow() {
  if (!m_bTakeDue || !IsWhole(m_Grid)) return;
  m_bTakeDue = false;
  m_Saved.Take(m_Grid);
  MakeAnew();
}
