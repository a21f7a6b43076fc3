#include "report/ReportFile.h"

#include <QDir>
#include <QFileInfo>

#include "platform/NativePath.h"

namespace report {

namespace {
constexpr qsizetype kChunk = 1 << 18;
}

ReportFile::ReportFile() = default;

ReportFile::~ReportFile() { cancel(); }

bool ReportFile::open(const QString& path, bool append) {
  cancel();
  path_ = path;
  error_.clear();
  failed_ = false;
  const QString shown = platform::DisplayText(path);
  if (QFileInfo(path).isDir()) {
    error_ = QStringLiteral("\"%1\" is a folder.").arg(shown);
    return false;
  }
  if (append) {
    append_ = std::make_unique<QFile>(path);
    if (!append_->open(QIODevice::WriteOnly | QIODevice::Append)) {
      error_ = QStringLiteral("Cannot write \"%1\": %2").arg(shown, append_->errorString());
      append_.reset();
      return false;
    }
    appendStart_ = append_->size();
    return true;
  }
  save_ = std::make_unique<QSaveFile>(path);
  if (!save_->open(QIODevice::WriteOnly)) {
    error_ = QStringLiteral("Cannot write \"%1\": %2").arg(shown, save_->errorString());
    save_.reset();
    return false;
  }
  return true;
}

void ReportFile::fail(const QString& message) {
  if (failed_) return;
  failed_ = true;
  error_ = QStringLiteral("Cannot write \"%1\": %2").arg(platform::DisplayText(path_), message);
}

bool ReportFile::flushBuffer() {
  if (failed_) return false;
  if (buffer_.isEmpty()) return true;
  QIODevice* device = save_ ? static_cast<QIODevice*>(save_.get()) : append_.get();
  if (!device) {
    fail(QStringLiteral("the file is not open"));
    return false;
  }
  if (device->write(buffer_) != buffer_.size()) {
    fail(device->errorString());
    return false;
  }
  buffer_.resize(0);
  return true;
}

bool ReportFile::write(QStringView text) {
  if (failed_) return false;
  buffer_.append(text.toUtf8());
  return buffer_.size() < kChunk || flushBuffer();
}

bool ReportFile::commit() {
  bool ok = flushBuffer();
  if (save_) {
    if (ok && !save_->commit()) {
      fail(save_->errorString());
      ok = false;
    }
    if (!ok) save_->cancelWriting();
    save_.reset();
  } else if (append_) {
    if (ok && !append_->flush()) {
      fail(append_->errorString());
      ok = false;
    }
    if (!ok) append_->resize(appendStart_);
    append_->close();
    append_.reset();
  } else {
    ok = false;
  }
  buffer_.clear();
  return ok;
}

void ReportFile::cancel() {
  buffer_.clear();
  if (save_) {
    save_->cancelWriting();
    save_.reset();  // the temporary goes; the earlier file stays
  }
  if (append_) {
    append_->flush();
    append_->resize(appendStart_);
    append_->close();
    append_.reset();
  }
}

QString ReportFile::StampedName(const QString& fileName, const QDateTime& when) {
  const QString stamp = when.toString(QStringLiteral("yyyy-MM-dd_HH-mm-ss"));
  const qsizetype dot = fileName.lastIndexOf(u'.');
  if (dot <= 0) return fileName + u'_' + stamp;
  return fileName.left(dot) + u'_' + stamp + fileName.mid(dot);
}

QString ReportFile::ProposedPath(const QString& folder, const QString& fileName, bool stamped, const QDateTime& when) {
  const QString name = fileName.trimmed().isEmpty() ? DefaultFileName() : fileName.trimmed();
  const QString base = platform::WithSeparator(folder.isEmpty() ? QDir::homePath() : folder);
  if (!stamped) return base + name;
  const QString stampedName = StampedName(name, when);
  QString path = base + stampedName;
  const qsizetype dot = stampedName.lastIndexOf(u'.');
  for (int n = 2; QFileInfo::exists(path); ++n) {
    const QString suffix = QStringLiteral(" (%1)").arg(n);
    path = base + (dot > 0 ? stampedName.left(dot) + suffix + stampedName.mid(dot) : stampedName + suffix);
  }
  return path;
}

}  // namespace report
