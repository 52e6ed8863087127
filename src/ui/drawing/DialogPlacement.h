#pragma once

class Fl_Window;

/// Shows a dialog or a panel where it leaves the main window free: beside it where the screen has room, the right side
/// first. Else a dialog lies over its middle; a panel, which is one of the windows that are not modal and stays open,
/// below it or above it, and without room there in the lower right corner of the screen. Always wholly on the screen.
/// One that is open already is raised and stays where it is.
void OpenBeside(Fl_Window& dialog, const Fl_Window& mainWindow);
