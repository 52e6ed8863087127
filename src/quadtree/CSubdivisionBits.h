#pragma once

#include <cstddef>
#include <iosfwd>
#include <memory>
#include <optional>
#include <vector>

class CSubdivisionRecord;

/// A wanted subdivision as a value of a bit per node: the nodes depth-first, children in their order, 1 for one that is
/// split and 0 for a leaf. A node of the finest level, which cannot be split, has none. What is selected is no part of
/// it. Copies share the bits.
class CSubdivisionBits {
 public:
  /// Holds nothing, not even the root.
  CSubdivisionBits() = default;
  explicit CSubdivisionBits(const CSubdivisionRecord& record);
  bool operator==(const CSubdivisionBits& other) const;
  /// Memory that the bits take, whoever shares them.
  std::size_t Bytes() const { return Bits().size() / 8; }

  /// The nodes as they are held, and the same taken back: nothing where they are not exactly those of a record of
  /// `depth`. No bits at all are those of an object that holds nothing.
  const std::vector<bool>& Bits() const;
  static std::optional<CSubdivisionBits> FromBits(int depth, std::vector<bool> bits);

  /// Gives a record of the depth that the bits were made for this subdivision. Nodes that the bits do not reach stay as
  /// they are; of the others none is selected afterwards.
  void ApplyTo(CSubdivisionRecord& record) const;

  /// The text form, without blanks: N for a leaf, b, v, v, v before the four children of a split node and e after the
  /// last. A node that the bits do not reach is written as a leaf.
  void Write(std::ostream& out) const;
  /// Takes the text form of a record of `depth` from the stream; blanks are skipped. False, with an unfinished console
  /// line, where another character stands than one that is due or a split node is of the finest level: what was read by
  /// then is held, what follows is left in the stream.
  bool Read(std::istream& in, int depth);

 private:
  int m_iDepth = 0;
  std::shared_ptr<const std::vector<bool>> m_pBits;  ///< null for none
};
