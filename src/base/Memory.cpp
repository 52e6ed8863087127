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

void AskForLargePages(void* begin, std::size_t bytes) {
  constexpr std::size_t kLeast = std::size_t{1} << 22;
  if (bytes < kLeast) return;
#ifdef MADV_HUGEPAGE
  // From the first whole page to the last one.
  const auto page = static_cast<std::size_t>(sysconf(_SC_PAGESIZE));
  const std::size_t before = (page - reinterpret_cast<std::uintptr_t>(begin) % page) % page;
  const std::size_t length = (bytes - before) / page * page;
  // Without such pages, everything is as it was.
  [[maybe_unused]] const int asked = madvise(static_cast<char*>(begin) + before, length, MADV_HUGEPAGE);
#endif
}
