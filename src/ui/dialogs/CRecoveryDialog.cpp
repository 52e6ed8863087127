#include "ui/dialogs/CRecoveryDialog.h"

#include <algorithm>
#include <utility>

#include <FL/Fl_Button.H>
#include <FL/Fl_Hold_Browser.H>

#include "ui/dialogs/Questions.h"
#include "ui/drawing/ScaleWidgets.h"

CRecoveryDialog::CRecoveryDialog(ViewHost& views, const Fl_Window& mainWindow)
    : CModalDialog(520, 250, "Recover Unsaved Work", views, mainWindow) {
  m_pList = new Fl_Hold_Browser(15, 30, 490, 160, "Work that no file holds: time, model, picture");
  m_pList->align(FL_ALIGN_TOP_LEFT);
  // Names may begin with what the toolkit takes for a format.
  m_pList->format_char(0);
  m_pList->callback(cb_m_pList, this);
  m_pDiscard = new Fl_Button(15, 205, 105, 30, "&Discard");
  m_pDiscard->callback(cb_m_pDiscard, this);
  AddOk(285, 205, 105, 30);
  AddCancel(400, 205, 105, 30);
  end();
  ScaleWidgets(*this);
}

std::optional<std::size_t> CRecoveryDialog::Ask(const std::vector<CLine>& lines, Discard discard) {
  m_aLines = lines;
  m_Discard = std::move(discard);
  m_Answer.reset();
  m_auShown.resize(lines.size());
  for (std::size_t k = 0; k < lines.size(); ++k) m_auShown[k] = k;
  Refresh();
  Run();
  m_Discard = nullptr;
  return m_Answer;
}

// The newest work that is whole is what is mostly wanted.
void CRecoveryDialog::Refresh() {
  m_pList->clear();
  for (const std::size_t line : m_auShown) m_pList->add(m_aLines[line].m_Text.c_str());
  const auto whole = std::ranges::find_if(m_auShown, [this](std::size_t line) { return !m_aLines[line].m_bDamaged; });
  if (whole != m_auShown.end()) m_pList->value(static_cast<int>(whole - m_auShown.begin()) + 1);
  cb_m_pList(m_pList, this);
}

std::optional<std::size_t> CRecoveryDialog::Chosen() const {
  const int row = m_pList->value();
  if (row < 1) return {};
  return m_auShown[static_cast<std::size_t>(row) - 1];
}

bool CRecoveryDialog::ReadInput() {
  const std::optional<std::size_t> chosen = Chosen();
  if (!chosen.has_value()) return true;
  if (m_aLines[*chosen].m_bDamaged) {
    Refuse("This file is damaged. It is left as it is.");
    return false;
  }
  m_Answer = chosen;
  return true;
}

void CRecoveryDialog::DiscardChosen() {
  const std::optional<std::size_t> chosen = Chosen();
  if (!chosen.has_value() || m_aLines[*chosen].m_bDamaged) return;
  if (!AskYesNo("Do you want to delete this work for good ?")) return;
  if (!m_Discard(*chosen)) return Refuse("This work could not be deleted.");
  std::erase(m_auShown, *chosen);
  Refresh();
}

void CRecoveryDialog::cb_m_pList(Fl_Widget* /*widget*/, void* dialog) {
  auto& self = *static_cast<CRecoveryDialog*>(dialog);
  const std::optional<std::size_t> chosen = self.Chosen();
  if (chosen.has_value() && !self.m_aLines[*chosen].m_bDamaged) {
    self.m_pDiscard->activate();
  } else {
    self.m_pDiscard->deactivate();
  }
}

void CRecoveryDialog::cb_m_pDiscard(Fl_Widget* /*widget*/, void* dialog) {
  static_cast<CRecoveryDialog*>(dialog)->DiscardChosen();
}
