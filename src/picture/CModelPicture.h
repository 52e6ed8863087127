#pragma once

#include <utility>

#include "model/CGrid.h"
#include "picture/CPictureOptions.h"

/// A picture of a model: reads the model, draws it, writes the picture.
class CModelPicture {
 public:
  /// Of what was asked for on the command line.
  explicit CModelPicture(CPictureOptions options) : m_Options(std::move(options)) {}

  /// Does it all; answers with a PictureStatus. What goes wrong is told on standard error.
  int Make();

 private:
  bool Read();
  void Draw() const;

  const CPictureOptions m_Options;
  CGrid m_Grid{1};
  bool m_bDamaged = false;  ///< the model could be read in part only
};
