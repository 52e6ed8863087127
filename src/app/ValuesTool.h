#pragma once

#include <memory>

#include "ui/seams/ToolWindow.h"

class CGrid;
class CImageViewUI;

/// The panel of values as a tool of the window, whose selection it follows while it is open. Both must outlive it.
std::unique_ptr<ToolWindow> MakeValuesTool(CImageViewUI& window, CGrid& grid);
