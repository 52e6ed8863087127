#include <array>
#include <string>
#include <tuple>
#include <utility>

#include <GL/gl.h>
#include <gtest/gtest.h>

#include "drawing/DisplayFlags.h"
#include "drawing/DrawingSettings.h"
#include "support/CStaging.h"
#include "support/ConstraintBuilders.h"
#include "support/UpdateBuilders.h"
#include "support/gui/ModelViewTest.h"

namespace {

class ModelDrawingTest : public ModelViewTest {
 protected:
  CPicture FrameWith(std::uint32_t flags) {
    ShowOnly(flags);
    return FrameOf(View());
  }
  CLight& AddLight(std::size_t which, const std::array<double, 4>& direction) {
    CLight& light = CStaging::AddedLights(Grid()).m_aLights[which];
    light.m_bActive = true;
    light.m_afDirection = direction;
    return light;
  }
  // Of the middle of the model, drawn without a picture.
  CRgb Shade() { return ColourAt(FrameWith(ModelFlag::kTexturedModel), 4.6, 22.9); }

  CGlobalScope<CDrawingSettings> m_Settings{g_DrawingSettings, CDrawingSettings{}};
};

int NonBlack(const CPicture& frame) { return frame.m_iWidth * frame.m_iHeight - CountPixels(frame, kBlack); }

}  // namespace

TEST_F(ModelDrawingTest, BackgroundHasTheColourOfTheSettings) {
  g_DrawingSettings.m_afBackground = {0, 0, 1, 0};
  EXPECT_EQ(CountPixels(FrameWith(0), kBlue), kSize * kSize);
}

TEST_F(ModelDrawingTest, WithoutAPictureTheModelIsPlainWhite) {
  const CPicture frame = FrameWith(ModelFlag::kTexturedModel);
  EXPECT_EQ(ColourAt(frame, -3.4, 20.1), kWhite);
  EXPECT_EQ(ColourAt(frame, 12.4, 25.9), kWhite);
  EXPECT_EQ(ColourAt(frame, 4.5, 19.8), kBlack);
  EXPECT_EQ(ColourAt(frame, 4.5, 26.2), kBlack);
}

TEST_F(ModelDrawingTest, PictureLiesOverTheWholeModelAndNothingOfItsPadding) {
  LoadPicture(PictureOf(300, 200, [](int x, int y) { return x < 150 ? (y < 100 ? kRed : kGreen) : kBlue; }));
  const CPicture frame = FrameWith(ModelFlag::kTexturedModel);
  EXPECT_EQ(ColourAt(frame, -3, 20.5), kRed);
  EXPECT_EQ(ColourAt(frame, 4.3, 22.8), kRed);
  EXPECT_EQ(ColourAt(frame, -3, 25.5), kGreen);
  EXPECT_EQ(ColourAt(frame, 4.3, 23.2), kGreen);
  EXPECT_EQ(ColourAt(frame, 4.7, 23), kBlue);
  EXPECT_EQ(ColourAt(frame, 12.3, 25.8), kBlue);
}

TEST_F(ModelDrawingTest, ModelWithoutTexturesAttachedIsPlainWhite) {
  LoadPicture(PlainPicture(kRed));
  CModelPainter painter;
  FrameWith(0);
  painter.Draw(Grid(), {ModelFlag::kTexturedModel, 3, nullptr});
  std::array<std::uint8_t, 3> pixel{};
  glReadPixels(kSize / 2, kSize / 2, 1, 1, GL_RGB, GL_UNSIGNED_BYTE, pixel.data());
  EXPECT_EQ(pixel, (std::array<std::uint8_t, 3>{255, 255, 255}));
}

TEST_F(ModelDrawingTest, DrawTextureChoosesTheImage) {
  LoadPicture(PlainPicture(kRed));
  CTextureImages& images = CStaging::Textures(Grid());
  for (const auto& [which, channel] : {std::pair{CTextureImages::kKd, 1}, {CTextureImages::kIllumination, 2}}) {
    for (std::size_t k = 0; k < images.Image(which).size(); ++k)
      images.Image(which)[k] = static_cast<int>(k % 3) == channel ? 255 : 0;
    images.MarkChanged(which);
  }
  EXPECT_EQ(Shade(), kRed) << "at start";
  for (const auto& [which, colour] : {std::pair{1, kGreen}, {2, kBlue}, {3, kRed}}) {
    View().SetDrawTexture(which);
    EXPECT_EQ(Shade(), colour) << which;
  }
}

