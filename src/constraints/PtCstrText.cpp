#include "constraints/PtCstrText.h"

#include <cctype>
#include <istream>
#include <ostream>

#include "base/SavedNumber.h"
#include "constraints/CPtCstr.h"

void WritePtCstr(std::ostream& out, const CPtCstr& record, double tolerance) {
  for (const double number : {record.m_fX, record.m_fY, record.m_fZ}) {
    WriteSavedNumber(out, number, tolerance);
    out << '\t';
  }
  out << record.m_fP << '\t' << record.m_fQ << '\t' << record.m_uKind;
}

void ReadPtCstr(std::istream& in, CPtCstr& record) {
  in >> record.m_fX >> record.m_fY >> record.m_fZ >> record.m_fP >> record.m_fQ >> record.m_uKind;
  // A number that goes on after the kind is the first of the next record: one of this is missing.
  const int next = in.good() ? in.peek() : std::istream::traits_type::eof();
  if (next != std::istream::traits_type::eof() && std::isspace(next) == 0) in.setstate(std::ios_base::failbit);
  record.m_uState = 0;
}
