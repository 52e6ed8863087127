#pragma once

#include <cstddef>
#include <cstdint>
#include <list>

#include "constraints/CPtCstr.h"
#include "lattice/CLattice.h"

/// Point constraints in creation order, with the rules by which clicks and keys highlight and select them.
///
/// Nothing here knows the surface or the solver. `reach` is the city-block distance, in model units, within which a
/// click takes hold of a constraint; kind masks are PtCstrKind bits, and a constraint is of a mask's kind when it has
/// one of its bits.
class CPtCstrList {
 public:
  using iterator = std::list<CPtCstr>::iterator;
  using const_iterator = std::list<CPtCstr>::const_iterator;

  iterator begin() { return m_aRecords.begin(); }
  iterator end() { return m_aRecords.end(); }
  const_iterator begin() const { return m_aRecords.begin(); }
  const_iterator end() const { return m_aRecords.end(); }
  std::size_t size() const { return m_aRecords.size(); }
  bool empty() const { return m_aRecords.empty(); }
  void clear() { m_aRecords.clear(); }

  /// Appends a copy with all kind bits and no state; returns it.
  CPtCstr& Add(const CPtCstr& record);

  /// Sets the highlight bit on every constraint of the kind within reach of (x, y), clears it on all others. Whether
  /// any was set.
  bool Highlight(double x, double y, std::uint32_t mask, double reach);
  /// Click selection: at most one constraint ends selected, and repeated clicks step through a pile, the last candidate
  /// in list order that is not selected yet winning. Everything else is unselected.
  void Select(double x, double y, std::uint32_t mask, double reach);
  /// Selects the constraint of the kind after (before) the selected one, cyclically; the first (last) where none is
  /// selected. Without any of the kind nothing changes.
  void SelectNext(std::uint32_t mask);
  void SelectPrev(std::uint32_t mask);
  void UnselectAll();
  /// Selects the constraint of that number and no other; without one of that number nothing is selected.
  void SelectNumber(std::size_t number);

  /// The first selected constraint, of any kind or of the mask's; null if there is none.
  CPtCstr* FirstSelected();
  CPtCstr* FirstSelected(std::uint32_t mask);
  const CPtCstr* FirstSelected() const;
  const CPtCstr* FirstSelected(std::uint32_t mask) const;
  /// Deletes the first selected constraint and selects the next one, cyclically, whose position bit equals its own.
  /// Whether there was one to delete.
  bool DeleteSelected();

  // A group of position constraints, which is chosen apart from what is selected.

  /// Chooses those within the box, its border included, and no others.
  void ChooseIn(const CExtent& box);
  /// Takes the one within reach of (x, y) that lies nearest into the group, or out of it. Whether there was one.
  bool ToggleChosen(double x, double y, double reach);
  void ClearChosen();
  std::size_t ChosenCount() const;
  /// The mean of their heights, model units; 0 without any.
  double MeanChosenHeight() const;
  void DeleteChosen();

  /// The same records in the same order (see CPtCstr).
  bool operator==(const CPtCstrList&) const = default;

 private:
  std::list<CPtCstr> m_aRecords;
};
