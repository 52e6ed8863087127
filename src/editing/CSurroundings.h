#pragma once

#include <cstdint>
#include <memory>
#include <optional>

#include "drawing/CCamera.h"
#include "editing/CModelName.h"
#include "projects/CProject.h"

/// What the two views draw, in flags.
struct CViewMarks {
  std::uint32_t m_uImageFlags = 0;
  std::uint32_t m_uModelFlags = 0;
};

/// What comes back with a step that replaces the surface, beside the model.
struct CSurroundings {
  CCamera m_Camera;
  CModelName m_Name;
  /// Nothing where they are the user's own.
  std::optional<CViewMarks> m_ProjectMarks = std::nullopt;
  /// Views, recording and photograph; null unless the step replaces them.
  std::shared_ptr<const CProject> m_pWork = nullptr;
};
