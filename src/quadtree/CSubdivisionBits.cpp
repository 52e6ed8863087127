#include "quadtree/CSubdivisionBits.h"

#include <istream>
#include <ostream>
#include <utility>

#include "base/Console.h"
#include "quadtree/CSaveQuadT.h"

namespace {

using CBit = std::vector<bool>::const_iterator;

void AppendNode(std::vector<bool>& bits, const CSaveQuadT& node) {
  if (!node.HasChildren()) return;
  bits.push_back(!node.IsLeaf());
  if (node.IsLeaf()) return;
  for (int k = 0; k < 4; ++k) AppendNode(bits, node.Child(k));
}

void ClearBelow(CSaveQuadT& node) {
  if (!node.HasChildren()) return;
  for (int k = 0; k < 4; ++k) {
    node.Child(k).SetLeaf(false);
    node.Child(k).SetSelected(false);
    ClearBelow(node.Child(k));
  }
}

void ApplyToNode(CBit& bit, CBit end, CSaveQuadT& node) {
  if (node.HasChildren() && bit == end) return;
  const bool split = node.HasChildren() && *bit++;
  node.SetLeaf(!split);
  node.SetSelected(false);
  if (!split) return ClearBelow(node);
  for (int k = 0; k < 4; ++k) ApplyToNode(bit, end, node.Child(k));
}

// Passes over the nodes of a whole tree of that depth; false where they end early.
bool SkipNode(CBit& bit, CBit end, int depth) {
  if (depth == 0) return true;
  if (bit == end) return false;
  if (!*bit++) return true;
  for (int k = 0; k < 4; ++k) {
    if (!SkipNode(bit, end, depth - 1)) return false;
  }
  return true;
}

void WriteNode(std::ostream& out, CBit& bit, CBit end, int depth) {
  if (depth == 0 || bit == end || !*bit++) {
    out << 'N';
    return;
  }
  for (int k = 0; k < 4; ++k) {
    out << (k == 0 ? 'b' : 'v');
    WriteNode(out, bit, end, depth - 1);
  }
  out << 'e';
}

bool ReadNode(std::istream& in, int depth, std::vector<bool>& bits) {
  char token = 0;
  in >> token;
  const bool split = in && token == 'b' && depth > 0;
  if (!split && (!in || token != 'N')) return false;
  if (depth > 0) bits.push_back(split);
  if (!split) return true;
  for (int k = 0; k < 4; ++k) {
    if (!ReadNode(in, depth - 1, bits)) return false;
    in >> token;
    if (!in || token != (k == 3 ? 'e' : 'v')) return false;
  }
  return true;
}

}  // namespace

CSubdivisionBits::CSubdivisionBits(const CSubdivisionRecord& record) : m_iDepth(record.Depth()) {
  std::vector<bool> bits;
  AppendNode(bits, record.Root());
  m_pBits = std::make_shared<const std::vector<bool>>(std::move(bits));
}

const std::vector<bool>& CSubdivisionBits::Bits() const {
  static const std::vector<bool> none;
  return m_pBits == nullptr ? none : *m_pBits;
}

bool CSubdivisionBits::operator==(const CSubdivisionBits& other) const {
  return m_iDepth == other.m_iDepth && (m_pBits == other.m_pBits || Bits() == other.Bits());
}

std::optional<CSubdivisionBits> CSubdivisionBits::FromBits(int depth, std::vector<bool> bits) {
  CSubdivisionBits made;
  if (bits.empty()) return made;
  auto bit = bits.cbegin();
  if (!SkipNode(bit, bits.cend(), depth) || bit != bits.cend()) return {};
  made.m_iDepth = depth;
  made.m_pBits = std::make_shared<const std::vector<bool>>(std::move(bits));
  return made;
}

void CSubdivisionBits::ApplyTo(CSubdivisionRecord& record) const {
  auto bit = Bits().begin();
  ApplyToNode(bit, Bits().end(), record.Root());
}

void CSubdivisionBits::Write(std::ostream& out) const {
  auto bit = Bits().begin();
  WriteNode(out, bit, Bits().end(), m_iDepth);
}

bool CSubdivisionBits::Read(std::istream& in, int depth) {
  m_iDepth = depth;
  std::vector<bool> bits;
  const bool sound = ReadNode(in, depth, bits);
  m_pBits = std::make_shared<const std::vector<bool>>(std::move(bits));
  if (!sound) Console() << "Error CSaveQuadT::ReadInFile\t\tNon valid Character";
  return sound;
}
