#include "quadtree/CSubdivisionBits.h"

#include <istream>
#include <ostream>

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

}  // namespace

CSubdivisionBits::CSubdivisionBits(const CSubdivisionRecord& record) : m_iDepth(record.Depth()) {
  AppendNode(m_aBits, record.Root());
}

void CSubdivisionBits::ApplyTo(CSubdivisionRecord& record) const {
  auto bit = m_aBits.begin();
  ApplyToNode(bit, m_aBits.end(), record.Root());
}

void CSubdivisionBits::Write(std::ostream& out) const {
  auto bit = m_aBits.begin();
  WriteNode(out, bit, m_aBits.end(), m_iDepth);
}

bool CSubdivisionBits::Read(std::istream& in, int depth) {
  m_iDepth = depth;
  m_aBits.clear();
  if (ReadNode(in, depth)) return true;
  Console() << "Error CSaveQuadT::ReadInFile\t\tNon valid Character";
  return false;
}

bool CSubdivisionBits::ReadNode(std::istream& in, int depth) {
  char token = 0;
  in >> token;
  const bool split = in && token == 'b' && depth > 0;
  if (!split && (!in || token != 'N')) return false;
  if (depth > 0) m_aBits.push_back(split);
  if (!split) return true;
  for (int k = 0; k < 4; ++k) {
    if (!ReadNode(in, depth - 1)) return false;
    in >> token;
    if (!in || token != (k == 3 ? 'e' : 'v')) return false;
  }
  return true;
}
