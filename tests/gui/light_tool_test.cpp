// The window of the light sources over the main one: what it shows of a loaded model, its images, and light that
// follows.

#include <algorithm>
#include <string>
#include <vector>

#include <FL/Fl_Value_Slider.H>

#include "support/LightingBuilders.h"
#include "support/gui/ModelViewTest.h"
#include "support/gui/Pictures.h"
#include "support/gui/ToolSetTest.h"

namespace {

constexpr const char* kOriginal = "Show Original texture";
constexpr const char* kKd = "Show Kd texture\nwithout added lights";
constexpr const char* kNewIllumination = "Show New Illumination";

}  // namespace

TEST_F(ToolSetTest, LightsThatAreLoadedAreShownInTheOpenPanel) {
  LoadPicture();
  OpenLights();
  CLightSet saved = CLightSet::Removed();
  SwitchOn(saved, 0, {0.25, 0.5, 0.75}, {0, 1, 0});
  CStaging::RemovedLights(Grid()) = saved;
  SaveAndLoad("lit.grid", true, CLightSet::Removed());
  EXPECT_EQ(m_Dialogs.m_asQuestions, std::vector<std::string>{"Do you want to save lighting information ?"});
  EXPECT_EQ(Grid().Relighting().RemovedLights(), saved);
  EXPECT_NE(Find<Fl_Button>(Panel("Light sources"), "Set the light active").value(), 0);
  EXPECT_NEAR(Value("Theta angle"), 90, 1e-5);
  EXPECT_EQ(Value("Blue"), 0.75);
}

TEST_F(ToolSetTest, FileWithoutLightsLeavesThem) {
  LoadPicture();
  OpenLights();
  CLightSet meanwhile = CLightSet::Removed();
  SwitchOn(meanwhile, 0, {0.25, 0.5, 0.75});
  SaveAndLoad("unlit.grid", false, meanwhile);
  EXPECT_EQ(Grid().Relighting().RemovedLights(), meanwhile);
  EXPECT_EQ(Grid().Relighting().AddedLights(), meanwhile);
  EXPECT_EQ(Value("Green"), 0.5);
}

TEST_F(ToolSetTest, TextureButtonsShowWhatTheirLabelsSayUntilTheNextPicture) {
  LoadPicture();
  OpenLights();
  auto& options = Find<Fl_Group>(Panel("Light sources"), "Texture Option");
  EXPECT_FALSE(options.active());
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  Push("Update\nKd");
  EXPECT_TRUE(options.active());
  for (const auto& [label, texture] : {std::pair{kOriginal, 3}, {kKd, 1}, {kNewIllumination, 2}}) {
    Push(label);
    EXPECT_EQ(m_Window.GridView().DrawTexture(), texture) << label;
  }
  LoadPicture();
  EXPECT_EQ(m_Window.GridView().DrawTexture(), 3);
  EXPECT_NE(Find<Fl_Button>(options, kOriginal).value(), 0);
  EXPECT_FALSE(options.active());
}

TEST_F(ToolSetTest, UpdatesFirstTakeTheNormalsOfTheTree) {
  LoadPicture();
  OpenLights();
  for (const char* label : {"Update\ntexels\nnormals", "Update\ntexels\nInterpolation"}) {
    SetHeights(Grid().Surface().Lattice(), CFlat{});
    Push(label);
    for (const Vector3& normal : Grid().Relighting().Texels().Normals()) EXPECT_NEAR(normal.z, 1, 1e-12) << label;
    SetHeights(Grid().Surface().Lattice(), CRamp{});
    Push(label);
    for (const Vector3& normal : Grid().Relighting().Texels().Normals()) EXPECT_LT(normal.z, 0.99) << label;
  }
}

