#pragma once

class Fl_Window;

/// Shows a dialog or a panel where it leaves the main window free: beside it where the screen has room, the right side
/// first, else over its middle; always wholly on the screen. One that is open already is raised and stays where it is.
void OpenBeside(Fl_Window& dialog, const Fl_Window& mainWindow);
