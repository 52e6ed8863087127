#pragma once

#include <cstdint>
#include <fstream>
#include <functional>
#include <optional>
#include <string>
#include <vector>

#include "editing/UserDialogs.h"
#include "ui/recorder/CFrameRecorder.h"
#include "ui/recorder/RecorderHost.h"
#include "ui/recorder/RecorderView.h"

/// A camera that can be told from those of other numbers in every value.
inline CFrameCamera CameraNumber(int number) {
  const double v = number;
  return {{v, v + 0.1, v + 0.2}, {v + 0.3, v + 0.4, v + 0.5}, {v + 0.6, v + 0.7, v + 0.8}, v + 0.9};
}

/// A view that remembers what was asked of it. A saved frame is a file that holds the first value of the camera.
class RecordingView : public RecorderView {
 public:
  CFrameCamera Camera() const override { return m_Camera; }
  void SetCamera(const CFrameCamera& camera) override { m_Camera = camera; }
  void RequestRedraw() override {
    ++m_iRedraws;
    m_aShown.push_back(m_Camera);
  }
  bool DrawAndSave(const std::string& fileName) override {
    m_OnDraw();
    m_aFileNames.push_back(fileName);
    std::ofstream file(fileName);
    file << m_Camera.m_Target.x;
    return file.good();
  }

  CFrameCamera m_Camera;
  int m_iRedraws = 0;
  std::vector<CFrameCamera> m_aShown;
  std::vector<std::string> m_aFileNames;
  std::function<void()> m_OnDraw = [] {};
};

class RecordingRecorderHost : public RecorderHost {
 public:
  void PauseForRecorder() override { m_Calls += "pause "; }
  void EndRecorder() override { m_Calls += "end "; }
  void ShowFrameRecorded(int number) override { m_Calls += std::to_string(number) + " "; }

  std::string m_Calls;
};

/// Dialogs that answer by themselves.
class AnsweringDialogs : public UserDialogs {
 public:
  std::optional<std::string> ChooseFile(const CFileQuestion& /*question*/) override { return {}; }
  bool Ask(const char* question) override {
    m_aTexts.emplace_back(question);
    return m_bYes;
  }
  std::string AskText(const char* question) override {
    m_aTexts.emplace_back(question);
    return m_Answer;
  }
  void Notice(const char* text) override { m_aTexts.emplace_back(text); }

  bool m_bYes = true;
  std::string m_Answer;
  std::vector<std::string> m_aTexts;
};

/// Milliseconds that a test sets.
struct CTestClock {
  CFrameRecorder::Clock Clock() {
    return [this] { return m_iNow; };
  }

  std::int64_t m_iNow = 1000;
};
