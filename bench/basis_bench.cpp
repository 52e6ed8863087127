// The transforms of the hierarchical basis on the fully refined lattice, levels 7 to 10.

#include <memory>

#include "support/BenchModel.h"
#include "support/Growth.h"

namespace {

// A vector read, a vector written, the place and on average three parents, four bytes each.
double TransformBytes(int level) { return static_cast<double>(PointCount(level)) * (2 * sizeof(double) + 4 * 4.0); }

COperation Transform(const char* name, void (*apply)(CBenchModel&)) {
  return {name,
          [apply](int level) {
            auto model = std::make_shared<CBenchModel>(level);
            return std::function<void()>([model, apply] {
              apply(*model);
              benchmark::DoNotOptimize(model->m_afY.data());
              benchmark::ClobberMemory();
            });
          },
          TransformBytes};
}

}  // namespace

int main(int argc, char** argv) {
  return RunAndReport(argc, argv,
                      {Transform("W", [](CBenchModel& m) { m.m_Basis.W(m.m_afX, m.m_afY); }),
                       Transform("invW", [](CBenchModel& m) { m.m_Basis.invW(m.m_afX, m.m_afY); }),
                       // It uses its argument up; the copy keeps the values bounded over many calls.
                       Transform("copy + invWTranspose", [](CBenchModel& m) {
                         m.m_afZ = m.m_afX;
                         m.m_Basis.invWTransposeTimes(m.m_afZ, m.m_afY);
                       })});
}