TEST_F(ModelDrawingTest, UnknownTextureIsReportedAndTheBoundOneKept) {
  LoadPicture(PlainPicture(kRed));
  Shade();
  View().SetDrawTexture(4);
  m_Grid.m_Console.Take();
  EXPECT_EQ(Shade(), kRed);
  EXPECT_EQ(m_Grid.m_Console.Take().find("CGrid::DrawTexturedModel\t\t\tInvalid m_iDrawTexture\n"), 0U);
}

TEST_F(ModelDrawingTest, TrianglesInADiscontinuityAreGaps) {
  MakeLeaf(Grid().Surface().Tree(), 2, 1, 1, 15);
  Grid().Surface().Tree().RefreshEdgeMarks();
  Grid().BuildHNumerotation();
  Grid().Surface().Reconstruct();
  const CPicture frame = FrameWith(ModelFlag::kTexturedModel);
  EXPECT_EQ(ColourAt(frame, 2.5, 22.25), kBlack);
  EXPECT_EQ(ColourAt(frame, 6.5, 22.25), kWhite);
}

TEST_F(ModelDrawingTest, AddedLightShadesByTheAngleToTheSurface) {
  AddLight(1, {1, 0, 1, 0});
  const CRgb shade = Shade();
  EXPECT_NEAR(shade.m_uRed, 255 * std::sqrt(0.5), 2);
  EXPECT_EQ(shade.m_uRed, shade.m_uBlue);
  AddLight(1, {1, 0, -1, 0});
  EXPECT_EQ(Shade(), kBlack) << "from behind";
}

TEST_F(ModelDrawingTest, LightsHaveTheirColoursAndAddUp) {
  AddLight(0, {0, 0, 1, 0}).m_afColour = {0.4, 0, 0};
  AddLight(3, {0, 0, 1, 0}).m_afColour = {0.2, 0, 0.5};
  AddLight(CLightSet::kAmbient, {}).m_afColour = {0, 0.8, 0};
  const CRgb shade = Shade();
  EXPECT_NEAR(shade.m_uRed, 153, 2);
  EXPECT_NEAR(shade.m_uGreen, 204, 2);
  EXPECT_NEAR(shade.m_uBlue, 128, 2);
}

TEST_F(ModelDrawingTest, LightTurnedOffShinesNoMore) {
  AddLight(0, {0, 0, 1, 0}).m_afColour = {0.5, 0, 0};
  AddLight(1, {0, 0, 1, 0}).m_afColour = {0, 0.5, 0};
  Shade();
  CStaging::AddedLights(Grid()).m_aLights[0].m_bActive = false;
  EXPECT_NEAR(Shade().m_uRed, 0, 1);
  CStaging::AddedLights(Grid()).m_aLights[1].m_bActive = false;
  EXPECT_EQ(Shade(), kWhite) << "without any light the model is drawn unlit";
}

TEST_F(ModelDrawingTest, RemovedLightsDoNotShine) {
  CStaging::RemovedLights(Grid()).m_aLights[0] = {true, false, {0, 0, 1, 0}, {0.5, 0, 0}};
  EXPECT_EQ(Shade(), kWhite);
}

TEST_F(ModelDrawingTest, ComputedImagesAreNotLit) {
  LoadPicture(PlainPicture(kWhite));
  AddLight(0, {0, 0, 1, 0}).m_afColour = {0.5, 0, 0};
  EXPECT_NEAR(Shade().m_uRed, 128, 2);
  for (const int texture : {DrawnTexture::kIllumination, DrawnTexture::kKd}) {
    View().SetDrawTexture(texture);
    EXPECT_EQ(Shade(), kWhite) << texture;
  }
}

TEST_F(ModelDrawingTest, LightModulatesThePicture) {
  LoadPicture(PlainPicture({200, 100, 50}));
  AddLight(0, {0, 0, 1, 0}).m_afColour = {0.5, 0.5, 0.5};
  const CRgb shade = Shade();
  EXPECT_NEAR(shade.m_uRed, 100, 2);
  EXPECT_NEAR(shade.m_uGreen, 50, 2);
  EXPECT_NEAR(shade.m_uBlue, 25, 2);
}

TEST_F(ModelDrawingTest, LightStaysWithTheModelWhenTheCameraTurns) {
  AddLight(0, {1, 0, 1, 0});
  const CRgb before = Shade();
  Fl::e_state = 0;
  View().EnableEvents();
  for (const auto& [event, x] : {std::pair{FL_PUSH, 100}, {FL_DRAG, 200}}) {
    Fl::e_x = x;
    Fl::e_y = 100;
    Fl::e_keysym = FL_Button + FL_LEFT_MOUSE;
    View().handle(event);
  }
  ASSERT_GT(View().Camera().m_fPhi, 20);
  EXPECT_NEAR(Shade().m_uRed, before.m_uRed, 1);
}

