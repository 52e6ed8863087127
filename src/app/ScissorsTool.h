#pragma once

#include <memory>

#include "ui/seams/ToolWindow.h"

class CGrid;
class CImageViewUI;

/// The intelligent scissors, whose contours become tears of the grid. Window and grid must outlive them.
std::unique_ptr<ToolWindow> MakeScissorsTool(CImageViewUI& window, CGrid& grid);
