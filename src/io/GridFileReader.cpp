// Reading a grid file, section by section.

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <istream>
#include <new>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Console.h"
#include "constraints/CCntrCtrlList.h"
#include "constraints/CPtCstrList.h"
#include "constraints/PtCstrText.h"
#include "io/GridFile.h"
#include "io/PlacedHeights.h"
#include "io/TextNumbers.h"
#include "model/CGrid.h"
#include "model/Globals.h"
#include "quadtree/CSubdivisionBits.h"

namespace {

// Beyond this, heights could not be added and squared any more.
constexpr double kLargestHeight = 1e100;

// What the tree is initialised with, whatever base level the file names: that one is for new grids.
constexpr int kStartLevel = 5;

std::ostream& Log() { return Console() << "CGrid::Load\t\t"; }

class CGridReader {
 public:
  CGridReader(std::istream& in, CGrid& grid) : m_In(in), m_Grid(grid) {}
  GridFileState Read();

 private:
  // What was expected where something else stands; null where all is well. So it is for the sections below.
  using Expected = const char*;

  Expected ReadHead();
  Expected ReadRectangle();
  Expected ReadConstraints();
  Expected ReadLevels();
  Expected ReadSubdivisionRecord();
  template <typename ReadRecord>
  Expected ReadList(int& header, Expected expected, ReadRecord readRecord);
  bool ReadPoint();
  bool ReadCurve();
  bool IsRefused(const char* what);

  bool IsTooShort();
  bool ReadAhead();
  GridFileState Abandon(GridFileState state);
  GridFileState Replace();
  void ReadSurface();
  void ReadHeights();
  void ReadOrder();
  bool ReadPlaces(std::vector<std::size_t>& places);
  std::optional<std::size_t> ReadPlace();
  void ReadLights();
  void StartFresh();

  // The next character that is no blank; 0 at the end of the text.
  char ReadChar() {
    char c = 0;
    m_In >> c;
    return c;
  }

