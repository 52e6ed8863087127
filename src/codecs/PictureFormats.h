#pragma once

#include <memory>
#include <span>
#include <string>
#include <string_view>

#include "base/CPicture.h"

/// One kind of file that a picture is read from.
struct CPictureFormat {
  const char* m_pName = "";                   ///< as users know it: "JPEG"
  std::span<const char* const> m_apSuffixes;  ///< of the names of its files, with the dot, the usual one first
};

/// The kinds that this build reads, in the order in which a chooser offers them; the program's own, BMP, is the first.
std::span<const CPictureFormat> PictureFormats();

/// Their names, as part of a sentence: "BMP, JPEG and PNG".
std::string PictureFormatNames();

/// The suffix that suits the contents of a file, with the dot: that of their kind, or of BMP for what is of no other.
const char* SuffixOfPicture(std::string_view bytes);

/// Why a file gives no picture.
enum class PictureTrouble {
  None,           ///< it gives one
  NoFile,         ///< nothing of that name can be opened
  Folder,         ///< it is a folder
  NotOrdinary,    ///< it is a pipe, a device or the like, which is never opened
  Unknown,        ///< it is of no kind that this build reads
  TooLarge,       ///< a side above kMostPictureSide, or more than kMostPictureBytes as 8-bit RGB
  CutShort,       ///< it ends before anything of it could be shown
  Damaged,        ///< it is of a kind that is read, but its contents cannot be made use of
  NotOneChannel,  ///< it holds colours where one channel is needed
  NoMemory,       ///< there is no memory for it
};

inline constexpr int kMostPictureSide = 65535;
inline constexpr double kMostPictureBytes = 1 << 30;

/// A picture that has been read, or why there is none.
struct CReadPicture {
  CPicture m_Picture;  ///< empty where there is trouble
  PictureTrouble m_Trouble = PictureTrouble::None;
  /// What the user is to be told of the trouble, as the end of a sentence: "this is a GIF; this build reads BMP, JPEG
  /// and PNG". Empty without trouble.
  std::string m_Reason;
  /// What the user is to be told of a picture that is there all the same, as the end of a sentence whose subject is the
  /// picture: "ends early: it is shown as far as it goes". Empty for nothing.
  std::string m_Notice;
  bool m_bEndsEarly = false;  ///< the file is shorter than its header says
  /// The bytes of the file where they are a JPEG that any other program shows as this picture: whole, upright and sRGB.
  /// Null for all other files.
  std::shared_ptr<const std::string> m_pJpeg;

  /// Whether there is a picture.
  explicit operator bool() const { return m_Trouble == PictureTrouble::None; }
};

/// Reads a picture of any kind known here, judged by its contents and never by its name, as 8-bit sRGB on white,
/// upright.
///
/// A file of no such kind goes to Global::LoadBMP, whose console lines are the only ones; only regular files are
/// opened. Memory is taken as pixels come, so that a header that announces too much takes none. Does not throw.
CReadPicture ReadPicture(const std::string& filename);
/// The same for the contents of a file, which console lines call `name`.
CReadPicture ReadPicture(std::string_view bytes, const std::string& name);
