#pragma once

/// What the desktop knows the program's windows by: class and icon. For all windows made later.
void IntroduceToDesktop();

/// Whether the display offers what both views are drawn with. Opens the display; without one the toolkit ends the
/// program with a message.
bool HasOpenGL();
