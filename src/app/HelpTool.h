#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>

#include "ui/seams/ToolWindow.h"

class CImageViewUI;

/// The list of keys as a tool of the window, which must outlive it.
std::unique_ptr<ToolWindow> MakeKeysTool(CImageViewUI& window);

/// The tutorial that was installed, or lies in the sources, with the program of that path; nothing where it is not
/// there.
std::optional<std::filesystem::path> TutorialOf(const std::filesystem::path& program);

/// Has the desktop open the tutorial of the program that runs, or of another one; where that fails, the user is told
/// where it lies.
void OpenTutorial(CImageViewUI& window);
void OpenTutorial(CImageViewUI& window, const std::filesystem::path& program);

/// What the program is: its version, its licence, and the libraries that it is built with.
std::string AboutText();
