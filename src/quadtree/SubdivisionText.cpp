#include "quadtree/SubdivisionText.h"

#include <istream>
#include <ostream>

#include "base/Console.h"
#include "quadtree/CSaveQuadT.h"

namespace {

void WriteNode(std::ostream& out, const CSaveQuadT& node) {
  if (node.IsLeaf() || !node.HasChildren()) {
    out << 'N';
    return;
  }
  for (int k = 0; k < 4; ++k) {
    out << (k == 0 ? 'b' : 'v');
    WriteNode(out, node.Child(k));
  }
  out << 'e';
}

void ClearBelow(CSaveQuadT& node) {
  if (!node.HasChildren()) return;
  for (int k = 0; k < 4; ++k) {
    node.Child(k).SetLeaf(false);
    node.Child(k).SetSelected(false);
    ClearBelow(node.Child(k));
  }
}

bool ReadNode(std::istream& in, CSaveQuadT& node) {
  node.SetLeaf(false);
  node.SetSelected(false);
  char token = 0;
  in >> token;
  if (in && token == 'N') {
    node.SetLeaf(true);
    ClearBelow(node);
    return true;
  }
  if (!in || token != 'b' || !node.HasChildren()) return false;
  for (int k = 0; k < 4; ++k) {
    if (!ReadNode(in, node.Child(k))) return false;
    in >> token;
    if (!in || token != (k == 3 ? 'e' : 'v')) return false;
  }
  return true;
}

void AppendBits(std::vector<bool>& bits, const CSaveQuadT& node) {
  if (!node.HasChildren()) return;
  bits.push_back(!node.IsLeaf());
  if (node.IsLeaf()) return;
  for (int k = 0; k < 4; ++k) AppendBits(bits, node.Child(k));
}

void TakeBits(std::vector<bool>::const_iterator& bit, CSaveQuadT& node) {
  const bool split = node.HasChildren() && *bit++;
  node.SetLeaf(!split);
  node.SetSelected(false);
  if (!split) return ClearBelow(node);
  for (int k = 0; k < 4; ++k) TakeBits(bit, node.Child(k));
}

}  // namespace

void WriteSubdivision(std::ostream& out, const CSubdivisionRecord& record) { WriteNode(out, record.Root()); }

bool ReadSubdivision(std::istream& in, CSubdivisionRecord& record) {
  if (ReadNode(in, record.Root())) return true;
  Console() << "Error CSaveQuadT::ReadInFile\t\tNon valid Character";
  return false;
}

std::vector<bool> SubdivisionBits(const CSubdivisionRecord& record) {
  std::vector<bool> bits;
  AppendBits(bits, record.Root());
  return bits;
}

void SetSubdivision(CSubdivisionRecord& record, const std::vector<bool>& bits) {
  auto bit = bits.begin();
  TakeBits(bit, record.Root());
}
