#include "projects/ProjectFile.h"

#include <algorithm>
#include <array>
#include <bit>
#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <new>
#include <sstream>
#include <string_view>
#include <utility>

#include "codecs/PictureFormats.h"
#include "io/BinaryNumbers.h"
#include "io/CFileReplacement.h"
#include "io/RegularFile.h"
#include "projects/CZipReader.h"
#include "projects/ProjectDocument.h"
#include "projects/SketchBytes.h"
#include "projects/ZipWriter.h"

namespace {

// The names of the members.
namespace Member {
constexpr const char* kDocument = "document.json";
constexpr const char* kPoints = "points";
constexpr const char* kCurves = "curves";
constexpr const char* kCurveInProgress = "curve_in_progress";
constexpr const char* kSubdivision = "subdivision";
constexpr const char* kOtherSubdivision = "other_subdivision";
constexpr const char* kHeights = "heights";
constexpr const char* kOtherHeights = "other_heights";
constexpr const char* kMultipliers = "multipliers";
constexpr const char* kTargets = "targets";
constexpr const char* kRecording = "recording";
constexpr const char* kGrid = "model.grid";
constexpr const char* kReferenceMap = "reference_map";
}  // namespace Member

constexpr std::size_t kMostText = std::size_t{1} << 20;
// A member may unpack to this much, or to so many bytes for each that the whole file has, and no more.
constexpr std::size_t kHarmlessBytes = std::size_t{64} << 20;
constexpr std::size_t kMostPerFileByte = 16;
// Beyond this the transforms would leave the finite numbers; grid files know the same bound.
constexpr double kLargestHeight = 1e100;
constexpr int kFrameNumbers = 11;

std::string BytesOfNumbers(const std::vector<double>& numbers) {
  CByteWriter out;
  out.PutAll(numbers);
  return out.Take();
}

// As they were read: whole numbers of 8 or 16 bits, or floats, values that are no numbers included.
std::string BytesOfMap(const CDepthMap& map) {
  CByteWriter out;
  for (const float value : map.Values()) {
    if (map.Bits() == 8) {
      out.Put(static_cast<std::uint8_t>(value));
    } else if (map.Bits() == 16) {
      out.Put(static_cast<std::uint16_t>(value));
    } else {
      out.Put(std::bit_cast<std::uint32_t>(value));
    }
  }
  return out.Take();
}

float TakeValue(CByteReader& in, int bits) {
  if (bits == 8) return in.Get<std::uint8_t>();
  return bits == 16 ? in.Get<std::uint16_t>() : std::bit_cast<float>(in.Get<std::uint32_t>());
}

std::string BytesOfRecording(const std::vector<CProjectFrame>& frames) {
  CByteWriter out;
  for (const CProjectFrame& frame : frames) {
    for (const Vector3& v : {frame.m_Target, frame.m_Eye, frame.m_Up}) out.PutAll(std::array{v.x, v.y, v.z});
    out.Put(frame.m_fHalfSize);
    out.Put(frame.m_fSeconds);
  }
  return out.Take();
}

std::string GridText(const CProject& project) {
  std::ostringstream out;
  out.imbue(std::locale::classic());
  const CDocument& document = project.m_Model.m_Document;
  WriteGrid(out, document.m_Sketch, project.m_Heights);
  WriteLights(out, document.m_RemovedLights, document.m_AddedLights);
  return std::move(out).str();
}

// Nobody need guess from the bytes what opens them.
std::string PhotographName(const CProjectPicture& picture) {
  if (picture.m_pBytes == nullptr) return {};
  return std::string("photograph") + SuffixOfPicture(*picture.m_pBytes);
}

/// Reads the members of an archive into a project.
class CProjectReader {
 public:
  explicit CProjectReader(const std::string& filename) : m_Zip(filename) {
    std::error_code error;
    const std::uintmax_t size = std::filesystem::file_size(filename, error);
    if (!error) m_uSize = static_cast<std::size_t>(size);
  }

  const CZipReader& Zip() const { return m_Zip; }
  CDocumentText ReadDocument() const {
    const std::optional<std::string> text = m_Zip.Read(Member::kDocument, kMostText);
    return text.has_value() ? ReadDocumentText(*text) : CDocumentText{};
  }
  /// The first member that is missing or not as it must be; null where all are sound.
  const char* ReadMembers(CDocumentText& document) const;

 private:
  std::optional<std::string> Read(const char* name) const;
  std::string ReadList(const char* name) const;
  bool ReadNumbers(const char* name, std::vector<double>& numbers) const;
  const char* ReadSketch(CSketch& sketch) const;
  const char* ReadSurface(CModelState& model) const;
  const char* ReadSolver(CModelState& model) const;
  bool ReadRecording(std::vector<CProjectFrame>& frames) const;
  bool ReadReference(CDocumentText& document) const;

