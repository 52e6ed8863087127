#pragma once

/// Lets files be dropped on the main window while a dialog is open, too, to which the toolkit would offer them; the
/// window opens them when the dialog has gone.
void LetDropsPassDialogs();
