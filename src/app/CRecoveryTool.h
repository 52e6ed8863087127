#pragma once

#include <cstddef>
#include <filesystem>
#include <optional>
#include <string>

#include "editing/CRecovery.h"
#include "ui/dialogs/CRecoveryDialog.h"

class CGrid;
class CImageViewUI;

/// Keeps the work of the window and its grid while no file of the user's holds it, and offers what earlier runs have
/// left.
class CRecoveryTool {
 public:
  /// Keeps it in `folder` (see CRecoveryFolder). Window and grid must outlive the object.
  CRecoveryTool(CImageViewUI& window, CGrid& grid, const std::filesystem::path& folder);
  ~CRecoveryTool();
  CRecoveryTool(const CRecoveryTool&) = delete;
  CRecoveryTool& operator=(const CRecoveryTool&) = delete;

  /// Tells the user if there is something in the folder, and offers it from then on.
  void TellAtStart();
  /// The program ends: what no file holds is written now.
  void End();

 private:
  void Connect();
  void RefreshList();
  void PutBack();
  std::optional<std::string> ChooseWork();
  static void cb_Attend(int descriptor, void* tool);
  static void cb_Check(void* tool);

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  CRecovery m_Recovery;
  CRecoveryDialog m_Dialog;
  bool m_bHasWork = false;
};
