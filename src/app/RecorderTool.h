#pragma once

#include <memory>

#include "ui/seams/ToolWindow.h"

class CImageViewUI;

/// The animation recorder, connected to the window and the camera of its model view, which must outlive it.
std::unique_ptr<ToolWindow> MakeRecorderTool(CImageViewUI& window);
