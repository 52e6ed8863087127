#pragma once

#include "base/ExportProgress.h"
#include "exports/CFileMesh.h"
#include "mesh/CCleanMesh.h"

class CGrid;

/// The surface of a grid, and the walls of its tears where they are asked for, with normals: those of the surface are
/// smooth, those of walls are their own. Linear in the number of leaves. Not whole where it has been cancelled.
CFileMesh CleanFileMesh(const CGrid& grid, const CCleanMeshOptions& options, const CExportSteps& steps = {});

/// The same as a solid: the surface, the walls of its tears, walls along the border and a flat base `base` below the
/// lowest point. Every edge is shared by two triangles that run along it in opposite directions, judged by the
/// positions of their ends. Without normals and places in the picture. Not whole where it has been cancelled.
CFileMesh CleanSolid(const CGrid& grid, const CCleanMeshOptions& options, double base, const CExportSteps& steps = {});
