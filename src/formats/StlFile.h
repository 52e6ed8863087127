#pragma once

#include <string>

#include "formats/CFileMesh.h"
#include "formats/ExportProgress.h"

/// The bytes of a binary STL file of the triangles, each with its normal. Not whole where it has been cancelled. Throws
/// std::bad_alloc.
std::string StlOf(const CFileMesh& mesh, UpAxis up, const CExportSteps& steps = {});
