#pragma once

#include <array>
#include <string>
#include <vector>

#include <FL/Fl_Window.H>

#include "ui/recorder/CFrameRecorder.h"
#include "ui/recorder/CPlayback.h"
#include "ui/seams/ToolWindow.h"

class Fl_Button;
class Fl_Value_Output;
class RecorderHost;
class RecorderView;
class UserDialogs;

/// "Animation Record Interface": records the camera of the model view, plays it back and exports it as a series of
/// pictures. The frames outlive the closed window.
class CAnimationRecorder : public Fl_Window, public ToolWindow {
 public:
  /// All must outlive the window. It is built closed.
  CAnimationRecorder(RecorderView& view, RecorderHost& host, UserDialogs& dialogs, CFrameRecorder::Clock clock);

  bool IsOpen() const override { return m_bOpen; }
  void Open() override;
  /// Ends recording, playback and export.
  void Close() override;

  /// The model view is about to be drawn: stores a frame if one is wanted.
  void StoreFrame();

  /// The frames and what is being done with them.
  const CFrameRecorder& Recorder() const { return m_Recorder; }
  /// Ends recording and playback, and has these frames from now on. Not during an export.
  void TakeFrames(std::vector<CFrame> frames);

 private:
  struct CButtonRow;
  enum Button : std::size_t { kRecord, kPause, kPlay, kStop, kReset, kExport, kButtonCount };

  static void cb_Window(Fl_Widget* widget, void* data);
  static void cb_m_pbtnRecord(Fl_Widget* widget, void* recorder);
  static void cb_m_pbtnPause(Fl_Widget* widget, void* recorder);
  static void cb_m_pbtnPlay(Fl_Widget* widget, void* recorder);
  static void cb_m_pbtnStop(Fl_Widget* widget, void* recorder);
  static void cb_m_pbtnReset(Fl_Widget* widget, void* recorder);
  static void cb_m_pbtnExport(Fl_Widget* widget, void* recorder);

  void Export();
  void ExportTo(const std::string& templateName);
  /// The only place that writes the values and states of the widgets.
  void Refresh();
  void SetButton(Button button, bool active, bool down);

  RecorderView& m_View;
  RecorderHost& m_Host;
  UserDialogs& m_Dialogs;
  CFrameRecorder m_Recorder;
  CPlayback m_Playback;
  std::array<Fl_Button*, kButtonCount> m_apButtons{};
  Fl_Value_Output* m_pFrameNumber = nullptr;
  Fl_Value_Output* m_pTick = nullptr;
  bool m_bOpen = false;
  bool m_bExporting = false;
};