TEST_F(ModelDrawingTest, ContextIsLeftWithoutLightAndTextureAndWhite) {
  LoadPicture(PlainPicture(kRed));
  AddLight(0, {0, 0, 1, 0}).m_bDrawn = true;
  Grid().AddPtCstr(HeightCstr(5, 23, 0));
  FrameWith(0x7004E);
  EXPECT_FALSE(glIsEnabled(GL_LIGHTING));
  EXPECT_FALSE(glIsEnabled(GL_TEXTURE_2D));
  EXPECT_TRUE(glIsEnabled(GL_BLEND));
  std::array<GLfloat, 4> colour{};
  glGetFloatv(GL_CURRENT_COLOR, colour.data());
  EXPECT_EQ(colour, (std::array<GLfloat, 4>{1, 1, 1, 1}));
  EXPECT_EQ(glGetError(), static_cast<GLenum>(GL_NO_ERROR));
}

TEST_F(ModelDrawingTest, GridLinesAreGrey) {
  g_DrawingSettings.m_ModelView.m_fGridThickness = 3;
  const CPicture frame = FrameWith(ModelFlag::kGrid);
  const CRgb line = ColourAt(frame, 2.5, 21.5);
  EXPECT_NEAR(line.m_uRed, 128, 2);
  EXPECT_EQ(line.m_uRed, line.m_uGreen);
  EXPECT_EQ(ColourAt(frame, 2.5, 22.2), kBlack) << "inside a cell";
  g_DrawingSettings.m_GreyGrid = {1, 0, 0};
  EXPECT_EQ(ColourAt(FrameOf(View()), 2.5, 21.5), kRed);
}

TEST_F(ModelDrawingTest, GridLinesHaveTheThicknessOfTheSettings) {
  const auto inkAt = [&](float thickness) {
    g_DrawingSettings.m_ModelView.m_fGridThickness = thickness;
    return NonBlack(FrameWith(ModelFlag::kGrid));
  };
  EXPECT_GT(inkAt(6), 1.5 * inkAt(1));
}

TEST_F(ModelDrawingTest, GridLinesLieOnTheModelNotInIt) {
  g_DrawingSettings.m_GreyGrid = {1, 0, 0};
  g_DrawingSettings.m_ModelView.m_fGridThickness = 3;
  SetSurface(Grid(), CBump{});
  const int alone = CountPixels(FrameWith(ModelFlag::kGrid), kRed);
  const int onModel = CountPixels(FrameWith(ModelFlag::kGrid | ModelFlag::kTexturedModel), kRed);
  EXPECT_GT(onModel, 0.95 * alone);
}

// All of a plane is to be seen, so no line of it may be missing.
TEST_F(ModelDrawingTest, GridLinesAreWholeOnSlopes) {
  g_DrawingSettings.m_GreyGrid = {1, 0, 0};
  for (const float thickness : {1.0F, 3.0F}) {
    g_DrawingSettings.m_ModelView.m_fGridThickness = thickness;
    for (const double slope : {0.5, 3.0, 10.0, 30.0}) {
      SetSurface(Grid(), [slope](double x, double y) { return slope * (x + 0.7 * y); });
      View().ResetCamera();
      // Where a line is, there is less of what lies below it.
      const CPicture alone = FrameWith(ModelFlag::kGrid);
      const CPicture model = FrameWith(ModelFlag::kTexturedModel);
      const CPicture both = FrameWith(ModelFlag::kGrid | ModelFlag::kTexturedModel);
      const auto isOnModel = [&](int x, int y) { return PixelOf(model, x, y) == kWhite; };
      const auto lines =
          CountPixels(alone, [&](int x, int y) { return isOnModel(x, y) && PixelOf(alone, x, y).m_uRed > 40; });
      const auto seen = CountPixels(both, [&](int x, int y) {
        return isOnModel(x, y) && PixelOf(alone, x, y).m_uRed > 40 && PixelOf(both, x, y).m_uGreen < 230;
      });
      EXPECT_GT(lines, 20U) << slope;
      EXPECT_GE(static_cast<double>(seen), 0.97 * static_cast<double>(lines)) << slope << ", thickness " << thickness;
    }
  }
}

