#include "ui/drawing/DialogPlacement.h"

#include <algorithm>

#include <FL/Fl.H>
#include <FL/Fl_Window.H>

#include "ui/seams/FieldFocus.h"

namespace {

// Room for the window manager's frame, whose size is unknown before a window is mapped.
constexpr int kSideFrame = 12;
constexpr int kTitleBar = 32;

int Within(int place, int size, int start, int room) {
  return std::max(start, std::min(place, start + room - size - kSideFrame));
}

/// Where a window may lie.
struct CRoom {
  int m_iLeft = 0;
  int m_iTop = 0;
  int m_iWidth = 0;
  int m_iHeight = 0;
};

CRoom RoomAround(const Fl_Window& mainWindow) {
  CRoom room;
  Fl::screen_work_area(room.m_iLeft, room.m_iTop, room.m_iWidth, room.m_iHeight, mainWindow.x() + mainWindow.w() / 2,
                       mainWindow.y() + mainWindow.h() / 2);
  return room;
}

// Above or below the main window, or else in the corner.
void PlacePanel(Fl_Window& panel, const Fl_Window& mainWindow, const CRoom& room) {
  const int bottom = room.m_iTop + room.m_iHeight;
  const int below = mainWindow.y() + mainWindow.h() + kSideFrame + kTitleBar;
  const int above = mainWindow.y() - kTitleBar - kSideFrame - panel.h();
  int x = mainWindow.x() + (mainWindow.w() - panel.w()) / 2;
  int y = below;
  if (below + panel.h() + kSideFrame > bottom) y = above;
  if (y < room.m_iTop + kTitleBar) {
    x = room.m_iLeft + room.m_iWidth;
    y = bottom;
  }
  panel.position(Within(x, panel.w(), room.m_iLeft, room.m_iWidth),
                 std::max(room.m_iTop + kTitleBar, Within(y, panel.h(), room.m_iTop, room.m_iHeight)));
}

void Place(Fl_Window& dialog, const Fl_Window& mainWindow) {
  const CRoom room = RoomAround(mainWindow);
  const int right = mainWindow.x() + mainWindow.w() + kSideFrame;
  const int leftOf = mainWindow.x() - dialog.w() - kSideFrame;
  int x = mainWindow.x() + (mainWindow.w() - dialog.w()) / 2;
  if (right + dialog.w() + kSideFrame <= room.m_iLeft + room.m_iWidth) {
    x = right;
  } else if (leftOf >= room.m_iLeft + kSideFrame) {
    x = leftOf;
  } else if (dialog.non_modal() != 0 && dialog.modal() == 0) {
    return PlacePanel(dialog, mainWindow, room);
  }
  const int y = mainWindow.y() + std::max(0, (mainWindow.h() - dialog.h()) / 2);
  dialog.position(Within(x, dialog.w(), room.m_iLeft, room.m_iWidth),
                  std::max(room.m_iTop + kTitleBar, Within(y, dialog.h(), room.m_iTop, room.m_iHeight)));
}

}  // namespace

void OpenBeside(Fl_Window& dialog, const Fl_Window& mainWindow) {
  if (dialog.shown() == 0 || dialog.visible() == 0) {
    Place(dialog, mainWindow);
    ExpectFocus(dialog);
  }
  dialog.show();
}
