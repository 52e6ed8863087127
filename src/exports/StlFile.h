#pragma once

#include "base/CByteSink.h"
#include "base/ExportProgress.h"
#include "exports/CFileMesh.h"

/// Gives the bytes of a binary STL file of the triangles, each with its normal. False, and not all, where `steps` do
/// not go on.
bool PutStl(const CFileMesh& mesh, UpAxis up, CByteSink& sink, const CExportSteps& steps = {});
