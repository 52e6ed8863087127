#pragma once

#include <string>

#include "base/ExportProgress.h"
#include "formats/CFileMesh.h"

/// The bytes of a binary STL file of the triangles, each with its normal. Not whole where it has been cancelled. Throws
/// std::bad_alloc.
std::string StlOf(const CFileMesh& mesh, UpAxis up, const CExportSteps& steps = {});
