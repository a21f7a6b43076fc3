#pragma once
#include <QByteArray>
#include <QString>

namespace platform {

// A file that only grows by whole records: each append is one write at the
// end (O_APPEND), and a write that stops short is cut back, so a reader
// never finds half a record that a later one continues.
class AppendFile {
 public:
  AppendFile() = default;
  ~AppendFile();
  AppendFile(const AppendFile&) = delete;
  AppendFile& operator=(const AppendFile&) = delete;

  // Opens (creating) `path`; 0 or an errno value.
  int open(const QString& path);
  bool isOpen() const { return fd_ >= 0; }
  // 0 or an errno value (ENOSPC for a short write).
  int append(const QByteArray& record);

  // The whole content of `path`; 0 or an errno value.
  static int ReadAll(const QString& path, QByteArray* out);

 private:
  int fd_ = -1;
};

}  // namespace platform
