#pragma once

#include <deque>
#include <optional>
#include <string>
#include <utility>
#include <vector>

#include "editing/CSolverControl.h"
#include "editing/GridCommands.h"
#include "support/GridBuilders.h"

/// A panel of the solver that remembers what it shows.
class RecordingPanel : public SolverPanel {
 public:
  void ShowSolverRunning(bool running) override { m_bRunning = running; }
  void EnableSolverControls(bool enable) override { m_bSolverControls = enable; }
  void EnableEditing(bool enable) override { m_bEditing = enable; }

  bool m_bRunning = true;
  bool m_bSolverControls = true;
  bool m_bEditing = true;
};

/// Counts how often the solver timer was started, by nobody but the object that lives last.
struct CTimerStarts {
  CTimerStarts() { s_iCount = 0; }
  static void Start(CGrid& /*grid*/) { ++s_iCount; }
  static int Count() { return s_iCount; }

 private:
  inline static int s_iCount = 0;
};

/// The solver control of a small grid.
struct CTestSolver {
  CTestSolver() { m_Solver.AttachGrid(Grid()); }
  CGrid& Grid() { return m_Grid.m_Grid; }

  CTestGrid m_Grid;
  CTimerStarts m_Timer;
  RecordingPanel m_Panel;
  CSolverControl m_Solver{m_Panel, CTimerStarts::Start};
};

/// Answers the dialogs from a list, in order, and remembers what was asked. Without an answer files are refused and
/// questions answered with no.
class ScriptedHost : public CommandHost {
 public:
  std::optional<std::string> ChooseFile(const CFileQuestion& question) override {
    m_aChoosers.emplace_back(question.m_pTitle, question.m_pPattern == nullptr ? "none" : question.m_pPattern);
    m_asStarts.push_back(question.m_Start);
    m_asOtherPatterns.push_back(question.m_OtherPattern);
    return m_File;
  }
  bool Ask(const char* question) override {
    m_asQuestions.emplace_back(question);
    return m_bYes;
  }
  std::string AskText(const char* question) override {
    m_asQuestions.emplace_back(question);
    return {};
  }
  void Notice(const char* text) override { m_asNotices.emplace_back(text); }
  bool LoadPicture(const std::string& file) override {
    m_asPictures.push_back(file);
    return m_bPictureRead;
  }
  std::string TextureFile() const override { return m_Texture; }
  void GridReplaced() override { ++m_iReplaced; }
  void TellSaved(const std::string& file) override { m_asSaved.push_back(file); }
  void TellCancelled(const std::string& file) override { m_asCancelled.push_back(file); }
  void EndDrags() override { ++m_iDragEnds; }
  void AddTo(CProject& project) const override {
    project.m_Views = m_Views;
    project.m_aRecording = m_aRecording;
  }

  std::optional<std::string> m_File;
  bool m_bYes = false;
  bool m_bPictureRead = true;
  std::string m_Texture;
  std::vector<std::pair<std::string, std::string>> m_aChoosers;  ///< title and pattern
  std::vector<std::string> m_asStarts;                           ///< where they begin
  std::vector<std::string> m_asOtherPatterns;
  std::vector<std::string> m_asQuestions;
  std::vector<std::string> m_asNotices;
  std::vector<std::string> m_asPictures;
  std::vector<std::string> m_asSaved;  ///< again, as the user was told
  std::vector<std::string> m_asCancelled;
  CProjectViews m_Views;
  std::vector<CProjectFrame> m_aRecording;
  int m_iReplaced = 0;
  int m_iDragEnds = 0;
};
