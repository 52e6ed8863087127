#pragma once

#include <string>
#include <vector>

#include "exports/SurfaceExport.h"

// The writers of the formats that hold the surface as a picture, for the table of SurfaceExport.cpp. Rows run from the
// top, as in every picture, but for the portable float map, whose rows run from the bottom: in any reader the
// photograph's upper side is at the top.

/// The mesh that maps are sampled from.
CFileMesh OpenMesh(const CGrid& grid, const CExportSettings& settings);
/// The samples of a map: those of the settings, or the points of the lattice.
CSampleGrid SamplesOf(const CGrid& grid, const CExportSettings& settings);

/// Heights as a PNG of 16 bits, from 0 for the lowest to 65535 for the highest, and the text beside it that says what
/// they stand for, which is in remarks of the PNG as well.
CSaveOutcome WriteHeightPng(const CGrid& grid, const std::string& filename, const CExportSettings& settings);
/// The text that lies beside it.
std::vector<std::string> CompanionsOfHeightPng(const std::string& filename, const CExportSettings& settings);

/// Heights as 32-bit floats: a TIFF, a portable float map.
CSaveOutcome WriteHeightTiff(const CGrid& grid, const std::string& filename, const CExportSettings& settings);
CSaveOutcome WriteHeightPfm(const CGrid& grid, const std::string& filename, const CExportSettings& settings);

/// The directions of the surface as the colours of a PNG.
CSaveOutcome WriteNormalMap(const CGrid& grid, const std::string& filename, const CExportSettings& settings);

/// The photograph without its removed lights, and in the added ones, as a PNG of its size.
CSaveOutcome WriteAlbedo(const CGrid& grid, const std::string& filename, const CExportSettings& settings);
CSaveOutcome WriteRelit(const CGrid& grid, const std::string& filename, const CExportSettings& settings);