  std::istream& m_In;
  CGrid& m_Grid;
  std::optional<CExtent> m_Extent;
  Expected m_pExpected = nullptr;  ///< by what has been read ahead
  std::ostringstream m_Lines;      ///< of what has been read ahead
  CPtCstrList m_Points;
  CCntrCtrlList m_Curves;
  CListHeaders m_Headers;
  int m_iBaseLevel = kDefaultBaseLevel;
  int m_iMaxLevel = kDefaultMaxLevel;
  std::vector<double> m_afHeights;  ///< as the text holds them
  bool m_bOldFormat = false;
  bool m_bCountDiffers = false;  ///< there are not as many heights as unknowns
  bool m_bDamaged = false;
};

// The present model is given up only when there is something to take its place: rectangle, constraints and levels are
// read ahead, what the console says of them waits until it is due.
GridFileState CGridReader::Read() {
  m_Lines.copyfmt(Console());
  if (!ReadAhead()) return Abandon(GridFileState::TooLarge);
  if (!m_Extent.has_value()) {
    Console() << m_Lines.view();
    Log() << "Invalid format: attempting " << m_pExpected << '\n';
    return Abandon(GridFileState::NoGridFile);
  }
  const int baseLevel = g_iBaseLevel;
  const int maxLevel = g_iMaxLevel;
  Log() << "FreeAll()...\n";
  m_Grid.FreeAll();
  Log() << "...FreeAll() complete\n";
  Console() << m_Lines.view();
  try {
    return Replace();
  } catch (const std::bad_alloc&) {
    Log() << "The memory does not suffice\n";
    // These have had room before.
    g_iBaseLevel = baseLevel;
    g_iMaxLevel = maxLevel;
    StartFresh();
    return GridFileState::OutOfMemory;
  }
}

// Whether there is the memory for what has been read and for the lattice that it asks for.
bool CGridReader::ReadAhead() {
  const ConsoleRedirect redirect(m_Lines);
  try {
    PrepareToReadNumbers(m_In);
    m_pExpected = ReadRectangle();
    if (m_pExpected != nullptr) return true;
    m_pExpected = ReadHead();
    if (m_pExpected == nullptr && IsTooShort()) return false;
    m_Grid.Reserve(m_pExpected == nullptr ? m_iMaxLevel : g_iMaxLevel);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
}

GridFileState CGridReader::Abandon(GridFileState state) {
  m_Grid.DropReserve();
  return state;
}

// Whether the lattice would take far more memory than the file has bytes, and the file does not even hold all sections:
// a whole one is what this program itself may have saved of a coarse surface.
bool CGridReader::IsTooShort() {
  constexpr double kHarmless = 64.0 * (1 << 20);
  constexpr double kMostPerByte = 16.0;
  const std::istream::pos_type here = m_In.tellg();
  m_In.seekg(0, std::ios::end);
  const auto size = static_cast<double>(static_cast<std::streamoff>(m_In.tellg()));
  m_In.seekg(here);
  const double needed = CGrid::BytesOf(m_iMaxLevel);
  if (needed <= kHarmless || needed <= kMostPerByte * size) return false;
  std::string_view sections = "ZNE";
  for (char c = ReadChar(); m_In && !sections.empty(); c = ReadChar()) {
    if (c == sections.front() || (c == 'I' && sections == "E")) sections.remove_prefix(1);
  }
  m_In.clear();
  m_In.seekg(here);
  return !sections.empty();
}

GridFileState CGridReader::Replace() {
  m_Grid.PointConstraints() = std::move(m_Points);
  m_Grid.Curves() = std::move(m_Curves);
  m_Grid.ListHeaders() = m_Headers;
  if (m_pExpected == nullptr) {
    g_iBaseLevel = m_iBaseLevel;
    g_iMaxLevel = m_iMaxLevel;
    m_pExpected = ReadSubdivisionRecord();
  }
  if (m_pExpected != nullptr) {
    Log() << "Invalid format: attempting " << m_pExpected << '\n';
    StartFresh();
    return GridFileState::Invalid;
  }
  if (m_bOldFormat) {
    Log() << "Old format detected.\n";
    Console() << "\t\t\tThe default base resolution level is set to 5\n"
              << "\t\t\tThe default max resolution level is set to 7\n"
              << "\t\t\tNo height field is loaded\n";
    m_Grid.ReconstructSurface();
  } else {
    ReadSurface();
  }
  return m_bDamaged || m_bCountDiffers ? GridFileState::Damaged : GridFileState::Whole;
}

CGridReader::Expected CGridReader::ReadHead() {
  if (const Expected expected = ReadConstraints(); expected != nullptr) return expected;
  return ReadLevels();
}

CGridReader::Expected CGridReader::ReadRectangle() {
  CExtent e;
  Log() << "Loading the grid dimentions...\n";
  m_In >> e.x0 >> e.y0 >> e.x1 >> e.y1;
  const bool finite = !TakeNonFinite(m_In);
  if (!m_In || !finite || !IsUsable(e)) return "a rectangle of finite numbers, x0 < x1 and y0 < y1";
  Log() << "...grid dimentions loaded\n";
  Console() << "x0 : " << e.x0 << ", y0 : " << e.y0 << ", x1 : " << e.x1 << ", y1 : " << e.y1 << '\n';
  m_Extent = e;
  return nullptr;
}

CGridReader::Expected CGridReader::ReadConstraints() {
  CListHeaders& headers = m_Headers;
  Log() << "Loading constraints...\n";
  Console() << "toto2\n";
  Expected expected =
      ReadList(headers.m_iPoints, "as many point constraints as announced", [this] { return ReadPoint(); });
  if (expected == nullptr)
    expected = ReadList(headers.m_iCurves, "as many curve constraints as announced", [this] { return ReadCurve(); });
  if (expected == nullptr) expected = ReadList(headers.m_iRegions, "no region constraints", [] { return false; });
  if (expected != nullptr) return expected;
  // The parallels of the curves are recomputed with the discontinuity map, which knows the new lattice.
  Console() << "toto3\n";
  Log() << "...Loading constraints complete\n";
  return nullptr;
}

template <typename ReadRecord>
CGridReader::Expected CGridReader::ReadList(int& header, Expected expected, ReadRecord readRecord) {
  long long count = 0;
  m_In >> header >> count;
  if (!m_In || count < 0) return expected;
  for (; count > 0; --count) {
    if (!readRecord()) return expected;
  }
  return nullptr;
}

bool CGridReader::IsRefused(const char* what) {
  if (!TakeNonFinite(m_In)) return false;
  Log() << "A " << what << " with a number that is not finite is left out\n";
  m_bDamaged = true;
  return true;
}

bool CGridReader::ReadPoint() {
  CPtCstr record;
  ReadPtCstr(m_In, record);
  if (!m_In) return false;
  if (!IsRefused("point constraint")) m_Points.Add(record);
  return true;
}

bool CGridReader::ReadCurve() {
  CCntrCtrl& curve = m_Curves.Add();
  curve.Read(m_In);
  const bool complete = !m_In.fail();
  if (complete && !IsRefused("curve constraint")) return true;
  curve.Nodes().clear();
  m_Curves.RemoveDegenerate();
  return complete;
}

CGridReader::Expected CGridReader::ReadLevels() {
  const char c = ReadChar();
  m_bOldFormat = c == 'Q';
  if (m_bOldFormat) return nullptr;
  if (c != 'L') return "'Q' or 'L' after region constraints";
  Log() << "Read the max and current resolution\n";
  int base = 0;
  int max = 0;
  m_In >> base >> max;
  if (!m_In || base < CLattice::kMinLevel || max > CLattice::kMaxLevel || base > max)
    return "levels from 1 to 10, the base level not above the max level";
  m_iBaseLevel = base;
  m_iMaxLevel = max;
  return ReadChar() == 'T' ? nullptr : "'T' after levels";
}

CGridReader::Expected CGridReader::ReadSubdivisionRecord() {
  g_bHighRes = 0;
  Log() << "Initialize()...\n";
  m_Grid.Initialize(kStartLevel, true, m_Extent->x0, m_Extent->y0, m_Extent->x1, m_Extent->y1);
  Log() << "...Initialize() complete\n";
  Log() << "Read the quad tree structure...\n";
  CSubdivisionBits bits;
  if (!bits.Read(m_In, m_Grid.MaxLevel())) {
    Console() << '\n';
    return "a quad tree no deeper than the max level";
  }
  bits.ApplyTo(m_Grid.Subdivision());
  Log() << "... quad tree structure successfully read\n";
  Log() << "Construction of matrixes + new order...\n";
  m_Grid.SetDiscMap();
  Log() << "Matrixes succesfully created\n";
  return nullptr;
}

void CGridReader::ReadSurface() {
  if (ReadChar() == 'Z') {
    ReadHeights();
  } else {
    m_Grid.ReconstructSurface();
  }
  if (ReadChar() == 'N') ReadOrder();
  const char c = ReadChar();
  Console() << "c = ";
  if (m_In) Console() << c;
  Console() << '\n';
  if (c == 'E') {
    Log() << "No lighting is activated.\n";
    Log() << "No high res version was saved\n";
  } else if (c == 'I') {
    ReadLights();
  } else {
    m_bDamaged = true;
  }
}

void CGridReader::ReadHeights() {
  const auto count = static_cast<std::size_t>(m_Grid.ActivePointCount());
  Log() << "Reading the height field...\n";
  Log() << "m_iNbActivePoints = " << count << '\n';
  for (double height = 0.0; (m_In >> std::ws).peek() != 'N' && m_In >> height;) {
    const bool usable = std::abs(height) <= kLargestHeight;
    m_afHeights.push_back(usable ? height : 0.0);
    m_bDamaged = m_bDamaged || !usable;
  }
  if (TakeNonFinite(m_In)) m_bDamaged = true;
  m_bCountDiffers = m_afHeights.size() != count;
  Log() << "... Height field read\n";
  std::vector<double> heights = m_afHeights;
  heights.resize(count);
  m_Grid.SetWaveletMode(WaveletMode::New);
  Log() << "Wavelet transformation to get the coefficients...\n";
  m_Grid.SetHeights(heights);
  Log() << "... Wavelet transformation done\n";
  Log() << "Copy the wavelet coefficients to the coefficient matrix (m_pfWaveCoefGrid)...\n";
}

// The order is that of the numbering just made, unless a curve has met other cells than before: its nodes were rounded
// when they were written.
void CGridReader::ReadOrder() {
  Log() << "Skipping the current point order \n";
  Console() << "\t\t(reconstructed from the quad tree by BuildHNumerotation)\n";
  std::vector<std::size_t> places;
  if (!ReadPlaces(places) || places.size() != m_afHeights.size() || !HoldSubdivision(m_Grid, places)) m_bDamaged = true;
  const CPointOrder& order = m_Grid.Order();
  bool same = places.size() == order.Count();
  for (std::size_t k = 0; same && k < places.size(); ++k) same = places[k] == order.PointOf(k);
  if (same || places.size() != m_afHeights.size()) return;
  const std::optional<std::vector<double>> heights = HeightsByPlace(m_Grid, places, m_afHeights);
  m_bDamaged = m_bDamaged || !heights.has_value();
  if (!heights.has_value()) return;
  Log() << "The point order has changed: the heights go by it\n";
  m_Grid.SetHeights(*heights);
  m_bCountDiffers = false;
}

bool CGridReader::ReadPlaces(std::vector<std::size_t>& places) {
  while ((m_In >> std::ws).peek() == '(') {
    const std::optional<std::size_t> place = ReadPlace();
    if (!place.has_value()) return false;
    places.push_back(*place);
  }
  return true;
}

std::optional<std::size_t> CGridReader::ReadPlace() {
  int column = 0;
  int row = 0;
  if (ReadChar() != '(' || !(m_In >> column) || ReadChar() != ',' || !(m_In >> row) || ReadChar() != ')') return {};
  const int side = m_Grid.PointsPerSide();
  if (column < 0 || column >= side || row < 0 || row >= side) return {};
  return m_Grid.Lattice().Index(column, row);
}

void CGridReader::ReadLights() {
  Log() << "Loading the light sources...\n";
  CLightSet removed;
  CLightSet added;
  m_In >> removed >> added;
  m_bDamaged = m_bDamaged || !m_In;
  if (!m_In || IsRefused("light source")) return;
  m_Grid.Relighting().RemovedLights() = removed;
  m_Grid.Relighting().AddedLights() = added;
  Log() << "...Lightsources loaded.\n";
}

void CGridReader::StartFresh() {
  const CExtent e = m_Extent.value_or(CExtent{});
  g_bHighRes = 0;
  m_Grid.Initialize(kStartLevel, true, e.x0, e.y0, e.x1, e.y1);
  m_Grid.SetDiscMap();
  m_Grid.ReconstructSurface();
}

}  // namespace

GridFileState ReadGrid(std::istream& in, CGrid& grid) { return CGridReader(in, grid).Read(); }
