#include "ui/recorder/FrameExport.h"

#include <array>
#include <cstddef>
#include <cstdio>

#include "ui/recorder/CFrameRecorder.h"
#include "ui/recorder/RecorderView.h"

std::string FrameFileName(const std::string& templateName, int number) {
  std::array<char, 16> digits{};
  std::snprintf(digits.data(), digits.size(), "%4d", number);
  return templateName + digits.data() + ".bmp";
}

ExportResult ExportFrames(const std::vector<CFrame>& frames, const std::string& templateName, RecorderView& view,
                          const std::function<bool(int)>& goOn, std::string& failed) {
  int number = 0;
  for (const CFrame& frame : frames) {
    if (!goOn(number)) return ExportResult::Stopped;
    view.SetCamera(frame.m_Camera);
    const std::string fileName = FrameFileName(templateName, number);
    if (!view.DrawAndSave(fileName)) {
      failed = fileName;
      return ExportResult::Unwritable;
    }
    ++number;
  }
  return ExportResult::Done;
}
