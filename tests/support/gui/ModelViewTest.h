#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

#include <FL/Fl_Window.H>

#include "base/Console.h"
#include "drawing/CTextures.h"
#include "io/Bmp.h"
#include "support/CStaging.h"
#include "support/CTemporaryDirectory.h"
#include "support/gui/Pictures.h"
#include "support/gui/ToolkitTest.h"
#include "ui/modelview/CGridView.h"
#include "ui/seams/ViewHost.h"

/// A window around a view that counts what it is asked for.
class CModelViewHost : public ViewHost {
 public:
  void PauseSolverForCommand() override { ++m_iPauses; }
  void ResumeAfterCommand() override { ++m_iResumptions; }
  void ShowHelp(HelpText::Index index) override { m_aiHelps.push_back(index); }
  void RestoreHelp() override { ++m_iHelpsRestored; }
  void ShowMessage(const std::string& text) override { m_aMessages.push_back(text); }
  void Tell(const std::string& text) override { m_aTold.push_back(text); }
  void RedrawImageView() override { ++m_iImageRedraws; }
  void RedrawModelView() override {}
  void FocusImageView() override { ++m_iFocuses; }
  bool ShowsDebugZone() const override { return false; }
  void ShowPointerInside(bool /*inside*/) override {}
  void ShowInfluence(double /*value*/) override {}
  void ShowNumber(int /*number*/, int /*levelCode*/) override {}
  void LightsMoved() override { ++m_iLightMoves; }
  void Notice(const char* /*text*/) override {}

  int m_iPauses = 0;
  int m_iResumptions = 0;
  std::vector<int> m_aiHelps;
  int m_iHelpsRestored = 0;
  std::vector<std::string> m_aMessages;
  std::vector<std::string> m_aTold;
  int m_iImageRedraws = 0;
  int m_iFocuses = 0;
  int m_iLightMoves = 0;
};

/// What a view saves of itself; empty if it does not.
inline CPicture FrameOf(CGridView& view) {
  const CTemporaryDirectory directory;
  const std::string file = (directory.Path() / "frame.bmp").string();
  if (!view.SaveFrame(file)) return {};
  std::ostringstream unheard;
  const CConsoleRedirect quiet(unheard);
  auto frame = Global::LoadBMP(file, 1);
  return frame ? std::move(frame->m_Picture) : CPicture{};
}

/// A picture of a given size whose pixels are `colour(x, y)`.
template <typename Colour>
CPicture PictureOf(int width, int height, const Colour& colour) {
  CPicture picture{width, height, {}};
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const CRgb c = colour(x, y);
      picture.m_aPixels.insert(picture.m_aPixels.end(), {c.m_uRed, c.m_uGreen, c.m_uBlue});
    }
  }
  return picture;
}
inline CPicture PlainPicture(CRgb colour) {
  return PictureOf(8, 8, [&](int /*x*/, int /*y*/) { return colour; });
}

inline int CountPixels(const CPicture& picture, CRgb colour) {
  int count = 0;
  for (int y = 0; y < picture.m_iHeight; ++y) {
    for (int x = 0; x < picture.m_iWidth; ++x) count += PixelOf(picture, x, y) == colour ? 1 : 0;
  }
  return count;
}

inline constexpr CRgb kWhite{255, 255, 255};
inline constexpr CRgb kRed{255, 0, 0};
inline constexpr CRgb kGreen{0, 255, 0};
inline constexpr CRgb kBlue{0, 0, 255};
inline constexpr CRgb kYellow{255, 255, 0};

/// Base of tests of the model view: the view alone in a window, showing a flat grid over `kOblong`.
class ModelViewTest : public ToolkitTest {
 protected:
  static constexpr int kSize = 430;

  ModelViewTest() {
    m_pView = new CGridView(0, 0, kSize, kSize);
    m_Window.end();
    SetSurface(Grid(), CFlat{});
    m_pView->AttachGrid(Grid());
    m_pView->AttachHost(m_Host);
    m_pView->AttachTextures(m_Textures);
    m_Window.show();
  }
  void SetUp() override { ASSERT_TRUE(WaitUntilDrawn()); }
  bool WaitUntilDrawn() {
    return RunToolkitUntil([this] { return m_pView->visible_r() != 0 && m_pView->damage() == 0; });
  }

  CGridView& View() { return *m_pView; }
  /// Shows these ModelFlag bits and no others.
  void ShowOnly(std::uint32_t flags) {
    View().SetFlag(View().DisplayFlags() & ~std::uint32_t{0xE00}, false);
    View().SetFlag(flags, true);
  }
  void LoadPicture(const CPicture& picture) {
    CStaging::Textures(Grid()).SetPicture(picture);
    View().make_current();
    m_Textures.Load(Grid().Relighting().Textures());
  }
  /// The pixel of a frame that shows a point of the flat model, seen from the front.
  CRgb ColourAt(const CPicture& frame, double x, double y) {
    const CCamera& camera = View().Camera();
    const double scale = kSize / (2 * camera.m_fR);
    return PixelOf(frame, static_cast<int>(std::floor((x - camera.m_Centre.x) * scale + kSize / 2.0)),
                   static_cast<int>(std::floor((y - camera.m_Centre.y) * scale + kSize / 2.0)));
  }

  CModelViewHost m_Host;
  CTextures m_Textures;
  Fl_Window m_Window{kSize, kSize};
  CGridView* m_pView = nullptr;  ///< owned by the window
};
