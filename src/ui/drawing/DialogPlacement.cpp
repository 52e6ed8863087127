#include "ui/drawing/DialogPlacement.h"

#include <algorithm>

#include <FL/Fl.H>
#include <FL/Fl_Window.H>

namespace {

// Room for the window manager's frame, whose size is unknown before a window is mapped.
constexpr int kSideFrame = 12;
constexpr int kTitleBar = 32;

int Within(int place, int size, int start, int room) {
  return std::max(start, std::min(place, start + room - size - kSideFrame));
}

}  // namespace

void OpenBeside(Fl_Window& dialog, const Fl_Window& mainWindow) {
  if (dialog.shown() == 0 || dialog.visible() == 0) {
    int left = 0;
    int top = 0;
    int width = 0;
    int height = 0;
    Fl::screen_work_area(left, top, width, height, mainWindow.x() + mainWindow.w() / 2,
                         mainWindow.y() + mainWindow.h() / 2);
    const int right = mainWindow.x() + mainWindow.w() + kSideFrame;
    const int leftOf = mainWindow.x() - dialog.w() - kSideFrame;
    int x = mainWindow.x() + (mainWindow.w() - dialog.w()) / 2;
    if (right + dialog.w() + kSideFrame <= left + width) {
      x = right;
    } else if (leftOf >= left + kSideFrame) {
      x = leftOf;
    }
    const int y = mainWindow.y() + std::max(0, (mainWindow.h() - dialog.h()) / 2);
    dialog.position(Within(x, dialog.w(), left, width), std::max(top + kTitleBar, Within(y, dialog.h(), top, height)));
  }
  dialog.show();
}
