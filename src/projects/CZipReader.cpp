#include "projects/CZipReader.h"

#include <algorithm>
#include <array>
#include <string_view>

#include <zip.h>

#include "io/RegularFile.h"

namespace {

struct CCloseMember {
  void operator()(zip_file_t* member) const { zip_fclose(member); }
};

bool LeadsOut(std::string_view name) {
  if (name.empty() || name.front() == '/' || name.find('\\') != std::string_view::npos) return true;
  for (std::size_t begin = 0; begin <= name.size();) {
    const std::size_t end = std::min(name.find('/', begin), name.size());
    if (name.substr(begin, end - begin) == "..") return true;
    begin = end + 1;
  }
  return false;
}

}  // namespace

void CZipReader::CClose::operator()(zip* archive) const { zip_discard(archive); }

CZipReader::CZipReader(const std::string& filename) {
  if (!IsRegularFile(filename)) {
    m_Trouble = "cannot be opened";
    return;
  }
  int error = 0;
  m_pArchive.reset(zip_open(filename.c_str(), ZIP_RDONLY | ZIP_CHECKCONS, &error));
  if (m_pArchive == nullptr) {
    m_Trouble = error == ZIP_ER_OPEN || error == ZIP_ER_READ ? "cannot be opened" : "is no zip archive, or is damaged";
    return;
  }
  m_Trouble = TroubleWithNames();
  if (!m_Trouble.empty()) m_pArchive.reset();
}

std::string CZipReader::TroubleWithNames() const {
  const zip_int64_t count = zip_get_num_entries(m_pArchive.get(), 0);
  if (count > kMostMembers) return "has too many members";
  for (zip_int64_t k = 0; k < count; ++k) {
    const char* name = zip_get_name(m_pArchive.get(), static_cast<zip_uint64_t>(k), 0);
    if (name == nullptr || LeadsOut(name)) return "has a member whose name leads out of it";
  }
  return {};
}

bool CZipReader::Has(const std::string& name) const { return zip_name_locate(m_pArchive.get(), name.c_str(), 0) >= 0; }

std::optional<std::string> CZipReader::Read(const std::string& name, std::size_t most) const {
  const std::unique_ptr<zip_file_t, CCloseMember> member(zip_fopen(m_pArchive.get(), name.c_str(), 0));
  if (member == nullptr) return {};
  std::string contents;
  std::array<char, std::size_t{1} << 16> block{};
  for (;;) {
    const zip_int64_t length = zip_fread(member.get(), block.data(), block.size());
    if (length < 0) return {};
    // At its end the library has compared the checksum.
    if (length == 0) return contents;
    const auto more = static_cast<std::size_t>(length);
    if (more > most - contents.size()) return {};
    contents.append(block.data(), more);
  }
}
