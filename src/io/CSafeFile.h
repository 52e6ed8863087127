#pragma once

#include <array>
#include <cstddef>
#include <ostream>
#include <streambuf>
#include <string>

#include "io/CFileReplacement.h"

/// A text file that replaces another, written the same under every locale, whose old contents stay whole until `Commit`
/// succeeds.
class CSafeFile {
 public:
  /// Of that name, see CFileReplacement.
  explicit CSafeFile(const std::string& filename) : m_File(filename) { m_Text.imbue(std::locale::classic()); }
  CSafeFile(const CSafeFile&) = delete;
  CSafeFile& operator=(const CSafeFile&) = delete;
  ~CSafeFile() = default;

  /// Whether the target may be written. Nothing may be written otherwise.
  bool IsOpen() const { return m_File.IsOpen(); }
  /// Numbers in the default format, six significant digits. A failure shows in `Commit`.
  std::ostream& Text() { return m_Text; }
  /// Completes the file and puts it in place; false, with the target as it was, where anything went wrong.
  bool Commit();

 private:
  /// Collects the text in blocks for the file.
  class CBuffer : public std::streambuf {
   public:
    explicit CBuffer(CFileReplacement& file) : m_File(file) { Empty(); }

   protected:
    int_type overflow(int_type c) override;
    int sync() override;

   private:
    void Empty() { setp(m_acBlock.data(), m_acBlock.data() + m_acBlock.size()); }

    CFileReplacement& m_File;
    std::array<char, std::size_t{1} << 16> m_acBlock{};
  };

  CFileReplacement m_File;
  CBuffer m_Buffer{m_File};
  std::ostream m_Text{&m_Buffer};
};
