// The panel of the reference depth with mouse and keyboard, in the whole program.

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include <gtest/gtest.h>

#include "codecs/PngBytes.h"
#include "drawing/DisplayFlags.h"
#include "projects/ProjectFile.h"
#include "support/CTemporaryDirectory.h"
#include "support/FileBuilders.h"
#include "support/ProjectBuilders.h"
#include "support/SamplePhotograph.h"
#include "support/gui/CRelievo.h"
#include "support/gui/CUser.h"
#include "support/gui/Input.h"
#include "support/gui/WaitUntil.h"

namespace {

// Places in the panel.
constexpr CPixel kLoad{195, 53};
constexpr CPixel kRemove{315, 53};
constexpr CPixel kOverPhotograph{150, 114};
constexpr CPixel kStrengthKnob{326, 242};
constexpr CPixel kStrengthMiddle{272, 242};
constexpr CPixel kNearIsBright{150, 272};
constexpr CPixel kZero{255, 302};
constexpr CPixel kResponse{255, 332};
constexpr CPixel kSceneDepth{195, 362};
constexpr CPixel kSelectWorst{315, 520};
constexpr CPixel kSuggest{255, 619};
constexpr CPixel kTake{195, 649};

// Grey, three columns of 0, 100 and 200, as a PNG of the proportions of the photograph.
std::string ColumnsPng() {
  CPicture picture{96, 64, {}};
  for (int k = 0; k < 96 * 64; ++k)
    picture.m_aPixels.insert(picture.m_aPixels.end(), 3, static_cast<std::uint8_t>(k % 96 / 32 * 100));
  return PngOf(picture);
}

// A disc before a slope, 64 x 64, as a PFM.
std::string DiscPfm() {
  std::string bytes = "Pf\n64 64\n1\n";
  for (int row = 0; row < 64; ++row) {
    for (int column = 0; column < 64; ++column) {
      const bool inside = (row - 32) * (row - 32) + (column - 32) * (column - 32) < 400;
      // Floats of 1 and 2, the highest byte first.
      bytes += inside ? std::string("\x40\0\0\0", 4) : std::string("\x3F\x80\0\0", 4);
    }
  }
  return bytes;
}

class ReferenceRunTest : public ::testing::Test {
 protected:
  void SetUp() override {
    m_Panel = OpenPanel();
    ASSERT_TRUE(m_Panel.m_iWidth > 0);
  }
  void TearDown() override { EXPECT_TRUE(m_Program.IsRunning()); }

  std::string ProjectFile() const {
    CProject project = ProjectOfOneHeight();
    project.m_Views.m_iEditingMode = static_cast<int>(EditingMode::Position);
    project.m_Views.m_uImageFlags = ImageFlag::kPointConstraints | ImageFlag::kImage;
    project.m_Views.m_uModelFlags = ModelFlag::kTexturedModel;
    project.m_Views.m_fR = project.m_Views.m_fR0 = 70;
    project.m_Picture = {"/photos/cup.bmp", {}, std::make_shared<const std::string>(BytesOf(kSamplePhotograph))};
    EXPECT_TRUE(SaveProject(project, m_File));
    WriteText(m_Map, DiscPfm());
    return m_File;
  }
  /// Where it lies on the screen.
  CArea OpenPanel() {
    // Behind Undo: the project was opened.
    m_User.ChooseEntry(MenuTitle::Edit, 1);
    const auto panel = m_Program.WaitForWindow("Reference depth");
    return panel.has_value() && m_Program.Rests() ? m_Program.Screen().AreaOf(*panel) : CArea{};
  }
  void ClickOn(CPixel place) const { m_User.ClickAt(m_Panel.At(place)); }
  void LoadMap() const { LoadMap(m_Map); }
  void LoadMap(const std::string& file) const {
    ClickOn(kLoad);
    ASSERT_TRUE(m_User.ChooseFile("please input depth map file name", file));
    ASSERT_TRUE(m_Program.Rests());
  }
  /// With the mouse, the entry so many places below the one that is chosen.
  void Choose(CPixel choice, int below) const {
    ClickOn(choice);
    for (int k = 0; k < below; ++k) m_User.Type("Down");
    m_User.Type("Return");
  }
  /// What the program has by now.
  CReference Reference() const { return Sketch().m_Reference; }
  CSketch Sketch() const {
    const std::size_t before = m_User.Times(m_File + " is saved");
    PressKey("ctrl+s");
    EXPECT_TRUE(m_User.Reads(m_File + " is saved", before));
    return ReadProject(m_File).m_Project.value().m_Model.m_Document.m_Sketch;
  }
  void Undo(const std::string& name) const {
    const std::size_t before = m_User.Times("Undone: " + name);
    PressKey("ctrl+z");
    EXPECT_TRUE(m_User.Reads("Undone: " + name, before)) << name;
  }

  CTemporaryDirectory m_Scratch;
  std::string m_File = m_Scratch.File("cup.relievo");
  std::string m_Map = m_Scratch.File("disc.pfm");
  mutable CRelievo m_Program{{ProjectFile()}};
  CUser m_User{m_Program};
  CArea m_Panel;
};

}  // namespace

TEST_F(ReferenceRunTest, AMapIsLoadedMadeWeakerAndRemoved) {
  LoadMap();
  ASSERT_NE(Reference().m_pMap, nullptr);
  EXPECT_EQ(Reference().m_pMap->Width(), 64);
  EXPECT_EQ(Reference().m_Settings.m_fStrength, 0.8);

  m_User.DragSlowly(m_Panel.At(kStrengthKnob), m_Panel.At(kStrengthMiddle), 1);
  const double weaker = Reference().m_Settings.m_fStrength;
  EXPECT_GT(weaker, 0.3);
  EXPECT_LT(weaker, 0.7);
  Undo("strength of reference depth");
  EXPECT_EQ(Reference().m_Settings.m_fStrength, 0.8) << "a drag is one step";

  ClickOn(kRemove);
  EXPECT_EQ(Reference().m_pMap, nullptr);
  Undo("remove reference depth");
  EXPECT_NE(Reference().m_pMap, nullptr);
}

