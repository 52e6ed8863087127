#pragma once

#include <cstddef>
#include <span>
#include <vector>

#include "reference/SuggestTears.h"

/// Tears that a user is asked about: each is taken until it is dropped.
class CTearProposals {
 public:
  /// One of them.
  struct CItem {
    CTearProposal m_Tear;
    bool m_bTaken = true;
  };

  /// In place of those that there were.
  void Set(std::vector<CTearProposal> tears);
  void Clear() { m_aItems.clear(); }
  std::span<const CItem> Items() const { return m_aItems; }
  std::size_t TakenCount() const;

  /// Switches the one nearest to (x, y) between taken and dropped, if it is within reach (model units); whether there
  /// is one. Linear in the points of all.
  bool SwitchAt(double x, double y, double reach);

 private:
  std::vector<CItem> m_aItems;
};
