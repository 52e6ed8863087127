#pragma once

#include <string>

#include "formats/CFileMesh.h"

/// The bytes of a binary STL file of the triangles, each with its normal. Throws std::bad_alloc.
std::string StlOf(const CFileMesh& mesh, UpAxis up);
