#pragma once

#include "ui/lights/CLightUI.h"
#include "ui/lights/LightingCommands.h"
#include "ui/window/ToolWindow.h"

class CGrid;
class CImageViewUI;

/// The light panel as a tool of the window: what it changes reaches the grid and the model view.
class CLightTool : public ToolWindow, private LightingCommands {
 public:
  /// Both must outlive the object.
  CLightTool(CImageViewUI& window, CGrid& grid);

  bool IsOpen() const override { return m_Panel.visible() != 0; }
  void Open() override { m_Panel.Open(); }
  void Close() override { m_Panel.hide(); }
  void PictureLoaded() override;
  void GridReplaced() override { m_Panel.Refresh(); }

  /// The light being edited, 0 to 4; -1 while the panel is closed.
  int CurrentLight() const { return IsOpen() ? m_Panel.current_light() : -1; }
  /// Lights were turned elsewhere.
  void LightsMoved();

 private:
  CLight* GetLightSource(int index, int type) override;
  void UpdateTexelNormals() override;
  void UpdateTexelInterpolation() override;
  void UpdateKd() override;
  bool HasKd() const override;
  TextureMode ShownTexture() const override;
  void ShowTexture(TextureMode mode) override;

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  CLightUI m_Panel;
};
