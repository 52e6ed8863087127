#pragma once

#include <optional>
#include <string>

#include "base/ExportProgress.h"
#include "formats/CFileMesh.h"

/// The bytes of a binary glTF 2.0 file: one mesh, textured where there is a picture, y up, seen from both sides. `name`
/// is that of the model, UTF-8. Nothing where the file would be 4 GiB or larger, which the format cannot hold, or where
/// it has been cancelled. Throws std::bad_alloc.
std::optional<std::string> GlbOf(const CFileMesh& mesh, const CEncodedPicture& picture, const std::string& name,
                                 const CExportSteps& steps = {});
