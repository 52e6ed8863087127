#pragma once

#include <string>

/// A model and the picture that it is worked on with. Absolute paths; either may be empty.
struct CWorkFiles {
  std::string m_Model;
  std::string m_Picture;

  bool operator==(const CWorkFiles&) const = default;
};
