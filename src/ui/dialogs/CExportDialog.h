#pragma once

#include <initializer_list>
#include <optional>
#include <string>
#include <vector>

#include "editing/ExportServices.h"
#include "ui/dialogs/CModalDialog.h"

class CNumberInput;
class Fl_Box;
class Fl_Choice;

/// "Export Model": the format of a file for other programs, and what the user may say of it. Only what the format looks
/// at is active. A frame shows what would be written, as the settings change.
class CExportDialog : public CModalDialog {
 public:
  /// Hidden until it is asked; both must outlive the dialog.
  CExportDialog(ViewHost& views, const Fl_Window& mainWindow);

  /// Waits for the answer, with the settings of the last one at first; none if the user cancels. `given` has the
  /// photograph, null where there is none, its pictures, and the width under a tear that suits the grid, and so has the
  /// answer.
  std::optional<CExportChoice> Ask(CExportSurvey& survey, const CExportSettings& given);

 protected:
  bool ReadInput() override;

 private:
  /// What the user last said of a format, where that is not what it begins with.
  struct COwnSettings {
    std::optional<double> m_fScale;
    std::optional<UpAxis> m_Up;
  };

  void BuildPictureColumn();
  void BuildSizeColumn();
  Fl_Choice* AddChoice(int x, int row, int width, const char* label, std::initializer_list<const char*> texts);
  CNumberInput* AddNumber(int x, int row, int width, const char* label);
  Fl_Box* AddUnit(int x, int row);
  const CExportFormat& Format() const;
  bool Reads(unsigned setting) const { return (Format().m_uReads & setting) != 0; }
  bool HasOwnResolution() const;
  /// Shows the settings last accepted, and those of the format.
  void ShowSettings();
  void ShowFormat();
  /// The only place that activates and deactivates.
  void Refresh();
  void ShowDescription();
  /// What is wrong with what has been entered; empty where it is taken.
  std::string Read(CExportSettings& settings) const;
  std::string ReadNumbers(CExportSettings& settings) const;
  void Keep(const CExportSettings& settings);
  static void cb_Format(Fl_Widget* widget, void* dialog);
  static void cb_Setting(Fl_Widget* widget, void* dialog);

  Fl_Choice* m_pFormat = nullptr;
  Fl_Choice* m_pTears = nullptr;
  CNumberInput* m_pUnder = nullptr;
  Fl_Choice* m_pTexture = nullptr;
  Fl_Choice* m_pResolution = nullptr;
  CNumberInput* m_pAcross = nullptr;
  CNumberInput* m_pUpwards = nullptr;
  Fl_Choice* m_pGreen = nullptr;
  Fl_Choice* m_pUp = nullptr;
  CNumberInput* m_pScale = nullptr;
  CNumberInput* m_pHeightScale = nullptr;
  CNumberInput* m_pBase = nullptr;
  Fl_Box* m_pScaleUnit = nullptr;
  Fl_Box* m_pBaseUnit = nullptr;
  Fl_Box* m_pDescription = nullptr;
  CExportSurvey* m_pSurvey = nullptr;   ///< while the dialog is open
  CExportSettings m_Settings;           ///< as last accepted, without what is the format's own, and as given
  CSampleGrid m_Samples{512, 512};      ///< that are offered for a resolution of the user's own
  std::optional<double> m_fUsualUnder;  ///< width under a tear that suits the grid
  std::vector<COwnSettings> m_aOwn;     ///< by format
};
