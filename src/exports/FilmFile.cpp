#include "exports/FilmFile.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <memory>
#include <new>

#include <webp/encode.h>
#include <webp/mux.h>

#include "exports/CFilmProgram.h"
#include "io/CFileReplacement.h"
#include "io/SaveTogether.h"

namespace {

// What drawing and encoding the frames takes of the time.
constexpr double kFramesShare = 0.97;

constexpr double kMillisecondsPerFrame = 1000.0 / kFilmRate;

CSaveOutcome NotDrawn(const std::string& filename) {
  return {"The frames cannot be drawn in this size. The file " + filename + " is not written."};
}

CSaveOutcome NotEncoded(const std::string& filename, const std::string& reason) {
  return {reason + " The file " + filename + " is not written."};
}

// The rows from the top, as films have them.
std::string RowsFromTop(const CPicture& frame) {
  const std::size_t row = 3 * static_cast<std::size_t>(frame.m_iWidth);
  std::string rows(frame.m_aPixels.size(), '\0');
  for (std::size_t y = 0; y < static_cast<std::size_t>(frame.m_iHeight); ++y)
    std::copy_n(frame.m_aPixels.end() - static_cast<std::ptrdiff_t>((y + 1) * row), row,
                rows.begin() + static_cast<std::ptrdiff_t>(y * row));
  return rows;
}

// Hands the frames to `add` one after the other; what has gone wrong, nothing where all have been taken. `reason` says
// why one was not.
template <typename Add>
std::optional<CSaveOutcome> ForFrames(const CFilm& film, const std::string& filename, const CExportSteps& steps,
                                      const Add& add, const std::function<std::string()>& reason) {
  for (std::size_t k = 0; k < film.m_uFrames; ++k) {
    if (!steps.Goes(kFramesShare * static_cast<double>(k) / static_cast<double>(film.m_uFrames)))
      return Cancelled(filename);
    const std::optional<CPicture> frame = film.m_Frame(k);
    if (!frame.has_value()) return NotDrawn(filename);
    if (add(RowsFromTop(*frame), k)) continue;
    return steps.Goes(0) ? NotEncoded(filename, reason()) : Cancelled(filename);
  }
  return {};
}

/// An animated picture that is being made.
class CAnimation {
 public:
  CAnimation(int width, int height) : m_iWidth(width), m_iHeight(height) {
    WebPAnimEncoderOptions options;
    if (WebPAnimEncoderOptionsInit(&options) == 0 || WebPConfigInit(&m_Config) == 0) return;
    constexpr float kQuality = 85;
    constexpr int kFast = 2;  // of 0 to 6
    m_Config.quality = kQuality;
    m_Config.method = kFast;
    m_pEncoder.reset(WebPAnimEncoderNew(width, height, &options));
  }

  // The frame begins at its number.
  bool Add(const std::string& rows, std::size_t number) {
    WebPPicture picture;
    if (m_pEncoder == nullptr || WebPPictureInit(&picture) == 0) return false;
    picture.use_argb = 1;
    picture.width = m_iWidth;
    picture.height = m_iHeight;
    const bool added =
        WebPPictureImportRGB(&picture, reinterpret_cast<const std::uint8_t*>(rows.data()), 3 * m_iWidth) != 0 &&
        WebPAnimEncoderAdd(m_pEncoder.get(), &picture, TimeOf(number), &m_Config) != 0;
    WebPPictureFree(&picture);
    return added;
  }

  // The bytes of the file; nothing where that fails.
  std::optional<std::string> Finish(std::size_t frames) {
    WebPData data;
    WebPDataInit(&data);
    if (WebPAnimEncoderAdd(m_pEncoder.get(), nullptr, TimeOf(frames), nullptr) == 0 ||
        WebPAnimEncoderAssemble(m_pEncoder.get(), &data) == 0)
      return {};
    std::string bytes(reinterpret_cast<const char*>(data.bytes), data.size);
    WebPDataClear(&data);
    return bytes;
  }

  std::string Trouble() const {
    const char* error = m_pEncoder == nullptr ? "" : WebPAnimEncoderGetError(m_pEncoder.get());
    return "The film cannot be encoded" + std::string(*error == '\0' ? "" : ": ") + error + '.';
  }

