#include "model/CWantedSubdivisions.h"

#include <cmath>
#include <utility>

void CWantedSubdivisions::Initialize(int maxLevel, int baseLevel, bool highRes) {
  m_CurrentBits.reset();
  m_OtherBits.reset();
  m_SelectedCells.reset();
  TakeReserve(maxLevel);
  if (!m_Current.has_value() || m_Current->Depth() != maxLevel) {
    m_Current.emplace(maxLevel);
    m_Other.emplace(maxLevel);
  }
  m_iBaseLevel = baseLevel;
  for (auto* record : {&m_Current, &m_Other}) (*record)->ClearSelection();
  m_Current->SetStartLevel(baseLevel);
  m_Other->SetStartLevel(maxLevel);
  if (highRes) Swap();
}

void CWantedSubdivisions::Swap() {
  m_Current.swap(m_Other);
  m_CurrentBits.swap(m_OtherBits);
  m_SelectedCells.reset();
}

const CSubdivisionBits& CWantedSubdivisions::CurrentBits() const {
  if (!m_CurrentBits.has_value()) m_CurrentBits.emplace(*m_Current);
  return *m_CurrentBits;
}

const CSubdivisionBits& CWantedSubdivisions::OtherBits() const {
  if (!m_OtherBits.has_value()) m_OtherBits.emplace(*m_Other);
  return *m_OtherBits;
}

const std::vector<std::uint32_t>& CWantedSubdivisions::SelectedCells() const {
  if (!m_SelectedCells.has_value()) m_SelectedCells = m_Current->SelectedNodes();
  return *m_SelectedCells;
}

void CWantedSubdivisions::Reserve(int maxLevel) {
  std::array<std::optional<CSubdivisionRecord>, 2> records;
  if (m_Current->Depth() != maxLevel) {
    for (auto& record : records) record.emplace(maxLevel);
  }
  m_aReserve = std::move(records);
}

double CWantedSubdivisions::BytesOf(int maxLevel) {
  constexpr double kNodesPerFinest = 4.0 / 3;
  return 2 * kNodesPerFinest * std::pow(4, maxLevel) * sizeof(CSaveQuadT);
}

void CWantedSubdivisions::TakeReserve(int maxLevel) {
  auto records = std::exchange(m_aReserve, {});
  if (!records.front().has_value() || records.front()->Depth() != maxLevel) return;
  m_Current = std::move(records.front());
  m_Other = std::move(records.back());
}
