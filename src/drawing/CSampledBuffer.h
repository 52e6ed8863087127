#pragma once

#include <array>
#include <cstddef>

#include "base/CPicture.h"

/// A picture to draw into with OpenGL that no screen shows, in the context that is current when it is made, used and
/// destroyed. Every pixel is the mean of several samples.
class CSampledBuffer {
 public:
  /// Samples of every pixel.
  static constexpr int kSamples = 4;

  /// Sizes in pixels, at least 1.
  CSampledBuffer(int width, int height);
  ~CSampledBuffer();
  CSampledBuffer(const CSampledBuffer&) = delete;
  CSampledBuffer& operator=(const CSampledBuffer&) = delete;

  /// Whether it can be drawn into; there may be too little memory, or no such thing in the context.
  bool IsComplete() const { return m_bComplete; }
  /// From now on all is drawn into it; the viewport is all of it.
  void Begin();
  /// What has been drawn. What was drawn into before is again.
  CPicture End();

 private:
  bool MakeBuffers();
  void AddStorage(unsigned attachment, unsigned format, int samples);

  const int m_iWidth;
  const int m_iHeight;
  std::array<int, 4> m_aiViewport{};  ///< before it was drawn into
  int m_iBefore = 0;                  ///< the frame buffer of then
  unsigned m_uSampled = 0;            ///< that which is drawn into
  unsigned m_uResolved = 0;           ///< and the one that its means go to
  std::array<unsigned, 3> m_auStorages{};
  std::size_t m_uStorages = 0;
  bool m_bComplete = false;
};
