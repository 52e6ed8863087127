#pragma once

#include <istream>

/// Reading numbers that others have written: like the classic locale, but a number that is not finite, spelt out or
/// too large, does not end the reading of its record. It is read as 0 and remembered.

/// Gives the stream the classic locale and the reading above.
void PrepareToReadNumbers(std::istream& in);
/// Whether a number read since the last call was not finite.
bool TakeNonFinite(std::istream& in);

/// The next character that is no blank; 0 at the end of the text.
inline char ReadChar(std::istream& in) {
  char c = 0;
  in >> c;
  return c;
}
