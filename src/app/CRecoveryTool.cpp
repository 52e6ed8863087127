#include "app/CRecoveryTool.h"

#include <algorithm>
#include <array>
#include <ctime>
#include <vector>

#include <FL/Fl.H>

#include "base/Console.h"
#include "model/CGrid.h"
#include "ui/window/CImageViewUI.h"

namespace {

std::string TimeText(std::int64_t time) {
  const std::time_t seconds = time;
  std::tm local{};
  std::array<char, 32> text{};
  if (localtime_r(&seconds, &local) == nullptr) return "?";
  std::strftime(text.data(), text.size(), "%Y-%m-%d %H:%M", &local);
  return text.data();
}

std::string NameIn(const std::string& path, const char* none) {
  return path.empty() ? none : std::filesystem::path(path).filename().string();
}

CRecoveryDialog::CLine LineOf(const CUnsavedWork& work) {
  if (work.m_bDamaged) return {work.m_File.string() + " is damaged", true};
  return {TimeText(work.m_Note.m_iTime) + "   " + NameIn(work.m_Note.m_Model, "(no name)") + "   " +
          NameIn(work.m_Note.m_Picture, "(no picture)")};
}

}  // namespace

CRecoveryTool::CRecoveryTool(CImageViewUI& window, CGrid& grid, const std::filesystem::path& folder)
    : m_Window(window),
      m_Grid(grid),
      m_Recovery(folder, {[&window] { return window.Commands().Project(); }, [] { return Fl::pushed() != nullptr; },
                          [](const std::string& text) { Console() << text << '\n'; }}),
      m_Dialog(window, window) {
  Connect();
}

CRecoveryTool::~CRecoveryTool() {
  Fl::remove_check(cb_Check, this);
  for (const int descriptor : {m_Recovery.TimerDescriptor(), m_Recovery.DoneDescriptor()}) {
    if (descriptor >= 0) Fl::remove_fd(descriptor);
  }
}

void CRecoveryTool::Connect() {
  for (const int descriptor : {m_Recovery.TimerDescriptor(), m_Recovery.DoneDescriptor()}) {
    if (descriptor >= 0) Fl::add_fd(descriptor, FL_READ, cb_Attend, this);
  }
  Fl::add_check(cb_Check, this);
  CRecoveryServices services;
  services.m_HasWork = [this] { return m_bHasWork; };
  services.m_ChooseWork = [this] { return ChooseWork(); };
  services.m_Replacing = [this] { End(); };
  services.m_Replaced = [this] {
    m_Recovery.SetAside();
    RefreshList();
  };
  services.m_Saved = [this] {
    m_Recovery.NoteSaved(m_Grid.Gate().Edits(), DocumentOf(m_Grid));
    if (m_bHasWork) RefreshList();
  };
  services.m_SteppedOver = [this] { PutBack(); };
  services.m_End = [this] { End(); };
  m_Window.SetRecovery(std::move(services));
}

void CRecoveryTool::TellAtStart() {
  const std::vector<CUnsavedWork> works = m_Recovery.List();
  for (const CUnsavedWork& work : works) {
    if (work.m_bDamaged) Console() << "The unsaved work in " << work.m_File.string() << " is damaged and left alone\n";
  }
  const auto newest = std::ranges::find(works, false, &CUnsavedWork::m_bDamaged);
  m_bHasWork = newest != works.end();
  if (!m_bHasWork) return;
  m_Window.UnsavedWorkChanged();
  m_Window.Tell(FormatHelp(HelpText::kUnsavedWork, {TimeText(newest->m_Note.m_iTime)}));
}

std::optional<std::string> CRecoveryTool::ChooseWork() {
  const std::vector<CUnsavedWork> works = m_Recovery.List();
  std::vector<CRecoveryDialog::CLine> lines;
  lines.reserve(works.size());
  for (const CUnsavedWork& work : works) lines.push_back(LineOf(work));
  const std::optional<std::size_t> line =
      m_Dialog.Ask(lines, [&](std::size_t k) { return m_Recovery.Discard(works[k].m_File); });
  RefreshList();
  if (!line.has_value()) return {};
  if (m_Recovery.TakeUp(works[*line].m_File)) return works[*line].m_File.string();
  m_Window.Notice("Another program has taken up this work.");
  return {};
}

// Done again it is not taken up again: what is offered twice is not lost.
void CRecoveryTool::PutBack() {
  m_Recovery.PutBack();
  RefreshList();
}

void CRecoveryTool::RefreshList() {
  const std::vector<CUnsavedWork> works = m_Recovery.List();
  m_bHasWork = std::ranges::find(works, false, &CUnsavedWork::m_bDamaged) != works.end();
  m_Window.UnsavedWorkChanged();
}

void CRecoveryTool::End() {
  m_Recovery.NoteChanges(m_Grid.Gate().Edits());
  m_Recovery.End();
}

void CRecoveryTool::cb_Attend(int /*descriptor*/, void* tool) {
  static_cast<CRecoveryTool*>(tool)->m_Recovery.Attend();
}

// Looked at each time the toolkit goes round, and so after every event and every tick of the solver.
void CRecoveryTool::cb_Check(void* tool) {
  auto& self = *static_cast<CRecoveryTool*>(tool);
  self.m_Recovery.NoteChanges(self.m_Grid.Gate().Edits());
}
