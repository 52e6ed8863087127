#pragma once

#include <memory>

#include "drawing/CCamera.h"
#include "editing/CModelName.h"
#include "formats/CProject.h"

/// What comes back with a step that replaces the surface, beside the model.
struct CSurroundings {
  CCamera m_Camera;
  CModelName m_Name;
  /// Views, recording and photograph; null unless the step replaces them.
  std::shared_ptr<const CProject> m_pWork = nullptr;
};
