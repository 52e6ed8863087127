// The model view beside a bare loop over vertex arrays of the same triangles, in the same window. Needs a display.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <span>
#include <vector>

#include <FL/Fl.H>
#include <FL/Fl_Window.H>
#include <GL/gl.h>

#include "drawing/CTextures.h"
#include "drawing/DisplayFlags.h"
#include "model/CGrid.h"
#include "support/BenchGrid.h"
#include "support/Timing.h"
#include "ui/modelview/CGridView.h"

namespace {

constexpr int kViewSize = 430;

class CBenchView : public CGridView {
 public:
  using CGridView::CGridView;
  /// One finished drawing into the back buffer.
  void DrawAndFinish() {
    draw();
    glFinish();
  }
};

CPicture Checkers() {
  constexpr int kSide = 512;
  CPicture picture{kSide, kSide, {}};
  for (int y = 0; y < kSide; ++y) {
    for (int x = 0; x < kSide; ++x) {
      const auto shade = static_cast<std::uint8_t>(((x ^ y) & 32) != 0 ? 200 : 90);
      picture.m_aPixels.insert(picture.m_aPixels.end(), {shade, static_cast<std::uint8_t>(x / 2), shade});
    }
  }
  return picture;
}

// The yardstick: corners and centres of the uniform grid, four triangles per cell, texture coordinates of their own.
// Takes projection, view and texture as the model view has left them.
class CBareLoop {
 public:
  explicit CBareLoop(const CGrid& grid) {
    const CLattice& lattice = grid.Surface().Lattice();
    const int n = lattice.PointsPerSide();
    for (int row = 0; row < n; ++row) {
      for (int column = 0; column < n; ++column)
        Add(lattice.XOf(column), lattice.YOf(row), lattice.Heights()[lattice.Index(column, row)]);
    }
    for (int row = 0; row + 1 < n; ++row) {
      for (int column = 0; column + 1 < n; ++column) AddCell(grid, column, row);
    }
  }

  void Draw(const float* normals) const {
    glClear(GL_COLOR_BUFFER_BIT | GL_DEPTH_BUFFER_BIT);
    glEnable(GL_TEXTURE_2D);
    glDisable(GL_BLEND);
    glEnableClientState(GL_VERTEX_ARRAY);
    glEnableClientState(GL_TEXTURE_COORD_ARRAY);
    if (normals != nullptr) {
      glEnable(GL_LIGHTING);
      glEnableClientState(GL_NORMAL_ARRAY);
      glNormalPointer(GL_FLOAT, 0, normals);
    }
    glVertexPointer(3, GL_FLOAT, 0, m_afPositions.data());
    glTexCoordPointer(2, GL_FLOAT, 3 * sizeof(float), m_afPositions.data());
    glDrawElements(GL_TRIANGLES, static_cast<GLsizei>(m_auTriangles.size()), GL_UNSIGNED_INT, m_auTriangles.data());
    glDisableClientState(GL_NORMAL_ARRAY);
    glDisableClientState(GL_TEXTURE_COORD_ARRAY);
    glDisableClientState(GL_VERTEX_ARRAY);
    glDisable(GL_LIGHTING);
    glEnable(GL_BLEND);
    glDisable(GL_TEXTURE_2D);
    glFinish();
  }
  std::size_t TriangleCount() const { return m_auTriangles.size() / 3; }
  /// Upright normals, one per vertex.
  std::vector<float> Normals() const {
    std::vector<float> normals(m_afPositions.size(), 0.0F);
    for (std::size_t k = 2; k < normals.size(); k += 3) normals[k] = 1.0F;
    return normals;
  }

