#pragma once

#include <string>

/// What the model was opened from or saved as last, and how it is saved there again.
struct CModelName {
  std::string m_File;          ///< absolute; empty while the model has no name
  bool m_bWithLights = false;  ///< whether the file holds the lights
  bool m_bProject = false;     ///< it is a project file

  bool operator==(const CModelName&) const = default;
};
