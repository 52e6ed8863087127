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

// What the variable says, or else a place in the home folder.
fs::path Parent(const char* variable, const char* inHome) {
  if (fs::path named = AbsoluteVariable(variable); !named.empty()) return named;
  const fs::path home = AbsoluteVariable("HOME");
  return home.empty() ? home : home / inHome;
}

}  // namespace

fs::path StateFolder() {
  const fs::path parent = Parent("XDG_STATE_HOME", ".local/state");
  if (parent.empty()) return {};
  fs::path folder = parent / "relievo";
  std::error_code error;
  fs::create_directories(parent, error);
  mkdir(folder.c_str(), S_IRWXU);
  return fs::is_directory(folder, error) ? folder : fs::path();
}

fs::path SettingsFolder() {
  const fs::path parent = Parent("XDG_CONFIG_HOME", ".config");
  return parent.empty() ? parent : parent / "relievo";
}
