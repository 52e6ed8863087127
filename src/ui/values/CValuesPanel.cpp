#include "ui/values/CValuesPanel.h"

#include <algorithm>
#include <initializer_list>
#include <utility>

#include <FL/Fl_Box.H>
#include <FL/Fl_Check_Button.H>
#include <FL/Fl_Choice.H>

#include "editing/TypedNumber.h"
#include "model/CGrid.h"
#include "ui/drawing/DialogPlacement.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/values/CValueField.h"
#include "ui/values/ValuesCommands.h"

namespace {

constexpr int kWidth = 340;
constexpr int kFieldWidth = 94;
constexpr int kFieldHeight = 24;
constexpr int kLeftColumn = 72;
constexpr int kRightColumn = 236;

struct CFieldRow {
  ConstraintValue m_Which;
  int m_iX;
  int m_iY;
  const char* m_pLabel;
};

constexpr std::array<CFieldRow, kConstraintValues> kFields{{
    {ConstraintValue::X, kLeftColumn, 36, "x"},
    {ConstraintValue::Y, kRightColumn, 36, "y"},
    {ConstraintValue::Z, kLeftColumn, 66, "z"},
    {ConstraintValue::P, kLeftColumn, 96, "p (dz/dx)"},
    {ConstraintValue::Q, kRightColumn, 96, "q (dz/dy)"},
    {ConstraintValue::Tilt, kLeftColumn, 126, "Tilt"},
    {ConstraintValue::Direction, kRightColumn, 126, "Direction"},
    {ConstraintValue::LeftCurvature, kLeftColumn, 238, "curvature"},
    {ConstraintValue::LeftTorsion, kLeftColumn, 268, "torsion"},
    {ConstraintValue::LeftDistance, kLeftColumn, 324, "distance"},
    {ConstraintValue::LeftOrientation, kLeftColumn, 354, "orientation"},
    {ConstraintValue::RightCurvature, kRightColumn, 238, "curvature"},
    {ConstraintValue::RightTorsion, kRightColumn, 268, "torsion"},
    {ConstraintValue::RightDistance, kRightColumn, 324, "distance"},
    {ConstraintValue::RightOrientation, kRightColumn, 354, "orientation"},
}};

// The order of the entries is that of the list of types.
constexpr std::array kTypes{CurveType::kPosition, CurveType::kNormal, CurveType::kFairness};

Fl_Box* AddText(int x, int y, int width, const char* text) {
  auto* box = new Fl_Box(x, y, width, kFieldHeight, text);
  box->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_CLIP);
  box->labelsize(12);
  return box;
}

Fl_Button* AddButton(int x, int y, int width, const char* label, Fl_Callback* callback, void* data) {
  auto* button = new Fl_Button(x, y, width, kFieldHeight, label);
  button->labelsize(12);
  button->callback(callback, data);
  return button;
}

void SetActive(Fl_Widget& widget, bool active) {
  if ((widget.active() != 0) == active) return;
  if (active) {
    widget.activate();
  } else {
    widget.deactivate();
  }
}

void SetText(Fl_Box& box, std::string& kept, const std::string& text) {
  if (kept == text) return;
  kept = text;
  box.label(kept.c_str());
}

std::string NameOf(CurveType type) {
  switch (type) {
    case CurveType::kPosition:
      return "tear";
    case CurveType::kNormal:
      return "crease";
    case CurveType::kFairness:
      return "fairness curve";
    default:
      return "curve";
  }
}

CValuesPanel& Panel(void* panel) { return *static_cast<CValuesPanel*>(panel); }

}  // namespace

CValuesPanel::CValuesPanel(CGrid& grid, ValuesCommands& commands, const Fl_Window& mainWindow,
                           std::function<void()> closed)
    : Fl_Double_Window(kWidth, 560, "Constraint values"),
      m_Grid(grid),
      m_Commands(commands),
      m_MainWindow(mainWindow),
      m_Closed(std::move(closed)),
      m_Values(grid) {
  BuildPoint();
  BuildCurve();
  BuildGroup();
  m_pTold = AddText(8, 530, kWidth - 16, "");
  m_pTold->labelcolor(FL_RED);
  end();
  ScaleWidgets(*this);
  set_non_modal();
}

CValueField* CValuesPanel::AddValue(ConstraintValue which, int x, int y, const char* label) {
  auto* field = new CValueField(x, y, kFieldWidth, kFieldHeight, label);
  field->SetActions({[this, which](const std::optional<double>& number) { return Typed(which, number); },
                     [this, which](double steps) { return NoteChange(m_Values.StepBy(which, steps)); },
                     [this](const std::string& refusal) { Tell(refusal); }});
  return field;
}

// For what the field shows the number of; something else may have been selected meanwhile.
std::string CValuesPanel::Typed(ConstraintValue which, const std::optional<double>& number) {
  return number.has_value() ? NoteChange(m_Values.SetOf(m_Subject, which, *number)) : std::string("That is no number");
}

