#include "ui/dialogs/CExportDialog.h"

#include <cmath>
#include <cstddef>
#include <new>

#include <FL/Fl_Box.H>
#include <FL/Fl_Choice.H>

#include "ui/dialogs/CNumberInput.h"
#include "ui/dialogs/Questions.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/seams/CBusyCursor.h"

namespace {

// Two columns below the format; labels are to the left of what is entered.
constexpr int kWidth = 606;
constexpr int kEdge = 14;
constexpr int kLeft = 110;
constexpr int kRight = 383;
constexpr int kChoiceWidth = 140;
constexpr int kSamplesWidth = 58;
constexpr int kNumberWidth = 75;
constexpr int kUnitWidth = 138;
constexpr int kRowHeight = 25;
constexpr int kRowPitch = 32;

enum Row : int { kFormatRow, kTearsRow, kUnderRow, kTextureRow, kResolutionRow, kSamplesRow, kGreenRow, kRows };
enum RightRow : int { kUpRow = kTearsRow, kScaleRow, kHeightScaleRow, kBaseRow };

constexpr int TopOf(int row) { return kEdge + row * kRowPitch; }

constexpr int kFrameTop = TopOf(kRows) + 6;
constexpr int kFrameHeight = 72;
constexpr int kButtonTop = kFrameTop + kFrameHeight + kEdge;
constexpr int kHeight = kButtonTop + 30 + kEdge;

void Enable(Fl_Widget& widget, bool enable) {
  if (enable) {
    widget.activate();
  } else {
    widget.deactivate();
  }
}

TearGap GapOf(const Fl_Choice& tears) { return static_cast<TearGap>(tears.value()); }

// What is wrong with a number that must be above 0; empty where it is taken.
std::string ReadPositive(const CNumberInput& input, const char* name, double& number) {
  const std::optional<double> entered = input.Number();
  if (!entered.has_value()) return std::string(name) + " must be a number.";
  if (*entered <= 0) return std::string(name) + " must be above 0.";
  number = *entered;
  return {};
}

// The same for the samples along a side.
std::string ReadSamples(const CNumberInput& input, int& samples) {
  const double entered = input.Number().value_or(0);
  if (entered != std::floor(entered) || entered < CSampleGrid::kFewest || entered > CSampleGrid::kMost)
    return "Samples must be whole numbers from 2 to " + std::to_string(CSampleGrid::kMost) + '.';
  samples = static_cast<int>(entered);
  return {};
}

}  // namespace

CExportDialog::CExportDialog(ViewHost& views, const Fl_Window& mainWindow)
    : CModalDialog(kWidth, kHeight, "Export Model", views, mainWindow), m_aOwn(ExportFormats().size()) {
  m_pFormat = AddChoice(kLeft, kFormatRow, kWidth - kLeft - kEdge, "Format:", {});
  for (const CExportFormat& format : ExportFormats()) {
    // The toolkit would take a slash in an added text for the end of a submenu's name.
    const int place = m_pFormat->add(format.m_pSuffix);
    m_pFormat->replace(place, (std::string(format.m_pName) + "  (" + format.m_pSuffix + ')').c_str());
  }
  m_pFormat->value(0);
  m_pFormat->callback(cb_Format, this);
  BuildPictureColumn();
  BuildSizeColumn();
  (new Fl_Box(kEdge, kFrameTop, kWidth - 2 * kEdge, kFrameHeight))->box(FL_ENGRAVED_FRAME);
  m_pDescription = new Fl_Box(kEdge + 10, kFrameTop + 4, kWidth - 2 * kEdge - 20, kFrameHeight - 8);
  m_pDescription->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE | FL_ALIGN_CLIP | FL_ALIGN_WRAP);
  AddOk(kWidth / 2 - 115, kButtonTop, 105, 30, "Export...");
  AddCancel(kWidth / 2 + 10, kButtonTop, 105, 30);
  end();
  ScaleWidgets(*this);
}

Fl_Choice* CExportDialog::AddChoice(int x, int row, int width, const char* label,
                                    std::initializer_list<const char*> texts) {
  auto* choice = new Fl_Choice(x, TopOf(row), width, kRowHeight, label);
  for (const char* text : texts) choice->add(text);
  choice->value(0);
  choice->callback(cb_Setting, this);
  return choice;
}

CNumberInput* CExportDialog::AddNumber(int x, int row, int width, const char* label) {
  auto* input = new CNumberInput(x, TopOf(row), width, kRowHeight, label);
  input->callback(cb_Setting, this);
  input->when(FL_WHEN_CHANGED | FL_WHEN_NOT_CHANGED);
  return input;
}

