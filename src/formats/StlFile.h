#pragma once

#include "base/ByteSink.h"
#include "base/ExportProgress.h"
#include "formats/CFileMesh.h"

/// Gives the bytes of a binary STL file of the triangles, each with its normal. False, and not all, where `steps` do
/// not go on.
bool PutStl(const CFileMesh& mesh, UpAxis up, const ByteSink& sink, const CExportSteps& steps = {});
