#pragma once

#include <optional>
#include <string>

#include "base/CByteSink.h"
#include "base/ExportProgress.h"
#include "exports/CFileMesh.h"

/// What a binary glTF file begins with, up to its numbers; nothing where it would be too large.
std::optional<std::string> GlbHeadOf(const CFileMesh& mesh, const CEncodedPicture& picture, const std::string& name);
/// Gives the bytes that follow. False, and not all, where `steps` do not go on.
bool PutGlbBody(const CFileMesh& mesh, const CEncodedPicture& picture, CByteSink& sink, const CExportSteps& steps = {});

/// The bytes of a binary glTF 2.0 file: one mesh, textured where there is a picture, y up, seen from both sides. `name`
/// is that of the model, UTF-8. Nothing where the file would be 4 GiB or larger, which the format cannot hold, or where
/// it has been cancelled. Throws std::bad_alloc.
std::optional<std::string> GlbOf(const CFileMesh& mesh, const CEncodedPicture& picture, const std::string& name,
                                 const CExportSteps& steps = {});
