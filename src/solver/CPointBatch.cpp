#include "solver/CPointBatch.h"

#include <cstdlib>

#include "quadtree/CPointOrder.h"
#include "solver/CPointSites.h"

namespace {

constexpr std::uint32_t kCorners = 4;

}  // namespace

CPointBatch::CPointBatch(const CPointOrder& order, const CPointSites& sites, std::uint32_t end)
    : m_uFirst(end), m_uEnd(end) {
  const int code = std::abs(order.LevelCode(end - 1));
  while (m_uFirst > kCorners && std::abs(order.LevelCode(m_uFirst - 1)) == code) --m_uFirst;
  m_bCentres = code % 2 != 0;
  m_uRight = 1U << (order.Level() - code / 2);
  m_uUp = sites.Up(m_uRight);
  m_auSteps = {0U - m_uUp, m_uUp, 0U - m_uRight, m_uRight};
}
