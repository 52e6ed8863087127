#include "base/CByteSink.h"

#include <algorithm>
#include <utility>

CByteSink::CByteSink(Drain drain) : m_Drain(std::move(drain)), m_pBytes(MakeRawBytes(kBlock + kLeastRoom)) {}

void CByteSink::Put(std::string_view bytes) {
  while (!bytes.empty()) {
    std::size_t count = std::min(bytes.size(), kBlock - m_uUsed);
    if (count == kBlock) {
      // Whole blocks need not be copied.
      count = bytes.size() / kBlock * kBlock;
      m_Drain(bytes.substr(0, count));
    } else {
      std::ranges::copy(bytes.substr(0, count), Room().begin());
      Filled(count);
    }
    bytes.remove_prefix(count);
  }
}

std::span<char> CByteSink::Room() {
  return {reinterpret_cast<char*>(m_pBytes.get()) + m_uUsed, kBlock + kLeastRoom - m_uUsed};
}

void CByteSink::Filled(std::size_t count) {
  m_uUsed += count;
  if (m_uUsed < kBlock) return;
  const std::string_view all(reinterpret_cast<char*>(m_pBytes.get()), m_uUsed);
  m_Drain(all.substr(0, kBlock));
  m_uUsed -= kBlock;
  std::ranges::copy(all.substr(kBlock), reinterpret_cast<char*>(m_pBytes.get()));
}

void CByteSink::Flush() {
  if (m_uUsed > 0) m_Drain({reinterpret_cast<char*>(m_pBytes.get()), m_uUsed});
  m_uUsed = 0;
}
