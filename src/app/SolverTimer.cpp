#include "app/SolverTimer.h"

#include <FL/Fl.H>

#include "model/CGrid.h"
#include "model/Globals.h"
#include "ui/seams/TimerInterval.h"

namespace {

// The toolkit calls expired timeouts until none is left, so a tick that registered itself with no delay would be called
// for ever. A check is called after that loop, once per wait: it registers the tick for the next one and is gone.
void RearmSolverTimer(void* grid) {
  Fl::remove_check(RearmSolverTimer, grid);
  Fl::add_timeout(0.0, OnSolverTimer, grid);
}

}  // namespace

void RegisterSolverTimer(CGrid& grid) {
  if (g_nSolverTimers != 0) return;
  g_nSolverTimers = 1;
  Fl::add_timeout(g_fTimerInterval, OnSolverTimer, &grid);
}

void OnSolverTimer(void* grid) {
  if (grid == nullptr) return;
  auto& running = *static_cast<CGrid*>(grid);
  if (running.Run().IsRunning()) {
    running.UpdateGrid();
    Fl::add_check(RearmSolverTimer, grid);
  } else {
    Fl::remove_timeout(OnSolverTimer, grid);
    --g_nSolverTimers;
  }
}
