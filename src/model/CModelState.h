#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

#include "lighting/CLight.h"
#include "model/CSketch.h"
#include "model/CSurfaceState.h"
#include "model/Globals.h"
#include "solver/CSolverState.h"

/// All that a user has made of a model, as a value: the sketch and the lights, and what of it is selected.
///
/// Two are equal when sketch and lights are, to the last bit; what is selected is kept but not compared.
struct CDocument {
  CSketch m_Sketch;
  CLightSet m_RemovedLights;
  CLightSet m_AddedLights;
  Tone m_Tone = Tone::Clipped;
  std::vector<std::uint32_t> m_auSelectedCells;  ///< of the current resolution, as CSubdivisionRecord numbers them

  /// See above.
  bool operator==(const CDocument& other) const {
    return m_Sketch == other.m_Sketch && m_RemovedLights == other.m_RemovedLights &&
           m_AddedLights == other.m_AddedLights && m_Tone == other.m_Tone;
  }
};

/// A whole model as a value: the document, the surface of both resolutions and how far the solver has come with it.
///
/// Copies share surface and solver, which nobody changes.
struct CModelState {
  CDocument m_Document;
  int m_iNewMaxLevel = kDefaultMaxLevel;  ///< of new grids
  double m_fPickTolerance = 1.0;          ///< see g_fPickTolerance
  std::optional<double> m_LastHeight;     ///< see CPtCstrEdits; no file holds it
  std::shared_ptr<const CSurfaceState> m_pSurface;
  std::shared_ptr<const CSolverState> m_pSolver;
};

class CGrid;

/// What the user has made, and all of the model: with both, one comes back to where it was.
CDocument DocumentOf(const CGrid& grid);
CModelState StateOf(const CGrid& grid);

/// Makes such values a grid's own.
class CRestoration {
 public:
  /// For a document of the present rectangle, levels and resolution, with what was selected in it; posts what that has
  /// put out of date: kRebuildMaps, kRebuild, kRestart or nothing. The surface stays.
  static void RestoreDocument(CGrid& grid, const CDocument& document);
  /// Replaces the whole model, for which nothing may wait: the surface is the one of the state at once, and stays where
  /// the solver had done with it. The run flag is the caller's to set. Throws std::bad_alloc with the model as it was.
  static void RestoreState(CGrid& grid, const CModelState& state);
};

/// About how much memory they take.
std::size_t BytesOf(const CDocument& document);
std::size_t BytesOf(const CModelState& state);
