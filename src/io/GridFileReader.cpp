// Reading a grid file, section by section.

#include <cmath>
#include <cstddef>
#include <istream>
#include <new>
#include <optional>
#include <sstream>
#include <string_view>
#include <utility>
#include <vector>

#include "base/Console.h"
#include "io/CSketchReader.h"
#include "io/GridFile.h"
#include "io/LoadLog.h"
#include "io/PlacedHeights.h"
#include "io/TextNumbers.h"
#include "model/CGrid.h"
#include "model/Globals.h"

namespace {

// Beyond this, heights could not be added and squared any more.
constexpr double kLargestHeight = 1e100;

double BytesOf(int maxLevel) { return CSurface::BytesOf(maxLevel) + CWantedSubdivisions::BytesOf(maxLevel); }

class CGridReader {
 public:
  CGridReader(std::istream& in, CGrid& grid) : m_In(in), m_Grid(grid), m_Head(in) {}
  GridFileState Read();

 private:
  bool ReadAhead();
  bool IsTooShort();
  GridFileState Abandon(GridFileState state);
  GridFileState Replace();
  bool TakeSketch();
  void Rebuild();
  void StartFresh(const CExtent& extent);

  void ReadSurface();
  void ReadHeights();
  void ReadOrder();
  bool ReadPlaces(std::vector<std::size_t>& places);
  std::optional<std::size_t> ReadPlace();
  void ReadLights();

