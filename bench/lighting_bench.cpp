// The relighting passes over a photograph beside bare loops over the same arrays in row order.

#include <algorithm>
#include <array>
#include <chrono>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <string>
#include <utility>
#include <vector>

#include <benchmark/benchmark.h>

#include "base/AreaFilter.h"
#include "quadtree/TreeNormals.h"
#include "support/BenchGrid.h"
#include "support/Timing.h"

namespace {

CPicture Photograph(int width, int height) {
  CPicture picture{width, height, {}};
  picture.m_aPixels.reserve(3 * static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  std::uint32_t noise = 1;
  for (int row = 0; row < height; ++row) {
    for (int k = 0; k < 3 * width; ++k) {
      noise = 1664525 * noise + 1013904223;
      picture.m_aPixels.push_back(static_cast<std::uint8_t>(60 + k % 97 + row % 61 + static_cast<int>(noise >> 28)));
    }
  }
  return picture;
}

// A hill in the middle, steep enough to turn its far side away from the slanting lights.
void RaiseHill(CGrid& grid) {
  CLattice& lattice = grid.Surface().Lattice();
  for (int row = 0; row < lattice.PointsPerSide(); ++row) {
    for (int column = 0; column < lattice.PointsPerSide(); ++column) {
      const double r = std::hypot(lattice.XOf(column) - 50, lattice.YOf(row) - 50) / 25;
      lattice.Heights()[lattice.Index(column, row)] = 40 * std::exp(-r * r);
    }
  }
  ComputeNormals(grid.Surface().Tree());
}

void LightUp(CGrid& grid) {
  const auto light = [&grid](int index, int type, const Vector3& direction, const std::array<double, 3>& colour) {
    CLight record = *grid.GetLightSource(index, type);
    record.m_bActive = true;
    record.SetDirection(Normalised(direction));
    record.m_afColour = colour;
    grid.SetLight(index, type, record);
  };
  light(0, kRemovedLights, {-2, 1, 1}, {0.6, 0.5, 0.4});
  light(1, kRemovedLights, {0, 1, 3}, {0.4, 0.4, 0.5});
  light(4, kRemovedLights, {0, 0, 1}, {0.2, 0.2, 0.25});
  light(0, kAddedLights, {2, 0, 1}, {0.9, 0.8, 0.7});
  light(4, kAddedLights, {0, 0, 1}, {0.1, 0.1, 0.1});
}

Vector3 ColourOf(const CLight& light) { return {light.m_afColour[0], light.m_afColour[1], light.m_afColour[2]}; }

// Lights as the bare loop takes them: so many of one set, the ambient term apart.
struct CBareLights {
  std::vector<std::pair<Vector3, Vector3>> m_aLights;  ///< direction and colour
  Vector3 m_Ambient;

  explicit CBareLights(const CLightSet& set) : m_Ambient(ColourOf(set.m_aLights[CLightSet::kAmbient])) {
    for (std::size_t k = 0; k < CLightSet::kAmbient; ++k) {
      const CLight& light = set.m_aLights[k];
      if (light.m_bActive) m_aLights.emplace_back(light.Direction(), ColourOf(light));
    }
  }

  Vector3 Shade(const Vector3& n) const {
    Vector3 sum = m_Ambient;
    for (const auto& [direction, colour] : m_aLights) sum += std::max(0.0, Dot(direction, n)) * colour;
    return sum;
  }
};

std::uint8_t Byte(double value) { return static_cast<std::uint8_t>(static_cast<int>(value)); }

// What the passes do, without checks, into arrays of its own.
class CBareLoops {
 public:
  explicit CBareLoops(const CGrid& grid)
      : m_Grid(grid),
        m_Removed(grid.Relighting().RemovedLights()),
        m_Added(grid.Relighting().AddedLights()),
        m_aNormals(grid.Relighting().Texels().Normals().begin(), grid.Relighting().Texels().Normals().end()),
        m_afKd(grid.Relighting().Albedo().Kd().size()),
        m_auKd(grid.Relighting().Textures().Image(CTextureImages::kKd).size()),
        m_auNew(m_auKd.size()) {}

  void Normals() {
    const CLattice& lattice = m_Grid.Surface().Lattice();
    const Vector3* points = lattice.PointNormals().data();
    const Vector3* cells = lattice.CellNormals().data();
    const CInterpCoefs* records = m_Grid.Relighting().Texels().Records().data();
    for (std::size_t i = 0; i < m_aNormals.size(); ++i) {
      const CInterpCoefs& r = records[i];
      const Vector3& a = points[r.A()];
      const Vector3& b = points[r.B()];
      const Vector3& c = cells[r.Cell()];
      const double x = r.Ca() * a.x + r.Cb() * b.x + r.CCenter() * c.x;
      const double y = r.Ca() * a.y + r.Cb() * b.y + r.CCenter() * c.y;
      const double z = r.Ca() * a.z + r.Cb() * b.z + r.CCenter() * c.z;
      const double s = 1.0 / std::sqrt(x * x + y * y + z * z);
      m_aNormals[i] = {s * x, s * y, s * z};
    }
    benchmark::ClobberMemory();
  }

  void Kd() {
    const CTextureImages& images = m_Grid.Relighting().Textures();
    const std::uint8_t* photograph = images.Image(CTextureImages::kPhotograph).data();
    const auto width = static_cast<std::size_t>(images.PictureWidth());
    const auto height = static_cast<std::size_t>(images.PictureHeight());
    const auto pitch = 3 * static_cast<std::size_t>(images.TextureWidth());
    for (std::size_t y = 0; y < height; ++y) {
      for (std::size_t x = 0; x < width; ++x) {
        const std::size_t texel = y * width + x;
        const std::size_t at = y * pitch + 3 * x;
        const Vector3 before = m_Removed.Shade(m_aNormals[texel]);
        const Vector3 after = m_Added.Shade(m_aNormals[texel]);
        const double red = before.x > 0 ? photograph[at] * (1.0 / 255) / before.x : 0.0;
        const double green = before.y > 0 ? photograph[at + 1] * (1.0 / 255) / before.y : 0.0;
        const double blue = before.z > 0 ? photograph[at + 2] * (1.0 / 255) / before.z : 0.0;
        m_afKd[3 * texel] = red;
        m_afKd[3 * texel + 1] = green;
        m_afKd[3 * texel + 2] = blue;
        m_auKd[at] = Byte(red * 255);
        m_auKd[at + 1] = Byte(green * 255);
        m_auKd[at + 2] = Byte(blue * 255);
        m_auNew[at] = Byte(std::min(255.0, red * after.x * 255));
        m_auNew[at + 1] = Byte(std::min(255.0, green * after.y * 255));
        m_auNew[at + 2] = Byte(std::min(255.0, blue * after.z * 255));
      }
    }
    benchmark::ClobberMemory();
  }

 private:
  const CGrid& m_Grid;
  CBareLights m_Removed;
  CBareLights m_Added;
  std::vector<Vector3> m_aNormals;
  std::vector<double> m_afKd;
  std::vector<std::uint8_t> m_auKd;
  std::vector<std::uint8_t> m_auNew;
};

struct CTimes {
  double m_fBareNormals = HUGE_VAL;
  double m_fNormals = HUGE_VAL;
  double m_fBareKd = HUGE_VAL;
  double m_fKd = HUGE_VAL;
  double m_fCoefs = HUGE_VAL;
  double m_fMask = HUGE_VAL;
};

// The best of five rounds that take turns, so that what else the machine does meets all of them.
CTimes Measure(CGrid& grid) {
  CBareLoops bare(grid);
  CTimes best;
  const auto keep = [](double& time, auto&& timed) { time = std::min(time, Seconds(timed)); };
  for (int round = 0; round < 5; ++round) {
    keep(best.m_fCoefs, [&] { grid.ComputeCoefsTexels(); });
    keep(best.m_fBareNormals, [&] { bare.Normals(); });
    keep(best.m_fNormals, [&] { grid.ComputeNormalsOnly(); });
    keep(best.m_fBareKd, [&] { bare.Kd(); });
    keep(best.m_fKd, [&] { grid.GetKd(); });
    keep(best.m_fMask, [&] { grid.TestTexelsInDiscontinuity(); });
  }
  return best;
}

void Report(int width, int height) {
  CBenchGrid bench(7);
  CGrid& grid = bench.Grid();
  RaiseHill(grid);
  LightUp(grid);
  const CPicture picture = Photograph(width, height);
  const double load = Seconds([&] { grid.Relighting().SetPicture(picture); });
  grid.ComputeCoefsTexels();
  grid.GetKd();
  const CTimes t = Measure(grid);
  const double texels = 1e-9 * width * height;
  std::printf("%4d x %-4d %8.1f %8.1f %8.1f %8.1f %8.1f %8.1f %8.1f %10.2f %8.2f %8.2f\n", width, height, load / texels,
              t.m_fMask / texels, t.m_fBareNormals / texels, t.m_fNormals / texels, t.m_fBareKd / texels,
              t.m_fKd / texels, t.m_fCoefs / texels, t.m_fNormals / t.m_fBareNormals, t.m_fKd / t.m_fBareKd,
              t.m_fCoefs / t.m_fBareKd);
}

// The copy of a large picture that a view draws, beside a loop that looks at each of its bytes once.
void ReportCopies(int width, int height) {
  const CPicture picture = Photograph(width, height);
  const CPixelRows rows{picture.m_aPixels, width, height, 3 * static_cast<std::size_t>(width)};
  const double texels = 1e-9 * width * height;
  for (const auto& factors : {std::pair{2, 2}, {4, 4}, {8, 8}, {16, 8}}) {
    const int x = factors.first;
    const int y = factors.second;
    double lean = 1e9;
    double copy = 1e9;
    for (int round = 0; round < 7; ++round) {
      lean = std::min(lean, Seconds([&] {
                        std::uint32_t sum = 0;
                        for (const std::uint8_t byte : picture.m_aPixels) sum += byte;
                        benchmark::DoNotOptimize(sum);
                      }));
      copy = std::min(copy, Seconds([&] { benchmark::DoNotOptimize(AreaFiltered(rows, x, y).m_aPixels.data()); }));
    }
    std::printf("%4d x %-4d 1/%-2d x 1/%-2d %8.2f %8.2f %8.2f %8.1f\n", width, height, x, y, lean / texels,
                copy / texels, copy / lean, copy * 1e3);
  }
}

// A light that moves with "Live" on: the answer on the smaller copy, and the pieces in which the picture follows. What
// a piece takes includes the memory that the first ones are the first to touch.
void ReportLive(int width, int height) {
  CBenchGrid bench(7);
  CGrid& grid = bench.Grid();
  RaiseHill(grid);
  LightUp(grid);
  grid.Relighting().SetPicture(Photograph(width, height));
  // So that the texels have to be found.
  grid.SetDiscMap();
  constexpr double kPiece = 0.015;
  for (const std::string change : {"first", "second", "soft"}) {
    grid.SetTone(change == "soft" ? Tone::Soft : Tone::Clipped);
    const double answer = Seconds([&] { grid.Relighting().PreviewKd(); });
    double longest = 0;
    double total = 0;
    bool going = true;
    int pieces = 0;
    for (; going; ++pieces) {
      const double piece = Seconds([&] {
        const auto begin = std::chrono::steady_clock::now();
        const auto goes = [&] {
          return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin).count() < kPiece;
        };
        going = grid.Relighting().ContinueKd(goes) == CRelighting::KdProgress::Going;
      });
      longest = std::max(longest, piece);
      total += piece;
    }
    std::printf("%4d x %-4d %-7s %8.1f %8d %8.1f %8.0f\n", width, height, change.c_str(), answer * 1e3, pieces,
                longest * 1e3, total * 1e3);
  }
}

}  // namespace

int main() {
  std::printf("over a surface of 129 x 129 points: nanoseconds per texel, and in units of the bare loops\n");
  std::printf("%-11s %8s %8s %8s %8s %8s %8s %8s %10s %8s %8s\n", "picture", "load", "mask", "bare n", "normals",
              "bare Kd", "Kd", "coefs", "normals", "Kd", "coefs");
  Report(600, 400);
  Report(1200, 800);
  Report(4000, 3000);
  std::printf("\narea-filtered copies: nanoseconds per pixel of the picture\n");
  std::printf("%-11s %-11s %8s %8s %8s %8s\n", "picture", "copy", "bare sum", "copy", "ratio", "ms");
  ReportCopies(4000, 3000);
  std::printf("\na light that moves: milliseconds\n%-11s %-7s %8s %8s %8s %8s\n", "picture", "change", "answer",
              "pieces", "longest", "total");
  ReportLive(4000, 3000);
}
