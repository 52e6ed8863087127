#pragma once

#include <string>
#include <vector>

#include "codecs/PictureFormats.h"

class CGrid;

/// A model and its photograph as the programs without a window read them.
struct CModelInput {
  bool m_bRead = false;                  ///< the grid holds the model; nothing but the notices means anything else
  bool m_bDamaged = false;               ///< the model could be read in part only
  CReadPicture m_Photograph;             ///< without pixels for none
  std::string m_PhotographFile;          ///< where a project had its photograph from; empty for none
  std::vector<std::string> m_asNotices;  ///< what the user is to be told, sentences
};

/// Reads a grid file or a project, told apart by their contents, into the grid, and the photograph: the one in `image`
/// or, where that name is empty, the project's own.
CModelInput ReadModelInput(CGrid& grid, const std::string& model, const std::string& image);
