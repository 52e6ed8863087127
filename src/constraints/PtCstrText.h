#pragma once

#include <iosfwd>

struct CPtCstr;

/// The text form of a point constraint: x, y, z, p, q and kind, separated by tabs, without an end of line. State is not
/// part of it. x, y and z are kept to within `tolerance`; the others have six digits.
void WritePtCstr(std::ostream& out, const CPtCstr& record, double tolerance);
/// Reads it back, as far as the stream goes, and clears the state. The stream fails where no white space or end
/// follows.
void ReadPtCstr(std::istream& in, CPtCstr& record);
