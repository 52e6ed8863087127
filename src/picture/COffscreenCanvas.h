#pragma once

#include <memory>
#include <string>

#include "base/CPicture.h"
#include "drawing/CSampledBuffer.h"

/// A picture to draw into with OpenGL, without a display: its context is current as long as the object lives. Every
/// pixel is the mean of several samples.
class COffscreenCanvas {
 public:
  /// Longest side of a picture.
  static constexpr int kLargestSide = 8192;

  /// Sizes in pixels, 1 to kLargestSide. Where there is no such context or not enough memory `Trouble` says so, and
  /// nothing may be drawn.
  COffscreenCanvas(int width, int height);
  ~COffscreenCanvas();
  COffscreenCanvas(const COffscreenCanvas&) = delete;
  COffscreenCanvas& operator=(const COffscreenCanvas&) = delete;

  /// Why nothing can be drawn, as a sentence; empty if all is well.
  const std::string& Trouble() const { return m_Trouble; }
  /// What has been drawn. To be called once.
  CPicture Picture() const;

 private:
  bool MakeContext();

  void* m_pDisplay = nullptr;
  void* m_pContext = nullptr;
  std::unique_ptr<CSampledBuffer> m_pBuffer;
  std::string m_Trouble;
};
