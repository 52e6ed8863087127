#pragma once

#include <cstdint>
#include <functional>
#include <optional>

#include <FL/Fl_Gl_Window.H>

#include "scissors/CPixelViewport.h"

class CScissorsTool;
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
  void DrawContour(const CTracedContour& contour, CColour colour) const;
  void DrawLiveWire() const;
  void DrawKeyPoints() const;
  /// A square of `side` screen pixels around the centre of a pixel, within GL_QUADS.
  void Square(CPixelPosition pixel, int side) const;

  std::function<bool(int)> m_OnEvent;
  const CScissorsTool* m_pTool = nullptr;
  const CPixelViewport* m_pView = nullptr;
  std::optional<CPixelPosition> m_Cursor;
};