TEST_F(ToolSetTest, UpdatesWithoutMemoryForTheTexelsAreTold) {
  LoadPicture();
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  Grid().Relighting().SetMemory([] { return 0.0; });
  for (const char* label : {"Update\ntexels\nnormals", "Update\ntexels\nInterpolation", "Update\nKd"}) {
    m_Dialogs.m_asNotices.clear();
    Push(label);
    ASSERT_EQ(m_Dialogs.m_asNotices.size(), 1U) << label;
    EXPECT_NE(m_Dialogs.m_asNotices[0].find("not enough memory for the texels"), std::string::npos);
  }
  EXPECT_FALSE(Grid().Relighting().Albedo().IsComputed());
}

TEST_F(ToolSetTest, ImagesFollowALightTurnedInTheModelOnceTheyExist) {
  LoadPicture();
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  const auto revision = [this] { return Grid().Relighting().Textures().Revision(CTextureImages::kKd); };
  const unsigned loaded = revision();
  m_Window.LightsMoved();
  DrawBoth();
  EXPECT_EQ(revision(), loaded) << "there is nothing computed yet";
  Push("Update\nKd");
  for (int turn = 0; turn < 2; ++turn) {
    const unsigned before = revision();
    m_Window.LightsMoved();
    EXPECT_TRUE(RunToolkitUntil([&] { return revision() == before + 1; }));
  }
}

TEST_F(ToolSetTest, LiveLightShowsALargePictureSmallerFirstAndComputesItBetweenEvents) {
  LoadPicture();
  Grid().Relighting().SetPicture(RandomPicture(1700, 1500));
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  const CTextureImages& images = Grid().Relighting().Textures();
  Push("Live");
  EXPECT_TRUE(RunToolkitUntil([&] { return images.PreviewOf(CTextureImages::kIllumination) != nullptr; }));
  EXPECT_FALSE(Grid().Relighting().Albedo().IsComputed());
  EXPECT_TRUE(RunToolkitUntil([&] { return Grid().Relighting().Albedo().IsComputed(); }));
  EXPECT_EQ(images.PreviewOf(CTextureImages::kIllumination), nullptr);
  EXPECT_TRUE(Find<Fl_Group>(Panel("Light sources"), "Texture Option").active());
  // The next change drops what is under way.
  for (const double red : {0.75, 0.5}) {
    SetRed(red);
    EXPECT_TRUE(RunToolkitUntil([&] { return images.PreviewOf(CTextureImages::kKd) != nullptr; })) << red;
  }
  EXPECT_TRUE(RunToolkitUntil([&] { return images.PreviewOf(CTextureImages::kKd) == nullptr; }));
  const std::vector<std::uint8_t> live(images.Image(CTextureImages::kKd).begin(),
                                       images.Image(CTextureImages::kKd).end());
  Grid().GetKd();
  EXPECT_TRUE(std::ranges::equal(live, images.Image(CTextureImages::kKd)));
}

// A hand that drags briskly lets no pass over all of such a picture come to its end.
TEST_F(ToolSetTest, LiveLightAnswersWhileItChangesInEveryRoundOfTheToolkit) {
  LoadPicture();
  Grid().Relighting().SetPicture(RandomPicture(1000, 1000));
  OpenLights();
  for (CLightSet* lights : {&CStaging::RemovedLights(Grid()), &CStaging::AddedLights(Grid())}) {
    for (std::size_t light = 0; light < 4; ++light) {
      SwitchOn(*lights, light, {0.9, 0.8, 0.7}, {1.0 + static_cast<double>(light), -1, 2});
    }
  }
  const CTextureImages& images = Grid().Relighting().Textures();
  const unsigned first = images.Revision(CTextureImages::kIllumination);
  Push("Live");
  double red = 0;
  EXPECT_TRUE(RunToolkitUntil([&] {
    red = red < 0.9 ? red + 0.01 : 0.1;
    SetRed(red);
    return images.Revision(CTextureImages::kIllumination) >= first + 3;
  }));
  EXPECT_TRUE(RunToolkitUntil([&] {
    return Grid().Relighting().Albedo().IsComputed() && images.PreviewOf(CTextureImages::kIllumination) == nullptr;
  }));
  const std::vector<std::uint8_t> live(images.Image(CTextureImages::kIllumination).begin(),
                                       images.Image(CTextureImages::kIllumination).end());
  Grid().GetKd();
  EXPECT_TRUE(std::ranges::equal(live, images.Image(CTextureImages::kIllumination)));
}

