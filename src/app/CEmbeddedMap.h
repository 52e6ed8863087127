#pragma once

#include <functional>
#include <optional>
#include <string>

#include "codecs/EmbeddedDepth.h"

class CImageViewUI;

/// The depth map that the photograph of the window carries, if it carries one.
class CEmbeddedMap {
 public:
  /// The window must outlive the object.
  explicit CEmbeddedMap(CImageViewUI& window) : m_Window(window) {}

  /// Another photograph is on show: looks into its file, and has a map offered.
  void PictureLoaded();
  bool IsThere() const { return m_Found.has_value(); }
  /// Precondition: there is one.
  CReadDepthMap Read() const { return ReadEmbeddedDepth(*m_Found); }

 private:
  CImageViewUI& m_Window;
  std::optional<CEmbeddedDepth> m_Found;
};
