#pragma once

class Fl_Window;

/// Makes a window that has just been built, and all in it with its texts, as large as `UiScale` asks for.
void ScaleWidgets(Fl_Window& window);
