#pragma once

#include <string>
#include <string_view>
#include <vector>

/// What follows the last slash of a file name, as far as it has been typed.
std::string_view LastPart(std::string_view name);
/// The folder that a full name lies in, without a slash at its end but for "/".
std::string FolderOf(const std::string& fullName);
/// `typed` with a "~" and variables replaced, and within `folder` unless it begins at the root.
std::string FullName(const std::string& folder, const std::string& typed);

/// Whether a name is meant within some folder.
bool IsRelative(std::string_view typed);

/// The longest text that begins with `part` and that all of the names that begin with `part` begin with; `part` itself
/// if there are none.
std::string CommonStart(const std::string& part, const std::vector<std::string>& names);
