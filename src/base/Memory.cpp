#include "base/Memory.h"

#include <cstdint>
#include <fstream>
#include <limits>
#include <string>

#include <sys/mman.h>
#include <unistd.h>

// Asked of the system because it grants more than it has: the failure would come later, as the end of the process.
double AvailableMemory() {
  std::ifstream info("/proc/meminfo");
  std::string name;
  double kibibytes = 0.0;
  while (info >> name >> kibibytes) {
    if (name == "MemAvailable:") return 1024.0 * kibibytes;
    info.ignore(std::numeric_limits<std::streamsize>::max(), '\n');
  }
  return std::numeric_limits<double>::infinity();
}

void AskForLargePages(const void* begin, std::size_t bytes) {
  constexpr std::size_t kLeast = std::size_t{1} << 22;
  if (bytes < kLeast) return;
#ifdef MADV_HUGEPAGE
  const auto page = static_cast<std::uintptr_t>(sysconf(_SC_PAGESIZE));
  const std::uintptr_t first = (reinterpret_cast<std::uintptr_t>(begin) + page - 1) / page * page;
  const std::uintptr_t last = (reinterpret_cast<std::uintptr_t>(begin) + bytes) / page * page;
  // Without such pages, everything is as it was.
  [[maybe_unused]] const int asked = madvise(reinterpret_cast<void*>(first), last - first, MADV_HUGEPAGE);
#endif
}
