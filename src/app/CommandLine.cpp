#include "app/CommandLine.h"

#include <cstdio>
#include <cstdlib>
#include <string>
#include <string_view>
#include <vector>

#include "editing/FilesToOpen.h"

namespace {

constexpr const char* kUsage =
    "Usage: relievo [MODEL.grid | PROJECT.relievo] [PICTURE]\n"
    "Make a textured 3D surface out of one photograph.\n"
    "\n"
    "The model or project and the picture, in any order, are opened in the window.\n"
    "\n"
    "  --defaults  start without what was remembered of windows and switches\n"
    "  --help      show this and end\n"
    "  --version   show the version and end\n"
    "  --          what follows is a file, whatever it begins with\n";

int Show(const char* text) {
  return std::fputs(text, stdout) < 0 || std::fflush(stdout) != 0 ? EXIT_FAILURE : EXIT_SUCCESS;
}

// A single dash is a file of that name.
bool IsOption(std::string_view argument) { return argument.size() > 1 && argument.front() == '-'; }

int Answer(const std::string& option) {
  if (option == "--help") return Show(kUsage);
  if (option == "--version") return Show("relievo " RELIEVO_VERSION "\n");
  std::fprintf(stderr, "relievo: there is no option %s; relievo --help lists them\n", option.c_str());
  return EXIT_FAILURE;
}

}  // namespace

CCommandLine ReadCommandLine(int count, const char* const* arguments) {
  std::vector<std::string> files;
  bool options = true;
  bool defaults = false;
  for (int k = 1; k < count; ++k) {
    const std::string argument = arguments[k];
    if (options && argument == "--") {
      options = false;
    } else if (options && argument == "--defaults") {
      defaults = true;
    } else if (options && IsOption(argument)) {
      return {false, {}, Answer(argument)};
    } else {
      files.push_back(argument);
    }
  }
  return {defaults, FilesToOpen(files), std::nullopt};
}
