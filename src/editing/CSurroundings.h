#pragma once

#include <string>

#include "drawing/CCamera.h"

/// What comes back with a step that replaces the surface, beside the model.
struct CSurroundings {
  CCamera m_Camera;
  std::string m_ModelFile;  ///< that the model is saved to again; empty where it has none
};
