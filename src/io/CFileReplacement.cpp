#include "io/CFileReplacement.h"

#include <system_error>

namespace {

namespace fs = std::filesystem;

// A crash may have left a file of the first name; nobody has a hundred of them.
constexpr int kMaxNames = 100;

bool MayBeWritten(const fs::path& existing) {
  std::FILE* file = std::fopen(existing.c_str(), "r+b");
  if (file == nullptr) return false;
  std::fclose(file);
  return true;
}

}  // namespace

CFileReplacement::CFileReplacement(const std::string& filename) : m_Target(filename) {
  std::error_code error;
  const fs::file_status status = fs::status(m_Target, error);
  if (!fs::exists(status)) {
    OpenBeside();
  } else if (fs::is_regular_file(status)) {
    if (!MayBeWritten(m_Target)) return;
    const fs::path resolved = fs::canonical(m_Target, error);
    if (!error) m_Target = resolved;
    OpenBeside();
    if (IsOpen()) fs::permissions(m_Beside, status.permissions(), error);
  } else {
    m_pFile.reset(std::fopen(m_Target.c_str(), "wb"));
  }
}

CFileReplacement::~CFileReplacement() {
  m_pFile.reset();
  std::error_code ignored;
  if (!m_Beside.empty()) fs::remove(m_Beside, ignored);
}

void CFileReplacement::OpenBeside() {
  for (int k = 0; k < kMaxNames && m_pFile == nullptr; ++k) {
    fs::path beside = m_Target;
    beside += ".part" + std::to_string(k);
    m_pFile.reset(std::fopen(beside.c_str(), "wbx"));
    if (m_pFile != nullptr) m_Beside = beside;
  }
}

void CFileReplacement::Write(std::span<const unsigned char> bytes) {
  m_bFailed = m_bFailed || std::fwrite(bytes.data(), 1, bytes.size(), m_pFile.get()) != bytes.size();
}

bool CFileReplacement::Commit() {
  // What is still in the buffer may find the disk full.
  m_bFailed = std::fclose(m_pFile.release()) != 0 || m_bFailed;
  if (m_bFailed || m_Beside.empty()) return !m_bFailed;
  std::error_code error;
  std::filesystem::rename(m_Beside, m_Target, error);
  if (error) return false;
  m_Beside.clear();
  return true;
}
