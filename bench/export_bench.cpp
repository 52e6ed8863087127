// Exports of a surface with a photograph and a closed tear, in units of writing the same bytes raw to the same folder.
// Neither waits for the disk, and both are timed in processor time, the system's included. All cells one step wide,
// levels 7 and 10; beside them what clean tears take of it, and the same of the surface without the tear.

#include <algorithm>
#include <cerrno>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <limits>
#include <memory>
#include <numbers>
#include <stdexcept>
#include <string>
#include <vector>

#include <fcntl.h>
#include <unistd.h>

#include "codecs/JpegFile.h"
#include "exports/SurfaceExport.h"
#include "support/BenchGrid.h"

// In place of that of the system: what is compared is work, not disks.
extern "C" int fsync(int /*file*/) { return 0; }

namespace {

namespace fs = std::filesystem;

// A circle of 600 nodes, as the scissors would trace it.
std::vector<CPtCstr> Circle() {
  std::vector<CPtCstr> nodes(600);
  for (std::size_t k = 0; k < nodes.size(); ++k) {
    const double angle = 2 * std::numbers::pi * static_cast<double>(k) / static_cast<double>(nodes.size());
    nodes[k].m_fX = 50 + 30 * std::cos(angle);
    nodes[k].m_fY = 50 + 30 * std::sin(angle);
  }
  return nodes;
}

std::string BytesOf(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

CPicture Gradient(int width, int height) {
  CPicture picture{width, height, {}};
  for (int row = 0; row < height; ++row) {
    for (int column = 0; column < width; ++column) {
      for (const int channel : {column / 4, row / 3, (column ^ row) / 4})
        picture.m_aPixels.push_back(static_cast<std::uint8_t>(channel));
    }
  }
  return picture;
}

/// Seconds of the processor per call, the least of five rounds of `calls` calls each.
template <typename Timed>
double SecondsPerCall(int calls, const Timed& timed) {
  double best = std::numeric_limits<double>::infinity();
  for (int round = 0; round < 5; ++round) {
    const std::clock_t start = std::clock();
    for (int k = 0; k < calls; ++k) timed();
    best = std::min(best, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC / calls);
  }
  return best;
}

void WriteRaw(const fs::path& path, const std::string& bytes) {
  const int file = open(path.c_str(), O_WRONLY | O_CREAT | O_TRUNC | O_CLOEXEC, 0600);
  std::size_t written = 0;
  while (written < bytes.size()) {
    const ssize_t more = write(file, bytes.data() + written, bytes.size() - written);
    if (more < 0 && errno != EINTR) throw std::runtime_error("the temporary folder is full");
    if (more > 0) written += static_cast<std::size_t>(more);
  }
  close(file);
}

/// A grid of one level and the folder that it is exported to.
class CComparison {
 public:
  CComparison(int level, bool torn) : m_Grid(level), m_iCalls(level < 9 ? 10 : 1) {
    m_Grid.AddHeights(20, 7);
    if (torn) m_Grid.Grid().AddCurve(Circle(), CurveType::kPosition, true);
    for (int tick = 0; tick < 3; ++tick) m_Grid.Grid().UpdateGrid();
    // The albedo and the relit picture need some.
    CLightSet lights;
    lights.m_aLights[CLightSet::kAmbient].m_bActive = true;
    m_Grid.Grid().Relighting().SetLights(lights, lights);
    m_Photograph.m_Picture = Gradient(1024, 768);
    m_Photograph.m_pJpeg = std::make_shared<const std::string>(JpegOf(m_Photograph.m_Picture));
    std::string name = (fs::temp_directory_path() / "relievo-bench-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    m_Folder = name;
  }
  ~CComparison() { fs::remove_all(m_Folder); }
  CComparison(const CComparison&) = delete;
  CComparison& operator=(const CComparison&) = delete;

  /// Seconds of one export; a new file each time, as the raw one is.
  double Export(const CExportFormat& format) const {
    const fs::path file = m_Folder / (std::string("model") + format.m_pSuffix);
    CExportSettings settings;
    settings.m_pPhotograph = &m_Photograph;
    return SecondsPerCall(m_iCalls, [&] {
      fs::remove(file);
      if (!ExportSurface(m_Grid.Grid(), file, settings)) throw std::runtime_error("an export failed");
    });
  }
  /// Seconds of writing what has been exported last; its bytes.
  double Raw(const CExportFormat& format, std::size_t& size) const {
    const std::string bytes = BytesOf(m_Folder / (std::string("model") + format.m_pSuffix));
    size = bytes.size();
    const fs::path file = m_Folder / "raw";
    return SecondsPerCall(m_iCalls, [&] {
      fs::remove(file);
      WriteRaw(file, bytes);
    });
  }

 private:
  mutable CBenchGrid m_Grid;
  CReadPicture m_Photograph;
  fs::path m_Folder;
  int m_iCalls;
};

void Compare(int level) {
  const CComparison torn(level, true);
  const CComparison whole(level, false);
  for (const CExportFormat& format : ExportFormats()) {
    const double seconds = torn.Export(format);
    std::size_t size = 0;
    const double raw = torn.Raw(format, size);
    const double untorn = whole.Export(format);
    std::size_t untornSize = 0;
    const double untornRaw = whole.Raw(format, untornSize);
    std::printf("%4d^2  %-12s %7.1f MB  raw %8.2f ms  export %6.2f of it, clean tears %4.0f %% of that, untorn %6.2f\n",
                (1 << level) + 1, format.m_pSuffix, 1e-6 * static_cast<double>(size), 1e3 * raw, seconds / raw,
                1e2 * (1 - untorn / seconds), untorn / untornRaw);
    std::fflush(stdout);
  }
}

}  // namespace

int main() {
  Compare(7);
  Compare(10);
}