 private:
  struct CDelete {
    void operator()(WebPAnimEncoder* encoder) const { WebPAnimEncoderDelete(encoder); }
  };

  static int TimeOf(std::size_t number) {
    return static_cast<int>(std::lround(kMillisecondsPerFrame * static_cast<double>(number)));
  }

  const int m_iWidth;
  const int m_iHeight;
  WebPConfig m_Config{};
  std::unique_ptr<WebPAnimEncoder, CDelete> m_pEncoder;
};

CSaveOutcome WriteWebp(const CFilm& film, const std::string& filename, const CExportSteps& steps) {
  CAnimation animation(film.m_iWidth, film.m_iHeight);
  const auto add = [&](const std::string& rows, std::size_t k) { return animation.Add(rows, k); };
  if (const auto trouble = ForFrames(film, filename, steps, add, [&] { return animation.Trouble(); })) return *trouble;
  std::optional<std::string> bytes = animation.Finish(film.m_uFrames);
  if (!bytes.has_value()) return NotEncoded(filename, animation.Trouble());
  const CExportSteps writing = steps.Part(kFramesShare, 1);
  return SaveTogether(std::array{CNewFile{filename, std::move(*bytes)}},
                      [&](double share) { return writing.Goes(share); });
}

CSaveOutcome WriteByProgram(const CFilm& film, const std::string& filename, const CExportSteps& steps,
                            const std::vector<std::string>& encoding) {
  CFilmProgram program(film.m_iWidth, film.m_iHeight, encoding);
  const auto goes = [&] { return steps.Goes(0); };
  const auto add = [&](const std::string& rows, std::size_t /*k*/) { return program.Send(rows, goes); };
  if (const auto trouble = ForFrames(film, filename, steps, add, [&] { return program.Trouble(); })) return *trouble;
  if (!program.Finish(goes)) return goes() ? NotEncoded(filename, program.Trouble()) : Cancelled(filename);
  CFileReplacement file(filename);
  if (file.IsOpen()) program.ForOutput([&](std::span<const unsigned char> bytes) { file.Write(bytes); });
  if (!steps.Goes(1)) return Cancelled(filename);
  if (file.IsOpen() && file.Commit()) return {};
  return {"The file " + filename + " could not be written. If it existed before, it is unchanged."};
}

CSaveOutcome WriteMp4(const CFilm& film, const std::string& filename, const CExportSteps& steps) {
  return WriteByProgram(film, filename, steps,
                        {"-c:v", "libx264", "-preset", "medium", "-crf", "18", "-movflags", "+faststart", "-f", "mp4"});
}

CSaveOutcome WriteWebm(const CFilm& film, const std::string& filename, const CExportSteps& steps) {
  return WriteByProgram(film, filename, steps,
                        {"-c:v", "libvpx-vp9", "-crf", "24", "-b:v", "0", "-row-mt", "1", "-deadline", "good",
                         "-cpu-used", "4", "-f", "webm"});
}

}  // namespace

std::span<const CFilmFormat> FilmFormats() {
  static constexpr auto kFormats = std::to_array<CFilmFormat>({
      {".webp", "animated WebP", false, WriteWebp},
      {".mp4", "MP4 film, H.264", true, WriteMp4},
      {".webm", "WebM film, VP9", true, WriteWebm},
  });
  return kFormats;
}

bool HasFilmProgram() { return CFilmProgram::IsInstalled(); }

CSaveOutcome WriteFilm(const CFilmFormat& format, const CFilm& film, const std::string& filename,
                       ExportProgress* progress) {
  try {
    return format.m_pWrite(film, filename, CExportSteps(progress));
  } catch (const std::bad_alloc&) {
    return {"The file " + filename + " needs more memory than there is. It is not written."};
  }
}

std::vector<std::size_t> ResampledFrames(std::size_t count, double seconds) {
  if (count == 0) return {};
  const double length = static_cast<double>(count) * seconds * kFilmRate;
  std::vector<std::size_t> frames(static_cast<std::size_t>(std::max(1.0, std::round(length))));
  for (std::size_t k = 0; k < frames.size(); ++k) {
    // What is on show in the middle of the frame.
    const double recorded = (static_cast<double>(k) + 0.5) / (kFilmRate * seconds);
    frames[k] = std::min(count - 1, static_cast<std::size_t>(recorded));
  }
  return frames;
}
