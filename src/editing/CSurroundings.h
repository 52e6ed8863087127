#pragma once

#include <memory>
#include <string>

#include "drawing/CCamera.h"
#include "formats/CProject.h"

/// What comes back with a step that replaces the surface, beside the model.
struct CSurroundings {
  CCamera m_Camera;
  std::string m_ModelFile;  ///< that the model is saved to again; empty where it has none
  /// Views, recording and photograph; null unless the step replaces them.
  std::shared_ptr<const CProject> m_pWork = nullptr;
};
