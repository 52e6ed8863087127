#include "support/gui/CClipboard.h"

#include <filesystem>
#include <fstream>
#include <stdexcept>

#include "support/gui/WaitUntil.h"

namespace {

std::filesystem::path FileWith(const std::string& text, const std::filesystem::path& directory) {
  std::filesystem::path file = directory / "text";
  std::ofstream(file) << text;
  return file;
}

}  // namespace

CClipboard::CClipboard(const CScreen& screen, const std::string& text)
    // With -quiet it stays in the foreground, and so ends with the object.
    : m_uOwnerBefore(screen.ClipboardOwner()),
      m_Owner({"xclip", "-quiet", "-selection", "clipboard", FileWith(text, m_Directory.Path())}, ".", "/dev/null") {
  const auto hasIt = [&] {
    const WindowId owner = screen.ClipboardOwner();
    return owner != 0 && owner != m_uOwnerBefore;
  };
  if (!WaitUntil([&] { return hasIt() || !m_Owner.IsRunning(); }) || !hasIt()) {
    throw std::runtime_error("xclip could not take the clipboard");
  }
}
