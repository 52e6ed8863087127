#pragma once

#include <optional>
#include <string>
#include <string_view>

// Names of files as desktops exchange them: any bytes as plain text, "file:///home/a%20b.grid".

/// The URI of an absolute path.
std::string UriOf(std::string_view path);

/// The path that a URI names; nothing if it is no file of this machine or not well formed.
std::optional<std::string> PathOf(std::string_view uri);
