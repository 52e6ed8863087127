#include "projects/ZipWriter.h"

#include <memory>
#include <new>

#include <zip.h>

namespace {

struct CFreeSource {
  void operator()(zip_source_t* source) const { zip_source_free(source); }
};
struct CDiscard {
  void operator()(zip_t* archive) const { zip_discard(archive); }
};

// In memory nothing but memory can be missing.
template <typename T>
T Need(T answer, bool given) {
  if (!given) throw std::bad_alloc();
  return answer;
}

template <typename T>
T* Need(T* pointer) {
  return Need(pointer, pointer != nullptr);
}

void Add(zip_t* archive, const CZipMember& member) {
  // The archive owns the source from the moment it has been added.
  std::unique_ptr<zip_source_t, CFreeSource> source(
      Need(zip_source_buffer(archive, member.m_Contents.data(), member.m_Contents.size(), 0)));
  const zip_int64_t added = zip_file_add(archive, member.m_Name.c_str(), source.get(), ZIP_FL_ENC_UTF_8);
  const auto index = static_cast<zip_uint64_t>(Need(added, added >= 0));
  source.release();
  Need(0, zip_set_file_compression(archive, index, member.m_bPacked ? ZIP_CM_DEFLATE : ZIP_CM_STORE, 1) == 0);
}

std::vector<unsigned char> BytesOf(zip_source_t* source) {
  zip_stat_t status{};
  Need(0, zip_source_stat(source, &status) == 0);
  std::vector<unsigned char> bytes(status.size);
  Need(0, zip_source_open(source) == 0);
  const zip_int64_t length = zip_source_read(source, bytes.data(), bytes.size());
  zip_source_close(source);
  Need(0, length == static_cast<zip_int64_t>(bytes.size()));
  return bytes;
}

}  // namespace

std::vector<unsigned char> ZipOf(std::span<const CZipMember> members) {
  const std::unique_ptr<zip_source_t, CFreeSource> target(Need(zip_source_buffer_create(nullptr, 0, 0, nullptr)));
  std::unique_ptr<zip_t, CDiscard> archive(Need(zip_open_from_source(target.get(), ZIP_TRUNCATE, nullptr)));
  // The archive gives up its share of the source when it is closed; ours is needed to read what it has become.
  zip_source_keep(target.get());
  for (const CZipMember& member : members) Add(archive.get(), member);
  Need(0, zip_close(archive.get()) == 0);
  archive.release();
  return BytesOf(target.get());
}
