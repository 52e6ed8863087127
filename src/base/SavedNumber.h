#pragma once

#include <iosfwd>

/// Writes a number with six significant digits where these keep it to within `tolerance`, with as many as are needed to
/// read the same number back where they do not. Locale and format of `out` are up to the caller.
void WriteSavedNumber(std::ostream& out, double value, double tolerance);