std::string CValuesPanel::NoteChange(std::string refusal) {
  if (refusal.empty()) m_Commands.ValueChanged();
  return refusal;
}

void CValuesPanel::BuildPoint() {
  m_pWhat = AddText(8, 8, kWidth - 16, "");
  m_pWhat->labelfont(FL_HELVETICA_BOLD);
  for (const CFieldRow& row : kFields)
    m_apFields[static_cast<std::size_t>(row.m_Which)] = AddValue(row.m_Which, row.m_iX, row.m_iY, row.m_pLabel);
  m_pSameHeight = AddButton(kRightColumn - 58, 66, kFieldWidth + 58, "Same height as ...", cb_SameHeight, this);
  m_pSameHeight->type(FL_TOGGLE_BUTTON);
}

void CValuesPanel::BuildCurve() {
  AddText(8, 156, kWidth - 16, "Curve of the node")->labelfont(FL_HELVETICA_BOLD);
  m_pType = new Fl_Choice(kLeftColumn, 182, kFieldWidth + 16, kFieldHeight, "Type");
  m_pType->add("tear|crease|fairness");
  m_pClosed = new Fl_Check_Button(kRightColumn - 20, 182, kFieldWidth, kFieldHeight, "closed");
  AddText(kLeftColumn, 212, kFieldWidth, "Left");
  AddText(kRightColumn, 212, kFieldWidth, "Right");
  m_apAutoBumps = {new Fl_Check_Button(kLeftColumn - 4, 296, kFieldWidth, kFieldHeight, "auto bump"),
                   new Fl_Check_Button(kRightColumn - 4, 296, kFieldWidth, kFieldHeight, "auto bump")};
  for (Fl_Widget* widget : std::initializer_list<Fl_Widget*>{m_pType, m_pClosed, m_apAutoBumps[0], m_apAutoBumps[1]}) {
    widget->labelsize(12);
    widget->callback(cb_Attributes, this);
  }
  m_pType->textsize(12);
}

CValueField* CValuesPanel::AddGroupField(Group action, int y, const char* label) {
  auto* field = new CValueField(kLeftColumn, y, kFieldWidth, kFieldHeight, label);
  const auto set = [this, action](double number) {
    m_afGroupNumbers[action] = number;
    return std::string();
  };
  field->SetActions({[set](const std::optional<double>& number) {
                       return number.has_value() ? set(*number) : std::string("That is no number");
                     },
                     [this, action, set](double steps) {
                       const double step = action == kScale ? 0.1 : m_Values.Step(ConstraintValue::Z);
                       return set(m_afGroupNumbers[action] + steps * step);
                     },
                     [this](const std::string& refusal) { Tell(refusal); }});
  return field;
}

void CValuesPanel::BuildGroup() {
  m_pGroup = AddText(8, 386, kWidth - 16, "");
  m_pGroup->labelfont(FL_HELVETICA_BOLD);
  m_apGroupFields = {AddGroupField(kRaise, 412, "by"), AddGroupField(kScale, 442, "by"),
                     AddGroupField(kSet, 472, "to")};
  m_apGroupButtons = {AddButton(kRightColumn - 58, 412, 152, "Raise", cb_Group<kRaise>, this),
                      AddButton(kRightColumn - 58, 442, 152, "Scale about the mean", cb_Group<kScale>, this),
                      AddButton(kRightColumn - 58, 472, 152, "Set to one height", cb_Group<kSet>, this),
                      AddButton(kRightColumn - 58, 502, 152, "Delete the chosen", cb_DeleteGroup, this)};
}

void CValuesPanel::Open() {
  Tell({});
  OpenBeside(*this, m_MainWindow);
}

void CValuesPanel::hide() {
  const bool wasShown = shown() != 0;
  Fl_Double_Window::hide();
  if (!wasShown) return;
  m_Commands.DropNextHeight();
  m_Closed();
}

void CValuesPanel::Tell(const std::string& text) {
  SetText(*m_pTold, m_Told, text);
  Refresh();
}

// Whatever has selected something else, a field with a text in it is left by that.
void CValuesPanel::FollowSelection() {
  if (m_Values.Subject() == m_Subject) return;
  for (std::size_t k = 0; k < kConstraintValues; ++k) {
    if (const std::optional<std::string> text = m_apFields[k]->TakeTyped())
      SetText(*m_pTold, m_Told, Typed(static_cast<ConstraintValue>(k), TypedNumber(*text)));
  }
  m_Subject = m_Values.Subject();
}

