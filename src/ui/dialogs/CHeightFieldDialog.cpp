#include "ui/dialogs/CHeightFieldDialog.h"

#include <algorithm>
#include <limits>
#include <optional>
#include <string>
#include <utility>

#include <FL/Fl_Box.H>

#include "io/HeightFieldExport.h"
#include "ui/dialogs/CNumberInput.h"
#include "ui/drawing/ScaleWidgets.h"

CHeightFieldDialog::CHeightFieldDialog(ViewHost& views, const Fl_Window& mainWindow, ExportCommand command)
    : CModalDialog(265, 255, "Choose the dimention of the Height field", views, mainWindow),
      m_Export(std::move(command)) {
  auto* frame = new Fl_Box(35, 45, 195, 150, "Choose the sampling \n(Number of grid points)");
  frame->box(FL_ENGRAVED_FRAME);
  frame->align(FL_ALIGN_TOP);
  add(frame);
  m_pWidth = new CNumberInput(105, 81, 110, 25, "Width");
  m_pHeight = new CNumberInput(105, 133, 110, 25, "Height");
  AddOk(25, 210, 105, 30);
  AddCancel(140, 210, 105, 30);
  end();
  ScaleWidgets(*this);
  Refresh();
}

void CHeightFieldDialog::Open() {
  Refresh();
  Run();
}

void CHeightFieldDialog::Refresh() {
  m_pWidth->Preset(m_iWidth);
  m_pHeight->Preset(m_iHeight);
}

bool CHeightFieldDialog::ReadInput() {
  int width = 0;
  int height = 0;
  if (!ReadSize(*m_pWidth, width) || !ReadSize(*m_pHeight, height)) return false;
  if (!IsHeightFieldSize(width, height)) {
    Refuse(("A height field has at most " + std::to_string(kMostHeightSamples) + " samples.").c_str());
    return false;
  }
  m_iWidth = width;
  m_iHeight = height;
  m_Export(width, height);
  return true;
}

bool CHeightFieldDialog::ReadSize(const CNumberInput& input, int& size) {
  using Limits = std::numeric_limits<int>;
  const std::string name = input.label();
  const std::optional<double> number = input.Number();
  if (!number.has_value()) {
    Refuse((name + " must be a number.").c_str());
    return false;
  }
  if (*number > Limits::max()) {
    Refuse((name + " must be at most " + std::to_string(Limits::max()) + '.').c_str());
    return false;
  }
  size = static_cast<int>(std::max(*number, double{Limits::min()}));
  return true;
}
