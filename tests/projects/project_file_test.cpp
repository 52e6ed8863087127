// Project files: what is written comes back to the last bit, and what others have made of one is refused.

#include <array>
#include <cmath>
#include <functional>
#include <sstream>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>
#include <rapidcheck/gtest.h>
#include <sys/stat.h>

#include "projects/CZipReader.h"
#include "projects/ProjectFile.h"
#include "projects/ZipWriter.h"
#include "support/BmpBuilders.h"
#include "support/CTemporaryDirectory.h"
#include "support/ConsoleCapture.h"
#include "support/ProjectBuilders.h"

namespace {

constexpr std::int64_t kTime = 1'795'321'178;
constexpr std::size_t kProjectBytes = std::size_t{1} << 26;

bool AreSame(const Vector3& a, const Vector3& b) {
  return SameBits(std::array{a.x, a.y, a.z}, std::array{b.x, b.y, b.z});
}

bool AreSame(const std::vector<double>& a, const std::vector<double>& b) {
  return a.size() == b.size() && SameBits(a, b);
}

void ExpectSameViews(const CProjectViews& a, const CProjectViews& b) {
  EXPECT_EQ(a.m_iEditingMode, b.m_iEditingMode);
  EXPECT_EQ(a.m_uCurveType, b.m_uCurveType);
  EXPECT_EQ(a.m_uImageFlags, b.m_uImageFlags);
  EXPECT_EQ(a.m_uModelFlags, b.m_uModelFlags);
  EXPECT_EQ(a.m_iTexture, b.m_iTexture);
  EXPECT_TRUE(AreSame(a.m_Centre, b.m_Centre));
  EXPECT_TRUE(AreSame(a.m_Eye, b.m_Eye));
  EXPECT_TRUE(AreSame(a.m_Up, b.m_Up));
  const auto numbers = [](const CProjectViews& v) {
    return std::vector{v.m_fZoom, v.m_Pan.x, v.m_Pan.y, v.m_fR, v.m_fR0, v.m_fTheta, v.m_fPhi, v.m_fZeta};
  };
  EXPECT_TRUE(AreSame(numbers(a), numbers(b)));
}

void ExpectSameModel(const CModelState& a, const CModelState& b) {
  EXPECT_EQ(a.m_Document, b.m_Document);
  EXPECT_EQ(a.m_iNewMaxLevel, b.m_iNewMaxLevel);
  EXPECT_EQ(a.m_fPickTolerance, b.m_fPickTolerance);
  EXPECT_TRUE(AreSame(a.m_pSurface->m_afHeights, b.m_pSurface->m_afHeights));
  EXPECT_TRUE(AreSame(a.m_pSurface->m_afOtherHeights, b.m_pSurface->m_afOtherHeights));
  EXPECT_EQ(a.m_pSurface->m_Mode, b.m_pSurface->m_Mode);
  EXPECT_TRUE(AreSame(a.m_pSolver->m_afMultipliers, b.m_pSolver->m_afMultipliers));
  EXPECT_TRUE(AreSame(a.m_pSolver->m_afTargets, b.m_pSolver->m_afTargets));
  EXPECT_EQ(a.m_pSolver->m_iCounter, b.m_pSolver->m_iCounter);
  EXPECT_EQ(a.m_pSolver->m_bStopped, b.m_pSolver->m_bStopped);
  EXPECT_EQ(a.m_pSolver->m_bGaveUp, b.m_pSolver->m_bGaveUp);
}

void ExpectSame(const CProject& a, const CProject& b) {
  ExpectSameModel(a.m_Model, b.m_Model);
  ExpectSameViews(a.m_Views, b.m_Views);
  ASSERT_EQ(a.m_aRecording.size(), b.m_aRecording.size());
  for (std::size_t k = 0; k < a.m_aRecording.size(); ++k) {
    EXPECT_TRUE(AreSame(a.m_aRecording[k].m_Eye, b.m_aRecording[k].m_Eye));
    EXPECT_TRUE(SameBits(a.m_aRecording[k].m_fSeconds, b.m_aRecording[k].m_fSeconds));
  }
  EXPECT_EQ(a.m_ModelFile, b.m_ModelFile);
  EXPECT_EQ(a.m_Picture.m_File, b.m_Picture.m_File);
  EXPECT_EQ(a.m_Picture.m_Project, b.m_Picture.m_Project);
  ASSERT_EQ(a.m_Picture.m_pBytes == nullptr, b.m_Picture.m_pBytes == nullptr);
  if (a.m_Picture.m_pBytes != nullptr) {
    EXPECT_EQ(*a.m_Picture.m_pBytes, *b.m_Picture.m_pBytes);
  }
}

CProject ProjectOf(const CGrid& grid) {
  CProject project;
  project.m_Model = StateOf(grid);
  project.m_Heights = SolvedHeights(grid);
  project.m_Picture = {"/tmp/cup.bmp", "/tmp/old.relievo", std::make_shared<const std::string>("BM, as it were")};
  return project;
}

class ProjectFileTest : public ::testing::Test {
 protected:
  ProjectFileTest() {
    m_Test.m_Grid.AddPtCstr({30, 40, PtCstrKind::kPosition, 7});
    m_Test.m_Grid.UpdateGrid();
    m_Project = ProjectOf(m_Test.m_Grid);
    WriteBytes(m_File, ProjectBytes(m_Project, kTime));
  }

