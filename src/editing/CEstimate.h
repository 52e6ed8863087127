#pragma once

#include <filesystem>
#include <optional>
#include <string>

#include "base/CPicture.h"
#include "codecs/DepthMapFile.h"
#include "editing/CUserProcess.h"

/// A depth map made of a photograph by a program of the user's own.
///
/// Its command line (see CommandWords) names two files in a folder that lasts as long as the program runs: {image}, the
/// photograph as a PNG, and {depth}, which it is to write, in any format of depth maps. There is one object at a time
/// whose program runs.
class CEstimate {
 public:
  /// How it has come out.
  struct CResult {
    CReadDepthMap m_Map;    ///< with a map, unless there is trouble
    std::string m_Trouble;  ///< a sentence for the user; empty without
  };

  CEstimate() = default;
  ~CEstimate() { Cancel(); }
  CEstimate(const CEstimate&) = delete;
  CEstimate& operator=(const CEstimate&) = delete;

  /// Starts the program; none may be running. Writes the photograph, which takes a while for a large one. Why it cannot
  /// be started, as a sentence; empty where it runs.
  std::string Begin(const std::string& commandLine, const CPicture& photograph);
  bool IsRunning() const { return m_Process.IsRunning(); }
  /// To be called now and then while it runs, until it answers: the program has ended.
  std::optional<CResult> Attend();
  /// See CUserProcess.
  const std::string& LastLine() const { return m_Process.LastLine(); }
  /// Ends the program and all that it has started. Nothing if none runs.
  void Cancel();
  /// The same for whichever object has one that runs: this process is about to end.
  static void CancelAll();

 private:
  std::string WriteInput(const CPicture& photograph);
  CResult ResultOf(int status) const;
  void RemoveFolder();

  static CEstimate* s_pRunning;

  CUserProcess m_Process;
  std::filesystem::path m_Folder;  ///< empty while there is none
};
