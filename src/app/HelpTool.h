#pragma once

#include <memory>
#include <string>

#include "ui/seams/ToolWindow.h"

class CImageViewUI;

/// The list of keys as a tool of the window, which must outlive it.
std::unique_ptr<ToolWindow> MakeKeysTool(CImageViewUI& window);

/// Has the desktop open the tutorial that was installed with the program; where that fails, the user is told where it
/// lies.
void OpenTutorial(CImageViewUI& window);

/// What the program is: its version, its licence, and the libraries that it is built with.
std::string AboutText();
