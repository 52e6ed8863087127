#include "solver/BasisEnergies.h"

#include <algorithm>
#include <array>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>
#include <unordered_map>
#include <utility>

#include "quadtree/CPointOrder.h"
#include "solver/CCompressedRows.h"
#include "solver/CHierarchicalBasis.h"
#include "solver/CPointBatch.h"
#include "solver/CPointSites.h"

namespace {

// An energy below this share of the magnitudes that have cancelled in it is rounding.
constexpr double kRoundingShare = 1e-12;

constexpr std::uint32_t kCornerPoints = 4;

// Of each of so many parents.
constexpr std::array<double, 5> kShares{0.0, 1.0, 1.0 / 2, 1.0 / 3, 1.0 / 4};

// Adds up a row by column.
class CRowSum {
 public:
  explicit CRowSum(std::size_t unknowns) : m_aSlots(unknowns) {}

  void Begin() {
    ++m_uStamp;
    m_auSites.clear();
    m_afValues.clear();
  }
  void Add(std::uint32_t site, std::size_t unknown, double value) {
    CSlot& slot = m_aSlots[unknown];
    if (slot.m_uStamp == m_uStamp) {
      m_afValues[slot.m_uPlace] += value;
      return;
    }
    slot = {m_uStamp, static_cast<std::uint32_t>(m_auSites.size())};
    m_auSites.push_back(site);
    m_afValues.push_back(value);
  }
  std::span<const std::uint32_t> Sites() const { return m_auSites; }
  std::span<const double> Values() const { return m_afValues; }

 private:
  struct CSlot {
    std::uint32_t m_uStamp = 0;
    std::uint32_t m_uPlace = 0;
  };
  std::vector<CSlot> m_aSlots;
  std::vector<std::uint32_t> m_auSites;
  std::vector<double> m_afValues;
  std::uint32_t m_uStamp = 0;
};

// Rows by kind: those of one kind are the same but for their site. Kind 0 is the row without entries.
class CRowKinds {
 public:
  void Append(std::uint32_t site, std::uint32_t column, double value) {
    m_auOffsets.push_back(column - site);
    m_afValues.push_back(value);
    m_aKinds.back().m_uOddBits |= column ^ site;
    if (column == site) m_aKinds.back().m_fDiagonal += value;
  }
  /// The kind of the row that has been appended.
  std::uint32_t EndRow() {
    m_aKinds.push_back({static_cast<std::uint32_t>(m_auOffsets.size()), 0, 0.0});
    return static_cast<std::uint32_t>(m_aKinds.size() - 2);
  }
  /// From the row's site to those of its columns, modulo 2^32.
  std::span<const std::uint32_t> Offsets(std::uint32_t kind) const {
    const std::size_t first = m_aKinds[kind].m_uFirst;
    return std::span(m_auOffsets).subspan(first, m_aKinds[kind + 1].m_uFirst - first);
  }
  const double* Values(std::uint32_t kind) const { return m_afValues.data() + m_aKinds[kind].m_uFirst; }
  double Diagonal(std::uint32_t kind) const { return m_aKinds[kind].m_fDiagonal; }
  /// The lowest bit of either direction tells how fine a lattice the row and its columns need.
  std::uint32_t OddBits(std::uint32_t kind) const { return m_aKinds[kind].m_uOddBits; }

 private:
  struct CKind {
    std::uint32_t m_uFirst = 0;
    std::uint32_t m_uOddBits = 0;
    double m_fDiagonal = 0.0;
  };
  std::vector<CKind> m_aKinds{2};  ///< and the row being appended
  std::vector<std::uint32_t> m_auOffsets;
  std::vector<double> m_afValues;
};

// Of what a row is made.
struct CKeyHash {
  template <typename Key>
  std::size_t operator()(const Key& key) const {
    std::uint64_t hash = 0;
    for (const std::uint32_t part : key) {
      hash = (hash ^ part) * 0x9E3779B97F4A7C15U;
      hash ^= hash >> 32;
    }
    return hash;
  }
};

// The points up to some level, with the energy of the surfaces that have no finer coefficients.
class CReduction {
 public:
  CReduction(const CCompressedRows& smoothness, const CHierarchicalBasis& basis, const CPointOrder& order);

  std::vector<double> Energies();

