#pragma once

#include <functional>

class CFrameRecorder;
class RecorderView;

/// Number of armed playback timers, 0 or 1.
inline int g_nPlaybackTimers = 0;

/// Shows the recorded frames one after the other, each for one tick of the shared timer interval.
class CPlayback {
 public:
  /// Both must outlive the playback; `onEnd` is called when the last frame has been shown.
  CPlayback(CFrameRecorder& recorder, RecorderView& view, std::function<void()> onEnd);
  ~CPlayback() { EndTimer(); }
  CPlayback(const CPlayback&) = delete;
  CPlayback& operator=(const CPlayback&) = delete;

  /// Plays from the first frame. With a timer armed already it goes on with that one.
  void Play();
  /// Disarms the timer; the recorder keeps its mode.
  void EndTimer();

  /// The tick, a timeout of the toolkit; `playback` is a CPlayback*, with null nothing happens and the timer ends.
  static void OnTick(void* playback);

 private:
  void Tick();
  void Finish();

  CFrameRecorder& m_Recorder;
  RecorderView& m_View;
  std::function<void()> m_OnEnd;
};