void CValuesPanel::Refresh() {
  FollowSelection();
  std::string what = "Nothing is selected";
  if (m_Values.What() == CSelectedValues::Selection::Point) {
    const bool height = m_Values.Value(ConstraintValue::Z).has_value();
    const bool slope = m_Values.Value(ConstraintValue::P).has_value();
    what = height && slope ? "Position and normal" : height ? "Position constraint" : "Normal constraint";
  } else if (m_Values.What() == CSelectedValues::Selection::Node) {
    what = "Node of a " + NameOf(m_Values.Type());
  }
  SetText(*m_pWhat, m_What, what);
  for (std::size_t k = 0; k < kConstraintValues; ++k) {
    const auto which = static_cast<ConstraintValue>(k);
    const std::optional<double> value = m_Values.Value(which);
    SetActive(*m_apFields[k], value.has_value());
    m_apFields[k]->Show(value.has_value() ? ShownNumber(*value, m_Values.Unit(which)) : std::string());
  }
  const bool height = m_Values.Value(ConstraintValue::Z).has_value();
  SetActive(*m_pSameHeight, height);
  if (!height && m_pSameHeight->value() != 0) m_Commands.DropNextHeight();
  RefreshCurve();
  RefreshGroup();
}

void CValuesPanel::RefreshCurve() {
  const std::optional<CContourAttributes> attributes = m_Values.Attributes();
  const bool there = attributes.has_value() && m_Values.What() == CSelectedValues::Selection::Node;
  for (Fl_Widget* widget : std::initializer_list<Fl_Widget*>{m_pType, m_pClosed, m_apAutoBumps[0], m_apAutoBumps[1]})
    SetActive(*widget, there);
  const CContourAttributes shown = there ? *attributes : CContourAttributes();
  m_pClosed->value(shown.m_bClosed ? 1 : 0);
  m_apAutoBumps[0]->value(shown.m_bLeftAutoBump ? 1 : 0);
  m_apAutoBumps[1]->value(shown.m_bRightAutoBump ? 1 : 0);
  const auto* type = std::ranges::find(kTypes, there ? m_Values.Type() : CurveType::kNone);
  const int entry = type == kTypes.end() ? -1 : static_cast<int>(type - kTypes.begin());
  if (m_pType->value() != entry) m_pType->value(entry);
}

void CValuesPanel::RefreshGroup() {
  const std::size_t count = m_Commands.IsChoosing() ? m_Grid.Constraints().Points().ChosenCount() : 0;
  SetText(*m_pGroup, m_Group,
          !m_Commands.IsChoosing() ? std::string("Edit, Select Several chooses a group")
                                   : "Chosen: " + std::to_string(count) + (count == 1 ? " height" : " heights"));
  const double side = m_Values.Unit(ConstraintValue::Z);
  for (std::size_t k = 0; k < m_apGroupFields.size(); ++k) {
    m_apGroupFields[k]->Show(ShownNumber(m_afGroupNumbers[k], k == kScale ? 1.0 : side));
    SetActive(*m_apGroupFields[k], count > 0);
  }
  for (Fl_Button* button : m_apGroupButtons) SetActive(*button, count > 0);
}

void CValuesPanel::EndTaking() { m_pSameHeight->value(0); }

void CValuesPanel::ChangeGroup(Group action) {
  const double number = m_afGroupNumbers[action];
  const double mean = m_Grid.Constraints().Points().MeanChosenHeight();
  m_Grid.Gate().BeginGesture(CEditGate::Hold::Other);
  m_Grid.PointEdits().ChangeChosenHeights([action, number, mean](double z) {
    if (action == kRaise) return z + number;
    return action == kScale ? mean + number * (z - mean) : number;
  });
  m_Grid.Gate().EndGesture(CEditGate::GestureEnd::Released);
  Tell({});
}

void CValuesPanel::SetFromWidgets() {
  std::optional<CContourAttributes> attributes = m_Values.Attributes();
  if (!attributes.has_value()) return;
  attributes->m_bClosed = m_pClosed->value() != 0;
  attributes->m_bLeftAutoBump = m_apAutoBumps[0]->value() != 0;
  attributes->m_bRightAutoBump = m_apAutoBumps[1]->value() != 0;
  const int type = m_pType->value();
  m_Values.SetAttributes(*attributes, type < 0 ? CurveType::kNone : kTypes[static_cast<std::size_t>(type)]);
  Tell({});
}

void CValuesPanel::cb_SameHeight(Fl_Widget* /*widget*/, void* panel) {
  CValuesPanel& self = Panel(panel);
  if (self.m_pSameHeight->value() != 0) {
    self.m_Commands.TakeNextHeight([&self] { self.EndTaking(); });
  } else {
    self.m_Commands.DropNextHeight();
  }
  self.Tell({});
}

void CValuesPanel::cb_Attributes(Fl_Widget* /*widget*/, void* panel) { Panel(panel).SetFromWidgets(); }

template <CValuesPanel::Group kAction>
void CValuesPanel::cb_Group(Fl_Widget* /*widget*/, void* panel) {
  Panel(panel).ChangeGroup(kAction);
}

void CValuesPanel::cb_DeleteGroup(Fl_Widget* /*widget*/, void* panel) {
  CValuesPanel& self = Panel(panel);
  self.m_Grid.PointEdits().DeleteChosen();
  self.Tell({});
}
