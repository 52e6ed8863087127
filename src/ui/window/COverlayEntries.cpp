#include "ui/window/COverlayEntries.h"

#include <algorithm>
#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "drawing/COverlay.h"
#include "drawing/OverlayValues.h"
#include "model/CGrid.h"
#include "ui/window/COverlays.h"

namespace {

// Whether tree, numbering and system belong to the constraints as they are.
bool IsWhole(const CGrid& grid) { return grid.Solver().Counter() >= 0 && !grid.Run().HasPending(); }

}  // namespace

/// One entry: its overlay is made anew for another surface.
class COverlayEntries::CEntry : public OverlaySource {
 public:
  using Make = std::function<COverlay()>;

  CEntry(MenuEntry entry, const CGrid& grid, CMainMenu& menu, Make make)
      : m_Entry(entry), m_Grid(grid), m_Menu(menu), m_Make(std::move(make)) {}

  MenuEntry Entry() const { return m_Entry; }
  void MakeAnew() { m_Stamp.reset(); }

  std::shared_ptr<const COverlay> Update() override {
    const CStamp now{m_Grid.Surface().Tree().Revision(), m_Grid.Surface().Revision()};
    if (m_Stamp == now || !IsWhole(m_Grid)) return nullptr;
    m_Stamp = now;
    return std::make_shared<const COverlay>(m_Make());
  }
  void Begin() override {
    MakeAnew();
    m_Menu.SetChecked(m_Entry, true);
  }
  void End() override { m_Menu.SetChecked(m_Entry, false); }

 private:
  struct CStamp {
    std::uint64_t m_uTree;
    std::uint64_t m_uSurface;
    bool operator==(const CStamp&) const = default;
  };

  MenuEntry m_Entry;
  const CGrid& m_Grid;
  CMainMenu& m_Menu;
  Make m_Make;
  std::optional<CStamp> m_Stamp;  ///< of what was made last
};

COverlayEntries::COverlayEntries(CGrid& grid, CMainMenu& menu, COverlays& overlays)
    : m_Grid(grid), m_Menu(menu), m_Overlays(overlays) {
  const auto add = [this](MenuEntry entry, CEntry::Make make) {
    m_apEntries.push_back(std::make_unique<CEntry>(entry, m_Grid, m_Menu, std::move(make)));
  };
  add(MenuEntry::Misfit, [this] { return MisfitOverlay(m_Grid, m_Saved); });
  add(MenuEntry::Bending, [this] { return BendingOverlay(m_Grid); });
}

COverlayEntries::~COverlayEntries() {
  for (const auto& entry : m_apEntries) m_Overlays.Hide(*entry);
}

bool COverlayEntries::Chosen(MenuEntry entry) {
  const auto found = std::ranges::find(m_apEntries, entry, [](const auto& source) { return source->Entry(); });
  if (found == m_apEntries.end()) return false;
  if (m_Menu.IsChecked(entry)) {
    m_Overlays.Show(found->get());
  } else {
    m_Overlays.Hide(**found);
  }
  return true;
}

// At once where it can be, as the tick under way may go on to change it.
void COverlayEntries::SurfaceSaved() {
  m_bTakeDue = true;
  Follow();
}

void COverlayEntries::SurfaceReplaced() {
  m_Saved.Forget();
  m_bTakeDue = false;
  for (const auto& entry : m_apEntries) entry->MakeAnew();
}

void COverlayEntries::Follow() {
  if (!m_bTakeDue || !IsWhole(m_Grid)) return;
  m_bTakeDue = false;
  m_Saved.Take(m_Grid);
  for (const auto& entry : m_apEntries) entry->MakeAnew();
}
