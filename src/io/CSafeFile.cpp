#include "io/CSafeFile.h"

#include <span>

int CSafeFile::CBuffer::sync() {
  const auto* bytes = reinterpret_cast<const unsigned char*>(pbase());
  m_File.Write({bytes, static_cast<std::size_t>(pptr() - pbase())});
  Empty();
  return 0;
}

CSafeFile::CBuffer::int_type CSafeFile::CBuffer::overflow(int_type c) {
  sync();
  if (!traits_type::eq_int_type(c, traits_type::eof())) sputc(traits_type::to_char_type(c));
  return traits_type::not_eof(c);
}

bool CSafeFile::Commit() {
  m_Text.flush();
  return m_File.Commit();
}
