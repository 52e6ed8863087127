#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <vector>

#include "base/Vector3.h"

/// What a frame keeps of the camera of the model view.
struct CFrameCamera {
  Vector3 m_Target;  ///< the point looked at
  Vector3 m_Eye;
  Vector3 m_Up;
  double m_fHalfSize = 0.0;  ///< of the view's orthographic volume, model units

  friend bool operator==(const CFrameCamera&, const CFrameCamera&) = default;
};

/// One moment of a recording.
struct CFrame {
  CFrameCamera m_Camera;
  double m_fSeconds = 0.0;  ///< since the previous frame, or since recording was asked for

  friend bool operator==(const CFrame&, const CFrame&) = default;
};

/// Bits of the record mode. It is kIdle, kRecording, kPlaying, or one of the latter with kPaused.
namespace RecordMode {
inline constexpr std::uint32_t kIdle = 1;
inline constexpr std::uint32_t kRecording = 2;
inline constexpr std::uint32_t kPaused = 4;
inline constexpr std::uint32_t kPlaying = 8;
}  // namespace RecordMode

/// The frames of a camera animation, and whether frames are being added or shown.
///
/// Nothing here draws or waits: the model view offers its camera at every redraw, and a timer asks for the next frame.
class CFrameRecorder {
 public:
  /// Whole milliseconds of a clock that never jumps.
  using Clock = std::function<std::int64_t()>;

  /// Without frames, neither recording nor playing.
  explicit CFrameRecorder(Clock clock);

  /// Bits of RecordMode, and the frames so far, in the order of their recording.
  std::uint32_t Mode() const { return m_uMode; }
  bool IsIn(std::uint32_t bit) const { return (m_uMode & bit) != 0; }
  const std::vector<CFrame>& Frames() const { return m_aFrames; }
  /// What is shown as the time of the last frame, seconds.
  double ShownSeconds() const { return m_fShownSeconds; }

  /// Recording begins, paused; frames will follow those already there.
  void Record();
  /// Pauses recording or playing, or goes on with it. Without effect while idle.
  void TogglePause();
  /// Pauses whatever runs.
  void Pause();
  /// Idle; the frames stay.
  void Stop() { m_uMode = RecordMode::kIdle; }
  /// Idle, with no frame left.
  void Reset();
  /// Idle, with these frames in place of those there are.
  void Take(std::vector<CFrame> frames);
  /// Plays from the first frame.
  void Play();

  /// The view is about to draw: appends a frame while recording, unless paused. Whether it did.
  bool Capture(const CFrameCamera& camera);
  /// The frame to show next, which is then done with; null at the end and unless playing without a pause. It stays
  /// valid until frames are added or removed.
  const CFrame* Next();
  /// Whether there is no frame left to play.
  bool IsAtEnd() const { return m_uCursor >= m_aFrames.size(); }

 private:
  Clock m_Clock;
  std::uint32_t m_uMode = RecordMode::kIdle;
  std::vector<CFrame> m_aFrames;
  std::size_t m_uCursor = 0;  ///< the next frame to show
  std::int64_t m_iLastMilliseconds = 0;
  double m_fShownSeconds = 0.0;
};
