#pragma once

#include <cstddef>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include <gtest/gtest.h>
#include <unistd.h>

#include "scissors/CScissorsTool.h"
#include "support/CStaging.h"
#include "support/ConsoleCapture.h"
#include "support/ScissorsBuilders.h"
#include "support/gui/Input.h"
#include "support/gui/ToolkitTest.h"
#include "ui/scissors/CScissorsView.h"
#include "ui/scissors/ScissorsHost.h"

/// Remembers what the scissors gave the model.
class RecordingScissorsHost : public ScissorsHost {
 public:
  bool AddTracedCurve(const std::vector<CPlanePoint>& points) override {
    if (m_bTakes) m_aaCurves.push_back(points);
    return m_bTakes;
  }
  void RefreshDisplays() override { ++m_iRefreshes; }

  bool m_bTakes = true;
  std::vector<std::vector<CPlanePoint>> m_aaCurves;
  int m_iRefreshes = 0;
};

/// The window on the screen with a picture, and the user's hands on mouse and keyboard.
class ScissorsViewTest : public ToolkitTest {
 protected:
  static constexpr CRgb kBackground{212, 208, 200};
  static constexpr CRgb kTraced{0, 128, 255};
  static constexpr CRgb kSelected{255, 128, 0};
  static constexpr CRgb kInProgress{0, 255, 0};
  static constexpr CRgb kLiveWire{255, 255, 0};
  static constexpr CRgb kKeyPoint{255, 0, 255};
  static constexpr CRgb kSeed{255, 0, 0};

  void SetUp() override { OpenWith(GreyPicture(200, 150)); }
  void TearDown() override { m_View.Close(); }

  void OpenWith(const CTopDownImage& picture) {
    m_View.Close();
    CPicture stored{picture.m_iWidth, picture.m_iHeight, {}};
    const std::size_t row = 3 * static_cast<std::size_t>(picture.m_iWidth);
    for (auto y = static_cast<std::size_t>(picture.m_iHeight); y-- > 0;) {
      const auto first = picture.m_aPixels.begin() + static_cast<std::ptrdiff_t>(y * row);
      stored.m_aPixels.insert(stored.m_aPixels.end(), first, first + static_cast<std::ptrdiff_t>(row));
    }
    CStaging::Textures(Grid()).SetPicture(stored);
    m_View.Open();
    ASSERT_TRUE(RunToolkitUntil([&] { return Window().has_value() && m_Screen.HasFocus(*Window()); }));
    ASSERT_TRUE(RunToolkitUntil([&] { return m_View.damage() == 0; }));
    m_Console.Take();
  }

  CScissorsTool& Tool() { return *m_View.Tool(); }
  const CScissorsContours& Contours() { return Tool().Contours(); }
  std::optional<WindowId> Window() { return m_Screen.FindWindow(getpid(), m_View.label()); }
  CPixel OnScreen(CPixelPosition place) { return m_Screen.AreaOf(*Window()).At({place.m_iColumn, place.m_iRow}); }
  bool SeesAt(CPixelPosition place, CRgb colour) {
    const CPixel p = OnScreen(place);
    return RunToolkitUntil([&] { return m_Screen.Capture({p.m_iX, p.m_iY, 1, 1}).IsAll(colour); });
  }

  void Point(CPixelPosition place) {
    MovePointer(OnScreen(place));
    const std::string wanted = "x = " + std::to_string(place.m_iColumn) + " y = " + std::to_string(place.m_iRow) + " ";
    ASSERT_TRUE(RunToolkitUntil([&] { return std::string(m_View.StatusText()).find(wanted) == 0; }))
        << m_View.StatusText();
  }
  // A click that makes `place` the seed.
  void ClickAt(CPixelPosition place) {
    Point(place);
    Click(OnScreen(place));
    ASSERT_TRUE(RunToolkitUntil([&] {
      return Contours().IsInProgress() &&
             Contours().Seed() == *m_View.Viewport().PixelAt(place.m_iColumn, place.m_iRow);
    }));
  }
  void Build() {
    ASSERT_TRUE(RunToolkitUntil([&] { return !Tool().IsBuilding(); }));
  }
  bool TypeUntil(const std::string& keys, const std::function<bool()>& condition) {
    PressKey(keys);
    return RunToolkitUntil(condition);
  }
  // A contour of a row of pixels, on which the model does not want to be torn.
  void TraceAndKeep(int row) {
    m_Host.m_bTakes = false;
    ClickAt({20, row});
    Point({60, row});
    ASSERT_TRUE(TypeUntil("Return", [&] { return !Contours().IsInProgress(); }));
  }

  ConsoleCapture m_Console;
  RecordingScissorsHost m_Host;
  CScissorsView m_View{Grid(), m_Host};
};
