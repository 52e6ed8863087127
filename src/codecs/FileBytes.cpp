#include "codecs/FileBytes.h"

#include <algorithm>
#include <cerrno>
#include <system_error>
#include <utility>

#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "base/Memory.h"

namespace {

/// Closes a descriptor.
class CDescriptor {
 public:
  explicit CDescriptor(int descriptor) : m_iDescriptor(descriptor) {}
  ~CDescriptor() {
    if (m_iDescriptor >= 0) close(m_iDescriptor);
  }
  CDescriptor(const CDescriptor&) = delete;
  CDescriptor& operator=(const CDescriptor&) = delete;
  int Get() const { return m_iDescriptor; }

 private:
  int m_iDescriptor;
};

CFileBytes Failed(PictureTrouble trouble, std::string reason) { return {nullptr, trouble, std::move(reason)}; }

std::string SystemsReason() {
  if (errno == ENOENT || errno == ENOTDIR) return "there is no such file";
  return std::generic_category().message(errno);
}

// Whether all that was wanted is there now, or the file has ended before it.
bool ReadAll(int descriptor, std::string& bytes) {
  std::size_t length = 0;
  while (length < bytes.size()) {
    const ssize_t more = read(descriptor, &bytes[length], bytes.size() - length);
    if (more < 0 && errno == EINTR) continue;
    if (more < 0) return false;
    if (more == 0) break;
    length += static_cast<std::size_t>(more);
  }
  bytes.resize(length);
  return true;
}

}  // namespace

CFileBytes ReadFileBytes(const std::string& filename, std::size_t most) {
  const CDescriptor file(open(filename.c_str(), O_RDONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC));
  struct stat status {};
  if (file.Get() < 0 && errno == ENXIO) return Failed(PictureTrouble::NotOrdinary, "this is no ordinary file");
  if (file.Get() < 0 || fstat(file.Get(), &status) != 0) return Failed(PictureTrouble::NoFile, SystemsReason());
  if (S_ISDIR(status.st_mode)) return Failed(PictureTrouble::Folder, "this is a folder");
  if (!S_ISREG(status.st_mode)) return Failed(PictureTrouble::NotOrdinary, "this is no ordinary file");
  const std::size_t size = std::min(static_cast<std::size_t>(status.st_size), most);
  if (static_cast<double>(size) > AvailableMemory())
    return Failed(PictureTrouble::NoMemory, "there is not enough memory to read it");
  std::string bytes(size, '\0');
  if (!ReadAll(file.Get(), bytes)) return Failed(PictureTrouble::NoFile, SystemsReason());
  return {std::make_shared<const std::string>(std::move(bytes)), PictureTrouble::None, {}};
}
