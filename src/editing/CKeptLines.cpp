#include "editing/CKeptLines.h"

#include <fstream>
#include <sstream>

#include "base/Console.h"
#include "io/CSafeFile.h"
#include "io/RegularFile.h"

std::vector<std::string> CKeptLines::Read() const {
  constexpr std::size_t kMost = std::size_t{1} << 20;
  std::vector<std::string> lines;
  if (!IsRegularFile(m_File)) return lines;
  std::string text(kMost, '\0');
  std::ifstream in(m_File, std::ios::binary);
  in.read(text.data(), static_cast<std::streamsize>(text.size()));
  text.resize(static_cast<std::size_t>(in.gcount()));
  std::istringstream all(text);
  for (std::string line; std::getline(all, line);) lines.push_back(line);
  return lines;
}

bool CKeptLines::Write(const std::vector<std::string>& lines) {
  if (m_File.empty()) return false;
  CSafeFile file(m_File);
  if (file.IsOpen()) {
    for (const std::string& line : lines) file.Text() << line << '\n';
    if (file.Commit()) return true;
  }
  if (!m_bToldUnwritable) Console() << "The " << m_What << " cannot be kept in " << m_File.native() << '\n';
  m_bToldUnwritable = true;
  return false;
}

void CKeptLines::TellDamaged() {
  if (!m_bToldDamaged) Console() << "The " << m_What << " in " << m_File.native() << " is damaged in part\n";
  m_bToldDamaged = true;
}
