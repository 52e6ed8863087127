#include "base/SavedNumber.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>
#include <ostream>
#include <string_view>
#include <system_error>

namespace {

constexpr int kDigits = 6;
// The largest error of six digits in proportion to the number.
constexpr double kRounding = 5e-6;

/// A number in decimal digits, and what is read back from them.
class CDecimal {
 public:
  CDecimal(double value, int digits) {
    m_pEnd =
        std::to_chars(m_acText.data(), m_acText.data() + m_acText.size(), value, std::chars_format::general, digits)
            .ptr;
    if (std::from_chars(m_acText.data(), m_pEnd, m_fValue).ec != std::errc())
      m_fValue = std::numeric_limits<double>::infinity();
  }
  double Value() const { return m_fValue; }
  std::string_view Text() const { return {m_acText.data(), m_pEnd}; }

 private:
  std::array<char, 32> m_acText{};
  const char* m_pEnd = nullptr;
  double m_fValue = 0.0;
};

}  // namespace

void WriteSavedNumber(std::ostream& out, double value, double tolerance) {
  if (!std::isfinite(value) || kRounding * std::abs(value) <= tolerance ||
      std::abs(CDecimal(value, kDigits).Value() - value) <= tolerance) {
    out << value;
    return;
  }
  int digits = kDigits + 1;
  while (digits < std::numeric_limits<double>::max_digits10 && CDecimal(value, digits).Value() != value) ++digits;
  out << CDecimal(value, digits).Text();
}
