#include "ui/recorder/CFrameRecorder.h"

#include <utility>

#include "base/Memory.h"

CFrameRecorder::CFrameRecorder(Clock clock) : m_Clock(std::move(clock)) {}

void CFrameRecorder::Record() {
  // Room for a minute or so, because frames are added in the middle of redraws.
  constexpr std::size_t kRoom = 4096;
  m_aFrames.reserve(m_aFrames.size() + kRoom);
  m_uCursor = m_aFrames.empty() ? 0 : m_aFrames.size() - 1;
  m_fShownSeconds = 0.0;
  m_uMode = RecordMode::kRecording | RecordMode::kPaused;
  m_iLastMilliseconds = m_Clock();
}

void CFrameRecorder::TogglePause() {
  if (!IsIn(RecordMode::kIdle)) m_uMode ^= RecordMode::kPaused;
}

void CFrameRecorder::Pause() {
  if (!IsIn(RecordMode::kIdle)) m_uMode |= RecordMode::kPaused;
}

void CFrameRecorder::Reset() {
  Release(m_aFrames);
  m_uCursor = 0;
  m_fShownSeconds = 0.0;
  m_uMode = RecordMode::kIdle;
}

void CFrameRecorder::Take(std::vector<CFrame> frames) {
  Reset();
  m_aFrames = std::move(frames);
}

void CFrameRecorder::Play() {
  m_uMode = RecordMode::kPlaying;
  m_uCursor = 0;
}

bool CFrameRecorder::Capture(const CFrameCamera& camera) {
  if (m_uMode != RecordMode::kRecording) return false;
  constexpr double kSecondsPerMillisecond = 0.001;
  const std::int64_t now = m_Clock();
  m_fShownSeconds = static_cast<double>(now - m_iLastMilliseconds) * kSecondsPerMillisecond;
  m_iLastMilliseconds = now;
  m_aFrames.push_back({camera, m_fShownSeconds});
  return true;
}

const CFrame* CFrameRecorder::Next() {
  if (m_uMode != RecordMode::kPlaying || IsAtEnd()) return nullptr;
  return &m_aFrames[m_uCursor++];
}
