#pragma once

#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <sys/types.h>

/// The program ffmpeg at work: it takes the pixels of frames and makes a film of them.
///
/// It is started without a shell. What it writes goes to a file without a name, which is gone whatever happens to
/// either program. The object that goes ends a program that still works.
class CFilmProgram {
 public:
  /// Whether there is such a program among those that can be started by name.
  static bool IsInstalled();

  /// Starts it for frames of that size, with the options for the encoder and its file.
  CFilmProgram(int width, int height, const std::vector<std::string>& encoding);
  ~CFilmProgram();
  CFilmProgram(const CFilmProgram&) = delete;
  CFilmProgram& operator=(const CFilmProgram&) = delete;

  /// Asked several times a second while the program lets us wait; false where nobody wants the film any more.
  using Goes = std::function<bool()>;

  /// Hands it pixels, from the top, red, green, blue; false where it takes no more, or where it is not to.
  bool Send(std::string_view pixels, const Goes& goes);
  /// There are no more frames: waits until it has ended; whether all went well.
  bool Finish(const Goes& goes);
  /// Hands over what it has written, part by part.
  void ForOutput(const std::function<void(std::span<const unsigned char>)>& take) const;
  /// What has gone wrong, as a sentence: that there is no such program, or its own first line.
  std::string Trouble();

 private:
  /// Something open in the system, closed with the object; below those that a started program has.
  class CDescriptor {
   public:
    CDescriptor() = default;
    ~CDescriptor() { Close(); }
    CDescriptor(const CDescriptor&) = delete;
    CDescriptor& operator=(const CDescriptor&) = delete;
    /// Takes over an open one, under a number that no started program needs.
    void Take(int descriptor);
    void Close();
    int Get() const { return m_iDescriptor; }
    bool IsOpen() const { return m_iDescriptor >= 0; }

   private:
    int m_iDescriptor = -1;
  };

  static void OpenUnnamed(CDescriptor& file);
  bool OpenAll(CDescriptor& theirs);
  void Start(std::vector<std::string> arguments, int theirs);
  void End();

  CDescriptor m_Frames;  ///< our end of what it reads
  CDescriptor m_Film;    ///< what it writes
  CDescriptor m_Errors;  ///< and what it says
  pid_t m_Process = -1;  ///< while it has not ended
  int m_iStatus = -1;
  bool m_bMissing = false;
};
