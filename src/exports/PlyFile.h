#pragma once

#include "base/CByteSink.h"
#include "base/CPicture.h"
#include "base/ExportProgress.h"
#include "exports/CFileMesh.h"

/// Gives the bytes of a binary PLY file, least significant byte first: normals, places in the picture and, where there
/// is a picture, its colours at the vertices. False, and not all, where `steps` do not go on.
bool PutPly(const CFileMesh& mesh, const CPicture& picture, UpAxis up, CByteSink& sink, const CExportSteps& steps = {});
