// The page that shows a model: its text, and what a browser makes of it.

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include "codecs/PngBytes.h"
#include "exports/CleanFileMesh.h"
#include "exports/GlbFile.h"
#include "exports/HtmlFile.h"
#include "exports/SurfaceExport.h"
#include "support/BmpBuilders.h"
#include "support/CBrowser.h"
#include "support/CTemporaryDirectory.h"
#include "support/CleanMeshBuilders.h"
#include "support/FileBuilders.h"

namespace {

int CountOf(const std::string& text, const std::string& part) {
  int count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

// What lies between two texts, the first of which is there.
std::string Between(const std::string& text, const std::string& before, const std::string& behind) {
  const std::size_t from = text.find(before) + before.size();
  return text.substr(from, text.find(behind, from) - from);
}

std::string PageOf(const std::string& glb) { return *HtmlOf({"cup", glb, "Photograph", {}}); }

}  // namespace

TEST(PageTest, HoldsTheModelInBase64) {
  const auto coded = [](const std::string& glb) {
    return Between(PageOf(glb), R"(<script id="model" type="text/plain">)", "</script>");
  };
  EXPECT_EQ(coded("light work."), "bGlnaHQgd29yay4=");
  EXPECT_EQ(coded("light work"), "bGlnaHQgd29yaw==");
  EXPECT_EQ(coded("light wor"), "bGlnaHQgd29y");
  EXPECT_EQ(coded(std::string("\xFF\xFE\x00\xFB", 4)), "//4A+w==");
}

TEST(PageTest, HoldsTheRelitPictureWithItsKind) {
  const std::string page = *HtmlOf({"cup", "glb", "Photograph", {"relit", "image/jpeg"}});
  EXPECT_NE(page.find("<script id=\"relit\" type=\"text/plain\" data-type=\"image/jpeg\">cmVsaXQ=</script>"),
            std::string::npos);
}

TEST(PageTest, EscapesItsTitle) {
  const std::string page = *HtmlOf({"</title><script>\"t\u00E4ter & co\"</script>", "glb", "<b>", {}});
  EXPECT_EQ(Between(page, "<title>", "</title>"),
            "&lt;/title&gt;&lt;script&gt;&quot;t\u00E4ter &amp; co&quot;&lt;/script&gt;");
  EXPECT_EQ(Between(page, "<span id=\"picture-name\">", "</span>"), "&lt;b&gt;");
  EXPECT_EQ(CountOf(page, "<script"), CountOf(PageOf("glb"), "<script"));
}

TEST(PageTest, IsNotMisledByMarksInItsContents) {
  const std::string page = *HtmlOf({"%MODEL% %RELIT%", "glb", "%TITLE%", {}});
  EXPECT_EQ(Between(page, "<title>", "</title>"), "%MODEL% %RELIT%");
  EXPECT_EQ(Between(page, "<span id=\"picture-name\">", "</span>"), "%TITLE%");
  EXPECT_EQ(CountOf(page, "Z2xi"), 1);
}

TEST(PageTest, AsksForNothingBesideItself) {
  const std::string page = PageOf("glb");
  EXPECT_EQ(CountOf(page, "<script"), CountOf(page, "</script>"));
  EXPECT_EQ(CountOf(page, "<script src"), 0);
  EXPECT_EQ(CountOf(page, "<link"), 1);
  EXPECT_EQ(CountOf(page, "<link rel=\"icon\" href=\"data:,\">"), 1);
  EXPECT_EQ(CountOf(page, "<!--"), 0) << "a script after it would not end";
  EXPECT_NE(page.find("content=\"default-src 'none'; "), std::string::npos) << "a browser holds it to that";
}

TEST(PageTest, KeepsTheLicenceOfItsScripts) {
  const std::string page = PageOf("glb");
  EXPECT_EQ(CountOf(page, "Copyright (c) 2010-2017 three.js authors"), 1);
  EXPECT_EQ(CountOf(page, "The above copyright notice and this permission notice shall be included in all"), 1);
  for (const char* part : {"exports.WebGLRenderer", "GLTFLoader", "OrbitControls"})
    EXPECT_NE(page.find(part), std::string::npos) << part;
}

TEST(PageTest, HasTheModelsNameOrElseItsOwn) {
  const CTemporaryDirectory directory;
  const CTornGrid grid({});
  CExportSettings settings;
  const std::string file = directory.File("c-open.html");
  for (const std::string title : {"c-open", "coffee"}) {
    ASSERT_TRUE(ExportSurface(grid.m_Grid, file, settings));
    EXPECT_EQ(Between(BytesOf(file), "<title>", "</title>"), title);
    settings.m_Name = "coffee";
  }
}

TEST(PageTest, HoldsThreeHundredMegabytesAtMost) {
  CPageContents contents{"cup", "", "Photograph", {}};
  contents.m_Glb.resize(300'000'001);
  EXPECT_FALSE(HtmlOf(contents).has_value());
}

// In a browser.

namespace {

constexpr int kWidth = 600;
constexpr int kHeight = 400;

using CColour = std::array<int, 3>;

constexpr CColour kBackground{0x26, 0x28, 0x2B};
constexpr CColour kRed{200, 30, 20};  // quarters of the photograph, from the lower left one on
constexpr CColour kDark{12, 20, 40};
constexpr CColour kBlue{40, 90, 250};
constexpr CColour kBright{250, 245, 160};
constexpr CColour kGreen{60, 160, 70};  // the relit picture

// As large as that no side is a power of two.
CPicture QuarteredPicture() {
  CPicture picture{400, 300, {}};
  for (int row = 0; row < picture.m_iHeight; ++row) {
    for (int column = 0; column < picture.m_iWidth; ++column) {
      const CColour& lower = column < 200 ? kRed : kDark;
      const CColour& upper = column < 200 ? kBlue : kBright;
      for (const int channel : row < 150 ? lower : upper)
        picture.m_aPixels.push_back(static_cast<std::uint8_t>(channel));
    }
  }
  return picture;
}

CColour ColourAt(const CPicture& picture, int x, int y) {
  const auto at = static_cast<std::size_t>(3 * (y * picture.m_iWidth + x));
  return {picture.m_aPixels[at], picture.m_aPixels[at + 1], picture.m_aPixels[at + 2]};
}

bool IsNear(const CColour& a, const CColour& b, int levels) {
  for (std::size_t k = 0; k < a.size(); ++k) {
    if (std::abs(a[k] - b[k]) > levels) return false;
  }
  return true;
}

// What of a shot is not background, in pixels from the lower left corner; the upper right ones included.
struct CBounds {
  int x0 = kWidth;
  int y0 = kHeight;
  int x1 = -1;
  int y1 = -1;
};
CBounds BoundsOfModel(const CPicture& shot) {
  CBounds bounds;
  for (int y = 0; y < kHeight; ++y) {
    for (int x = 0; x < kWidth; ++x) {
      if (IsNear(ColourAt(shot, x, y), kBackground, 3)) continue;
      bounds = {std::min(bounds.x0, x), std::min(bounds.y0, y), std::max(bounds.x1, x), std::max(bounds.y1, y)};
    }
  }
  return bounds;
}

/// A page with a flat model that has a photograph, opened.
class PageInBrowserTest : public testing::Test {
 protected:
  void SetUp() override {
    if (CBrowser::Program().empty()) GTEST_SKIP() << "no browser is installed: what pages look like is not tested";
    CTornGrid grid({}, 3, 3, 0, {0, 40, 0, 30});
    const std::string glb =
        *GlbOf(CleanFileMesh(grid.m_Grid, {}), {PngOf(QuarteredPicture()), "image/png"}, "</script>");
    const CEncodedPicture relit{PngOf(PlainPicture(3, 2, kGreen[0], kGreen[1], kGreen[2])), "image/png"};
    const std::string file = m_Directory.File("my \"c\u00FCp\" %41#1?.html");
    WriteText(file, *HtmlOf({"my \"c\u00FCp\"", glb, "Photograph", relit}));
    m_Browser.emplace(file, kWidth, kHeight);
    AwaitShot(
        [this](const CPicture&) { return !m_Browser->Evaluate("document.documentElement.dataset.state").is_null(); });
    ASSERT_EQ(m_Browser->Evaluate("document.getElementById('word').textContent"), "");
    for (const char* id : {"front", "textures"})
      m_Browser->Evaluate(std::string("document.getElementById('") + id + "').style.visibility = 'hidden'");
    LookFromTheFront();
  }

