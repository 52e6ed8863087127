#pragma once

#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "base/CPlanePoint.h"
#include "base/Vector3.h"
#include "io/GridFile.h"
#include "model/CModelState.h"

/// What the two views show and how, and what the mouse edits: plain numbers, in the terms of the views.
struct CProjectViews {
  int m_iEditingMode = 0;           ///< see EditingMode
  std::uint32_t m_uCurveType = 0;   ///< of new curves
  std::uint32_t m_uImageFlags = 0;  ///< see ImageFlag
  std::uint32_t m_uModelFlags = 0;  ///< see ModelFlag
  int m_iTexture = 0;               ///< see DrawnTexture
  double m_fZoom = 1.0;             ///< of the image view
  CPlanePoint m_Pan;
  // The camera of the model view, see CCamera.
  Vector3 m_Centre;
  Vector3 m_Eye;
  Vector3 m_Up;
  double m_fR = 0.0;
  double m_fR0 = 0.0;
  double m_fTheta = 90.0;
  double m_fPhi = 0.0;
  double m_fZeta = 0.0;
};

/// One moment of the recording.
struct CProjectFrame {
  Vector3 m_Target;
  Vector3 m_Eye;
  Vector3 m_Up;
  double m_fHalfSize = 0.0;
  double m_fSeconds = 0.0;
};

/// The photograph of a project.
struct CProjectPicture {
  std::string m_File;     ///< where it was loaded from first; empty for none
  std::string m_Project;  ///< the project file that it was taken out of last; empty for none
  /// The bytes of that file, or of a PNG of the same pixels; null where the project only names the file.
  std::shared_ptr<const std::string> m_pBytes;
};

/// What a list of projects tells of one.
struct CProjectNote {
  std::int64_t m_iTime = 0;  ///< when it was written, seconds since 1970
  std::string m_Model;       ///< file of the model that it came of; empty for none
  std::string m_Picture;     ///< file of the photograph; empty for none
};

/// The whole work as a value: what a project file holds.
///
/// Copies share surface, solver and photograph, which nobody changes, so that another thread may write one.
struct CProject {
  CModelState m_Model;
  CSolvedHeights m_Heights;  ///< of m_Model, for its grid file; not read back
  CProjectViews m_Views;
  std::vector<CProjectFrame> m_aRecording;
  CProjectPicture m_Picture;
  std::string m_ModelFile;  ///< what the model was saved as or loaded from last; empty for nothing
};
