#pragma once

#include <array>
#include <cstddef>
#include <filesystem>
#include <map>
#include <ostream>
#include <string>
#include <vector>

#include "support/ConsoleCapture.h"

class CGrid;
class CImageViewUI;

/// What a user at the program gets done.
enum class Deed : std::size_t {
  PointAdded,
  PointDeleted,
  PointChanged,
  CurveAdded,
  CurveDeleted,
  CurveChanged,
  Selected,
  SubdivisionChanged,
  ResolutionSwitched,
  PictureLoaded,
  PictureRefused,
  GridLoaded,
  GridRefused,
  GridSaved,
  SceneSaved,
  HeightFieldSaved,
  FrameSaved,
  WritingFailed,
  NewGrid,
  ContourTraced,
  TexelNormals,
  Relit,
  FrameRecorded,
  AnimationPlayed,
  AnimationExported,
  MainWindowResized,
  ToolWindowResized,
  CameraMoved,
};

inline constexpr std::size_t kDeeds = static_cast<std::size_t>(Deed::CameraMoved) + 1;

/// Counts what has really happened in the program, from its state and its console.
class CDeedLog {
 public:
  /// Both must outlive the object, which takes what is written to the console.
  CDeedLog(CImageViewUI& window, CGrid& grid);

  /// To be called after every action, so that none hides another.
  void Look();
  int Times(Deed deed) const { return m_aiTimes[static_cast<std::size_t>(deed)]; }
  /// Counts the deed whenever the file is written.
  void Watch(const std::filesystem::path& file, Deed deed);
  /// A table of all deeds, and of the lines of the console that begin with "Error".
  void Print(std::ostream& out) const;

 private:
  /// The state of the program that deeds change.
  struct CState {
    std::size_t m_uPoints = 0;
    std::size_t m_uCurves = 0;
    double m_fPointSum = 0;
    double m_fCurveSum = 0;
    bool m_bSelected = false;
    int m_iLeaves = 0;
    int m_iHighResolution = 0;
    unsigned m_uPicture = 0;
    std::size_t m_uFrames = 0;
    int m_iMainSize = 0;
    int m_iToolSize = 0;  ///< of the first open tool window; 0 while none is
    double m_fCamera = 0;

    friend bool operator==(const CState&, const CState&) = default;
  };

  CState Present() const;
  void Add(Deed deed, int times = 1) { m_aiTimes[static_cast<std::size_t>(deed)] += times; }
  void ReadConsole();
  void LookAtFiles();

  struct CFile {
    std::filesystem::path m_Path;
    Deed m_Deed;
    std::filesystem::file_time_type m_Written;
  };

  CImageViewUI& m_Window;
  CGrid& m_Grid;
  std::vector<CFile> m_aFiles;
  ConsoleCapture m_Console;
  CState m_Before;
  std::array<int, kDeeds> m_aiTimes{};
  std::map<std::string, int> m_aErrors;
};
