#pragma once

#include <span>

class CCompressedRows;

/// Replaces the right-hand sides d of constraint rows C by the nearest that some surface satisfies, both seen
/// multiplied by the diagonal matrix R: least squares by conjugate gradients [HestenesStiefel1952]. Targets that do not
/// contradict each other stay as they are, to the last bit; so do those of rows so close to each other that the search
/// does not end.
void MakeConsistent(const CCompressedRows& rows, std::span<const double> scale, std::span<double> targets);
