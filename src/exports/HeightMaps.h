#pragma once

#include <string>

#include "base/ExportProgress.h"
#include "exports/SurfaceSamples.h"

/// What the numbers of a height map stand for: height = offset + scale * number.
struct CHeightCode {
  double m_fOffset = 0.0;
  double m_fScale = 1.0;
};

/// The code that spreads the heights, which must be finite, over all numbers of 16 bits; a scale of 1 where all heights
/// are one.
CHeightCode HeightCodeOf(const CSurfaceSamples& samples);

// All are empty where they have been cancelled or there is not enough memory for them.

/// Heights as a grey PNG of 16 bits, top row first, with the code as remarks.
std::string HeightPngOf(const CSurfaceSamples& samples, const CHeightCode& code, const CExportSteps& steps);
/// Heights as a TIFF of 32-bit floats, top row first.
std::string HeightTiffOf(const CSurfaceSamples& samples, const CExportSteps& steps);
/// Heights as a portable float map, bottom row first, little endian.
std::string HeightPfmOf(const CSurfaceSamples& samples, const CExportSteps& steps);
/// Normals as a PNG of three bytes for each sample, top row first.
std::string NormalPngOf(const CSurfaceSamples& samples, const CExportSteps& steps);
