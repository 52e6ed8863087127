#pragma once

#include <cstdint>
#include <functional>
#include <optional>
#include <utility>

#include "ui/seams/OverlaySource.h"
#include "ui/window/CMainMenu.h"

class CGrid;

/// An overlay that an entry of the menu shows, whose tick follows it.
class CMenuOverlay : public OverlaySource {
 public:
  /// The menu must outlive the object.
  CMenuOverlay(MenuEntry entry, CMainMenu& menu) : m_Entry(entry), m_Menu(menu) {}

  /// The entry that shows it.
  MenuEntry Entry() const { return m_Entry; }
  /// What it was made of has changed in a way that it does not look for.
  virtual void MakeAnew() = 0;
  /// The entry has been chosen while the overlay is shown: whether it goes on, with something else.
  virtual bool ShowsMore() { return false; }

  void Begin() override {
    MakeAnew();
    m_Menu.SetChecked(m_Entry, true);
  }
  void End() override { m_Menu.SetChecked(m_Entry, false); }

 private:
  MenuEntry m_Entry;
  CMainMenu& m_Menu;
};

/// Whether tree, numbering and system of a grid belong to its constraints as they are.
bool IsWhole(const CGrid& grid);
/// Whether that may be shown now: a tick with a dialog open has taken edits up, and builds their system only after it.
bool MayBeShown(const CGrid& grid);

/// One that is made at once, whenever what it is of has changed, or the tree.
class CPlainOverlay : public CMenuOverlay {
 public:
  /// The heights, which every tick moves, or what only edits change.
  enum class Follows { Surface, Edits };
  using Make = std::function<COverlay()>;

  /// `grid` must outlive the object.
  CPlainOverlay(MenuEntry entry, CMainMenu& menu, CGrid& grid, Follows follows, Make make)
      : CMenuOverlay(entry, menu), m_Grid(grid), m_Follows(follows), m_Make(std::move(make)) {}

  std::shared_ptr<const COverlay> Update() override;
  bool FollowsEditsAlone() const override { return m_Follows == Follows::Edits; }
  void MakeAnew() override { m_Made.reset(); }

 private:
  CGrid& m_Grid;
  Follows m_Follows;
  Make m_Make;
  std::optional<std::pair<std::uint64_t, std::uint64_t>> m_Made;  ///< the tree, and the other, of what was made last
};