Fl_Box* CExportDialog::AddUnit(int x, int row) {
  auto* unit = new Fl_Box(x + kNumberWidth + 6, TopOf(row), kUnitWidth, kRowHeight);
  unit->align(FL_ALIGN_LEFT | FL_ALIGN_INSIDE);
  return unit;
}

void CExportDialog::BuildPictureColumn() {
  m_pTears = AddChoice(kLeft, kTearsRow, kChoiceWidth, "Tears:", {"open", "wall", "under"});
  m_pUnder = AddNumber(kLeft, kUnderRow, kNumberWidth, "Under width:");
  m_pTexture = AddChoice(kLeft, kTextureRow, kChoiceWidth, "Texture:", {"photograph", "albedo", "relit", "none"});
  m_pResolution = AddChoice(kLeft, kResolutionRow, kChoiceWidth, "Resolution:", {"the grid's own", "other"});
  m_pAcross = AddNumber(kLeft, kSamplesRow, kSamplesWidth, "Samples:");
  m_pUpwards = AddNumber(kLeft + kChoiceWidth - kSamplesWidth, kSamplesRow, kSamplesWidth, "x");
  m_pGreen = AddChoice(kLeft, kGreenRow, kChoiceWidth, "Green:", {"up", "down"});
}

void CExportDialog::BuildSizeColumn() {
  m_pUp = AddChoice(kRight, kUpRow, kNumberWidth, "Up axis:", {"y", "z"});
  m_pScale = AddNumber(kRight, kScaleRow, kNumberWidth, "Scale:");
  m_pScaleUnit = AddUnit(kRight, kScaleRow);
  m_pHeightScale = AddNumber(kRight, kHeightScaleRow, kNumberWidth, "Height scale:");
  m_pBase = AddNumber(kRight, kBaseRow, kNumberWidth, "Base thickness:");
  m_pBaseUnit = AddUnit(kRight, kBaseRow);
}

const CExportFormat& CExportDialog::Format() const {
  return ExportFormats()[static_cast<std::size_t>(m_pFormat->value())];
}

bool CExportDialog::HasOwnResolution() const { return m_pResolution->value() != 0; }

std::optional<CExportChoice> CExportDialog::Ask(CExportSurvey& survey, const CExportSettings& given) {
  m_pSurvey = &survey;
  m_Settings.m_pPhotograph = given.m_pPhotograph;
  m_Settings.m_pPictures = given.m_pPictures;
  m_pUnder->Preset(m_Settings.m_fUnderWidth.value_or(given.m_fUnderWidth.value_or(1)));
  m_fUsualUnder = given.m_fUnderWidth;
  ShowSettings();
  const bool accepted = Run();
  CExportChoice choice{&Format(), m_Settings};
  if (!m_Settings.m_fUnderWidth.has_value()) choice.m_Settings.m_fUnderWidth = given.m_fUnderWidth;
  m_pSurvey = nullptr;
  m_Settings.m_pPhotograph = nullptr;
  m_Settings.m_pPictures = nullptr;
  if (!accepted) return {};
  const COwnSettings& own = m_aOwn[static_cast<std::size_t>(m_pFormat->value())];
  choice.m_Settings.m_fScale = own.m_fScale;
  choice.m_Settings.m_Up = own.m_Up;
  if (given.m_pPhotograph == nullptr) choice.m_Settings.m_Texture = ExportTexture::None;
  return choice;
}

void CExportDialog::ShowSettings() {
  m_pTears->value(static_cast<int>(m_Settings.m_Gap));
  const bool photograph = m_Settings.m_pPhotograph != nullptr;
  m_pTexture->value(static_cast<int>(photograph ? m_Settings.m_Texture : ExportTexture::None));
  m_pResolution->value(m_Settings.m_Resolution.has_value() ? 1 : 0);
  m_pAcross->Preset(m_Samples.m_iWidth);
  m_pUpwards->Preset(m_Samples.m_iHeight);
  m_pGreen->value(m_Settings.m_bGreenDown ? 1 : 0);
  m_pHeightScale->Preset(m_Settings.m_fHeightScale);
  m_pBase->Preset(m_Settings.m_fBase);
  ShowFormat();
}

void CExportDialog::ShowFormat() {
  const CExportFormat& format = Format();
  const COwnSettings& own = m_aOwn[static_cast<std::size_t>(m_pFormat->value())];
  m_pUp->value(static_cast<int>(own.m_Up.value_or(format.m_Up)));
  m_pScale->Preset(own.m_fScale.value_or(format.m_fScale));
  const std::string unit = format.m_pUnit;
  m_pScaleUnit->copy_label((unit + (unit.empty() ? "" : " ") + "per model unit").c_str());
  m_pBaseUnit->copy_label(unit.c_str());
  Refresh();
}

