#pragma once

#include <iosfwd>

/// Writes a number with six significant digits where these keep it to within `tolerance`, with as many as are needed to
/// read the same number back where they do not. What `out` is in locale and format is the caller's.
void WriteSavedNumber(std::ostream& out, double value, double tolerance);
