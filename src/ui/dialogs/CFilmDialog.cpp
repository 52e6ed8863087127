#include "ui/dialogs/CFilmDialog.h"

#include <algorithm>
#include <cmath>

#include <FL/Fl_Box.H>
#include <FL/Fl_Choice.H>

#include "base/NumberText.h"
#include "ui/dialogs/CNumberInput.h"
#include "ui/dialogs/Questions.h"
#include "ui/drawing/ScaleWidgets.h"

namespace {

constexpr int kWidth = 400;
constexpr int kLeft = 130;  // of what is entered; labels are to the left of it
constexpr int kRowHeight = 25;
constexpr int kRowPitch = 32;
constexpr int kNumberWidth = 80;

enum Row : int { kFormatRow, kSourceRow, kSecondsRow, kSizeRow, kRows };

constexpr int TopOf(int row) { return 14 + row * kRowPitch; }

constexpr int kFrameTop = TopOf(kRows) + 6;
constexpr int kFrameHeight = 56;
constexpr int kButtonTop = kFrameTop + kFrameHeight + 14;
constexpr int kHeight = kButtonTop + 30 + 14;

// Longest turn, seconds: more would be more frames than anybody waits for.
constexpr double kMostSeconds = 600;

std::string ReadSide(const CNumberInput& input, const char* name, int& side) {
  const double entered = input.Number().value_or(0);
  if (entered != std::floor(entered) || entered < 2 || entered > kMostFilmSide || std::fmod(entered, 2) != 0)
    return std::string(name) + " must be an even number from 2 to " + std::to_string(kMostFilmSide) + '.';
  side = static_cast<int>(entered);
  return {};
}

}  // namespace

CFilmDialog::CFilmDialog(ViewHost& views, const Fl_Window& mainWindow)
    : CModalDialog(kWidth, kHeight, "Export Film", views, mainWindow) {
  m_pFormat = AddChoice(kFormatRow, "Format:");
  for (const CFilmFormat& format : FilmFormats())
    m_pFormat->add((std::string(format.m_pName) + "  (" + format.m_pSuffix + ')').c_str());
  m_pSource = AddChoice(kSourceRow, "Movement:");
  m_pSource->add("the recording");
  m_pSource->add("a turntable");
  m_pSeconds = AddNumber(kSecondsRow, "Time of a turn:");
  auto* unit = new Fl_Box(kLeft + kNumberWidth + 8, TopOf(kSecondsRow), 100, kRowHeight, "seconds");
  unit->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE);
  m_pWidth = AddNumber(kSizeRow, "Size:");
  m_pHeight = AddNumber(kSizeRow, "x");
  m_pHeight->position(kLeft + kNumberWidth + 22, TopOf(kSizeRow));
  auto* pixels = new Fl_Box(kLeft + 2 * kNumberWidth + 30, TopOf(kSizeRow), 60, kRowHeight, "pixels");
  pixels->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE);
  (new Fl_Box(14, kFrameTop, kWidth - 28, kFrameHeight))->box(FL_ENGRAVED_FRAME);
  m_pDescription = new Fl_Box(24, kFrameTop + 4, kWidth - 48, kFrameHeight - 8);
  m_pDescription->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_CLIP | FL_ALIGN_WRAP);
  AddOk(kWidth / 2 - 115, kButtonTop, 105, 30, "Export...");
  AddCancel(kWidth / 2 + 10, kButtonTop, 105, 30);
  end();
  ScaleWidgets(*this);
}

Fl_Choice* CFilmDialog::AddChoice(int row, const char* label) {
  auto* choice = new Fl_Choice(kLeft, TopOf(row), kWidth - kLeft - 14, kRowHeight, label);
  choice->callback(cb_Setting, this);
  return choice;
}

CNumberInput* CFilmDialog::AddNumber(int row, const char* label) {
  auto* input = new CNumberInput(kLeft, TopOf(row), kNumberWidth, kRowHeight, label);
  input->callback(cb_Setting, this);
  input->when(FL_WHEN_CHANGED | FL_WHEN_NOT_CHANGED);
  return input;
}