  /// The members of the file, to be changed and written again with `Write`.
  std::vector<std::pair<std::string, std::string>> Members() const {
    const CZipReader zip(m_File);
    std::vector<std::pair<std::string, std::string>> members;
    for (const char* name :
         {"document.json", "points", "curves", "curve_in_progress", "subdivision", "other_subdivision", "heights",
          "other_heights", "multipliers", "targets", "recording", "model.grid", "photograph.bmp"})
      members.emplace_back(name, zip.Read(name, kProjectBytes).value());
    return members;
  }
  void Write(const std::vector<std::pair<std::string, std::string>>& members) const {
    std::vector<CZipMember> written;
    for (const auto& [name, contents] : members) written.push_back({name, contents, !name.starts_with("photograph")});
    WriteBytes(m_File, ZipOf(written));
  }
  /// The document with a change made.
  std::string TroubleAfter(const std::function<void(nlohmann::ordered_json&)>& change) const {
    auto members = Members();
    auto json = nlohmann::ordered_json::parse(members.front().second);
    change(json);
    members.front().second = json.dump();
    Write(members);
    return ReadProject(m_File).m_Trouble;
  }
  std::string Damaged(const std::string& what) const {
    return "The file " + m_File + " is damaged: " + what + " The model stays as it was.";
  }

  ConsoleCapture m_Console;
  CTemporaryDirectory m_Scratch;
  CTestGrid m_Test{4, 3};
  CProject m_Project;
  std::string m_File = m_Scratch.File("cup.relievo");
};

}  // namespace

RC_GTEST_PROP(ProjectFileProperty, EveryBitComesBack, ()) {
  const ConsoleCapture console;
  const CTemporaryDirectory scratch;
  const CProject project = *AnyProject();
  const std::string file = scratch.File("a.relievo");
  WriteBytes(file, ProjectBytes(project, kTime));
  const CReadProject read = ReadProject(file);
  RC_ASSERT(read.m_Trouble == "");
  ExpectSame(*read.m_Project, project);
  const std::optional<CProjectNote> note = ReadProjectNote(file);
  RC_ASSERT(note.has_value());
  RC_ASSERT(note->m_iTime == kTime);
  RC_ASSERT(note->m_Model == project.m_ModelFile);
  RC_ASSERT(note->m_Picture == project.m_Picture.m_File);
}

TEST_F(ProjectFileTest, HoldsTheGridFileAndThePhotographAsTheyAre) {
  const CZipReader zip(m_File);
  std::ostringstream grid;
  grid.imbue(std::locale::classic());
  WriteGrid(grid, m_Test.m_Grid);
  WriteLights(grid, m_Test.m_Grid);
  EXPECT_EQ(zip.Read("model.grid", kProjectBytes), grid.str());
  EXPECT_EQ(zip.Read("photograph.bmp", kProjectBytes), "BM, as it were");
}

TEST_F(ProjectFileTest, BringsAGridBackToWhereItWas) {
  for (int tick = 0; tick < 20; ++tick) m_Test.m_Grid.UpdateGrid();
  WriteBytes(m_File, ProjectBytes(ProjectOf(m_Test.m_Grid), kTime));
  CTestGrid other(6, 2);
  CRestoration::RestoreState(other.m_Grid, ReadProject(m_File).m_Project->m_Model);
  EXPECT_EQ(DocumentOf(other.m_Grid), DocumentOf(m_Test.m_Grid));
  EXPECT_LT(LargestDifference(NodalHeights(other.m_Grid), NodalHeights(m_Test.m_Grid)), 1e-12);
}

