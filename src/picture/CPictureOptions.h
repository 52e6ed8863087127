#pragma once

#include <optional>
#include <string>

/// What picture of which model is asked for.
struct CPictureOptions {
  std::string m_Model;   ///< grid file or project
  std::string m_Image;   ///< photograph, instead of a project's own; empty for none
  std::string m_Output;  ///< PNG to write
  int m_iWidth = 800;    ///< pixels
  int m_iHeight = 600;
  double m_fAzimuth = 0.0;    ///< of the eye, degrees: from straight in front to the right
  double m_fElevation = 0.0;  ///< and upwards, -90 to 90
  bool m_bFit = false;        ///< the surface fills the picture; else all of it would at every angle
};

/// Options from the command line, or the status to end with: help and version are printed and end with 0, misuse is
/// explained on standard error and ends with 1.
struct CParsedPictureOptions {
  CPictureOptions m_Options;
  std::optional<int> m_ExitStatus;
};
CParsedPictureOptions ParsePictureOptions(int argc, const char* const* argv);
