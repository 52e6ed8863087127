#include "constraints/PtCstrText.h"

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
  record.m_uState = 0;
}