TEST_F(ModelDrawingTest, LevelsHaveColoursOfTheirOwnWhenAsked) {
  for (const auto& [level, colour] : {std::pair<int, CColour>{0, {1, 0, 0}},
                                      {1, {1, 0.5, 0.5}},
                                      {2, {0.5, 1, 0.5}},
                                      {3, {0.5, 0.5, 1}},
                                      {4, {0.5, 0.5, 1}},
                                      {10, {0.5, 0.5, 1}}}) {
    EXPECT_EQ(SubdivisionColour(level), colour) << level;
  }
  g_DrawingSettings.m_bSpecificSubdivisionColours = true;
  g_DrawingSettings.m_ModelView.m_fGridThickness = 3;
  const CRgb line = ColourAt(FrameWith(ModelFlag::kGrid), 2.5, 21.5);
  EXPECT_NEAR(line.m_uRed, 128, 2);
  EXPECT_EQ(line.m_uGreen, 255);
}

TEST_F(ModelDrawingTest, ConstraintsAreDrawnWithTheirFlagOnly) {
  Grid().AddPtCstr(HeightCstr(2, 22, 0));
  Grid().AddPtCstr(SlopeCstr(8, 24));
  EXPECT_EQ(NonBlack(FrameWith(0)), 0);
  const CPicture frame = FrameWith(ModelFlag::kPointConstraints);
  EXPECT_GT(CountPixels(frame, kYellow), 0);
  EXPECT_GT(CountPixels(frame, kRed), 0);
}

TEST_F(ModelDrawingTest, ConstraintsHaveTheColourOfTheirState) {
  using State = std::pair<std::uint32_t, CRgb>;
  const State unselected{0, {20, 30, 40}};
  const State highlighted{PtCstrState::kHighlighted, {50, 60, 70}};
  const State selected{PtCstrState::kSelected, {80, 90, 100}};
  const State both{PtCstrState::kSelected | PtCstrState::kHighlighted, {80, 90, 100}};
  const auto colour = [](const State& state) {
    return CColour{state.second.m_uRed / 255.0, state.second.m_uGreen / 255.0, state.second.m_uBlue / 255.0};
  };
  const CConstraintColours colours{colour(unselected), colour(highlighted), colour(selected)};
  for (const bool position : {true, false}) {
    (position ? g_DrawingSettings.m_PositionColours : g_DrawingSettings.m_NormalColours) = colours;
    CStaging::Constraints(Grid()).Points().clear();
    Grid().AddPtCstr(position ? HeightCstr(4.5, 23, 0) : SlopeCstr(4.5, 23));
    for (const auto& [state, expected] : {unselected, highlighted, selected, both}) {
      CStaging::Constraints(Grid()).Points().begin()->m_uState = state;
      EXPECT_GT(CountPixels(FrameWith(ModelFlag::kPointConstraints), expected), 10) << position << ' ' << state;
    }
  }
}

TEST_F(ModelDrawingTest, ConstraintsHaveTheSizesAndThicknessesOfTheSettings) {
  struct CRow {
    float CViewDrawing::*m_pSetting;
    bool m_bPosition;
    std::uint32_t m_uState;
  };
  const std::array rows{CRow{&CViewDrawing::m_fPositionSize, true, 0},
                        CRow{&CViewDrawing::m_fUnselectedPositionThickness, true, 0},
                        CRow{&CViewDrawing::m_fHighlightedPositionThickness, true, PtCstrState::kHighlighted},
                        CRow{&CViewDrawing::m_fHighlightedPositionThickness, true, PtCstrState::kSelected},
                        CRow{&CViewDrawing::m_fNormalRadius, false, 0},
                        CRow{&CViewDrawing::m_fUnselectedNormalThickness, false, 0},
                        CRow{&CViewDrawing::m_fUnselectedNormalThickness, false, PtCstrState::kHighlighted},
                        CRow{&CViewDrawing::m_fSelectedNormalThickness, false, PtCstrState::kSelected}};
  for (std::size_t k = 0; k < rows.size(); ++k) {
    const auto& [setting, position, state] = rows[k];
    CStaging::Constraints(Grid()).Points().clear();
    Grid().AddPtCstr(position ? HeightCstr(4.5, 23, 0) : SlopeCstr(4.5, 23));
    CStaging::Constraints(Grid()).Points().begin()->m_uState = state;
    g_DrawingSettings.m_ModelView.*setting = 3;
    const int before = NonBlack(FrameWith(ModelFlag::kPointConstraints));
    g_DrawingSettings.m_ModelView.*setting = 7;
    EXPECT_GT(NonBlack(FrameWith(ModelFlag::kPointConstraints)), 1.3 * before) << "row " << k;
    g_DrawingSettings = {};
  }
}

