#include <cmath>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <ctime>
#include <filesystem>

#include <FL/Fl.H>
#include <FL/fl_ask.H>

#include "app/CRecoveryTool.h"
#include "app/CToolSet.h"
#include "app/CommandLine.h"
#include "app/Desktop.h"
#include "app/Drops.h"
#include "app/PressPosition.h"
#include "app/SolverTimer.h"
#include "base/CTerminationSignals.h"
#include "base/Console.h"
#include "editing/CEstimate.h"
#include "io/CFileReplacement.h"
#include "io/StateFolder.h"
#include "model/CGrid.h"
#include "ui/seams/UiScale.h"
#include "ui/window/CImageViewUI.h"

namespace {

// Whether the compiler computes mixed integer and floating-point constants as it should.
void PrintSelfTest() {
  constexpr double kDoublePlusInt = 1.5 + 2;
  constexpr double kIntPlusDouble = 2 + 1.5;
  constexpr double kIntTimesDouble = 3 * 1.5;
  constexpr double kDoubleTimesInt = 1.5 * 3;
  constexpr double kIntOverDouble = 3 / 1.4;
  constexpr double kDoubleOverInt = 1.5 / 3;
  constexpr int kIntOverInt = 3 / 2;
  Console() << " 1.5 + 2 = " << kDoublePlusInt << '\n';
  Console() << " 2 + 1.5 = " << kIntPlusDouble << '\n';
  Console() << " 3 * 1.5 = " << kIntTimesDouble << '\n';
  Console() << " 1.5 * 3 = " << kDoubleTimesInt << '\n';
  Console() << " 3 / 1.4 = " << kIntOverDouble << '\n';
  Console() << " 1.5 / 3 = " << kDoubleOverInt << '\n';
  Console() << "3 / 2 = " << kIntOverInt << '\n';
}

/// What a signal finds: the signals, and what keeps the work as soon as there is any.
struct CEnding {
  CTerminationSignals m_Signals;
  CImageViewUI* m_pWindow = nullptr;
  CRecoveryTool* m_pRecovery = nullptr;
};

// Between two events, so that no work is left half-done but a save whose question is open.
void cb_Termination(int /*descriptor*/, void* data) {
  auto& ending = *static_cast<CEnding*>(data);
  const int signal = ending.m_Signals.Take();
  if (signal == 0) return;
  if (ending.m_pWindow != nullptr) ending.m_pWindow->KeepPlace();
  if (ending.m_pRecovery != nullptr) ending.m_pRecovery->End();
  CEstimate::CancelAll();
  CFileReplacement::RemoveUnfinished();
  CTerminationSignals::EndBy(signal);
}

}  // namespace

int main(int argc, char** argv) {
  const CCommandLine commandLine = ReadCommandLine(argc, argv);
  if (commandLine.m_iExitStatus.has_value()) return *commandLine.m_iExitStatus;
  // Progress shows line by line in a pipe or a file, too.
  std::setvbuf(stdout, nullptr, _IOLBF, BUFSIZ);
  std::atexit(CEstimate::CancelAll);
  CEnding ending;
  const int signals = ending.m_Signals.Descriptor();
  if (signals >= 0) Fl::add_fd(signals, FL_READ, cb_Termination, &ending);
  PrintSelfTest();
  if (!HasOpenGL()) {
    std::fputs("relievo: this display has no OpenGL (GLX), with which the two views are drawn\n", stderr);
    return EXIT_FAILURE;
  }
  Fl::visual(FL_DOUBLE | FL_DEPTH | FL_RGB8);
  IntroduceToDesktop();
  SendMovesBeforePresses();
  LetDropsPassDialogs();
  fl_message_font(FL_HELVETICA, static_cast<int>(std::lround(FL_NORMAL_SIZE * UiScale())));

  CGrid grid(static_cast<std::uint32_t>(std::time(nullptr)));
  CImageViewUI window(RegisterSolverTimer);
  window.Files().KeepIn(StateFolder());
  const std::filesystem::path settings = SettingsFolder();
  window.Settings().KeepIn(settings.empty() ? settings : settings / "settings.json");
  if (!commandLine.m_bDefaults) window.RestorePlace();
  window.show();
  window.AttachGrid(grid);
  const CToolSet tools(window, grid);
  CRecoveryTool recovery(window, grid, StateFolder());
  ending.m_pRecovery = &recovery;
  ending.m_pWindow = &window;
  if (!commandLine.m_bDefaults) window.RestoreSwitches();
  window.ShowFirstStep();
  window.Commands().OpenNow(commandLine.m_Files);
  // What opening has to say matters less.
  recovery.TellAtStart();
  RegisterSolverTimer(grid);
  // The end comes from the window's callback.
  for (;;) Fl::wait();
}
