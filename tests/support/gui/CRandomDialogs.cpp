#include "support/gui/CRandomDialogs.h"

#include <array>
#include <string_view>
#include <utility>

#include "support/BmpBuilders.h"
#include "support/FileBuilders.h"
#include "support/SamplePhotograph.h"
#include "support/gui/CDeedLog.h"
#include "support/gui/CMonkey.h"

namespace {

// Drawn fast even with a normal at every texel.
constexpr int kSmallWidth = 60;
constexpr int kSmallHeight = 40;

}  // namespace

CRandomDialogs::CRandomDialogs(CMonkey& monkey, std::filesystem::path directory)
    : m_Monkey(monkey), m_Directory(std::move(directory)) {
  // A copy, since frames are saved under the names of pictures, too.
  std::filesystem::copy_file(kSamplePhotograph, m_Directory / "cup.bmp");
  WriteBytes(InDirectory("small.bmp"), BmpFile(SomePicture(kSmallWidth, kSmallHeight)));
  WriteText(m_Directory / "rubbish.bmp", "BM rubbish");
  WriteText(m_Directory / "rubbish.grid", "0 0 1 nan\n0 3\n");
}

void CRandomDialogs::ReportTo(CDeedLog& log) const {
  for (const char* name : {"a.grid", "b.grid"}) log.Watch(m_Directory / name, Deed::GridSaved);
  log.Watch(m_Directory / "scene.wrl", Deed::SceneSaved);
  log.Watch(m_Directory / "heights.txt", Deed::HeightFieldSaved);
  log.Watch(m_Directory / "shot.bmp", Deed::FrameSaved);
  for (const char* name : {"frame   0.bmp", "frame   1.bmp"}) log.Watch(m_Directory / name, Deed::AnimationExported);
}

std::optional<std::string> CRandomDialogs::ChooseFile(const CFileQuestion& question) {
  const std::string_view title = question.m_pTitle;
  const std::string_view wanted = question.m_pPattern == nullptr ? "*.grid" : question.m_pPattern;
  if (m_bObedient) return wanted == "*.bmp" ? InDirectory("cup.bmp") : FirstGrid();
  if (m_Monkey.OneIn(6)) return std::nullopt;
  if (m_Monkey.OneIn(8)) return (m_Directory / "missing" / "file").string();
  if (title.find("Height-Field") != std::string_view::npos) return InDirectory("heights.txt");
  if (title.find("frame buffer") != std::string_view::npos) return InDirectory("shot.bmp");
  if (wanted == "*.bmp") {
    return InDirectory(
        m_Monkey.OneOf(std::array{"small.bmp", "small.bmp", "small.bmp", "cup.bmp", "shot.bmp", "rubbish.bmp"}));
  }
  if (wanted == "*.relievo") return InDirectory(m_Monkey.OneOf(std::array{"a.relievo", "b.relievo", "rubbish.grid"}));
  if (wanted == "*.wrl") return InDirectory("scene.wrl");
  return InDirectory(m_Monkey.OneOf(std::array{"a.grid", "b.grid", "a.grid", "b.grid", "rubbish.grid"}));
}

bool CRandomDialogs::Ask(const char* question) {
  if (m_bObedient) return true;
  return ShowsReally() ? m_Toolkit.Ask(question) : !m_Monkey.OneIn(3);
}

std::string CRandomDialogs::AskText(const char* question) {
  if (ShowsReally()) static_cast<void>(m_Toolkit.AskText(question));
  if (m_Monkey.OneIn(4)) return {};
  return m_Monkey.OneIn(4) ? (m_Directory / "missing" / "frame").string() : InDirectory("frame");
}

void CRandomDialogs::Notice(const char* text) {
  if (!m_bObedient && ShowsReally()) m_Toolkit.Notice(text);
}

bool CRandomDialogs::ShowsReally() { return m_Monkey.OneIn(4); }
