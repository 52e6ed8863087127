// The exported scene in the eyes of a reader that knows nothing of this program.

#include <memory>
#include <span>

#include <Inventor/SoDB.h>
#include <Inventor/SoInput.h>
#include <Inventor/VRMLnodes/SoVRMLAppearance.h>
#include <Inventor/VRMLnodes/SoVRMLCoordinate.h>
#include <Inventor/VRMLnodes/SoVRMLGroup.h>
#include <Inventor/VRMLnodes/SoVRMLImageTexture.h>
#include <Inventor/VRMLnodes/SoVRMLIndexedFaceSet.h>
#include <Inventor/VRMLnodes/SoVRMLShape.h>
#include <Inventor/VRMLnodes/SoVRMLTextureCoordinate.h>
#include <gtest/gtest.h>

#include "io/VrmlExport.h"
#include "support/FileBuilders.h"

namespace {

class VrmlReader : public testing::Test {
 protected:
  static void SetUpTestSuite() { SoDB::init(); }
  static void TearDownTestSuite() { SoDB::finish(); }

  void SetUp() override {
    std::ostringstream out;
    WriteVrml(out, m_Model.m_Grid);
    m_Text = out.str();
    SoInput in;
    in.setBuffer(m_Text.data(), m_Text.size());
    m_pScene = SoDB::readAllVRML(&in);
    ASSERT_NE(m_pScene, nullptr);
    m_pScene->ref();
    ASSERT_EQ(m_pScene->getNumChildren(), 1);
    auto* shape = static_cast<SoVRMLShape*>(m_pScene->getChild(0));
    ASSERT_TRUE(shape->isOfType(SoVRMLShape::getClassTypeId()));
    m_pAppearance = static_cast<SoVRMLAppearance*>(shape->appearance.getValue());
    m_pFaces = static_cast<SoVRMLIndexedFaceSet*>(shape->geometry.getValue());
    ASSERT_TRUE(m_pFaces->isOfType(SoVRMLIndexedFaceSet::getClassTypeId()));
  }
  void TearDown() override { m_pScene->unref(); }

  std::span<const SbVec3f> Points() const {
    const auto* coordinates = static_cast<const SoVRMLCoordinate*>(m_pFaces->coord.getValue());
    return {coordinates->point.getValues(0), static_cast<std::size_t>(coordinates->point.getNum())};
  }
  std::span<const SbVec2f> TexturePoints() const {
    const auto* coordinates = static_cast<const SoVRMLTextureCoordinate*>(m_pFaces->texCoord.getValue());
    return {coordinates->point.getValues(0), static_cast<std::size_t>(coordinates->point.getNum())};
  }
  std::span<const int32_t> Indices() const {
    return {m_pFaces->coordIndex.getValues(0), static_cast<std::size_t>(m_pFaces->coordIndex.getNum())};
  }
  std::size_t Leaves() const { return static_cast<std::size_t>(m_Model.m_Grid.Surface().Tree().LeafCount()); }

  CFullModel m_Model;
  std::string m_Text;
  SoVRMLGroup* m_pScene = nullptr;
  SoVRMLAppearance* m_pAppearance = nullptr;
  SoVRMLIndexedFaceSet* m_pFaces = nullptr;
};

TEST_F(VrmlReader, FindsAPointPerLeafAndUnknown) {
  EXPECT_EQ(Points().size(), Leaves() + m_Model.m_Grid.Surface().Order().Count());
  EXPECT_EQ(TexturePoints().size(), Points().size());
}

TEST_F(VrmlReader, FindsTheHeightsInTheThirdCoordinate) {
  const std::vector<double> heights = NodalHeights(m_Model.m_Grid);
  for (std::size_t k = 0; k < heights.size(); ++k) EXPECT_NEAR(Points()[Leaves() + k][2], heights[k], 1e-4);
}

// A plane surface of V points, of which B lie on the border, has 2 V - 2 - B triangles.
TEST_F(VrmlReader, FindsAsManyTrianglesAsThePointsNeed) {
  std::size_t border = 0;
  for (const SbVec3f& point : Points()) {
    const bool onBorder = point[0] == -3.5F || point[0] == 12.5F || point[1] == 20.0F || point[1] == 26.0F;
    border += onBorder ? 1 : 0;
  }
  EXPECT_EQ(Indices().size() / 4, 2 * Points().size() - 2 - border);
}

TEST_F(VrmlReader, FindsAClosedFanAroundEachCentre) {
  std::size_t at = 0;
  for (std::size_t leaf = 0; leaf < Leaves(); ++leaf) {
    const int32_t first = Indices()[at + 1];
    int32_t last = first;
    for (; at < Indices().size() && Indices()[at] == static_cast<int32_t>(leaf); at += 4) {
      EXPECT_EQ(Indices()[at + 1], last);
      EXPECT_EQ(Indices()[at + 3], -1);
      last = Indices()[at + 2];
    }
    EXPECT_EQ(last, first) << leaf;
  }
  EXPECT_EQ(at, Indices().size());
}

TEST_F(VrmlReader, FindsTextureCoordinatesWithinThePicture) {
  for (const SbVec2f& point : TexturePoints()) {
    EXPECT_TRUE(point[0] >= 0 && point[0] <= 1) << point[0];
    EXPECT_TRUE(point[1] >= 0 && point[1] <= 1) << point[1];
  }
  EXPECT_EQ(m_pFaces->texCoordIndex.getNum(), m_pFaces->coordIndex.getNum());
}

TEST_F(VrmlReader, FindsThePictureAndASurfaceWithTwoSides) {
  auto* texture = static_cast<SoVRMLImageTexture*>(m_pAppearance->texture.getValue());
  EXPECT_STREQ(texture->url[0].getString(), "picture.jpg");
  EXPECT_FALSE(m_pFaces->solid.getValue());
  EXPECT_TRUE(m_pFaces->ccw.getValue());
}

}  // namespace
