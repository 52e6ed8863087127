#include "ui/dialogs/CFileChooser.h"

#include <algorithm>
#include <functional>
#include <utility>

#include <FL/Fl.H>
#include <FL/Fl_Group.H>
#include <FL/Fl_Return_Button.H>
#include <FL/Fl_Window.H>
#include <FL/filename.H>

#include "ui/dialogs/TypedName.h"
#include "ui/drawing/ScaleWidgets.h"

namespace {

/// Stands around the field for the name, which does not use the key Tab itself.
class CTabGroup : public Fl_Group {
 public:
  CTabGroup(Fl_Widget& field, std::function<bool()> complete)
      : Fl_Group(field.x(), field.y(), field.w(), field.h()), m_Complete(std::move(complete)) {
    end();
  }
  int handle(int event) override {
    constexpr int kModifiers = FL_SHIFT | FL_CTRL | FL_ALT | FL_META;
    const bool tab = event == FL_KEYBOARD && Fl::event_key() == FL_Tab && Fl::event_state(kModifiers) == 0;
    return tab && m_Complete() ? 1 : Fl_Group::handle(event);
  }

 private:
  std::function<bool()> m_Complete;
};

void PutAround(Fl_Widget& field, Fl_Group& group) {
  Fl_Group& parent = *field.parent();
  parent.insert(group, &field);
  group.add(field);
  group.resizable(field);
  parent.resizable(group);
}

template <class Kind>
Kind* FindIn(Fl_Group& group) {
  for (int k = 0; k < group.children(); ++k) {
    Fl_Widget* const child = group.child(k);
    if (auto* found = dynamic_cast<Kind*>(child)) return found;
    Fl_Group* const inner = child->as_group();
    Kind* const deeper = inner == nullptr ? nullptr : FindIn<Kind>(*inner);
    if (deeper != nullptr) return deeper;
  }
  return nullptr;
}

bool IsFolder(const std::string& name) { return fl_filename_isdir(name.c_str()) != 0; }

}  // namespace

CFileChooser::CFileChooser() : m_Chooser(".", nullptr, Fl_File_Chooser::CREATE, "") {
  Fl_Group::current(nullptr);
  FindWidgets();
  m_pName->callback(cb_Name, this);
  m_pName->tooltip("Tab completes the name.");
  PutAround(*m_pName, *new CTabGroup(*m_pName, [this] { return Complete(); }));
  ScaleWidgets(Window());
  Window().size_range(std::min(Window().w(), Fl::w()), std::min(Window().h(), Fl::h()), Fl::w(), Fl::h());
}

// The toolkit keeps them to itself, but there is only one of each kind.
void CFileChooser::FindWidgets() {
  m_pName = FindIn<Fl_File_Input>(Window());
  m_pList = FindIn<Fl_File_Browser>(Window());
  m_pOk = FindIn<Fl_Return_Button>(Window());
}

std::optional<std::string> CFileChooser::Choose(const CFileQuestion& question) {
  Prepare(question);
  m_Chooser.show();
  m_pName->take_focus();
  m_pName->position(m_pName->size(), 0);
  m_bRelative = false;
  m_ListedByName.clear();
  NoteName();
  while (m_Chooser.shown() != 0) {
    Fl::wait();
    NoteName();
  }
  if (!question.m_OtherPattern.empty()) m_Patterns[question.m_Kind] = m_Chooser.filter_value();
  if (Typed().empty()) return std::nullopt;
  const std::string file = Full();
  if (IsFolder(file)) return std::nullopt;
  m_pName->value(file.c_str());
  return file;
}

void CFileChooser::Prepare(const CFileQuestion& question) {
  const std::string asked = question.m_Kind + '\n' + (question.m_pPattern == nullptr ? "" : question.m_pPattern);
  SetPatterns(question);
  m_Chooser.label(question.m_pTitle);
  const std::string left = m_Chooser.directory();
  const std::string start = question.m_Start.empty() ? left : question.m_Start;
  if (asked != m_Asked || question.m_bSaves || start != left) Begin(start);
  m_Asked = asked;
}