// As floats, with a hole, and as whole numbers.
TEST_F(ProjectFileTest, KeepsTheReference) {
  for (const int bits : {8, 16, 32}) {
    CReference reference;
    const float other = bits == 32 ? std::nanf("") : 200;
    reference.m_pMap = std::make_shared<const CDepthMap>(3, 2, bits, std::vector<float>{1, 2, 3, 4, other, 250});
    reference.m_File = "/maps/cup depth.pfm";
    reference.m_Settings = {0.625, false, true, ReferenceResponse::Bent, 17.25};
    m_Project.m_Model.m_Document.m_Sketch.m_Reference = reference;
    WriteBytes(m_File, ProjectBytes(m_Project, kTime));
    const CReadProject read = ReadProject(m_File);
    ASSERT_EQ(read.m_Trouble, "");
    EXPECT_TRUE(read.m_Project->m_Model.m_Document.m_Sketch.m_Reference == reference) << bits;
  }
  const CZipReader zip(m_File);
  EXPECT_EQ(zip.Read("model.grid", kProjectBytes)->find("maps"), std::string::npos);
}

TEST_F(ProjectFileTest, WithoutAReferenceThereIsNoWordOfOne) {
  EXPECT_EQ(Members().front().second.find("reference"), std::string::npos);
  EXPECT_FALSE(CZipReader(m_File).Read("reference_map", kProjectBytes).has_value());
}

TEST_F(ProjectFileTest, ADamagedReferenceIsRefused) {
  const nlohmann::ordered_json sound{{"file", nullptr},
                                     {"width", 3},
                                     {"height", 2},
                                     {"bits", 8},
                                     {"strength", 0.5},
                                     {"near_is_bright", true},
                                     {"zero_is_unknown", false},
                                     {"response", "straight"}};
  EXPECT_EQ(TroubleAfter([&](auto& json) { json["reference"] = sound; }),
            Damaged("its part \"reference_map\" cannot be read."));
  const auto changed = [&](const char* name, const nlohmann::ordered_json& value) {
    return TroubleAfter([&](auto& json) {
      json["reference"] = sound;
      json["reference"][name] = value;
    });
  };
  const std::string text = Damaged("its document.json cannot be understood.");
  EXPECT_EQ(changed("width", 1), text);
  EXPECT_EQ(changed("height", 70000), text);
  EXPECT_EQ(changed("bits", 12), text);
  EXPECT_EQ(changed("strength", 1.5), text);
  EXPECT_EQ(changed("response", "crooked"), text);
  EXPECT_EQ(changed("scene_depth", -1), text);
}

TEST_F(ProjectFileTest, IsReplacedSafely) {
  EXPECT_TRUE(SaveProject(m_Project, m_File));
  EXPECT_EQ(ReadProject(m_File).m_Trouble, "");
  EXPECT_EQ(m_Scratch.Names().size(), 1U);
  const std::string missing = m_Scratch.File("none/cup.relievo");
  EXPECT_EQ(SaveProject(m_Project, missing).m_Trouble,
            "The file " + missing + " could not be written. If it existed before, it is unchanged.");
}

TEST_F(ProjectFileTest, AFileThatIsNoneIsRefused) {
  const std::string missing = m_Scratch.File("none");
  EXPECT_EQ(ReadProject(missing).m_Trouble, "The file " + missing + " cannot be opened.");
  EXPECT_FALSE(IsProjectFile(missing));
  WriteBytes(m_File, {'0', '\t', '0'});
  EXPECT_EQ(ReadProject(m_File).m_Trouble, "The file " + m_File +
                                               " is not a project file: it is no zip archive, or is damaged. The "
                                               "model stays as it was.");
  EXPECT_FALSE(IsProjectFile(m_File));
  Write({{"word/document.xml", "another kind of archive"}});
  EXPECT_TRUE(IsProjectFile(m_File)) << "by its first bytes";
  EXPECT_EQ(ReadProject(m_File).m_Trouble, "The file " + m_File + " is not a project file. The model stays as it was.");
  EXPECT_FALSE(ReadProjectNote(m_File).has_value());
}

TEST_F(ProjectFileTest, AFileCutAnywhereIsRefused) {
  const CBytes whole = ReadBytes(m_File);
  for (std::size_t length = 0; length < whole.size(); length += 37) {
    WriteBytes(m_File, CBytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(length)));
    EXPECT_FALSE(ReadProject(m_File).m_Project.has_value()) << length;
  }
}

TEST_F(ProjectFileTest, ANewerVersionIsToldByItsName) {
  EXPECT_EQ(TroubleAfter([](auto& json) { json["version"] = 7; }),
            "The file " + m_File +
                " was written by a newer version of relievo (project format 7, this one reads 1). The model stays as "
                "it was.");
}