 private:
  using CContent = std::vector<std::uint32_t>;
  // The row's own kind, its shape and the kinds of those whose parent it may be.
  using CKey = std::array<std::uint32_t, 6>;

  // Above the kind: of a point that is left out, a bit for each of its parents that does not count; of one that stays,
  // whether its row is made of rows of such points, and like no other.
  static constexpr std::uint32_t kMarks = 28;
  static constexpr std::uint32_t kByItself = 0xFU << kMarks;

  std::uint32_t MarkedKind(std::uint32_t site) const { return site < m_auKind.size() ? m_auKind[site] : 0; }
  std::uint32_t Kind(std::uint32_t site) const { return MarkedKind(site) & ~kByItself; }

  void TakeRows(const CCompressedRows& smoothness);
  bool IsOfKind(std::uint32_t kind, const CCompressedRows& smoothness, std::size_t place) const;
  CContent ContentOf(const CCompressedRows& smoothness, std::size_t place) const;
  std::uint32_t AddKind(const CCompressedRows& smoothness, std::size_t place);

  void NoteEnergies(std::uint32_t first, std::uint32_t end);
  void LeaveOut(const CPointBatch& batch);
  void MarkIncomplete(const CPointBatch& batch, std::uint32_t first, std::uint32_t end);
  void MarkAround(const CPointBatch& batch, std::uint32_t site);
  bool IsAffected(const CPointBatch& batch, std::uint32_t site) const;
  CKey KeyOf(const CPointBatch& batch, std::uint32_t site) const;
  std::uint32_t ComputeRow(const CPointBatch& batch, std::uint32_t site);
  void AddRow(const CPointBatch& batch, std::uint32_t site, double weight);
  template <typename Visit>
  void ForParents(const CPointBatch& batch, std::uint32_t site, double value, const Visit& visit) const;

