// Reading a JPEG of 12 megapixels, in units of the bare library's decoding of the same bytes; and the memory of the
// process after many of them. Times are those of the processor, so that what else the machine does counts little.

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdio>
#include <fstream>
#include <limits>
#include <sstream>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <jpeglib.h>
#include <sys/resource.h>

#include "base/Console.h"
#include "codecs/JpegFile.h"
#include "codecs/PictureFormats.h"

namespace {

constexpr int kWidth = 4000;
constexpr int kHeight = 3000;
constexpr int kLoads = 50;

// Waves with some noise, which make about as many bytes as a photograph.
CPicture MakePicture() {
  CPicture picture{kWidth, kHeight, {}};
  picture.m_aPixels.reserve(std::size_t{3} * kWidth * kHeight);
  std::uint32_t state = 1;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      const double wave = 120 + 60 * std::sin(x / 90.0) + 50 * std::cos((x + 2 * y) / 70.0);
      for (int c = 0; c < 3; ++c) {
        state = state * 1664525 + 1013904223;
        picture.m_aPixels.push_back(
            static_cast<std::uint8_t>(std::clamp(wave + (state >> 28) - 8 + 9 * c, 0.0, 255.0)));
      }
    }
  }
  return picture;
}

double ProcessorSeconds() {
  rusage usage{};
  getrusage(RUSAGE_SELF, &usage);
  const auto seconds = [](const timeval& time) {
    return static_cast<double>(time.tv_sec) + 1e-6 * static_cast<double>(time.tv_usec);
  };
  return seconds(usage.ru_utime) + seconds(usage.ru_stime);
}

// The best of a few rounds.
template <typename Timed>
double SecondsOf(Timed timed) {
  double best = std::numeric_limits<double>::infinity();
  for (int round = 0; round < 5; ++round) {
    const double start = ProcessorSeconds();
    timed();
    best = std::min(best, ProcessorSeconds() - start);
  }
  return best;
}

void DecodeBare(const std::string& bytes) {
  jpeg_error_mgr errors{};
  jpeg_decompress_struct info{};
  info.err = jpeg_std_error(&errors);
  jpeg_create_decompress(&info);
  jpeg_mem_src(&info, reinterpret_cast<const unsigned char*>(bytes.data()), bytes.size());
  jpeg_read_header(&info, TRUE);
  jpeg_start_decompress(&info);
  std::vector<JSAMPLE> pixels(std::size_t{3} * info.output_width * info.output_height);
  while (info.output_scanline < info.output_height) {
    JSAMPROW row = &pixels[std::size_t{3} * info.output_width * info.output_scanline];
    jpeg_read_scanlines(&info, &row, 1);
  }
  jpeg_finish_decompress(&info);
  jpeg_destroy_decompress(&info);
  benchmark::DoNotOptimize(pixels.data());
}

double ResidentMebibytes() {
  std::ifstream status("/proc/self/status");
  std::string name;
  double kibibytes = 0.0;
  while (status >> name) {
    if (name == "VmRSS:" && status >> kibibytes) break;
  }
  return kibibytes / 1024;
}

}  // namespace

int main() {
  std::ostringstream console;
  const CConsoleRedirect redirect(console);
  const std::string bytes = JpegOf(MakePicture());
  const double bare = SecondsOf([&] { DecodeBare(bytes); });
  const double reading = SecondsOf([&] { benchmark::DoNotOptimize(ReadPicture(bytes, "picture")); });
  std::printf("JPEG of 12 megapixels, %.1f MB: %.0f ms, %.2f bare decodings\n", static_cast<double>(bytes.size()) / 1e6,
              reading * 1e3, reading / bare);
  const double before = ResidentMebibytes();
  for (int k = 0; k < kLoads; ++k) benchmark::DoNotOptimize(ReadPicture(bytes, "picture"));
  std::printf("memory of the process: %.1f MiB, %.1f MiB after %d more\n", before, ResidentMebibytes(), kLoads);
}
