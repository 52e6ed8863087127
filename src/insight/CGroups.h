#pragma once

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

/// Things that are joined to each other pair by pair, and fall into groups so.
class CGroups {
 public:
  /// Each of them by itself.
  explicit CGroups(std::size_t count) : m_auParent(count) { std::iota(m_auParent.begin(), m_auParent.end(), 0U); }

  /// The thing that stands for the group of `k`, the first of them. Next to constant in time.
  std::uint32_t Of(std::uint32_t k) {
    while (m_auParent[k] != k) k = m_auParent[k] = m_auParent[m_auParent[k]];
    return k;
  }
  void Join(std::uint32_t a, std::uint32_t b) {
    a = Of(a);
    b = Of(b);
    (a < b ? m_auParent[b] : m_auParent[a]) = a < b ? a : b;
  }

 private:
  std::vector<std::uint32_t> m_auParent;
};
