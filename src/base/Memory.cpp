#include "base/Memory.h"

#include <fstream>
#include <limits>
#include <string>

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