  void LookFromTheFront() { m_Browser->Evaluate("document.getElementById('front').click()"); }
  // The first shot that is as it should be, or the last one in vain.
  CPicture AwaitShot(const std::function<bool(const CPicture&)>& isRight) {
    CPicture shot = m_Browser->Shot();
    for (int k = 0; k < 200 && !isRight(shot); ++k) shot = m_Browser->Shot();
    const CBounds bounds = BoundsOfModel(shot);
    EXPECT_TRUE(isRight(shot)) << bounds.x0 << ' ' << bounds.y0 << ' ' << bounds.x1 << ' ' << bounds.y1;
    return shot;
  }
  // A shot of the model as it shows from the front.
  CPicture FrontShot() {
    return AwaitShot([](const CPicture& shot) {
      return IsNear(ColourAt(shot, kWidth / 2 - 50, kHeight / 2 - 50), kRed, 8) &&
             IsNear(ColourAt(shot, kWidth / 2 + 50, kHeight / 2 - 50), kDark, 8);
    });
  }
  void Choose(const std::string& texture) {
    m_Browser->Evaluate("document.querySelector('input[value=" + texture + "]').click()");
  }

  CTemporaryDirectory m_Directory;
  std::optional<CBrowser> m_Browser;
};

}  // namespace

TEST_F(PageInBrowserTest, ShowsThePhotographInItsColoursUprightAndWhole) {
  const CPicture shot = FrontShot();
  const CBounds bounds = BoundsOfModel(shot);
  EXPECT_NEAR(static_cast<double>(bounds.x1 - bounds.x0) / (bounds.y1 - bounds.y0), 4.0 / 3, 0.02);
  EXPECT_GT(bounds.y1 - bounds.y0, kHeight / 2);
  EXPECT_NEAR(bounds.x0 + bounds.x1, kWidth, 4);
  const auto at = [&](int column, int row) {
    return ColourAt(shot, bounds.x0 + (bounds.x1 - bounds.x0) * column / 4,
                    bounds.y0 + (bounds.y1 - bounds.y0) * row / 4);
  };
  EXPECT_TRUE(IsNear(at(1, 1), kRed, 8)) << testing::PrintToString(at(1, 1));
  EXPECT_TRUE(IsNear(at(3, 1), kDark, 8)) << testing::PrintToString(at(3, 1));
  EXPECT_TRUE(IsNear(at(1, 3), kBlue, 8)) << testing::PrintToString(at(1, 3));
  EXPECT_TRUE(IsNear(at(3, 3), kBright, 8)) << testing::PrintToString(at(3, 3));
  EXPECT_EQ(m_Browser->Complaints(), std::vector<std::string>());
  EXPECT_EQ(m_Browser->Evaluate("document.title"), "my \"c\u00FCp\"");
}

TEST_F(PageInBrowserTest, AsksForNothingButItself) {
  FrontShot();
  ASSERT_EQ(m_Browser->Requests().size(), 1U);
  EXPECT_TRUE(m_Browser->Requests()[0].starts_with("file:///"));
}

TEST_F(PageInBrowserTest, IsTurnedByMouseAndFingerAndZoomed) {
  const CPicture front = FrontShot();
  const auto isNarrower = [&](const CPicture& shot) {
    const CBounds bounds = BoundsOfModel(shot);
    return bounds.x1 >= 0 && bounds.x1 - bounds.x0 < kWidth / 2;
  };
  m_Browser->DragMouse(kWidth / 2, kHeight / 2, 70, 0);
  EXPECT_NE(AwaitShot(isNarrower).m_aPixels, front.m_aPixels);
  LookFromTheFront();
  FrontShot();
  m_Browser->DragFinger(kWidth / 2, kHeight / 2, -70, 0);
  AwaitShot(isNarrower);
  LookFromTheFront();
  FrontShot();
  for (int k = 0; k < 10; ++k) {
    m_Browser->Call("Input.dispatchMouseEvent",
                    {{"type", "mouseWheel"}, {"x", kWidth / 2}, {"y", kHeight / 2}, {"deltaX", 0}, {"deltaY", 120}});
  }
  AwaitShot(isNarrower);
  EXPECT_EQ(m_Browser->Complaints(), std::vector<std::string>());
}

TEST_F(PageInBrowserTest, ShowsTheRelitPictureOrNoneInItsPlace) {
  FrontShot();
  const auto middle = [](const CPicture& shot) { return ColourAt(shot, kWidth / 2 - 50, kHeight / 2 - 50); };
  Choose("relit");
  AwaitShot([&](const CPicture& shot) { return IsNear(middle(shot), kGreen, 8); });
  Choose("none");
  AwaitShot([&](const CPicture& shot) {
    const auto [red, green, blue] = middle(shot);
    return std::abs(red - green) < 20 && std::abs(green - blue) < 20 && red > 60;
  });
  Choose("picture");
  FrontShot();
  EXPECT_EQ(m_Browser->Complaints(), std::vector<std::string>());
}

TEST(PageExportTest, OfAModelWithoutAPhotographOffersNoTexture) {
  if (CBrowser::Program().empty()) GTEST_SKIP() << "no browser is installed: what pages look like is not tested";
  const CTemporaryDirectory directory;
  CTornGrid grid({{{{3.25, 2}, {12, 13.5}}}});
  SetRandomHeights(grid.Lattice(), 5);
  ASSERT_TRUE(ExportSurface(grid.m_Grid, directory.File("a.html"), {}));
  CBrowser browser(directory.File("a.html"), kWidth, kHeight);
  CPicture shot = browser.Shot();
  for (int k = 0; k < 200 && BoundsOfModel(shot).x1 < kWidth / 2 + 20; ++k) shot = browser.Shot();
  EXPECT_GT(BoundsOfModel(shot).x1, kWidth / 2 + 20);
  EXPECT_EQ(browser.Evaluate("document.getElementById('textures').hidden"), true);
  EXPECT_EQ(browser.Complaints(), std::vector<std::string>());
}
