#pragma once

#include <array>

#include "base/ExportProgress.h"

class CCntrCtrlList;
class CLattice;
class CTearCutter;
class CTearPatch;

/// Cuts a patch along all curves that tear, and along the ways that join their ends to other tears. `cutter` must be at
/// work on the triangles of `patch`. False, and not all is cut, where `steps` do not go on.
bool CutAlongCurves(CTearPatch& patch, CTearCutter& cutter, const CCntrCtrlList& curves, const CLattice& lattice,
                    const CExportSteps& steps = {});

/// How far a patch has to reach, in cells, for strips of a width beside its tears; that and the lengths of a cell along
/// both axes in model units, `cells` a side of the lattice. Without strips the width is 0.
int ReachOf(double width, const std::array<double, 2>& cell, int cells);
