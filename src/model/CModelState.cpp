#include "model/CModelState.h"

namespace {

// The list of the standard library puts each record between two pointers, and the heap rounds up.
constexpr std::size_t kListOverhead = 4 * sizeof(void*);

}  // namespace

std::size_t BytesOf(const CDocument& document) {
  const CSketch& sketch = document.m_Sketch;
  std::size_t bytes = sizeof(document) + sketch.m_Points.size() * (sizeof(CPtCstr) + kListOverhead) +
                      sketch.m_PendingCurve.Points().size_bytes() +
                      document.m_auSelectedCells.size() * sizeof(std::uint32_t);
  for (const CCntrCtrl& curve : sketch.m_Curves)
    bytes += sizeof(CCntrCtrl) + kListOverhead + curve.Nodes().size() * (sizeof(CCntrNode) + kListOverhead);
  for (const CSubdivisionBits& bits : sketch.m_aSubdivisions) bytes += bits.Bytes();
  return bytes;
}

std::size_t BytesOf(const CModelState& state) {
  const std::size_t surface = state.m_pSurface == nullptr ? 0 : state.m_pSurface->Bytes();
  const std::size_t solver = state.m_pSolver == nullptr ? 0 : state.m_pSolver->Bytes();
  return BytesOf(state.m_Document) + surface + solver;
}
