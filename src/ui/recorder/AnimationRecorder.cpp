#include "ui/recorder/AnimationRecorder.h"

#include <utility>

#include <FL/Fl.H>
#include <FL/Fl_Button.H>
#include <FL/Fl_Value_Output.H>

#include "editing/UserDialogs.h"
#include "ui/drawing/ScaleWidgets.h"
#include "ui/recorder/CExportProgress.h"
#include "ui/recorder/FrameExport.h"
#include "ui/recorder/RecorderHost.h"
#include "ui/recorder/RecorderView.h"

namespace {

constexpr int kWidth = 290;
constexpr int kHeight = 100;

// How long the toolkit may take over waiting events before an export.
constexpr double kEventTime = 0.1;

}  // namespace

struct CAnimationRecorder::CButtonRow {
  const char* m_pLabel;
  const char* m_pTooltip;
  Fl_Callback* m_pCallback;
  uchar m_uType;
};

CAnimationRecorder::CAnimationRecorder(RecorderView& view, RecorderHost& host, UserDialogs& dialogs,
                                       CFrameRecorder::Clock clock)
    : Fl_Window(kWidth, kHeight, "Animation Record Interface"),
      m_View(view),
      m_Host(host),
      m_Dialogs(dialogs),
      m_Recorder(std::move(clock)),
      m_Playback(m_Recorder, view, [this] { Refresh(); }) {
  constexpr std::array<CButtonRow, kButtonCount> kRows{{
      {"@circle", "Record a new sequence", cb_m_pbtnRecord, FL_TOGGLE_BUTTON},
      {"@+2||", "Pause", cb_m_pbtnPause, FL_TOGGLE_BUTTON},
      {"@>", "Play the recorded animation", cb_m_pbtnPlay, FL_TOGGLE_BUTTON},
      {"@square", "Stop the animation", cb_m_pbtnStop, FL_NORMAL_BUTTON},
      {"@reload", "Reset the animation", cb_m_pbtnReset, FL_NORMAL_BUTTON},
      {"@returnarrow", "Export the animation", cb_m_pbtnExport, FL_NORMAL_BUTTON},
  }};
  int x = 10;
  for (std::size_t button = 0; button < kButtonCount; ++button) {
    const CButtonRow& row = kRows[button];
    m_apButtons[button] = new Fl_Button(x, 10, 40, 35, row.m_pLabel);
    m_apButtons[button]->tooltip(row.m_pTooltip);
    m_apButtons[button]->type(row.m_uType);
    m_apButtons[button]->callback(row.m_pCallback, this);
    x += 46;
  }
  m_pFrameNumber = new Fl_Value_Output(125, 60, 55, 25, "Frame number : ");
  m_pTick = new Fl_Value_Output(225, 60, 55, 25, "Tick");
  end();
  ScaleWidgets(*this);
  callback(cb_Window);
  Refresh();
}

void CAnimationRecorder::Open() {
  if (m_bOpen) return;
  m_bOpen = true;
  m_Host.PauseForRecorder();
  Refresh();
  show();
}

void CAnimationRecorder::Close() {
  if (!m_bOpen) return;
  m_bOpen = false;
  m_Playback.EndTimer();
  m_Recorder.Stop();
  hide();
  m_Host.EndRecorder();
  ReportClosed();
}

void CAnimationRecorder::TakeFrames(std::vector<CFrame> frames) {
  m_Playback.EndTimer();
  m_Recorder.Take(std::move(frames));
  Refresh();
}

void CAnimationRecorder::StoreFrame() {
  if (!m_Recorder.Capture(m_View.Camera())) return;
  m_Host.ShowFrameRecorded(static_cast<int>(m_Recorder.Frames().size()));
  Refresh();
}

void CAnimationRecorder::cb_Window(Fl_Widget* widget, void* /*data*/) {
  static_cast<CAnimationRecorder*>(widget)->Close();
}

