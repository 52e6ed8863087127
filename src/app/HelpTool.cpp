#include "app/HelpTool.h"

#include <string>
#include <system_error>

#include <FL/Fl.H>
#include <FL/filename.H>

#include "io/FileUri.h"
#include "ui/help/CKeysWindow.h"
#include "ui/window/CImageViewUI.h"

namespace {

std::string FltkVersion() {
  constexpr int kMajor = 10000;
  constexpr int kMinor = 100;
  const int version = Fl::api_version();
  return std::to_string(version / kMajor) + '.' + std::to_string(version / kMinor % kMinor) + '.' +
         std::to_string(version % kMinor);
}

class CKeysTool : public ToolWindow {
 public:
  explicit CKeysTool(const Fl_Window& mainWindow) : m_Keys(mainWindow, [this] { ReportClosed(); }) {}

  bool IsOpen() const override { return m_Keys.visible() != 0; }
  void Open() override { m_Keys.Open(); }
  void Close() override { m_Keys.hide(); }

 private:
  CKeysWindow m_Keys;
};

}  // namespace

std::unique_ptr<ToolWindow> MakeKeysTool(CImageViewUI& window) { return std::make_unique<CKeysTool>(window); }

// Among the documents installed beside the program; one that was only built lies within its sources.
std::optional<std::filesystem::path> TutorialOf(const std::filesystem::path& program) {
  std::error_code error;
  constexpr int kFoldersUp = 4;
  std::filesystem::path folder = program;
  for (int k = 0; k < kFoldersUp && folder.has_relative_path(); ++k) {
    folder = folder.parent_path();
    for (const char* documents : {"share/doc/relievo/docs", "docs"}) {
      std::filesystem::path tutorial = folder / documents / "tutorial.md";
      if (std::filesystem::is_regular_file(tutorial, error)) return tutorial;
    }
  }
  return std::nullopt;
}

void OpenTutorial(CImageViewUI& window, const std::filesystem::path& program) {
  const std::optional<std::filesystem::path> tutorial = TutorialOf(program);
  if (!tutorial.has_value())
    return window.Notice("The tutorial is not installed: it is the file docs/tutorial.md of the program's sources.");
  if (fl_open_uri(UriOf(tutorial->string()).c_str()) != 0) return;
  window.Notice(("The desktop opens no such file. The tutorial is " + tutorial->string()).c_str());
}

void OpenTutorial(CImageViewUI& window) {
  std::error_code error;
  OpenTutorial(window, std::filesystem::read_symlink("/proc/self/exe", error));
}

std::string AboutText() {
  return "relievo " RELIEVO_VERSION
         "\n\nA textured height field out of one photograph, shaped by hand.\n"
         "Copyright (c) 2026 The relievo authors. MIT License.\n\n"
         "With FLTK (" +
         FltkVersion() +
         "), OpenGL and GLU, libjpeg, libpng, libtiff, libwebp, Little CMS and libzip;\n"
         "where they were there when it was built, with libheif and three.js.";
}
