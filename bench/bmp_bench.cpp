// Loading and saving a bitmap of 12 megapixels, in units of reading and writing a file of that size as it is; and
// beside the converter of the netpbm tools, where installed.

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <memory_resource>
#include <sstream>
#include <string>

#include <benchmark/benchmark.h>

#include "base/Console.h"
#include "io/Bmp.h"
#include "support/Timing.h"

namespace {

// The rows carry padding.
constexpr int kWidth = 4001;
constexpr int kHeight = 3000;

CPicture MakePicture() {
  CPicture picture{kWidth, kHeight, std::vector<std::uint8_t>(std::size_t{3} * kWidth * kHeight)};
  std::uint32_t state = 1;
  for (std::uint8_t& byte : picture.m_aPixels)
    byte = static_cast<std::uint8_t>((state = state * 1664525 + 1013904223) >> 24);
  return picture;
}

void ReadRaw(const std::string& filename) {
  const std::size_t size = std::filesystem::file_size(filename);
  // Left uninitialised, as no container would: a buffer of zeros would be written twice.
  std::pmr::monotonic_buffer_resource memory(size);
  void* const bytes = memory.allocate(size);
  std::FILE* file = std::fopen(filename.c_str(), "rb");
  benchmark::DoNotOptimize(std::fread(bytes, 1, size, file));
  std::fclose(file);
  benchmark::DoNotOptimize(bytes);
}

void WriteRaw(const std::string& filename, const CPicture& picture) {
  std::FILE* file = std::fopen(filename.c_str(), "wb");
  std::fwrite(picture.m_aPixels.data(), 1, picture.m_aPixels.size(), file);
  std::fclose(file);
}

void WritePpm(const std::string& filename, const CPicture& picture) {
  std::ofstream file(filename, std::ios::binary);
  file << "P6\n" << picture.m_iWidth << ' ' << picture.m_iHeight << "\n255\n";
  file.write(reinterpret_cast<const char*>(picture.m_aPixels.data()),
             static_cast<std::streamsize>(picture.m_aPixels.size()));
}

bool Runs(const std::string& command) { return std::system((command + " >/dev/null 2>&1").c_str()) == 0; }

}  // namespace

int main() {
  std::ostringstream console;
  const CConsoleRedirect redirect(console);
  const std::filesystem::path directory = std::filesystem::temp_directory_path() / "relievo_bmp_bench";
  std::filesystem::create_directories(directory);
  const std::string bmp = directory / "picture.bmp";
  const std::string raw = directory / "picture.raw";
  const std::string ppm = directory / "picture.ppm";
  const CPicture picture = MakePicture();
  const auto save = [&] { Global::SaveBMP(bmp, picture.m_aPixels, kWidth, kHeight, 1); };
  save();

  const double loading = SecondsPerCall(3, [&] { benchmark::DoNotOptimize(Global::LoadBMP(bmp, 1)); });
  const double reading = SecondsPerCall(3, [&] { ReadRaw(bmp); });
  const double saving = SecondsPerCall(3, save);
  const double writing = SecondsPerCall(3, [&] { WriteRaw(raw, picture); });
  std::printf("load %.1f ms, %.2f raw reads\n", loading * 1e3, loading / reading);
  std::printf("save %.1f ms, %.2f raw writes\n", saving * 1e3, saving / writing);
  WritePpm(ppm, picture);
  const std::string convert = "ppmtobmp -bpp=24 " + ppm + " > " + (directory / "converted.bmp").string();
  if (Runs("ppmtobmp -version")) {
    const double converting =
        SecondsPerCall(1, [&] { benchmark::DoNotOptimize(std::system((convert + " 2>/dev/null").c_str())); });
    std::printf("save in units of ppmtobmp: %.2f\n", saving / converting);
  }
  std::filesystem::remove_all(directory);
}
