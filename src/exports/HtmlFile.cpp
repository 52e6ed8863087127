#include "exports/HtmlFile.h"

#include <cstddef>
#include <cstdint>
#include <string_view>

#include "exports/Page.h"

namespace {

// Coded, it takes 400 million characters; browsers have no texts of more than 500 million.
constexpr std::size_t kMostModelBytes = 300'000'000;

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";

// Base64: three bytes become four characters.
void AppendCoded(const std::string& bytes, const CExportSteps& steps, std::string& page) {
  const auto at = [&bytes](std::size_t k) { return k < bytes.size() ? static_cast<std::uint8_t>(bytes[k]) : 0U; };
  const auto append = [&](std::size_t begin, std::size_t end) {
    for (std::size_t k = 3 * begin; k < 3 * end; k += 3) {
      const std::uint32_t three = at(k) << 16 | at(k + 1) << 8 | at(k + 2);
      page += kDigits[three >> 18];
      page += kDigits[three >> 12 & 63];
      page += k + 1 < bytes.size() ? kDigits[three >> 6 & 63] : '=';
      page += k + 2 < bytes.size() ? kDigits[three & 63] : '=';
    }
  };
  steps.ForBlocks((bytes.size() + 2) / 3, append);
}

constexpr std::size_t CodedSize(std::size_t size) { return (size + 2) / 3 * 4; }

void AppendEscaped(const std::string& text, std::string& page) {
  for (const char c : text) {
    switch (c) {
      case '&':
        page += "&amp;";
        break;
      case '<':
        page += "&lt;";
        break;
      case '>':
        page += "&gt;";
        break;
      case '"':
        page += "&quot;";
        break;
      default:
        page += c;
    }
  }
}

}  // namespace

std::optional<std::string> HtmlOf(const CPageContents& contents, const CExportSteps& steps) {
  if (contents.m_Glb.size() > kMostModelBytes) return {};
  std::string page;
  std::string_view rest = kPage;
  page.reserve(rest.size() + contents.m_Title.size() * 6 + CodedSize(contents.m_Glb.size()) +
               CodedSize(contents.m_Relit.m_Bytes.size()));
  // What a page shows comes before the scripts, so that no mark can be found in a script.
  const auto copyUpTo = [&page, &rest](std::string_view mark) {
    const std::size_t at = rest.find(mark);
    page += rest.substr(0, at);
    rest.remove_prefix(at + mark.size());
  };
  copyUpTo("%TITLE%");
  AppendEscaped(contents.m_Title, page);
  copyUpTo("%PICTURE%");
  AppendEscaped(contents.m_PictureName, page);
  copyUpTo("%MODEL%");
  AppendCoded(contents.m_Glb, steps.Part(0, 0.9), page);
  copyUpTo("%RELIT-TYPE%");
  page += contents.m_Relit.m_MimeType;
  copyUpTo("%RELIT%");
  AppendCoded(contents.m_Relit.m_Bytes, steps.Part(0.9, 1), page);
  page += rest;
  return page;
}
