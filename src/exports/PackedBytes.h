#pragma once

#include "exports/SurfaceExport.h"

// About how many bytes pictures take as PNG, judged by some bands of rows as they would be written: making the whole of
// a large one takes seconds. To the byte where there are few rows.

/// A map of heights, of normals, in the samples of the settings; 0 where it cannot be written.
double PackedHeightBytes(const CGrid& grid, const CExportSettings& settings);
double PackedNormalBytes(const CGrid& grid, const CExportSettings& settings);

/// The photograph of the settings without its removed lights, or in the added ones; 0 where it cannot be had.
double PackedLitBytes(const CGrid& grid, const CExportSettings& settings, ExportTexture which);
