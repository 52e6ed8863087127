#pragma once

#include "app/CLiveRelighting.h"
#include "ui/lights/CLightUI.h"
#include "ui/lights/LightingCommands.h"
#include "ui/seams/ToolWindow.h"

class CGrid;
class CImageViewUI;

/// The light panel as a tool of the window: what it changes reaches the grid and the model view.
class CLightTool : public ToolWindow, private LightingCommands {
 public:
  /// Both must outlive the object.
  CLightTool(CImageViewUI& window, CGrid& grid);
  ~CLightTool() override;
  CLightTool(const CLightTool&) = delete;
  CLightTool& operator=(const CLightTool&) = delete;

  bool IsOpen() const override { return m_Panel.visible() != 0; }
  void Open() override { m_Panel.Open(); }
  void Close() override { m_Panel.hide(); }
  void PictureLoaded() override;
  void GridReplaced() override { m_Panel.Refresh(); }

  /// The light being edited, 0 to 4; -1 while the panel is closed.
  int CurrentLight() const { return IsOpen() ? m_Panel.current_light() : -1; }
  /// Lights were turned elsewhere, perhaps in a drag under way. The computed images, if there are any, follow: during
  /// the drag for at most half of the time and only where one time is short, and always at its end. Where "Live" is on
  /// they follow as they do the panel.
  void LightsMoved();

 private:
  const CLight* GetLightSource(int index, int type) const override;
  void SetLight(int index, int type, const CLight& light) override;
  void UpdateTexelNormals() override;
  void UpdateTexelInterpolation() override;
  void UpdateKd() override;
  bool HasKd() const override;
  bool IsLive() const override { return m_bLive; }
  void SetLive(bool live) override;
  Tone RelitTone() const override;
  void SetTone(Tone tone) override;
  CTextureImages::Which ShownTexture() const override;
  void ShowTexture(CTextureImages::Which image) override;

  void FollowLights();
  void LiveEnded(bool computed);
  void Relight();
  void RelightWhenDue();
  static void cb_Check(void* tool);

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  bool m_bOwed = false;     ///< the computed images are those of former lights
  double m_fSeconds = 0.0;  ///< that relighting took the last time
  double m_fNext = 0.0;     ///< no relighting during a drag before this time
  bool m_bLive = false;
  CLightUI m_Panel;
  CLiveRelighting m_Live;
};