void CAnimationRecorder::cb_m_pbtnRecord(Fl_Widget* /*widget*/, void* recorder) {
  auto& self = *static_cast<CAnimationRecorder*>(recorder);
  self.m_Playback.EndTimer();
  self.m_Recorder.Record();
  self.Refresh();
}

void CAnimationRecorder::cb_m_pbtnPause(Fl_Widget* /*widget*/, void* recorder) {
  auto& self = *static_cast<CAnimationRecorder*>(recorder);
  self.m_Recorder.TogglePause();
  self.Refresh();
}

void CAnimationRecorder::cb_m_pbtnPlay(Fl_Widget* /*widget*/, void* recorder) {
  auto& self = *static_cast<CAnimationRecorder*>(recorder);
  self.m_Playback.Play();
  self.Refresh();
}

void CAnimationRecorder::cb_m_pbtnStop(Fl_Widget* /*widget*/, void* recorder) {
  auto& self = *static_cast<CAnimationRecorder*>(recorder);
  self.m_Playback.EndTimer();
  self.m_Recorder.Stop();
  self.Refresh();
}

void CAnimationRecorder::cb_m_pbtnReset(Fl_Widget* /*widget*/, void* recorder) {
  auto& self = *static_cast<CAnimationRecorder*>(recorder);
  self.m_Playback.EndTimer();
  self.m_Recorder.Reset();
  self.Refresh();
}

void CAnimationRecorder::cb_m_pbtnExport(Fl_Widget* /*widget*/, void* recorder) {
  static_cast<CAnimationRecorder*>(recorder)->Export();
}

void CAnimationRecorder::Export() {
  m_Recorder.Pause();
  m_bExporting = true;
  Refresh();
  if (m_Dialogs.Ask("The system will save the frames you recorded in bmp files. This might take a lot of space. "
                    "Are you sure you want to continue ?")) {
    const std::string templateName = m_Dialogs.AskText("please input template file name, without extension");
    if (templateName.empty()) {
      m_Dialogs.Notice("You didn't chose any name ! Action canceled");
    } else {
      ExportTo(templateName);
    }
  }
  m_bExporting = false;
  Refresh();
}

void CAnimationRecorder::ExportTo(const std::string& templateName) {
  Fl::wait(kEventTime);
  // A copy, so that nothing that happens meanwhile can reach the frames being written.
  const std::vector<CFrame> frames = m_Recorder.Frames();
  const int count = static_cast<int>(frames.size());
  std::string failed;
  ExportResult result = ExportResult::Done;
  {
    CExportProgress progress;
    progress.show();
    Fl::wait(kEventTime);
    const auto goOn = [&](int number) {
      progress.ShowFrame(number, count);
      return !progress.IsStopped() && m_bOpen;
    };
    result = ExportFrames(frames, templateName, m_View, goOn, failed);
  }
  if (result == ExportResult::Done) m_Dialogs.Notice("Export finished");
  if (result == ExportResult::Unwritable) m_Dialogs.Notice(("Cannot write " + failed).c_str());
}

void CAnimationRecorder::Refresh() {
  const bool recording = m_Recorder.IsIn(RecordMode::kRecording);
  const bool idle = m_Recorder.IsIn(RecordMode::kIdle);
  const bool hasAnimation = !m_Recorder.Frames().empty() && !recording;
  SetButton(kRecord, !recording, recording);
  SetButton(kPause, !idle, m_Recorder.IsIn(RecordMode::kPaused));
  SetButton(kPlay, hasAnimation, m_Recorder.IsIn(RecordMode::kPlaying));
  SetButton(kStop, true, false);
  SetButton(kReset, true, false);
  SetButton(kExport, hasAnimation, false);
  m_pFrameNumber->value(static_cast<double>(m_Recorder.Frames().size()));
  m_pTick->value(m_Recorder.ShownSeconds());
}

void CAnimationRecorder::SetButton(Button button, bool active, bool down) {
  Fl_Button& widget = *m_apButtons[button];
  if (active && !m_bExporting) {
    widget.activate();
  } else {
    widget.deactivate();
  }
  widget.value(down ? 1 : 0);
}
