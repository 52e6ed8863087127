#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <vector>

struct zip;

/// The members of a zip archive. Nothing in it is believed: neither its sizes, which a few bytes can make a thousand
/// times too large, nor its names, which are never used as paths.
class CZipReader {
 public:
  /// Members that an archive may have; one with more is not opened.
  static constexpr int kMostMembers = 100;

  /// Opens a regular file. `IsOpen` is false where it is no archive, is cut off, has too many members, two of the same
  /// name, or one whose name leads out of the archive (an absolute path, or "..").
  explicit CZipReader(const std::string& filename);

  /// Whether the archive was opened; nothing else may be asked otherwise.
  bool IsOpen() const { return m_pArchive != nullptr; }
  /// Why the archive was not opened, as the end of a sentence ("is no zip archive"); empty if it was.
  const std::string& Trouble() const { return m_Trouble; }

  /// Whether there is a member of that name.
  bool Has(const std::string& name) const;
  /// The contents of a member; nothing if there is no such member, if it holds more than `most` bytes, or if it is
  /// damaged. Takes memory only for what there is. Throws std::bad_alloc.
  std::optional<std::string> Read(const std::string& name, std::size_t most) const;

 private:
  struct CClose {
    void operator()(zip* archive) const;
  };

  std::string TroubleWithNames() const;

  std::unique_ptr<zip, CClose> m_pArchive;
  std::string m_Trouble;
};
