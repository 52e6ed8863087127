#pragma once

#include <optional>
#include <span>
#include <string>

#include "exports/SurfaceExport.h"
#include "io/SaveTogether.h"

// What the writers of all formats for other programs do alike.

/// The mesh that the settings ask for.
CCleanMeshOptions MeshOptions(const CExportSettings& settings);

/// The parts of every export: making its mesh, making the bytes of its files, and writing them, which `SaveExport`
/// does; or, where bytes are made while they are written, the picture and all that.
CExportSteps MakingMesh(const CExportSettings& settings);
CExportSteps Encoding(const CExportSettings& settings);
CExportSteps EncodingPicture(const CExportSettings& settings);
CExportSteps Writing(const CExportSettings& settings);

/// The outcome of a surface that cannot be written.
CSaveOutcome NotFinite(const std::string& filename);
/// What is wrong with a mesh: it has been cancelled, or is not finite. Nothing where it may be written.
std::optional<CSaveOutcome> Refused(const CFileMesh& mesh, const std::string& filename,
                                    const CExportSettings& settings);
/// What is wrong with a picture that is to be shown, or the same.
std::optional<CSaveOutcome> Refused(ExportTexture texture, const std::string& filename,
                                    const CExportSettings& settings);

/// Writes the files of one export.
CSaveOutcome SaveExport(std::span<const CNewFile> files, const CExportSettings& settings);
