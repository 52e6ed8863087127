#pragma once

#include <functional>
#include <string>
#include <vector>

struct CFrame;
class RecorderView;

/// How an export of frames has ended: all written, stopped by the user, or a file that could not be written.
enum class ExportResult { Done, Stopped, Unwritable };

/// "%s%4d.bmp" of the template and the number: blanks fill the number up to four places.
std::string FrameFileName(const std::string& templateName, int number);

/// Draws each frame in order and saves it under its name, numbered from 0. Before each, `goOn` learns its number and
/// may end the export. A file that cannot be written ends it, too, and its name goes to `failed`.
ExportResult ExportFrames(const std::vector<CFrame>& frames, const std::string& templateName, RecorderView& view,
                          const std::function<bool(int)>& goOn, std::string& failed);
