#pragma once

#include <filesystem>

/// Where the program keeps what it remembers from run to run: relievo in $XDG_STATE_HOME, or else in ~/.local/state.
/// The folder is made if need be, for the user alone. Empty where there is none and none can be made; a relative path
/// in a variable counts as none.
std::filesystem::path StateFolder();

/// Where users find what they have chosen for every run: relievo in $XDG_CONFIG_HOME, or else in ~/.config. Nothing is
/// made; empty where there is no such place, with the same rule for relative paths.
std::filesystem::path SettingsFolder();
