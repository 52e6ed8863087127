#pragma once

#include <string>

#include "base/ExportProgress.h"
#include "exports/CFileMesh.h"

/// The two texts of a Wavefront model.
struct CObjTexts {
  std::string m_Model;
  std::string m_Material;
};

/// A mesh with normals and places in the picture, under one material. `material` is the name of the file that will hold
/// the second text, `picture` that of the picture, empty for none; both beside the first. Names with blanks are not
/// safe in this format. Not whole where it has been cancelled. Throws std::bad_alloc.
CObjTexts ObjOf(const CFileMesh& mesh, const std::string& material, const std::string& picture, UpAxis up,
                const CExportSteps& steps = {});
