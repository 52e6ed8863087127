#pragma once

#include <filesystem>
#include <string>
#include <vector>

#include "support/gui/CLightPanelUser.h"
#include "support/gui/CRelievo.h"
#include "support/gui/CUser.h"
#include "tutorial/Scenes.h"

/// Somebody who makes a model of a photograph with mouse and keyboard, and takes pictures of the screen on the way.
/// Everything throws std::runtime_error, saying at what, where the program does not do what is expected of it.
class CModeller {
 public:
  /// At the running program, with nothing loaded. Pictures and models go to the directory `results`.
  explicit CModeller(std::filesystem::path results);

  const CUser& User() const { return m_User; }

  void LoadPicture(const CScene& scene);
  /// A grid with the proportions of the picture, 100 model units high. `shot` names the picture of the dialog, if any.
  void NewGrid(int width, const std::string& shot = "");
  /// The same by the entry of the menu.
  void FitPicture() const;
  void Draw(const std::vector<CStroke>& strokes) const;
  /// Traces with the scissors. `shot` names the picture of their window, if any.
  void Trace(const std::vector<CTrace>& traces, const std::string& shot = "") const;
  void Raise(const std::vector<CHeight>& heights) const;
  /// Selects the curve that has a node at a pixel of the picture and places so many heights of one value along it, so
  /// far to its left. `shot` names the picture of the panel, if any.
  void RaiseAlong(CPixel node, int count, int height, const std::string& beside, const std::string& shot = "") const;
  void PutUpright(const std::vector<CPixel>& places) const;
  /// Sets the weight of a fair line that passes through a pixel of the picture. `shot` names the picture of the dialog.
  void SetCurvatureWeight(CPixel onCurve, const std::string& weight, const std::string& shot) const;
  /// Takes one light out and puts another in, and shows the picture in the new light. Angles are in degrees.
  void Relight(double removedPhi, double addedPhi, const std::string& shot) const;

  /// Opens the panel of the reference depth, loads a map of the samples and shows it over the photograph. `shot` names
  /// the picture of that.
  void LoadDepthMap(const std::string& map, const std::string& shot) const;
  /// Has that panel suggest one tear, and takes it; the panel closes. `shot` names the picture of the suggestion.
  void TakeSuggestedTear(const std::string& shot) const;

  /// Lets the solver run until it has converged.
  void Solve() const;
  void Save(const std::string& name, bool withLights) const;
  void ExportVrml(const std::string& name) const;
  /// Drags in the model view by so many pixels.
  void Drag(int dx, int dy, int button) const;
  void PressKey(const std::string& keys) const { m_User.Type(keys); }
  void ClickOn(Control control) const { m_User.ClickOn(control); }
  /// Opens a tool and answers where its window is.
  CArea Open(Control tool, const std::string& title) const;
  void Close(const std::string& title) const;

  /// Takes a picture of all windows of the program.
  void Shoot(const std::string& name) const;
  /// Takes a picture of the model view alone.
  void ShootModel(const std::string& name) const;

 private:
  void Capture(const CArea& area, const std::string& name) const;
  void RestPointer() const;

  std::filesystem::path m_Results;
  mutable CRelievo m_Program;
  CUser m_User{m_Program};
};
