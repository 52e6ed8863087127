#include "io/StateFolder.h"

#include <cstdlib>
#include <system_error>

#include <sys/stat.h>

namespace {

namespace fs = std::filesystem;

fs::path AbsoluteVariable(const char* name) {
  const char* value = std::getenv(name);
  fs::path path = value == nullptr ? "" : value;
  return path.is_absolute() ? path : fs::path();
}

fs::path Parent() {
  if (fs::path state = AbsoluteVariable("XDG_STATE_HOME"); !state.empty()) return state;
  const fs::path home = AbsoluteVariable("HOME");
  return home.empty() ? home : home / ".local" / "state";
}

}  // namespace

fs::path StateFolder() {
  const fs::path parent = Parent();
  if (parent.empty()) return {};
  fs::path folder = parent / "relievo";
  std::error_code error;
  fs::create_directories(parent, error);
  mkdir(folder.c_str(), S_IRWXU);
  return fs::is_directory(folder, error) ? folder : fs::path();
}