TEST_F(ProjectFileTest, AMissingOrDamagedPartIsToldByItsName) {
  const auto whole = Members();
  for (std::size_t k = 1; k < whole.size(); ++k) {
    if (whole[k].first == "model.grid") continue;
    const std::string part = whole[k].first.starts_with("photograph") ? "photograph" : whole[k].first;
    auto members = whole;
    members.erase(members.begin() + static_cast<std::ptrdiff_t>(k));
    Write(members);
    EXPECT_EQ(ReadProject(m_File).m_Trouble, Damaged("its part \"" + part + "\" cannot be read."));
    if (part == "photograph") continue;
    members = whole;
    members[k].second += "x";
    Write(members);
    EXPECT_EQ(ReadProject(m_File).m_Trouble, Damaged("its part \"" + part + "\" cannot be read."));
  }
}

TEST_F(ProjectFileTest, TheGridFileInItIsForOthers) {
  auto members = Members();
  std::erase_if(members, [](const auto& member) { return member.first == "model.grid"; });
  Write(members);
  EXPECT_EQ(ReadProject(m_File).m_Trouble, "");
}

TEST_F(ProjectFileTest, AWrongValueIsDamage) {
  using CJson = nlohmann::ordered_json;
  const std::vector<std::function<void(CJson&)>> changes{
      [](CJson& json) { json.erase("views"); },
      [](CJson& json) { json["version"] = "1"; },
      [](CJson& json) { json["version"] = 0; },
      [](CJson& json) { json["model"]["level"] = 11; },
      [](CJson& json) { json["model"]["level"] = 4'294'967'300; },
      [](CJson& json) { json["model"]["level"] = 4.5; },
      [](CJson& json) { json["model"]["base_level"] = 5; },
      [](CJson& json) {
        json["model"]["rectangle"] = {0, 0, -1, 1};
      },
      [](CJson& json) {
        json["model"]["rectangle"] = {0, 0, 1};
      },
      [](CJson& json) { json["model"]["wavelets"] = 3; },
      [](CJson& json) { json["model"]["pick_tolerance"] = 0; },
      [](CJson& json) { json["lights"]["added"].erase(0); },
      [](CJson& json) { json["lights"]["removed"][0]["active"] = 1; },
      [](CJson& json) { json["views"]["zoom"] = nullptr; },
      [](CJson& json) { json["views"]["camera"]["eye"] = "here"; },
      [](CJson& json) { json["photograph"]["file"] = "http://somewhere/else"; },
      [](CJson& json) { json["time"] = {}; },
  };
  for (std::size_t k = 0; k < changes.size(); ++k) {
    WriteBytes(m_File, ProjectBytes(m_Project, kTime));
    EXPECT_EQ(TroubleAfter(changes[k]), Damaged("its document.json cannot be understood.")) << k;
  }
}

TEST_F(ProjectFileTest, HeightsOfAnotherLatticeAreDamage) {
  EXPECT_EQ(TroubleAfter([](auto& json) { json["model"]["level"] = 3; }),
            Damaged("its part \"subdivision\" cannot be read."));
  auto members = Members();
  members[6].second.resize(members[6].second.size() - 8);
  WriteBytes(m_File, ProjectBytes(m_Project, kTime));
  Write(members);
  EXPECT_FALSE(ReadProject(m_File).m_Project.has_value());
}

TEST_F(ProjectFileTest, APartThatUnpacksToFarTooMuchIsRefused) {
  auto members = Members();
  members[1].second.assign(std::size_t{80} << 20, '\0');
  Write(members);
  EXPECT_LT(ReadBytes(m_File).size(), 500'000U);
  EXPECT_EQ(ReadProject(m_File).m_Trouble, Damaged("its part \"points\" cannot be read."));
}

TEST_F(ProjectFileTest, AHostileArchiveIsRefused) {
  auto members = Members();
  members.emplace_back("../../escaped", "x");
  Write(members);
  EXPECT_EQ(ReadProject(m_File).m_Trouble,
            "The file " + m_File +
                " is not a project file: it has a member whose name leads out of it. The model stays as it was.");
  members.pop_back();
  for (int k = 0; k < 10'000; ++k) members.emplace_back(std::to_string(k), "");
  Write(members);
  EXPECT_EQ(ReadProject(m_File).m_Trouble,
            "The file " + m_File + " is not a project file: it has too many members. The model stays as it was.");
}
