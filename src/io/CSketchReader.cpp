#include "io/CSketchReader.h"

#include <cstdint>
#include <istream>

#include "base/Console.h"
#include "constraints/CPtCstr.h"
#include "constraints/PtCstrText.h"
#include "io/LoadLog.h"
#include "io/TextNumbers.h"

namespace {

bool IsKnownKind(std::uint32_t kind) {
  constexpr std::uint32_t kWanted = PtCstrKind::kPosition | PtCstrKind::kNormal;
  return (kind & kWanted) != 0 && (kind & ~(kWanted | PtCstrKind::kDisabled)) == 0;
}

}  // namespace

CSketchReader::CSketchReader(std::istream& in) : m_In(in) {
  m_Sketch.m_iBaseLevel = kStartLevel;
  m_Sketch.m_iNewBaseLevel = g_iBaseLevel;
  m_Sketch.m_iMaxLevel = g_iMaxLevel;
}

bool CSketchReader::Miss(const char* expected) {
  m_pExpected = expected;
  return false;
}

void CSketchReader::ReadHead() {
  m_bRectangle = ReadRectangle();
  m_bHead = m_bRectangle && ReadConstraints() && ReadLevels();
}

bool CSketchReader::ReadRectangle() {
  CExtent e;
  LoadLog() << "Loading the grid dimentions...\n";
  m_In >> e.x0 >> e.y0 >> e.x1 >> e.y1;
  const bool finite = !TakeNonFinite(m_In);
  if (!m_In || !finite || !IsUsable(e)) return Miss("a rectangle of finite numbers, x0 < x1 and y0 < y1");
  LoadLog() << "...grid dimentions loaded\n";
  Console() << "x0 : " << e.x0 << ", y0 : " << e.y0 << ", x1 : " << e.x1 << ", y1 : " << e.y1 << '\n';
  m_Sketch.m_Extent = e;
  return true;
}

bool CSketchReader::ReadConstraints() {
  CListHeaders& headers = m_Sketch.m_ListHeaders;
  LoadLog() << "Loading constraints...\n";
  Console() << "toto2\n";
  if (!ReadList(headers.m_iPoints, [this] { return ReadPoint(); }))
    return Miss("as many point constraints as announced");
  if (!ReadList(headers.m_iCurves, [this] { return ReadCurve(); }))
    return Miss("as many curve constraints as announced");
  if (!ReadList(headers.m_iRegions, [] { return false; })) return Miss("no region constraints");
  // The parallels of the curves are recomputed with the discontinuity map, which knows the new lattice.
  Console() << "toto3\n";
  LoadLog() << "...Loading constraints complete\n";
  return true;
}

template <typename ReadRecord>
bool CSketchReader::ReadList(int& header, ReadRecord readRecord) {
  long long count = 0;
  m_In >> header >> count;
  if (!m_In || count < 0) return false;
  for (; count > 0; --count) {
    if (!readRecord()) return false;
  }
  return true;
}

bool CSketchReader::ReadPoint() {
  CPtCstr record;
  ReadPtCstr(m_In, record);
  if (!m_In) return false;
  if (IsRefused(m_In, "point constraint")) {
    m_bDamaged = true;
  } else if (!IsKnownKind(record.m_uKind)) {
    m_bDamaged = true;
    LoadLog() << "A point constraint of an unknown kind is left out\n";
  } else {
    m_Sketch.m_Points.Add(record);
  }
  return true;
}

bool CSketchReader::ReadCurve() {
  CCntrCtrl& curve = m_Sketch.m_Curves.Add();
  curve.Read(m_In);
  const bool complete = !m_In.fail();
  const bool refused = complete && IsRefused(m_In, "curve constraint");
  if (complete && !refused) return true;
  m_bDamaged = m_bDamaged || refused;
  curve.Nodes().clear();
  m_Sketch.m_Curves.RemoveDegenerate();
  return complete;
}

bool CSketchReader::ReadLevels() {
  const char c = ReadChar(m_In);
  m_bOldFormat = c == 'Q';
  if (!m_bOldFormat && c != 'L') return Miss("'Q' or 'L' after region constraints");
  int base = kDefaultBaseLevel;
  int max = kDefaultMaxLevel;
  if (!m_bOldFormat) {
    LoadLog() << "Read the max and current resolution\n";
    m_In >> base >> max;
    if (!m_In || base < CLattice::kMinLevel || max > CLattice::kMaxLevel || base > max)
      return Miss("levels from 1 to 10, the base level not above the max level");
    if (ReadChar(m_In) != 'T') return Miss("'T' after levels");
  }
  m_Sketch.m_iNewBaseLevel = base;
  m_Sketch.m_iMaxLevel = max;
  return true;
}

void CSketchReader::ReadSubdivision() {
  if (m_Sketch.m_aSubdivisions.front().Read(m_In, m_Sketch.m_iMaxLevel)) return;
  Console() << '\n';
  Miss("a quad tree no deeper than the max level");
}