  CZipReader m_Zip;
  std::size_t m_uSize = 0;
};

std::optional<std::string> CProjectReader::Read(const char* name) const {
  return m_Zip.Read(name, std::max(kHarmlessBytes, kMostPerFileByte * m_uSize));
}

// None of these is without a byte, so that what cannot be read is as bad as none.
std::string CProjectReader::ReadList(const char* name) const { return Read(name).value_or(std::string()); }

bool CProjectReader::ReadNumbers(const char* name, std::vector<double>& numbers) const {
  const std::optional<std::string> bytes = Read(name);
  if (!bytes.has_value()) return false;
  CByteReader in(*bytes);
  numbers.resize(bytes->size() / sizeof(double));
  for (double& number : numbers) number = in.Get<double>();
  return in.IsWhole();
}

const char* CProjectReader::ReadSketch(CSketch& sketch) const {
  if (!ReadBytes(ReadList(Member::kPoints), sketch.m_Points)) return Member::kPoints;
  if (!ReadBytes(ReadList(Member::kCurves), sketch.m_Curves)) return Member::kCurves;
  if (!ReadBytes(ReadList(Member::kCurveInProgress), sketch.m_PendingCurve)) return Member::kCurveInProgress;
  const int level = sketch.m_iMaxLevel;
  if (!ReadBytes(ReadList(Member::kSubdivision), level, sketch.m_aSubdivisions.front())) return Member::kSubdivision;
  if (!ReadBytes(ReadList(Member::kOtherSubdivision), level, sketch.m_aSubdivisions.back()))
    return Member::kOtherSubdivision;
  return nullptr;
}

const char* CProjectReader::ReadSurface(CModelState& model) const {
  CSurfaceState surface = *model.m_pSurface;
  const std::size_t side = (std::size_t{1} << model.m_Document.m_Sketch.m_iMaxLevel) + 1;
  const auto isUsable = [](double height) { return std::abs(height) <= kLargestHeight; };
  for (const auto& [name, heights] : {std::pair(Member::kHeights, &surface.m_afHeights),
                                      std::pair(Member::kOtherHeights, &surface.m_afOtherHeights)}) {
    if (!ReadNumbers(name, *heights) || heights->size() != side * side || !std::ranges::all_of(*heights, isUsable))
      return name;
  }
  model.m_pSurface = std::make_shared<const CSurfaceState>(std::move(surface));
  return nullptr;
}

const char* CProjectReader::ReadSolver(CModelState& model) const {
  CSolverState solver = *model.m_pSolver;
  if (!ReadNumbers(Member::kMultipliers, solver.m_afMultipliers)) return Member::kMultipliers;
  if (!ReadNumbers(Member::kTargets, solver.m_afTargets)) return Member::kTargets;
  model.m_pSolver = std::make_shared<const CSolverState>(std::move(solver));
  return nullptr;
}

bool CProjectReader::ReadRecording(std::vector<CProjectFrame>& frames) const {
  std::vector<double> numbers;
  if (!ReadNumbers(Member::kRecording, numbers) || numbers.size() % kFrameNumbers != 0) return false;
  for (auto n = numbers.begin(); n != numbers.end(); n += kFrameNumbers)
    frames.push_back({{n[0], n[1], n[2]}, {n[3], n[4], n[5]}, {n[6], n[7], n[8]}, n[9], n[10]});
  return true;
}

bool CProjectReader::ReadReference(CDocumentText& document) const {
  const auto width = static_cast<std::size_t>(document.m_iReferenceWidth);
  const std::size_t count = width * static_cast<std::size_t>(document.m_iReferenceHeight);
  // It is never packed, either.
  const std::optional<std::string> bytes = m_Zip.Read(Member::kReferenceMap, m_uSize);
  const int bits = document.m_iReferenceBits;
  if (!bytes.has_value() || bytes->size() != count * static_cast<std::size_t>(bits / 8)) return false;
  CByteReader in(*bytes);
  std::vector<float> values(count);
  for (float& value : values) value = TakeValue(in, bits);
  CReference& reference = document.m_Project.m_Model.m_Document.m_Sketch.m_Reference;
  reference.m_pMap = std::make_shared<const CDepthMap>(document.m_iReferenceWidth, document.m_iReferenceHeight, bits,
                                                       std::move(values));
  return true;
}

const char* CProjectReader::ReadMembers(CDocumentText& document) const {
  CProject& project = document.m_Project;
  if (const char* bad = ReadSketch(project.m_Model.m_Document.m_Sketch)) return bad;
  if (const char* bad = ReadSurface(project.m_Model)) return bad;
  if (const char* bad = ReadSolver(project.m_Model)) return bad;
  if (!ReadRecording(project.m_aRecording)) return Member::kRecording;
  if (document.m_iReferenceWidth > 0 && !ReadReference(document)) return Member::kReferenceMap;
  if (document.m_Photograph.empty()) return nullptr;
  // It is never packed, and so cannot be larger than the file.
  std::optional<std::string> photograph = m_Zip.Read(document.m_Photograph, m_uSize);
  if (!photograph.has_value()) return "photograph";
  project.m_Picture.m_pBytes = std::make_shared<const std::string>(std::move(*photograph));
  return nullptr;
}

constexpr const char* kStays = " The model stays as it was.";

CReadProject Refused(const std::string& trouble) { return {{}, trouble + kStays}; }

CReadProject Read(const std::string& filename) {
  const std::string file = "The file " + filename;
  const CProjectReader reader(filename);
  if (!reader.Zip().IsOpen()) {
    if (!IsRegularFile(filename) || !std::ifstream(filename).is_open()) return {{}, file + " cannot be opened."};
    return Refused(file + " is not a project file: it " + reader.Zip().Trouble() + '.');
  }
  CDocumentText document = reader.ReadDocument();
  switch (document.m_State) {
    case DocumentState::Newer:
      return Refused(file + " was written by a newer version of relievo (project format " +
                     std::to_string(document.m_iVersion) + ", this one reads " + std::to_string(kProjectVersion) +
                     ").");
    case DocumentState::Foreign:
      return Refused(file + " is not a project file.");
    case DocumentState::Damaged:
      return Refused(file + " is damaged: its document.json cannot be understood.");
    case DocumentState::Sound:
      break;
  }
  if (const char* bad = reader.ReadMembers(document))
    return Refused(file + " is damaged: its part \"" + bad + "\" cannot be read.");
  return {std::move(document.m_Project), {}};
}

}  // namespace

