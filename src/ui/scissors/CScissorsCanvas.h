#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include <FL/Fl_Gl_Window.H>

#include "base/CPicture.h"
#include "scissors/CPixelViewport.h"

class CScissorsTool;
class CGrid;
struct CTracedContour;

/// The picture under the scissors, and over it everything that is being traced, each in a colour of its own.
class CScissorsCanvas : public Fl_Gl_Window {
 public:
  /// `onEvent` sees every event first and answers whether it used it.
  CScissorsCanvas(int x, int y, int w, int h, std::function<bool(int)> onEvent);

  /// The tool and the part of its picture to show; both must outlive the next call. Without a tool nothing but the
  /// background is drawn.
  void Show(const CScissorsTool* tool, const CPixelViewport* view);
  /// The pixel from which the live wire runs to the seed; none where there is no live wire.
  void SetCursor(std::optional<CPixelPosition> cursor);
  /// Whose curves are drawn below the contours, thin and each in the colour of its type; null for none. It must outlive
  /// the next call.
  void ShowCurvesOf(const CGrid* grid);

  int handle(int event) override;

 protected:
  void draw() override;

 private:
  struct CColour {
    std::uint8_t m_uRed, m_uGreen, m_uBlue;
  };
  static constexpr CColour kBackground{212, 208, 200};
  static constexpr CColour kTraced{0, 128, 255};
  static constexpr CColour kSelected{255, 128, 0};
  static constexpr CColour kInProgress{0, 255, 0};
  static constexpr CColour kLiveWire{255, 255, 0};
  static constexpr CColour kKeyPoint{255, 0, 255};
  static constexpr CColour kSeed{255, 0, 0};

  static void SetColour(CColour colour);
  void DrawPicture();
  void TakeReduced(int reduction);
  void DrawCurves() const;
  void DrawContour(const CTracedContour& contour, CColour colour) const;
  void DrawLiveWire() const;
  void DrawKeyPoints() const;
  /// A square of `side` screen pixels around the centre of a pixel, within GL_QUADS.
  void Square(CPixelPosition pixel, int side) const;

  std::function<bool(int)> m_OnEvent;
  const CScissorsTool* m_pTool = nullptr;
  const CPixelViewport* m_pView = nullptr;
  std::optional<CPixelPosition> m_Cursor;
  const CGrid* m_pGrid = nullptr;  ///< whose curves are shown
  CPicture m_Reduced;              ///< the tool's picture, area-filtered
  int m_iReduction = 1;            ///< of m_Reduced, which is empty for 1
};
