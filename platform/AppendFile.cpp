#include "platform/AppendFile.h"

#include <cerrno>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include "platform/NativePath.h"

namespace platform {

AppendFile::~AppendFile() {
  if (fd_ >= 0) ::close(fd_);
}

int AppendFile::open(const QString& path) {
  if (fd_ >= 0) ::close(fd_);
  fd_ = ::open(ToNative(path).constData(), O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC, 0644);
  return fd_ >= 0 ? 0 : errno;
}

int AppendFile::append(const QByteArray& record) {
  if (fd_ < 0) return EBADF;
  struct stat st {};
  const off_t before = fstat(fd_, &st) == 0 ? st.st_size : -1;
  const ssize_t n = ::write(fd_, record.constData(), size_t(record.size()));
  if (n == record.size()) return 0;
  const int error = n < 0 ? errno : ENOSPC;
  if (n > 0 && before >= 0 && ftruncate(fd_, before) != 0) return errno;
  return error;
}

int AppendFile::ReadAll(const QString& path, QByteArray* out) {
  out->clear();
  const int fd = ::open(ToNative(path).constData(), O_RDONLY | O_CLOEXEC);
  if (fd < 0) return errno;
  char buffer[65536];
  for (;;) {
    const ssize_t n = ::read(fd, buffer, sizeof buffer);
    if (n == 0) break;
    if (n < 0) {
      if (errno == EINTR) continue;
      const int error = errno;
      ::close(fd);
      return error;
    }
    out->append(buffer, n);
  }
  ::close(fd);
  return 0;
}

}  // namespace platform
