// The quad tree on the fully refined lattice, levels 7 to 10: construction, start level, renumbering with the schedule
// of the basis, stencils, normals; and a renumbering at level 7 in units of a plain copy of its heights.

#include <algorithm>
#include <cstdio>
#include <memory>

#include "quadtree/Interpolation.h"
#include "quadtree/TreeNormals.h"
#include "support/BenchModel.h"
#include "support/Growth.h"
#include "support/Timing.h"

namespace {

double PerPoint(int level, std::size_t bytes) {
  return static_cast<double>(PointCount(level)) * static_cast<double>(bytes);
}

// The fixed part of an operation: a model of the level, shared by all calls.
COperation OnModel(const char* name, std::function<void(CBenchModel&)> apply, std::function<double(int)> bytes) {
  return {name,
          [apply = std::move(apply)](int level) {
            auto model = std::make_shared<CBenchModel>(level);
            return std::function<void()>([model, apply] {
              apply(*model);
              benchmark::ClobberMemory();
            });
          },
          std::move(bytes)};
}

COperation Construction() {
  return {"construction",
          [](int level) {
            auto lattice = std::make_shared<CLattice>(level);
            return std::function<void()>([lattice] {
              const CQuadTree tree(*lattice);
              benchmark::DoNotOptimize(&tree.Root());
            });
          },
          [](int level) { return TreeBytes(level); }};
}

void Renumber(CBenchModel& m) {
  m.m_Order.Build(m.m_Tree);
  m.m_Basis.Compile(m.m_Order, m.m_Tree, WaveletMode::New);
  benchmark::DoNotOptimize(&m.m_Basis);
}

// One stencil per unit cell, off its centre, in row order, as the texels of a picture ask for them.
void Stencils(CBenchModel& m) {
  const CInterpolation surface(m.m_Tree, m.m_Order);
  const int cells = m.m_Lattice.PointsPerSide() - 1;
  CStencil stencil;
  for (int row = 0; row < cells; ++row) {
    for (int column = 0; column < cells; ++column) {
      surface.GetBilinearInterpolation(m.m_Lattice.XOf(column + 0.3), m.m_Lattice.YOf(row + 0.6), stencil);
      benchmark::DoNotOptimize(stencil);
    }
  }
}

void Normals(CBenchModel& m) { ComputeNormals(m.m_Tree); }

void ReportRenumberingInCopies() {
  CBenchModel model(7);
  const double renumbering = SecondsPerCall(20, [&] { Renumber(model); });
  const double copy = SecondsPerCall(2000, [&] {
    std::copy(model.m_afX.begin(), model.m_afX.end(), model.m_afY.begin());
    benchmark::DoNotOptimize(model.m_afY.data());
    benchmark::ClobberMemory();
  });
  std::printf("\nrenumbering at L7: %.0f us, %.0f copies of %zu doubles\n", renumbering * 1e6, renumbering / copy,
              model.m_afX.size());
}

}  // namespace

int main(int argc, char** argv) {
  const auto walk = [](int level) { return TreeBytes(level) + PerPoint(level, 4); };
  const auto renumbering = [](int level) { return TreeBytes(level) + PerPoint(level, 3 * 4 + 3 * 4); };
  const auto normals = [](int level) {
    return TreeBytes(level) + PerPoint(level, sizeof(CLeaf) + 2 * sizeof(Vector3) + sizeof(double));
  };
  const int status =
      RunAndReport(argc, argv,
                   {Construction(),
                    OnModel(
                        "start level", [](CBenchModel& m) { m.m_Tree.SetStartLevel(m.m_Tree.Level()); }, walk),
                    OnModel("renumbering", Renumber, renumbering), OnModel("stencils", Stencils, renumbering),
                    OnModel("normals", Normals, normals)});
  ReportRenumberingInCopies();
  return status;
}
