#include "io/TextNumbers.h"

#include <cmath>
#include <locale>
#include <utility>

namespace {

// Where a stream remembers that a number was not finite.
int NonFiniteIndex() {
  static const int index = std::ios_base::xalloc();
  return index;
}

bool IsLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z'); }

class CTolerantNumbers : public std::num_get<char> {
 public:
  /// Locales that use it do not own it.
  CTolerantNumbers() : std::num_get<char>(1) {}

 protected:
  iter_type do_get(iter_type in, iter_type end, std::ios_base& stream, std::ios_base::iostate& state,
                   double& value) const override {
    const bool hasSign = in != end && (*in == '-' || *in == '+');
    const bool negative = hasSign && *in == '-';
    if (hasSign) ++in;
    if (in != end && IsLetter(*in)) return SkipWord(in, end, stream, state, value);
    if (in == end || *in == '-' || *in == '+') {
      state |= std::ios_base::failbit;
      return in;
    }
    in = std::num_get<char>::do_get(in, end, stream, state, value);
    // Out of range is reported by the largest number.
    if ((state & std::ios_base::failbit) != 0 && value != 0.0) {
      state &= ~std::ios_base::failbit;
      stream.iword(NonFiniteIndex()) = 1;
      value = 0.0;
    }
    if (negative) value = -value;
    return in;
  }

 private:
  // "nan", "inf" and "infinity" in any case; another word is no number.
  static iter_type SkipWord(iter_type in, iter_type end, std::ios_base& stream, std::ios_base::iostate& state,
                            double& value) {
    value = 0.0;
    if (*in != 'n' && *in != 'N' && *in != 'i' && *in != 'I') {
      state |= std::ios_base::failbit;
      return in;
    }
    while (in != end && IsLetter(*in)) ++in;
    if (in == end) state |= std::ios_base::eofbit;
    stream.iword(NonFiniteIndex()) = 1;
    return in;
  }
};

}  // namespace

// One object for all streams: a locale that could not be made would lose one of its own.
void PrepareToReadNumbers(std::istream& in) {
  static CTolerantNumbers numbers;
  in.imbue(std::locale(std::locale::classic(), &numbers));
}

bool TakeNonFinite(std::istream& in) { return std::exchange(in.iword(NonFiniteIndex()), 0) != 0; }
