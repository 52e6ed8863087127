#include "ui/recorder/CPlayback.h"

#include <utility>

#include <FL/Fl.H>

#include "base/Console.h"
#include "ui/recorder/CFrameRecorder.h"
#include "ui/recorder/RecorderView.h"
#include "ui/seams/TimerInterval.h"

CPlayback::CPlayback(CFrameRecorder& recorder, RecorderView& view, std::function<void()> onEnd)
    : m_Recorder(recorder), m_View(view), m_OnEnd(std::move(onEnd)) {}

void CPlayback::Play() {
  m_Recorder.Play();
  if (g_nPlaybackTimers != 0) {
    Console() << "CGridView::recMode_play() : timeout already set...";
    return;
  }
  g_nPlaybackTimers = 1;
  Console() << "CGridView::recMode_Play : add_timeout\n";
  Fl::add_timeout(g_fTimerInterval, OnTick, this);
}

void CPlayback::EndTimer() {
  if (Fl::has_timeout(OnTick, this) == 0) return;
  Fl::remove_timeout(OnTick, this);
  --g_nPlaybackTimers;
}

void CPlayback::OnTick(void* playback) {
  if (playback != nullptr) static_cast<CPlayback*>(playback)->Tick();
}

void CPlayback::Tick() {
  // Armed before anything else, so that anything that ends the playback from here on finds a timer to end.
  Fl::add_timeout(g_fTimerInterval, OnTick, this);
  if (m_Recorder.IsIn(RecordMode::kPaused)) return;
  if (const CFrame* frame = m_Recorder.Next(); frame != nullptr) {
    m_View.SetCamera(frame->m_Camera);
    m_View.RequestRedraw();
  }
  if (m_Recorder.IsAtEnd()) Finish();
}

void CPlayback::Finish() {
  EndTimer();
  m_Recorder.Stop();
  m_View.SetCamera(m_View.Camera());
  m_View.RequestRedraw();
  m_OnEnd();
}
