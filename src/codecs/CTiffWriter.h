#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include <tiffio.h>

/// Makes the bytes of a TIFF of one channel of 32-bit floats, row by row, not compressed.
class CTiffWriter {
 public:
  /// Both sides are at least 1.
  CTiffWriter(int width, int height);
  CTiffWriter(const CTiffWriter&) = delete;
  CTiffWriter& operator=(const CTiffWriter&) = delete;
  ~CTiffWriter() = default;

  /// Adds the next row from the top.
  void Row(const float* numbers);
  /// The bytes, once all rows are there; empty where there was not enough memory for them.
  std::string Take();

 private:
  /// A file in memory that the library writes, and reads again what stands in it.
  struct CTarget {
    std::string m_Bytes;
    std::size_t m_uAt = 0;
    bool m_bFailed = false;
  };
  struct CClose {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
  };
  static tmsize_t Read(thandle_t handle, void* to, tmsize_t length);
  static tmsize_t Write(thandle_t handle, void* from, tmsize_t length);
  static std::uint64_t Seek(thandle_t handle, std::uint64_t offset, int whence);
  static int Close(thandle_t handle);
  static std::uint64_t Size(thandle_t handle);
  void Describe(int width, int height) const;

  CTarget m_Target;
  std::unique_ptr<TIFF, CClose> m_pTiff;  ///< null where it could not be opened
  std::vector<float> m_afRow;
  std::uint32_t m_uRow = 0;
};