  std::istream& m_In;
  CGrid& m_Grid;
  CSketchReader m_Head;
  std::ostringstream m_HeadLines;         ///< of what has been read ahead
  std::ostringstream m_SubdivisionLines;  ///< and of the subdivision alone
  std::vector<double> m_afHeights;        ///< as the text holds them
  bool m_bCountDiffers = false;           ///< there are not as many heights as unknowns
  bool m_bDamaged = false;
};

// The present model is given up only when there is something to take its place: all before the heights is read ahead,
// what the console says of that waits until it is due.
GridFileState CGridReader::Read() {
  if (!ReadAhead()) return Abandon(GridFileState::TooLarge);
  if (!m_Head.HasRectangle()) {
    Console() << m_HeadLines.view();
    LoadLog() << "Invalid format: attempting " << m_Head.Expected() << '\n';
    return Abandon(GridFileState::NoGridFile);
  }
  const int baseLevel = g_iBaseLevel;
  const int maxLevel = g_iMaxLevel;
  const CExtent extent = m_Head.Sketch().m_Extent;
  LoadLog() << "FreeAll()...\n";
  m_Grid.FreeAll();
  LoadLog() << "...FreeAll() complete\n";
  Console() << m_HeadLines.view();
  try {
    return Replace();
  } catch (const std::bad_alloc&) {
    LoadLog() << "The memory does not suffice\n";
    // There was room for these before.
    g_iBaseLevel = baseLevel;
    g_iMaxLevel = maxLevel;
    StartFresh(extent);
    return GridFileState::OutOfMemory;
  }
}

// Whether there is enough memory for what has been read and for the lattice that it asks for.
bool CGridReader::ReadAhead() {
  m_HeadLines.copyfmt(Console());
  m_SubdivisionLines.copyfmt(Console());
  try {
    PrepareToReadNumbers(m_In);
    const CConsoleRedirect toHead(m_HeadLines);
    m_Head.ReadHead();
    if (!m_Head.HasRectangle()) return true;
    if (m_Head.HasHead()) {
      if (IsTooShort()) return false;
      const CConsoleRedirect toSubdivision(m_SubdivisionLines);
      m_Head.ReadSubdivision();
    }
    m_Grid.Reserve(m_Head.Sketch().m_iMaxLevel);
  } catch (const std::bad_alloc&) {
    return false;
  }
  return true;
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
  const double needed = BytesOf(m_Head.Sketch().m_iMaxLevel);
  if (needed <= kHarmless || needed <= kMostPerByte * size) return false;
  std::string_view sections = "ZNE";
  for (char c = ReadChar(m_In); m_In && !sections.empty(); c = ReadChar(m_In)) {
    if (c == sections.front() || (c == 'I' && sections == "E")) sections.remove_prefix(1);
  }
  m_In.clear();
  m_In.seekg(here);
  return !sections.empty();
}

GridFileState CGridReader::Abandon(GridFileState state) {
  m_Grid.DropReserve();
  return state;
}

// The two steps in which the grid takes over what the text holds: the sketch, then heights, order and lights.
GridFileState CGridReader::Replace() {
  if (!m_Head.HasHead()) {
    LoadLog() << "Invalid format: attempting " << m_Head.Expected() << '\n';
    m_Grid.TakeOver(std::move(m_Head.Sketch()));
    Rebuild();
    return GridFileState::Invalid;
  }
  if (!TakeSketch()) {
    LoadLog() << "Invalid format: attempting " << m_Head.Expected() << '\n';
    StartFresh(m_Grid.Surface().Lattice().Extent());
    return GridFileState::Invalid;
  }
  if (m_Head.IsOldFormat()) {
    LoadLog() << "Old format detected.\n";
    Console() << "\t\t\tThe default base resolution level is set to 5\n"
              << "\t\t\tThe default max resolution level is set to 7\n"
              << "\t\t\tNo height field is loaded\n";
    m_Grid.Surface().Reconstruct();
  } else {
    ReadSurface();
  }
  return m_Head.IsDamaged() || m_bDamaged || m_bCountDiffers ? GridFileState::Damaged : GridFileState::Whole;
}

// Whether the subdivision is sound.
bool CGridReader::TakeSketch() {
  LoadLog() << "Initialize()...\n";
  m_Grid.TakeOver(std::move(m_Head.Sketch()));
  LoadLog() << "...Initialize() complete\n";
  LoadLog() << "Read the quad tree structure...\n";
  Console() << m_SubdivisionLines.view();
  if (m_Head.Expected() != nullptr) return false;
  LoadLog() << "... quad tree structure successfully read\n";
  LoadLog() << "Construction of matrixes + new order...\n";
  m_Grid.SetDiscMap();
  LoadLog() << "Matrixes succesfully created\n";
  return true;
}

void CGridReader::ReadSurface() {
  if (ReadChar(m_In) == 'Z') {
    ReadHeights();
  } else {
    m_Grid.Surface().Reconstruct();
  }
  if (ReadChar(m_In) == 'N') ReadOrder();
  const char c = ReadChar(m_In);
  Console() << "c = ";
  if (m_In) Console() << c;
  Console() << '\n';
  if (c == 'E') {
    LoadLog() << "No lighting is activated.\n";
    LoadLog() << "No high res version was saved\n";
  } else if (c == 'I') {
    ReadLights();
  } else {
    m_bDamaged = true;
  }
}

void CGridReader::ReadHeights() {
  const auto count = static_cast<std::size_t>(m_Grid.Surface().ActivePointCount());
  LoadLog() << "Reading the height field...\n";
  LoadLog() << "m_iNbActivePoints = " << count << '\n';
  for (double height = 0.0; (m_In >> std::ws).peek() != 'N' && m_In >> height;) {
    const bool usable = std::abs(height) <= kLargestHeight;
    m_afHeights.push_back(usable ? height : 0.0);
    m_bDamaged = m_bDamaged || !usable;
  }
  if (TakeNonFinite(m_In)) m_bDamaged = true;
  m_bCountDiffers = m_afHeights.size() != count;
  LoadLog() << "... Height field read\n";
  std::vector<double> heights = m_afHeights;
  heights.resize(count);
  m_Grid.Builder().SetWaveletMode(WaveletMode::New);
  LoadLog() << "Wavelet transformation to get the coefficients...\n";
  m_Grid.Builder().SetHeights(heights);
  LoadLog() << "... Wavelet transformation done\n";
  LoadLog() << "Copy the wavelet coefficients to the coefficient matrix (m_pfWaveCoefGrid)...\n";
}

// The order is that of the numbering just made, unless a curve has met other cells than before: its nodes were rounded
// when they were written.
void CGridReader::ReadOrder() {
  LoadLog() << "Skipping the current point order \n";
  Console() << "\t\t(reconstructed from the quad tree by BuildHNumerotation)\n";
  std::vector<std::size_t> places;
  if (!ReadPlaces(places) || places.size() != m_afHeights.size() || !HoldSubdivision(m_Grid, places)) m_bDamaged = true;
  const CPointOrder& order = m_Grid.Surface().Order();
  bool same = places.size() == order.Count();
  for (std::size_t k = 0; same && k < places.size(); ++k) same = places[k] == order.PointOf(k);
  if (same || places.size() != m_afHeights.size()) return;
  const std::optional<std::vector<double>> heights = HeightsByPlace(m_Grid, places, m_afHeights);
  m_bDamaged = m_bDamaged || !heights.has_value();
  if (!heights.has_value()) return;
  LoadLog() << "The point order has changed: the heights go by it\n";
  m_Grid.Builder().SetHeights(*heights);
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
  if (ReadChar(m_In) != '(' || !(m_In >> column) || ReadChar(m_In) != ',' || !(m_In >> row) || ReadChar(m_In) != ')')
    return {};
  const int side = m_Grid.Surface().Lattice().PointsPerSide();
  if (column < 0 || column >= side || row < 0 || row >= side) return {};
  return m_Grid.Surface().Lattice().Index(column, row);
}

void CGridReader::ReadLights() {
  LoadLog() << "Loading the light sources...\n";
  CLightSet removed;
  CLightSet added;
  m_In >> removed >> added;
  const bool sound = m_In && !IsRefused(m_In, "light source");
  m_bDamaged = m_bDamaged || !sound;
  if (!sound) return;
  m_Grid.Relighting().SetLights(removed, added);
  LoadLog() << "...Lightsources loaded.\n";
}

// A new grid with the constraints that it has taken over.
void CGridReader::StartFresh(const CExtent& extent) {
  m_Grid.Initialize(CSketchReader::kStartLevel, true, extent.x0, extent.y0, extent.x1, extent.y1);
  Rebuild();
}

void CGridReader::Rebuild() {
  m_Grid.SetDiscMap();
  m_Grid.Surface().Reconstruct();
}

}  // namespace

GridFileState ReadGrid(std::istream& in, CGrid& grid) { return CGridReader(in, grid).Read(); }
