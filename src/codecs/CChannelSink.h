#pragma once

#include <string>
#include <vector>

#include "codecs/PictureFormats.h"
#include "codecs/RasterSink.h"

/// Takes the rows of a decoder as one channel of numbers, which are neither scaled nor converted.
class CChannelSink : public RasterSink {
 public:
  bool Begin(const CRaster& raster) override;
  void Row(const void* samples) override;
  void SetOrientation(int orientation) override { m_iOrientation = orientation; }

  /// What the decoder said of the rows.
  const CRaster& Raster() const { return m_Raster; }
  /// Why the raster was refused; none if it was not.
  PictureTrouble Trouble() const { return m_Trouble; }
  /// The same in words, as the end of a sentence.
  const std::string& Reason() const { return m_Reason; }
  /// Whether every pixel so far had the same value in all channels.
  bool IsOneChannel() const { return m_bOneChannel; }
  /// The values so far, from the top of the stored picture.
  std::vector<float>& Values() { return m_afValues; }
  int Orientation() const { return m_iOrientation; }

 private:
  void Refuse(PictureTrouble trouble, std::string reason);
  template <typename Sample>
  void Append(const void* samples);

  CRaster m_Raster;
  int m_iOrientation = 1;
  std::vector<float> m_afValues;
  bool m_bOneChannel = true;
  PictureTrouble m_Trouble = PictureTrouble::None;
  std::string m_Reason;
};