TEST_F(ToolSetTest, LiveLightFollowsSwitchesColoursAndAnglesOfAllLights) {
  LoadPicture();
  Grid().Relighting().SetPicture(RandomPicture(40, 30));
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 1, {0.5, 0.5, 0.5});
  const CTextureImages& images = Grid().Relighting().Textures();
  const auto bytes = [&] {
    const auto image = images.Image(CTextureImages::kIllumination);
    return std::vector<std::uint8_t>(image.begin(), image.end());
  };
  unsigned seen = images.Revision(CTextureImages::kIllumination);
  const auto follows = [&](const char* what) {
    const bool done = RunToolkitUntil([&] { return images.Revision(CTextureImages::kIllumination) > seen; });
    EXPECT_TRUE(done) << what;
    const std::vector<std::uint8_t> live = bytes();
    Grid().GetKd();
    EXPECT_EQ(bytes(), live) << what << ": as Update Kd has it";
    seen = images.Revision(CTextureImages::kIllumination);
  };
  const auto slide = [&](const char* slider, double value) {
    auto& widget = Find<Fl_Value_Slider>(Panel("Light sources"), slider);
    widget.value(value);
    widget.do_callback();
    follows(slider);
  };
  Push("Live");
  follows("Live");
  for (const char* category : {"Removed Lights", "Added lights"}) {
    Push(category);
    for (const char* light : {"Light 1", "Ambient light"}) {
      Push(light);
      Push("Set the light active");
      follows("switched on");
      for (const char* channel : {"Red", "Green", "Blue"}) slide(channel, 0.25);
      if (light == std::string("Light 1")) {
        slide("Theta angle", 40);
        slide("Phi angle", 75);
      }
      Push("Set the light active");
      follows("switched off");
    }
  }
  Push("Soft");
  follows("Soft");
}

TEST_F(ToolSetTest, LiveLightStopsWithThePictureAndTellsWhereThereIsNoMemory) {
  LoadPicture();
  OpenLights();
  SwitchOn(CStaging::RemovedLights(Grid()), 0, {1, 1, 1});
  Push("Live");
  LoadPicture();
  ASSERT_TRUE(IsDrawn());
  EXPECT_FALSE(Grid().Relighting().Albedo().IsComputed());
  Grid().Relighting().SetMemory([] { return 0.0; });
  m_Dialogs.m_asNotices.clear();
  SetRed(0.5);
  EXPECT_TRUE(RunToolkitUntil([&] { return m_Dialogs.m_asNotices.size() == 1; }));
  EXPECT_FALSE(Grid().Relighting().Albedo().IsComputed());
  EXPECT_EQ(Find<Fl_Button>(Panel("Light sources"), "Live").value(), 0) << "it is not told with every change";
}

TEST_F(ToolSetTest, LightTurnedInTheModelIsThatOfThePanelAndItFollows) {
  LoadPicture();
  EXPECT_EQ(m_Window.CurrentLight(), -1) << "the panel is closed";
  OpenLights();
  Push("Light 3");
  EXPECT_EQ(m_Window.CurrentLight(), 2);
  CLight turned = *Grid().GetLightSource(2, kRemovedLights);
  turned.SetDirection({0, -1, 0});
  Grid().SetLight(2, kRemovedLights, turned);
  m_Window.LightsMoved();
  EXPECT_NEAR(Value("Theta angle"), 90, 1e-5);
  EXPECT_NEAR(Value("Phi angle"), 270, 1e-5);
}
