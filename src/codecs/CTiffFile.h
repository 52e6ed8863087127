#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string_view>

#include <tiffio.h>

/// A TIFF in memory, opened with a library that says nothing.
class CTiffFile {
 public:
  /// `bytes` must outlive the object.
  explicit CTiffFile(std::string_view bytes);
  CTiffFile(const CTiffFile&) = delete;
  CTiffFile& operator=(const CTiffFile&) = delete;
  ~CTiffFile() = default;

  /// The library's handle; null where there is no picture.
  TIFF* Handle() const { return m_pTiff.get(); }
  /// Whether the library has asked for bytes beyond the end.
  bool HasEnded() const { return m_Source.m_bEnded; }
  /// A number in the directory, or its default; 0 where there is neither.
  template <typename Number>
  Number Field(std::uint32_t tag) const {
    Number value = 0;
    return TIFFGetFieldDefaulted(m_pTiff.get(), tag, &value) == 0 ? Number{0} : value;
  }

 private:
  struct CSource {
    std::string_view m_Bytes;
    std::uint64_t m_uAt = 0;
    bool m_bEnded = false;
    bool m_bPads = false;  ///< what is missing is made up, so that half a strip can be decoded
  };
  struct CClose {
    void operator()(TIFF* tiff) const { TIFFClose(tiff); }
  };
  static tmsize_t Read(thandle_t source, void* to, tmsize_t length);
  static tmsize_t Write(thandle_t source, void* from, tmsize_t length);
  static std::uint64_t Seek(thandle_t source, std::uint64_t offset, int whence);
  static int Close(thandle_t source);
  static std::uint64_t Size(thandle_t source);

  CSource m_Source;
  std::unique_ptr<TIFF, CClose> m_pTiff;
};
