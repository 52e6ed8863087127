#include "app/RecorderTool.h"

#include <chrono>
#include <cstdint>
#include <utility>
#include <vector>

#include "projects/CProject.h"
#include "ui/modelview/CGridView.h"
#include "ui/recorder/AnimationRecorder.h"
#include "ui/recorder/RecorderHost.h"
#include "ui/recorder/RecorderView.h"
#include "ui/window/CHelpLine.h"
#include "ui/window/CImageViewUI.h"

namespace {

std::int64_t SteadyMilliseconds() {
  using std::chrono::duration_cast;
  using std::chrono::milliseconds;
  return duration_cast<milliseconds>(std::chrono::steady_clock::now().time_since_epoch()).count();
}

class CRecordedView : public RecorderView {
 public:
  explicit CRecordedView(CGridView& view) : m_View(view) {}

  CFrameCamera Camera() const override {
    const CCamera& camera = m_View.Camera();
    return {camera.m_Centre, camera.m_Eye, camera.m_Up, camera.m_fR};
  }
  void SetCamera(const CFrameCamera& frame) override {
    CCamera camera = m_View.Camera();
    camera.m_Centre = frame.m_Target;
    camera.m_Eye = frame.m_Eye;
    camera.m_Up = frame.m_Up;
    camera.m_fR = frame.m_fHalfSize;
    camera.UpdateAngles();
    m_View.SetCamera(camera);
  }
  void RequestRedraw() override { m_View.redraw(); }
  bool DrawAndSave(const std::string& fileName) override { return m_View.SaveFrame(fileName); }

 private:
  CGridView& m_View;
};

class CRecorderWindow : public RecorderHost {
 public:
  explicit CRecorderWindow(CImageViewUI& window) : m_Window(window) {}

  void PauseForRecorder() override { m_Window.Solver().PauseForRecorder(); }
  void EndRecorder() override { m_Window.Solver().EndRecorder(); }
  void ShowFrameRecorded(int number) override { m_Window.HelpLine().ShowFrameRecorded(number); }

 private:
  CImageViewUI& m_Window;
};

// The parts that the recorder works with live exactly as long as it does.
struct CRecorderParts {
  explicit CRecorderParts(CImageViewUI& window) : m_View(window.GridView()), m_Host(window) {}
  CRecordedView m_View;
  CRecorderWindow m_Host;
};

class CRecorderTool : private CRecorderParts, public CAnimationRecorder {
 public:
  explicit CRecorderTool(CImageViewUI& window)
      : CRecorderParts(window),
        CAnimationRecorder(CRecorderParts::m_View, CRecorderParts::m_Host, window, SteadyMilliseconds) {
    window.GridView().BeforeDrawing([this] { StoreFrame(); });
  }

  void AddTo(CProject& project) const override {
    for (const CFrame& frame : Recorder().Frames()) {
      const CFrameCamera& camera = frame.m_Camera;
      project.m_aRecording.push_back(
          {camera.m_Target, camera.m_Eye, camera.m_Up, camera.m_fHalfSize, frame.m_fSeconds});
    }
  }
  void TakeFrom(const CProject& project) override {
    std::vector<CFrame> frames;
    for (const CProjectFrame& frame : project.m_aRecording)
      frames.push_back({{frame.m_Target, frame.m_Eye, frame.m_Up, frame.m_fHalfSize}, frame.m_fSeconds});
    TakeFrames(std::move(frames));
  }
};

}  // namespace

std::unique_ptr<ToolWindow> MakeRecorderTool(CImageViewUI& window) { return std::make_unique<CRecorderTool>(window); }