// After these the toolkit adds one for all files and one to be typed, which does not outlive the question.
void CFileChooser::SetPatterns(const CFileQuestion& question) {
  if (question.m_pPattern == nullptr || question.m_OtherPattern.empty()) return m_Chooser.filter(question.m_pPattern);
  constexpr int kAllFiles = 2;
  m_Chooser.filter((std::string(question.m_pPattern) + '\t' + question.m_OtherPattern).c_str());
  const int last = m_Patterns[question.m_Kind];
  if (last <= kAllFiles) m_Chooser.filter_value(last);
}

// When it shows an empty field the toolkit writes the folder into it.
void CFileChooser::Begin(const std::string& start) {
  const std::string folder = IsFolder(start) ? start : FolderOf(start);
  if (IsFolder(folder)) m_Chooser.directory(folder.c_str());
  m_pName->value(IsFolder(start) ? "" : start.c_str());
}

std::string CFileChooser::Typed() const { return m_pName->value(); }

std::string CFileChooser::Full() const { return FullName(m_Folder, Typed()); }

// A relative name begins in the folder that is listed when its first letter is typed. From then on the list follows the
// name, into its folders too, and tells nothing about where it began.
void CFileChooser::NoteName() {
  const std::string typed = Typed();
  const std::string listed = m_Chooser.directory();
  if (listed != m_Listed || !m_bRelative) m_Folder = listed.empty() ? "/" : listed;
  if (!typed.empty()) m_bRelative = IsRelative(typed);
  m_Listed = listed;
}

void CFileChooser::NameChanged() {
  NoteName();
  const std::string file = Full();
  List(FolderOf(file));
  ShowMatches(std::string(LastPart(file)));
  if (Typed().empty() || IsFolder(file)) {
    m_pOk->deactivate();
  } else {
    m_pOk->activate();
  }
}

void CFileChooser::NameEntered() {
  NoteName();
  if (Typed().empty()) return;
  const std::string file = Full();
  if (!IsFolder(file)) {
    m_Chooser.hide();
    return;
  }
  m_Chooser.directory(file.c_str());
  m_pName->position(m_pName->size());
  m_bRelative = false;
}

// The toolkit writes the folder into the field; what stood there comes back.
void CFileChooser::List(const std::string& folder) {
  if (folder == m_ListedByName && m_Listed == m_Chooser.directory()) return;
  if (!IsFolder(folder)) return;
  m_ListedByName = folder;
  if (folder == m_Chooser.directory()) return;
  const std::string typed = Typed();
  const int position = m_pName->position();
  const int mark = m_pName->mark();
  m_Chooser.directory(folder.c_str());
  m_pName->value(typed.c_str());
  m_pName->position(position, mark);
  m_Listed = m_Chooser.directory();
}

// The first name in the list that begins with what is typed comes to the top; an exact match is selected.
void CFileChooser::ShowMatches(const std::string& part) {
  m_pList->deselect();
  for (int line = 1; line <= m_pList->size(); ++line) {
    const std::string name = m_pList->text(line);
    if (!name.starts_with(part)) continue;
    m_pList->topline(line);
    if (name == part || name == part + "/") m_pList->select(line);
    return;
  }
}

bool CFileChooser::Complete() {
  const std::string typed = Typed();
  const bool atEnd = m_pName->position() == m_pName->size() && m_pName->mark() == m_pName->size();
  const std::string part(LastPart(typed));
  if (typed.empty() || !atEnd || m_ListedByName != FolderOf(Full())) return false;
  const std::string completed = typed.substr(0, typed.size() - part.size()) + CommonStart(part, ListedNames());
  if (completed == typed) return false;
  m_pName->value(completed.c_str());
  m_pName->position(m_pName->size());
  NameChanged();
  return true;
}

std::vector<std::string> CFileChooser::ListedNames() const {
  std::vector<std::string> names;
  for (int line = 1; line <= m_pList->size(); ++line) {
    const std::string name = m_pList->text(line);
    if (name != "../") names.push_back(name);
  }
  return names;
}

void CFileChooser::cb_Name(Fl_Widget* /*widget*/, void* chooser) {
  const int key = Fl::event_key();
  const bool entered = Fl::event() == FL_KEYBOARD && (key == FL_Enter || key == FL_KP_Enter);
  auto& self = *static_cast<CFileChooser*>(chooser);
  entered ? self.NameEntered() : self.NameChanged();
}
