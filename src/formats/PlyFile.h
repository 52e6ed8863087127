#pragma once

#include <string>

#include "base/CPicture.h"
#include "base/ExportProgress.h"
#include "formats/CFileMesh.h"

/// The bytes of a binary PLY file, least significant byte first: normals, places in the picture and, where there is a
/// picture, its colours at the vertices. Not whole where it has been cancelled. Throws std::bad_alloc.
std::string PlyOf(const CFileMesh& mesh, const CPicture& picture, UpAxis up, const CExportSteps& steps = {});