void CExportDialog::Refresh() {
  Enable(*m_pTears, Reads(ExportSetting::kTears));
  Enable(*m_pUnder, Reads(ExportSetting::kTears) && GapOf(*m_pTears) == TearGap::Under);
  Enable(*m_pTexture, Reads(ExportSetting::kTexture) && m_Settings.m_pPhotograph != nullptr);
  Enable(*m_pResolution, Reads(ExportSetting::kResolution));
  for (CNumberInput* samples : {m_pAcross, m_pUpwards})
    Enable(*samples, Reads(ExportSetting::kResolution) && HasOwnResolution());
  Enable(*m_pGreen, Reads(ExportSetting::kGreen));
  Enable(*m_pUp, Reads(ExportSetting::kUp));
  Enable(*m_pScale, Reads(ExportSetting::kScale));
  Enable(*m_pScaleUnit, Reads(ExportSetting::kScale));
  Enable(*m_pHeightScale, Reads(ExportSetting::kHeightScale));
  Enable(*m_pBase, Reads(ExportSetting::kBase));
  Enable(*m_pBaseUnit, Reads(ExportSetting::kBase));
  ShowDescription();
}

void CExportDialog::ShowDescription() {
  CExportSettings settings = m_Settings;
  std::string text = Read(settings);
  if (text.empty()) {
    const CBusyCursor busy;
    try {
      text = DescriptionText(m_pSurvey->DescribeExport(Format(), settings));
    } catch (const std::bad_alloc&) {
      text = "This needs more memory than there is.";
    }
  }
  m_pDescription->copy_label(LabelText(text).c_str());
  redraw();
}

std::string CExportDialog::ReadNumbers(CExportSettings& settings) const {
  std::string trouble;
  const auto read = [&](unsigned setting, const CNumberInput& input, const char* name, double& number) {
    if (trouble.empty() && Reads(setting)) trouble = ReadPositive(input, name, number);
  };
  double scale = 0;
  double under = 0;
  if (settings.m_Gap == TearGap::Under) read(ExportSetting::kTears, *m_pUnder, "The width under a tear", under);
  read(ExportSetting::kScale, *m_pScale, "The scale", scale);
  read(ExportSetting::kHeightScale, *m_pHeightScale, "The height scale", settings.m_fHeightScale);
  read(ExportSetting::kBase, *m_pBase, "The base thickness", settings.m_fBase);
  if (Reads(ExportSetting::kScale)) settings.m_fScale = scale;
  if (under > 0) settings.m_fUnderWidth = under;
  if (!trouble.empty() || !Reads(ExportSetting::kResolution)) return trouble;
  settings.m_Resolution.reset();
  if (!HasOwnResolution()) return {};
  CSampleGrid& samples = settings.m_Resolution.emplace();
  trouble = ReadSamples(*m_pAcross, samples.m_iWidth);
  return trouble.empty() ? ReadSamples(*m_pUpwards, samples.m_iHeight) : trouble;
}

std::string CExportDialog::Read(CExportSettings& settings) const {
  settings.m_Gap = GapOf(*m_pTears);
  settings.m_bGreenDown = m_pGreen->value() != 0;
  if (Reads(ExportSetting::kUp)) settings.m_Up = static_cast<UpAxis>(m_pUp->value());
  if (settings.m_pPhotograph != nullptr) settings.m_Texture = static_cast<ExportTexture>(m_pTexture->value());
  const bool picture = Format().m_Picture != ExportTexture::None;
  if (!picture && !Reads(ExportSetting::kTexture)) return ReadNumbers(settings);
  const std::string trouble = settings.m_pPictures->TroubleWith(picture ? Format().m_Picture : settings.m_Texture);
  return trouble.empty() ? ReadNumbers(settings) : trouble;
}

bool CExportDialog::ReadInput() {
  CExportSettings settings = m_Settings;
  const std::string trouble = Read(settings);
  if (!trouble.empty()) {
    Refuse(trouble.c_str());
    return false;
  }
  Keep(settings);
  return true;
}

void CExportDialog::Keep(const CExportSettings& settings) {
  m_aOwn[static_cast<std::size_t>(m_pFormat->value())] = {settings.m_fScale, settings.m_Up};
  m_Settings = settings;
  m_Settings.m_fScale.reset();
  m_Settings.m_Up.reset();
  // Another grid has another one.
  if (m_Settings.m_fUnderWidth == m_fUsualUnder) m_Settings.m_fUnderWidth.reset();
  if (settings.m_Resolution.has_value()) m_Samples = *settings.m_Resolution;
}

void CExportDialog::cb_Format(Fl_Widget* /*widget*/, void* dialog) {
  static_cast<CExportDialog*>(dialog)->ShowFormat();
}

void CExportDialog::cb_Setting(Fl_Widget* /*widget*/, void* dialog) { static_cast<CExportDialog*>(dialog)->Refresh(); }
