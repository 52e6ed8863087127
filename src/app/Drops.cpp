#include "app/Drops.h"

#include <FL/Fl.H>

#include "ui/window/CImageViewUI.h"

namespace {

int Dispatch(int event, Fl_Window* window) {
  const bool drop = event == FL_DND_ENTER || event == FL_DND_DRAG || event == FL_DND_RELEASE;
  auto* const main = drop && Fl::modal() != nullptr ? dynamic_cast<CImageViewUI*>(window) : nullptr;
  return main != nullptr ? main->handle(event) : Fl::handle_(event, window);
}

}  // namespace

void LetDropsPassDialogs() { Fl::event_dispatch(Dispatch); }