TEST_F(ReferenceRunTest, TheDepthOfTheSceneIsTyped) {
  LoadMap();
  ClickOn(kSceneDepth);
  m_User.Type("ctrl+a");
  TypeText("50");
  m_User.Type("Return");
  EXPECT_EQ(Reference().m_Settings.m_SceneDepth, 50);
}

TEST_F(ReferenceRunTest, ASavedGridKeepsNoReferenceAndItIsTold) {
  const auto save = [this](const std::string& file) {
    m_User.ChooseEntry(MenuTitle::File, "s");
    return m_User.ChooseFile("please input grid file name", file) && m_User.Answer(false) && m_Program.Rests();
  };
  const std::string bare = m_Scratch.File("bare.grid");
  const std::string followed = m_Scratch.File("followed.grid");
  const std::string told = " is saved without the reference depth, which a project keeps";
  ASSERT_TRUE(save(bare));
  LoadMap();
  ASSERT_TRUE(save(followed));
  EXPECT_TRUE(m_User.Reads(followed + told));
  EXPECT_EQ(m_User.Times(bare + told), 0U);
  // Heights are at random where nothing settles them; what comes before them is the same, and nothing is added behind.
  const auto beforeHeights = [](const std::string& text) { return text.substr(0, text.find("\nZ\n")); };
  const auto lines = [](const std::string& text) { return std::ranges::count(text, '\n'); };
  EXPECT_TRUE(beforeHeights(BytesOf(followed)) == beforeHeights(BytesOf(bare)));
  EXPECT_EQ(lines(BytesOf(followed)), lines(BytesOf(bare)));
}

TEST_F(ReferenceRunTest, NearAndTheResponseAreChosenByMouse) {
  LoadMap();
  EXPECT_TRUE(Reference().m_Settings.m_bNearIsBright);
  ClickOn(kNearIsBright);
  EXPECT_FALSE(Reference().m_Settings.m_bNearIsBright);
  ClickOn(kNearIsBright);
  EXPECT_TRUE(Reference().m_Settings.m_bNearIsBright);
  Choose(kResponse, 2);
  EXPECT_EQ(Reference().m_Settings.m_Response, ReferenceResponse::Bent);
  // A map of floats has no 0 that could mean anything else.
  Choose(kZero, 1);
  EXPECT_FALSE(Reference().m_Settings.m_bZeroIsUnknown);
}

TEST_F(ReferenceRunTest, WhatZeroMeansIsChosenAndOtherProportionsAreTold) {
  const std::string map = m_Scratch.File("columns.png");
  WriteText(map, ColumnsPng());
  LoadMap(map);
  EXPECT_FALSE(Reference().m_Settings.m_bZeroIsUnknown);
  Choose(kZero, 1);
  EXPECT_TRUE(Reference().m_Settings.m_bZeroIsUnknown);
  const std::string told = " has other proportions (64 x 64) than what it is stretched over (600 x 400).";
  EXPECT_EQ(m_User.Times("The file " + map), 0U);
  LoadMap();
  EXPECT_TRUE(m_User.Reads("The file " + m_Map + told));
}

TEST_F(ReferenceRunTest, TheWorstHeightIsSelected) {
  LoadMap();
  ClickOn(kSelectWorst);
  MovePointer(m_User.PlaceOf(Control::ImageView));
  m_User.Type("Delete");
  EXPECT_TRUE(Sketch().m_Points.empty());
}

TEST_F(ReferenceRunTest, TheMapIsShownOverThePhotograph) {
  LoadMap();
  const CArea view = m_User.AreaOf(Control::ImageView);
  const CScreenshot before = m_User.See(view);
  // Held down for a while: the panel is brought up to date meanwhile.
  const CPixel place = m_Panel.At(kOverPhotograph);
  m_User.DragSlowly(place, {place.m_iX + 3, place.m_iY}, 1);
  ASSERT_TRUE(WaitUntil([&] { return m_User.See(view) != before; }));
  m_User.DragSlowly(place, {place.m_iX + 3, place.m_iY}, 1);
  EXPECT_TRUE(WaitUntil([&] { return m_User.See(view) == before; }));
}

TEST_F(ReferenceRunTest, SuggestedTearsAreTakenInOneStep) {
  LoadMap();
  ClickOn(kSuggest);
  ClickOn(kTake);
  EXPECT_FALSE(Sketch().m_Curves.empty());
  Undo("tear");
  EXPECT_TRUE(Sketch().m_Curves.empty());
}

TEST_F(ReferenceRunTest, AClickOnASuggestedTearDropsItAndDoesNothingElse) {
  LoadMap();
  ClickOn(kSuggest);
  ClickOn(kTake);
  const std::size_t all = Sketch().m_Curves.size();
  Undo("tear");
  ClickOn(kSuggest);
  const CArea view = m_User.AreaOf(Control::ImageView);
  // The right end of the disc; and its middle, where a click is the mode's and adds a height.
  m_User.ClickAt(view.At({view.m_iWidth * 52 / 64, view.m_iHeight / 2}));
  EXPECT_EQ(Sketch().m_Points.size(), 1U);
  m_User.ClickAt(view.At({view.m_iWidth / 2, view.m_iHeight / 2}));
  EXPECT_EQ(Sketch().m_Points.size(), 2U);
  ClickOn(kTake);
  EXPECT_EQ(Sketch().m_Curves.size(), all - 1);
}
