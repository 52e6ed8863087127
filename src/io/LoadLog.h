#pragma once

#include <istream>
#include <ostream>

#include "base/Console.h"
#include "io/TextNumbers.h"

/// Begins a console line about the loading of a grid file.
inline std::ostream& LoadLog() { return Console() << "CGrid::Load\t\t"; }

/// Whether a record read since the last call is to be left out, which is logged, because a number of it is not finite.
inline bool IsRefused(std::istream& in, const char* what) {
  if (!TakeNonFinite(in)) return false;
  LoadLog() << "A " << what << " with a number that is not finite is left out\n";
  return true;
}
