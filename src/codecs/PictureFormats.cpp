#include "codecs/PictureFormats.h"

#include <algorithm>
#include <array>
#include <cstdint>
#include <limits>
#include <new>
#include <optional>
#include <utility>
#include <vector>

#include "codecs/CPictureSink.h"
#include "codecs/FileBytes.h"
#include "codecs/JpegDecoder.h"
#include "codecs/PictureDecoders.h"
#include "io/Bmp.h"
#include "io/FileKind.h"

namespace {

constexpr std::array kBmpSuffixes{".bmp"};

// Of a bitmap that is nearly right it says what is wrong with it.
std::string NamesForOneOf(std::string_view kind) {
  std::string names = PictureFormatNames();
  if (!kind.starts_with("a BMP")) return names;
  std::string needed = "uncompressed 24-bit BMP";
  if (kind.find("top row") != kind.npos) needed += " with its bottom row first";
  if (kind.find("header") != kind.npos) needed += " with a header of version 3";
  return needed + names.substr(std::string_view("BMP").size());
}

std::string NotRead(const std::string& kind) {
  return "this is " + (kind.empty() ? "no picture that is known here" : kind) + "; this build reads " +
         NamesForOneOf(kind);
}

std::string WhyNot(std::string_view bytes) {
  const auto* const beginning = reinterpret_cast<const std::uint8_t*>(bytes.data());
  return NotRead(KindOfBytes({beginning, std::min(bytes.size(), kKindBytes)}));
}

CReadPicture Refused(PictureTrouble trouble, std::string reason) {
  CReadPicture none;
  none.m_Trouble = trouble;
  none.m_Reason = std::move(reason);
  return none;
}

CReadPicture NoMemory() { return Refused(PictureTrouble::NoMemory, "there is not enough memory to read it"); }

CReadPicture BitmapOr(std::optional<Global::CLoadedPicture> loaded, PictureTrouble trouble, std::string reason) {
  if (!loaded.has_value()) return Refused(trouble, std::move(reason));
  CReadPicture read;
  read.m_Picture = std::move(loaded->m_Picture);
  read.m_bEndsEarly = loaded->m_bEndsEarly;
  if (read.m_bEndsEarly) read.m_Notice = "ends early";
  return read;
}

CReadPicture Taken(Decoding decoding, CPictureSink& sink) {
  CReadPicture read;
  read.m_Picture = sink.Take();
  read.m_bEndsEarly = decoding == Decoding::EndsEarly;
  if (read.m_bEndsEarly) read.m_Notice = "ends early: it is shown as far as it goes";
  if (decoding == Decoding::Damaged) read.m_Notice = "is damaged: it is shown as far as it can be read";
  if (decoding == Decoding::Whole && sink.AreColoursGuessed())
    read.m_Notice = "has a colour profile that cannot be used: its colours are taken for sRGB";
  return read;
}

CReadPicture Decode(const CPictureDecoder& decoder, std::string_view bytes) {
  CPictureSink sink;
  const Decoding decoding = decoder.m_pDecode(bytes, sink);
  const std::string name = std::string("this ") + decoder.m_Format.m_pName;
  switch (decoding) {
    case Decoding::Whole:
    case Decoding::EndsEarly:
    case Decoding::Damaged:
      break;
    case Decoding::CutShort:
      return Refused(PictureTrouble::CutShort, name + " ends before anything of it can be shown");
    case Decoding::Unusable:
      return Refused(PictureTrouble::Damaged, name + " is damaged, or of a kind that cannot be read");
    case Decoding::Refused:
      return Refused(sink.Trouble(), sink.Reason());
    case Decoding::NoMemory:
      return NoMemory();
  }
  if (decoding != Decoding::Whole && sink.IsNearlyNothing(bytes.size()))
    return Refused(PictureTrouble::CutShort, name + " ends before anything of it can be shown");
  CReadPicture read = Taken(decoding, sink);
  if (decoding == Decoding::Whole && decoder.m_pDecode == DecodeJpeg && sink.IsAsItCame())
    read.m_pJpeg = std::make_shared<const std::string>(bytes);
  return read;
}

CReadPicture ReadFile(const std::string& filename) {
  const CFileBytes beginning = ReadFileBytes(filename, kKindBytes);
  if (beginning.m_pBytes == nullptr) {
    const bool isThere =
        beginning.m_Trouble == PictureTrouble::Folder || beginning.m_Trouble == PictureTrouble::NotOrdinary;
    const std::string reason = beginning.m_Reason + (isThere ? "; this build reads " + PictureFormatNames() : "");
    return BitmapOr(Global::LoadBMP(filename, 1), beginning.m_Trouble, reason);
  }
  const CPictureDecoder* const decoder = DecoderOf(*beginning.m_pBytes);
  if (decoder == nullptr)
    return BitmapOr(Global::LoadBMP(filename, 1), PictureTrouble::Unknown, WhyNot(*beginning.m_pBytes));
  const CFileBytes whole = ReadFileBytes(filename, std::numeric_limits<std::size_t>::max());
  if (whole.m_pBytes == nullptr) return Refused(whole.m_Trouble, whole.m_Reason);
  return Decode(*decoder, *whole.m_pBytes);
}

}  // namespace

std::span<const CPictureFormat> PictureFormats() {
  static const std::vector<CPictureFormat> formats = [] {
    std::vector<CPictureFormat> all{{"BMP", kBmpSuffixes}};
    for (const CPictureDecoder& decoder : PictureDecoders()) all.push_back(decoder.m_Format);
    return all;
  }();
  return formats;
}

std::string PictureFormatNames() {
  const std::span<const CPictureFormat> formats = PictureFormats();
  std::string names;
  for (std::size_t k = 0; k < formats.size(); ++k) {
    if (k > 0) names += k + 1 < formats.size() ? ", " : " and ";
    names += formats[k].m_pName;
  }
  return names;
}

const char* SuffixOfPicture(std::string_view bytes) {
  const CPictureDecoder* const decoder = DecoderOf(bytes);
  return decoder == nullptr ? kBmpSuffixes.front() : decoder->m_Format.m_apSuffixes.front();
}

CReadPicture ReadPicture(const std::string& filename) {
  try {
    return ReadFile(filename);
  } catch (const std::bad_alloc&) {
    return NoMemory();
  }
}

CReadPicture ReadPicture(std::string_view bytes, const std::string& name) {
  try {
    if (const CPictureDecoder* const decoder = DecoderOf(bytes)) return Decode(*decoder, bytes);
    return BitmapOr(Global::LoadBMP(bytes, name, 1), PictureTrouble::Unknown, WhyNot(bytes));
  } catch (const std::bad_alloc&) {
    return NoMemory();
  }
}
