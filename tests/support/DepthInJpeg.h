#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

// Photographs that carry a depth map, as phones write them.

/// In Base64, with lines of 76 characters if they are wanted.
inline std::string Base64Of(std::string_view bytes, bool lines = false) {
  constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  for (std::size_t k = 0; k < bytes.size(); k += 3) {
    std::uint32_t bits = 0;
    const std::size_t count = std::min<std::size_t>(3, bytes.size() - k);
    for (std::size_t j = 0; j < 3; ++j) bits = bits << 8 | (j < count ? static_cast<unsigned char>(bytes[k + j]) : 0U);
    for (std::size_t j = 0; j < 4; ++j) text += j <= count ? kDigits[bits >> (18 - 6 * j) & 63] : '=';
    if (lines && k % 57 == 54) text += '\n';
  }
  return text;
}

inline std::string BigEndian(std::size_t number, int bytes) {
  std::string text;
  for (int k = bytes - 1; k >= 0; --k) text += static_cast<char>(number >> (8 * k) & 0xFF);
  return text;
}

/// A packet of XMP with the map in it.
inline std::string DepthPacket(std::string_view map, bool lines = false) {
  return R"(<x:xmpmeta xmlns:x="adobe:ns:meta/"><rdf:RDF xmlns:rdf="http://www.w3.org/1999/02/22-rdf-syntax-ns#">)"
         R"(<rdf:Description rdf:about="" xmlns:D="http://example.org/photos/1.0/depthmap/" D:Format="RangeLinear" )"
         R"(D:Mime="image/png" D:Data=")" +
         Base64Of(map, lines) + R"("/></rdf:RDF></x:xmpmeta>)";
}

/// A segment of a JPEG.
inline std::string ApplicationSegment(const std::string& contents) {
  return "\xFF\xE1" + BigEndian(contents.size() + 2, 2) + contents;
}

/// The JPEG with segments behind those that it has at its beginning.
inline std::string WithSegments(std::string jpeg, const std::string& segments) {
  const auto length = [&](std::size_t place) {
    return static_cast<std::size_t>(static_cast<unsigned char>(jpeg[place + 2])) * 256 +
           static_cast<unsigned char>(jpeg[place + 3]) + 2;
  };
  std::size_t place = 2;
  while (jpeg[place + 1] == '\xE0' || jpeg[place + 1] == '\xE1') place += length(place);
  return jpeg.insert(place, segments);
}

/// With the packet in the main segment.
inline std::string WithPacket(const std::string& jpeg, const std::string& packet) {
  using std::string_literals::operator""s;
  return WithSegments(jpeg, ApplicationSegment("http://ns.adobe.com/xap/1.0/\0"s + packet));
}

/// With the packet in extended segments of that many bytes each, the last one first.
inline std::string WithExtendedPacket(const std::string& jpeg, const std::string& packet, std::size_t length) {
  using std::string_literals::operator""s;
  std::string segments;
  for (std::size_t offset = 0; offset < packet.size(); offset += length) {
    segments.insert(
        0, ApplicationSegment("http://ns.adobe.com/xmp/extension/\0"s + std::string(32, 'A') +
                              BigEndian(packet.size(), 4) + BigEndian(offset, 4) + packet.substr(offset, length)));
  }
  return WithSegments(jpeg, segments);
}
