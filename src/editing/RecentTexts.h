#pragma once

#include <span>
#include <string>
#include <vector>

#include "editing/CWorkFiles.h"

/// How what was open once is offered again.
struct CRecentText {
  std::string m_Text;
  bool m_bThere = false;  ///< it can be opened

  bool operator==(const CRecentText&) const = default;
};

/// The names of model and picture for each; the whole path of a file that is missing, and of those that would read
/// alike. What has lost its model cannot be opened, nor a picture without one that is missing. Control characters are
/// shown as "?". Looks for each file once.
std::vector<CRecentText> RecentTexts(std::span<const CWorkFiles> recent);