std::vector<unsigned char> ProjectBytes(const CProject& project, std::int64_t time) {
  const CSketch& sketch = project.m_Model.m_Document.m_Sketch;
  const CSurfaceState& surface = *project.m_Model.m_pSurface;
  const CSolverState& solver = *project.m_Model.m_pSolver;
  const std::string photograph = PhotographName(project.m_Picture);
  const std::string map = sketch.m_Reference.m_pMap == nullptr ? std::string() : BytesOfMap(*sketch.m_Reference.m_pMap);
  const std::vector<std::pair<const char*, std::string>> packed{
      {Member::kDocument, DocumentText(project, time, photograph)},
      {Member::kPoints, BytesOf(sketch.m_Points)},
      {Member::kCurves, BytesOf(sketch.m_Curves)},
      {Member::kCurveInProgress, BytesOf(sketch.m_PendingCurve)},
      {Member::kSubdivision, BytesOf(sketch.m_aSubdivisions.front())},
      {Member::kOtherSubdivision, BytesOf(sketch.m_aSubdivisions.back())},
      {Member::kHeights, BytesOfNumbers(surface.m_afHeights)},
      {Member::kOtherHeights, BytesOfNumbers(surface.m_afOtherHeights)},
      {Member::kMultipliers, BytesOfNumbers(solver.m_afMultipliers)},
      {Member::kTargets, BytesOfNumbers(solver.m_afTargets)},
      {Member::kRecording, BytesOfRecording(project.m_aRecording)},
      {Member::kGrid, GridText(project)}};
  std::vector<CZipMember> members;
  members.reserve(packed.size() + 2);
  for (const auto& [name, contents] : packed) members.push_back({name, contents});
  if (!map.empty()) members.push_back({Member::kReferenceMap, map, false});
  if (!photograph.empty()) members.push_back({photograph, *project.m_Picture.m_pBytes, false});
  return ZipOf(members);
}

CSaveOutcome SaveProject(const CProject& project, const std::string& filename) {
  CSaveOutcome failed{"The file " + filename + " could not be written. If it existed before, it is unchanged."};
  try {
    CFileReplacement file(filename);
    if (!file.IsOpen()) return failed;
    using std::chrono::system_clock;
    file.Write(ProjectBytes(project, system_clock::to_time_t(system_clock::now())));
    return file.Commit() ? CSaveOutcome{} : failed;
  } catch (const std::bad_alloc&) {
    return failed;
  }
}

CReadProject ReadProject(const std::string& filename) {
  try {
    return Read(filename);
  } catch (const std::bad_alloc&) {
    return Refused("The file " + filename + " needs more memory than there is.");
  }
}

std::optional<CProjectNote> ReadProjectNote(const std::string& filename) {
  try {
    const CProjectReader reader(filename);
    if (!reader.Zip().IsOpen()) return {};
    const CDocumentText document = reader.ReadDocument();
    if (document.m_State != DocumentState::Sound) return {};
    return document.m_Note;
  } catch (const std::bad_alloc&) {
    return {};
  }
}

bool IsProjectFile(const std::string& filename) {
  if (!IsRegularFile(filename)) return false;
  std::array<char, 4> beginning{};
  std::ifstream(filename, std::ios::binary).read(beginning.data(), beginning.size());
  return std::string_view(beginning.data(), beginning.size()) == "PK\3\4";
}