TEST_F(ModelDrawingTest, PositionStandsAtTheHeightWanted) {
  Grid().AddPtCstr(HeightCstr(4.5, 23, -1));
  const CPicture below = FrameWith(ModelFlag::kPointConstraints | ModelFlag::kTexturedModel);
  EXPECT_EQ(CountPixels(below, kYellow), 0) << "hidden by the surface";
  CStaging::Constraints(Grid()).Points().begin()->m_fZ = 1;
  EXPECT_GT(CountPixels(FrameWith(ModelFlag::kPointConstraints | ModelFlag::kTexturedModel), kYellow), 0);
}

TEST_F(ModelDrawingTest, NormalConstraintLeansAsItsSlopes) {
  g_DrawingSettings.m_ModelView.m_fNormalRadius = 10;
  Grid().AddPtCstr(SlopeCstr(4.5, 23, 0, 0));
  const CPicture upright = FrameWith(ModelFlag::kPointConstraints);
  EXPECT_EQ(ColourAt(upright, 6.5, 23), kBlack);
  // Falling towards +x, so that the normal points there.
  CStaging::Constraints(Grid()).Points().begin()->m_fP = -1;
  EXPECT_EQ(ColourAt(FrameWith(ModelFlag::kPointConstraints), 6.5, 23), kRed);
}

TEST_F(ModelDrawingTest, CellAndPointNormalsHaveFlagsOfTheirOwn) {
  SetSurface(Grid(), CRamp{-1, 0, 0});
  View().ResetCamera();
  g_DrawingSettings.m_ModelView.m_fGridThickness = 3;
  const CPicture cells = FrameWith(ModelFlag::kCellNormals);
  EXPECT_GT(CountPixels(cells, kYellow), 0);
  EXPECT_EQ(CountPixels(cells, kRed), 0);
  const CPicture points = FrameWith(ModelFlag::kPointNormals);
  EXPECT_GT(CountPixels(points, kRed), 0);
  EXPECT_EQ(CountPixels(points, kYellow), 0);
}

TEST_F(ModelDrawingTest, TexelNormalsWithoutAPictureAreRefused) {
  m_Grid.m_Console.Take();
  EXPECT_EQ(NonBlack(FrameWith(ModelFlag::kTexelNormals)), 0);
  EXPECT_EQ(m_Grid.m_Console.Take().find("Error Cgrid::DrawNormalsTexels()\t\tNo texture loaded\n"), 0U);
}

TEST_F(ModelDrawingTest, TexelNormalsAreSegmentsOnTheSurface) {
  SetSurface(Grid(), CRamp{-1, 0, 0});
  Grid().Relighting().SetPicture(PlainPicture(kWhite));
  View().ResetCamera();
  Grid().ComputeNormalsOnly();
  m_Grid.m_Console.Take();
  EXPECT_GT(NonBlack(FrameWith(ModelFlag::kTexelNormals)), 100);
  EXPECT_EQ(m_Grid.m_Console.Take().find("Error"), std::string::npos);
}

TEST_F(ModelDrawingTest, MarkerShowsAnActiveLightThatIsToBeDrawn) {
  for (CLightSet* set : {&CStaging::RemovedLights(Grid()), &CStaging::AddedLights(Grid())}) {
    for (std::size_t k = 0; k < CLightSet::kAmbient; ++k) {
      CLight& light = set->m_aLights[k];
      light.m_afDirection = {1, 0.5, 0.5, 0};
      light.m_afTubeColour = {0, 1, 0, 1};
      light.m_bActive = true;
      EXPECT_EQ(NonBlack(FrameWith(0)), 0) << k;
      light.m_bDrawn = true;
      EXPECT_GT(CountPixels(FrameWith(0), kGreen), 100) << k;
      light.m_bActive = false;
      EXPECT_EQ(NonBlack(FrameWith(0)), 0) << k;
    }
  }
}

TEST_F(ModelDrawingTest, AmbientLightHasNoMarker) {
  AddLight(CLightSet::kAmbient, {1, 0, 0, 0}).m_bDrawn = true;
  EXPECT_EQ(NonBlack(FrameWith(0)), 0);
}

TEST_F(ModelDrawingTest, MarkerRunsFromTheMiddleTowardsTheLight) {
  CLight& light = AddLight(0, {0, 1, 0, 0});
  light.m_bDrawn = true;
  const CPicture frame = FrameWith(0);
  // Length (16 + 6) / 4 = 5.5, radius 1, about (4.5, 23).
  EXPECT_EQ(ColourAt(frame, 5.49, 25), kYellow);
  EXPECT_EQ(ColourAt(frame, 3.52, 28.3), kYellow);
  EXPECT_EQ(ColourAt(frame, 4.5, 28.7), kBlack);
  EXPECT_EQ(ColourAt(frame, 4.5, 22.5), kBlack);
  EXPECT_EQ(ColourAt(frame, 5.7, 25), kBlack);
}