std::optional<CFilmChoice> CFilmDialog::Ask(std::size_t recorded, double frameSeconds) {
  constexpr int kInactive = FL_MENU_INACTIVE;
  m_uRecorded = recorded;
  m_fFrameSeconds = frameSeconds;
  const auto format = m_Choice.m_pFormat == nullptr ? 0 : m_Choice.m_pFormat - FilmFormats().data();
  m_pFormat->value(static_cast<int>(format));
  m_pSource->mode(static_cast<int>(FilmSource::Recording), recorded == 0 ? kInactive : 0);
  // What has been recorded is meant until the user has said otherwise.
  const FilmSource source = m_Choice.m_pFormat == nullptr ? FilmSource::Recording : m_Choice.m_Source;
  m_pSource->value(static_cast<int>(recorded == 0 ? FilmSource::Turntable : source));
  m_pSeconds->Preset(m_Choice.m_fTurnSeconds);
  m_pWidth->Preset(m_Choice.m_iWidth);
  m_pHeight->Preset(m_Choice.m_iHeight);
  ShowDescription();
  if (!Run()) return {};
  return m_Choice;
}

std::string CFilmDialog::Read(CFilmChoice& choice) const {
  choice.m_pFormat = &FilmFormats()[static_cast<std::size_t>(m_pFormat->value())];
  choice.m_Source = static_cast<FilmSource>(m_pSource->value());
  choice.m_fFrameSeconds = m_fFrameSeconds;
  if (choice.m_Source == FilmSource::Turntable) {
    const std::optional<double> seconds = m_pSeconds->Number();
    if (!seconds.has_value()) return "The time of a turn must be a number.";
    if (*seconds <= 0 || *seconds > kMostSeconds) return "The time of a turn must be above 0 and at most 600 seconds.";
    choice.m_fTurnSeconds = *seconds;
  }
  std::string trouble = ReadSide(*m_pWidth, "The width", choice.m_iWidth);
  if (trouble.empty()) trouble = ReadSide(*m_pHeight, "The height", choice.m_iHeight);
  if (!trouble.empty()) return trouble;
  if (choice.m_pFormat->m_bNeedsProgram && !HasFilmProgram())
    return "This kind of film needs the program ffmpeg, which is not installed.";
  return {};
}

std::string CFilmDialog::Description(const CFilmChoice& choice) const {
  const bool turns = choice.m_Source == FilmSource::Turntable;
  const std::size_t frames =
      turns ? static_cast<std::size_t>(std::max(1L, std::lround(choice.m_fTurnSeconds * kFilmRate)))
            : ResampledFrames(m_uRecorded, m_fFrameSeconds).size();
  std::string text = std::to_string(frames) + " frames at " + std::to_string(kFilmRate) + " a second";
  if (!turns) text = std::to_string(m_uRecorded) + " recorded frames become " + text;
  constexpr double kHundredths = 100;
  const double seconds = std::round(kHundredths * static_cast<double>(frames) / kFilmRate) / kHundredths;
  return text + "\n" + ShortestText(seconds) + " seconds";
}

void CFilmDialog::ShowDescription() {
  if (m_pSource->value() == static_cast<int>(FilmSource::Turntable)) {
    m_pSeconds->activate();
  } else {
    m_pSeconds->deactivate();
  }
  CFilmChoice choice = m_Choice;
  const std::string trouble = Read(choice);
  m_pDescription->copy_label(LabelText(trouble.empty() ? Description(choice) : trouble).c_str());
  redraw();
}

bool CFilmDialog::ReadInput() {
  CFilmChoice choice = m_Choice;
  const std::string trouble = Read(choice);
  if (!trouble.empty()) {
    Refuse(trouble.c_str());
    return false;
  }
  m_Choice = choice;
  return true;
}

void CFilmDialog::cb_Setting(Fl_Widget* /*widget*/, void* dialog) {
  static_cast<CFilmDialog*>(dialog)->ShowDescription();
}