  const CHierarchicalBasis* m_pBasis;
  const CPointOrder* m_pOrder;
  CPointSites m_Sites;
  CRowSum m_Sum;
  CRowKinds m_Rows;
  std::vector<std::uint32_t> m_auKind;  ///< by site; 0 where there is no point
  std::vector<double> m_afEnergies;
};

CReduction::CReduction(const CCompressedRows& smoothness, const CHierarchicalBasis& basis, const CPointOrder& order)
    : m_pBasis(&basis),
      m_pOrder(&order),
      m_Sites(order),
      m_Sum(order.Count()),
      m_auKind(m_Sites.End(), 0),
      m_afEnergies(order.Count()) {
  TakeRows(smoothness);
}

// Equal rows by scan position need not be equal by site, nor the other way round; but next to all of a class are of one
// kind.
void CReduction::TakeRows(const CCompressedRows& smoothness) {
  std::unordered_map<CContent, std::uint32_t, CKeyHash> known;
  std::vector<std::uint32_t> kinds;  // found last, by class
  for (std::size_t place = 0; place < smoothness.RowCount(); ++place) {
    if (smoothness.ClassOf(place) == kinds.size()) kinds.push_back(0);
    std::uint32_t& kind = kinds[smoothness.ClassOf(place)];
    if (!IsOfKind(kind, smoothness, place)) {
      const auto [found, fresh] = known.try_emplace(ContentOf(smoothness, place), 0);
      if (fresh) found->second = AddKind(smoothness, place);
      kind = found->second;
    }
    m_auKind[m_Sites.AtPlace(place)] = kind;
  }
}

// For a kind that another row of the same class is of.
bool CReduction::IsOfKind(std::uint32_t kind, const CCompressedRows& smoothness, std::size_t place) const {
  const std::span<const std::uint32_t> offsets = m_Rows.Offsets(kind);
  const CCompressedRows::CColumns columns = smoothness.Columns(place);
  if (offsets.size() != columns.size()) return false;
  const std::uint32_t site = m_Sites.AtPlace(place);
  for (std::size_t e = 0; e < offsets.size(); ++e) {
    if (m_Sites.AtPlace(columns[e]) - site != offsets[e]) return false;
  }
  return true;
}

CReduction::CContent CReduction::ContentOf(const CCompressedRows& smoothness, std::size_t place) const {
  CContent content;
  content.reserve(3 * smoothness.Values(place).size());
  const std::uint32_t site = m_Sites.AtPlace(place);
  for (const std::uint32_t column : smoothness.Columns(place)) content.push_back(m_Sites.AtPlace(column) - site);
  for (const double value : smoothness.Values(place)) {
    const auto bits = std::bit_cast<std::uint64_t>(value);
    content.push_back(static_cast<std::uint32_t>(bits));
    content.push_back(static_cast<std::uint32_t>(bits >> 32));
  }
  return content;
}

std::uint32_t CReduction::AddKind(const CCompressedRows& smoothness, std::size_t place) {
  const CCompressedRows::CColumns columns = smoothness.Columns(place);
  const std::span<const double> values = smoothness.Values(place);
  for (std::size_t e = 0; e < values.size(); ++e)
    m_Rows.Append(m_Sites.AtPlace(place), m_Sites.AtPlace(columns[e]), values[e]);
  return m_Rows.EndRow();
}

std::vector<double> CReduction::Energies() {
  auto end = static_cast<std::uint32_t>(m_afEnergies.size());
  while (end > kCornerPoints && m_pBasis->Mode() != WaveletMode::None) {
    const CPointBatch batch(*m_pOrder, m_Sites, end);
    LeaveOut(batch);
    end = batch.First();
  }
  NoteEnergies(0, end);
  return std::move(m_afEnergies);
}

void CReduction::NoteEnergies(std::uint32_t first, std::uint32_t end) {
  for (std::uint32_t k = first; k < end; ++k) m_afEnergies[k] = m_Rows.Diagonal(Kind(m_Sites.OfUnknown(k)));
}

void CReduction::LeaveOut(const CPointBatch& batch) {
  NoteEnergies(batch.First(), batch.End());
  MarkIncomplete(batch, batch.First(), batch.End());
  std::unordered_map<CKey, std::uint32_t, CKeyHash> known;
  std::array<std::pair<CKey, std::uint32_t>, 4> last{};  // by shape; of no rows no row is made
  for (std::uint32_t k = 0; k < batch.First(); ++k) {
    const std::uint32_t site = m_Sites.OfUnknown(k);
    if (!IsAffected(batch, site)) continue;
    if ((m_auKind[site] & kByItself) != 0) {
      m_auKind[site] = ComputeRow(batch, site);
      continue;
    }
    const CKey key = KeyOf(batch, site);
    auto& [lastKey, lastKind] = last[batch.Shape(site)];
    if (key != lastKey) {
      const auto [found, fresh] = known.try_emplace(key, 0);
      if (fresh) found->second = ComputeRow(batch, site);
      lastKey = key;
      lastKind = found->second;
    }
    m_auKind[site] = lastKind;
  }
}

// Marks the points of a range that lack a parent, by halves, as next to none do, and the rows that these go into.
void CReduction::MarkIncomplete(const CPointBatch& batch, std::uint32_t first, std::uint32_t end) {
  const std::span<const std::uint32_t> last = m_pBasis->ParentsOf(end - 1);
  const std::uint32_t site = m_Sites.OfUnknown(first);
  const auto counted = static_cast<std::size_t>(last.data() + last.size() - m_pBasis->ParentsOf(first).data());
  if (counted == batch.ParentSteps(site).size() * (end - first)) return;
  if (end - first > 1) {
    const std::uint32_t middle = first + (end - first) / 2;
    MarkIncomplete(batch, first, middle);
    MarkIncomplete(batch, middle, end);
    return;
  }
  MarkAround(batch, site);
  // The matrix is symmetric: the rows that have this point as a column are the columns of its own.
  for (const std::uint32_t offset : m_Rows.Offsets(Kind(site))) MarkAround(batch, site + offset);
  std::uint32_t mark = 1U << kMarks;
  for (const std::uint32_t step : batch.ParentSteps(site)) {
    const auto isHere = [&](std::uint32_t place) { return m_Sites.AtPlace(place) == site + step; };
    if (std::ranges::none_of(last, isHere)) m_auKind[site] |= mark;
    mark <<= 1;
  }
}

// Marks the rows that the row of a point goes into.
void CReduction::MarkAround(const CPointBatch& batch, std::uint32_t site) {
  if (!batch.Has(site)) {
    m_auKind[site] |= kByItself;
    return;
  }
  for (const std::uint32_t step : batch.ParentSteps(site)) m_auKind[site + step] |= kByItself;
}

// Whether a row may have a column or a child that is left out.
bool CReduction::IsAffected(const CPointBatch& batch, std::uint32_t site) const {
  if ((m_auKind[site] & kByItself) != 0 || (m_Rows.OddBits(Kind(site)) & batch.OddBits()) != 0) return true;
  return std::ranges::any_of(batch.ChildSteps(site), [&](std::uint32_t step) { return MarkedKind(site + step) != 0; });
}

CReduction::CKey CReduction::KeyOf(const CPointBatch& batch, std::uint32_t site) const {
  CKey key{m_auKind[site], batch.Shape(site)};
  std::size_t part = 2;
  for (const std::uint32_t step : batch.ChildSteps(site)) key[part++] = MarkedKind(site + step);
  return key;
}

std::uint32_t CReduction::ComputeRow(const CPointBatch& batch, std::uint32_t site) {
  m_Sum.Begin();
  AddRow(batch, site, 1.0);
  for (const std::uint32_t step : batch.ChildSteps(site)) {
    const std::uint32_t child = site + step;
    if (Kind(child) != 0)
      ForParents(batch, child, 1.0, [&](std::uint32_t parent, double share) {
        if (parent == site) AddRow(batch, child, share);
      });
  }
  for (std::size_t e = 0; e < m_Sum.Values().size(); ++e) m_Rows.Append(site, m_Sum.Sites()[e], m_Sum.Values()[e]);
  return m_Rows.EndRow();
}

// Calls visit(site, share) for the counted parents of a point that is left out, which share a value.
template <typename Visit>
void CReduction::ForParents(const CPointBatch& batch, std::uint32_t site, double value, const Visit& visit) const {
  const std::span<const std::uint32_t> steps = batch.ParentSteps(site);
  const std::uint32_t lacking = m_auKind[site] >> kMarks;
  if (lacking == 0) {
    for (const std::uint32_t step : steps) visit(site + step, kShares[steps.size()] * value);
    return;
  }
  const double share = kShares[steps.size() - static_cast<std::size_t>(std::popcount(lacking))] * value;
  for (std::size_t p = 0; p < steps.size(); ++p) {
    if ((lacking >> p & 1U) == 0) visit(site + steps[p], share);
  }
}

void CReduction::AddRow(const CPointBatch& batch, std::uint32_t site, double weight) {
  const std::uint32_t kind = Kind(site);
  const std::span<const std::uint32_t> offsets = m_Rows.Offsets(kind);
  const double* values = m_Rows.Values(kind);
  const auto add = [this](std::uint32_t column, double value) {
    m_Sum.Add(column, static_cast<std::size_t>(m_pOrder->NumberOf(m_Sites.PointAt(column))), value);
  };
  for (std::size_t e = 0; e < offsets.size(); ++e) {
    const std::uint32_t column = site + offsets[e];
    if (batch.Has(column))
      ForParents(batch, column, weight * values[e], add);
    else
      add(column, weight * values[e]);
  }
}

// At least the sum of |b_i H_ij b_j| of every function: none is greater than 1 anywhere.
std::vector<double> MagnitudeBounds(const CCompressedRows& smoothness, const CHierarchicalBasis& basis) {
  std::vector<double> sums(basis.Size());
  for (std::size_t row = 0; row < sums.size(); ++row) {
    if (row > 0 && smoothness.ClassOf(row) == smoothness.ClassOf(row - 1)) {
      sums[row] = sums[row - 1];
      continue;
    }
    for (const double value : smoothness.Values(row)) sums[row] += std::abs(value);
  }
  std::vector<double> bounds(basis.Size());
  basis.invWTransposeTimes(sums, bounds);
  return bounds;
}

}  // namespace

std::vector<double> BasisEnergies(const CCompressedRows& smoothness, const CHierarchicalBasis& basis,
                                  const CPointOrder& order) {
  std::vector<double> energies = CReduction(smoothness, basis, order).Energies();
  const std::vector<double> bounds = MagnitudeBounds(smoothness, basis);
  for (std::size_t k = 0; k < energies.size(); ++k) {
    if (!(energies[k] > kRoundingShare * bounds[k])) energies[k] = 0.0;
  }
  return energies;
}
