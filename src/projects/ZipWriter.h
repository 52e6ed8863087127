#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

/// One member of an archive that is to be written.
struct CZipMember {
  std::string m_Name;
  std::string_view m_Contents;  ///< must live until the archive has been made
  bool m_bPacked = true;        ///< false stores the bytes as they are, for what is packed already
};

/// The bytes of a zip archive with these members, in this order; their names must differ. Throws std::bad_alloc.
std::vector<unsigned char> ZipOf(std::span<const CZipMember> members);
