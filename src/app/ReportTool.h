#pragma once

#include <memory>

#include "ui/seams/ToolWindow.h"

class CGrid;
class CImageViewUI;

/// The report on the constraints as a tool of the window. While it is open it follows the model, a few times a second;
/// closed, it costs nothing. Both must outlive it.
std::unique_ptr<ToolWindow> MakeReportTool(CImageViewUI& window, CGrid& grid);