 private:
  std::uint32_t Add(double x, double y, double z) {
    m_afPositions.insert(m_afPositions.end(), {static_cast<float>(x), static_cast<float>(y), static_cast<float>(z)});
    return static_cast<std::uint32_t>(m_afPositions.size() / 3 - 1);
  }
  void AddCell(const CGrid& grid, int column, int row) {
    const CLattice& lattice = grid.Surface().Lattice();
    const auto a = static_cast<std::uint32_t>(lattice.Index(column, row));
    const auto up = static_cast<std::uint32_t>(lattice.PointsPerSide());
    const std::uint32_t b = a + 1;
    const std::uint32_t c = a + 1 + up;
    const std::uint32_t d = a + up;
    const auto z = [&](std::uint32_t point) { return lattice.Heights()[point]; };
    const std::uint32_t centre =
        Add(lattice.XOf(column + 0.5), lattice.YOf(row + 0.5), 0.25 * (z(a) + z(b) + z(c) + z(d)));
    m_auTriangles.insert(m_auTriangles.end(), {a, b, centre, b, c, centre, c, d, centre, d, a, centre});
  }

  std::vector<float> m_afPositions;
  std::vector<std::uint32_t> m_auTriangles;
};

struct CTimes {
  double m_fBare;
  double m_fRedraw;
  double m_fAfterTick;
};

// The three are taken in turn, so that whatever else the machine does falls on all of them.
CTimes Measure(CBenchView& view, CGrid& grid, const CBareLoop& bare, const float* normals) {
  CTimes best{1e9, 1e9, 1e9};
  constexpr int kRounds = 25;
  for (int round = 0; round < kRounds; ++round) {
    view.DrawAndFinish();
    best.m_fBare = std::min(best.m_fBare, Seconds([&] { bare.Draw(normals); }));
    best.m_fRedraw = std::min(best.m_fRedraw, Seconds([&] { view.DrawAndFinish(); }));
    grid.Surface().Reconstruct();
    best.m_fAfterTick = std::min(best.m_fAfterTick, Seconds([&] { view.DrawAndFinish(); }));
  }
  return best;
}

void Report(int level, bool lit) {
  CBenchGrid bench(level);
  CGrid& grid = bench.Grid();
  bench.AddHeights(10, 3);
  for (int tick = 0; tick < 20; ++tick) grid.UpdateGrid();
  grid.Relighting().SetPicture(Checkers());
  CLight light = *grid.GetLightSource(0, kAddedLights);
  light.m_bActive = lit;
  light.m_afDirection = {0.5, 0.3, 0.8, 0};
  grid.SetLight(0, kAddedLights, light);

  Fl_Window window(kViewSize, kViewSize);
  CBenchView view(0, 0, kViewSize, kViewSize);
  window.end();
  window.show();
  CTextures textures;
  view.AttachGrid(grid);
  view.AttachTextures(textures);
  view.SetFlag(ModelFlag::kGrid, false);
  view.SetFlag(ModelFlag::kTexturedModel, true);
  while (view.visible_r() == 0 || view.damage() != 0) Fl::wait(0.01);
  view.make_current();
  textures.Load(grid.Relighting().Textures());

  const CBareLoop bare(grid);
  const std::vector<float> normals = bare.Normals();
  const CTimes times = Measure(view, grid, bare, lit ? normals.data() : nullptr);
  std::printf("%5d^2 %-6s %10zu %10.2f %10.2f %8.2f %12.2f %8.2f\n", grid.Surface().Lattice().PointsPerSide(),
              lit ? "lit" : "plain", bare.TriangleCount(), times.m_fBare * 1e3, times.m_fRedraw * 1e3,
              times.m_fRedraw / times.m_fBare, times.m_fAfterTick * 1e3, times.m_fAfterTick / times.m_fBare);
}

}  // namespace

int main() {
  if (std::getenv("DISPLAY") == nullptr) {
    std::puts("draw_bench: DISPLAY is not set, nothing is measured");
    return EXIT_SUCCESS;
  }
  Fl::visual(FL_DOUBLE | FL_DEPTH | FL_RGB8);
  std::printf("%7s %-6s %10s %10s %10s %8s %12s %8s\n", "grid", "", "triangles", "bare ms", "redraw ms", "ratio",
              "after a tick", "ratio");
  for (const int level : {7, 9}) {
    Report(level, false);
    Report(level, true);
  }
}
