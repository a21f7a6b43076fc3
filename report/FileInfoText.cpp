#include "report/FileInfoText.h"

#include <QMimeDatabase>

#include "core/AttributeText.h"
#include "core/DateStyles.h"
#include "core/NumberFormat.h"
#include "core/RowEscape.h"
#include "fileinfo/VersionDisplay.h"
#include "fileinfo/modVerStringInfo.h"
#include "platform/DirEntry.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"

namespace report {

namespace {

QString TimeText(qint64 fileTime) { return core::FileTimeText(fileTime, core::ShortDate4(), u"hh:mm:ss", false); }

QString NameOf(const QString& path) {
  const qsizetype slash = path.lastIndexOf(u'/', path.endsWith(u'/') ? -2 : -1);
  return slash < 0 ? path : path.mid(slash + 1);
}

}  // namespace

QString FileInfoText::Compact(const QStringList& paths, bool fixedVersion) {
  QString out;
  for (const QString& path : paths) {
    platform::DirEntry e;
    const bool known = platform::StatPath(path, &e);
    core::AppendRowField(&out, NameOf(path));
    if (known) {
      out += u'\t';
      out += e.isDirectory() ? QStringLiteral("<DIR>")
                             : core::FormatNumber(double(e.size), u"#,0") + QStringLiteral(" bytes");
      out += u'\t';
      out += TimeText(e.lastWriteTime);
      if (!e.isDirectory()) {
        const QString version = modVerStringInfo::GetFileVersionText(fixedVersion, path, QStringLiteral("ver "));
        if (!version.isEmpty()) {
          out += u'\t';
          core::AppendRowField(&out, version);
        }
      }
    } else {
      out += QStringLiteral("\t[cannot be read]");
    }
    out += u'\n';
  }
  return out;
}

QString FileInfoText::Extended(const QStringList& paths, bool fixedVersion) {
  static const QMimeDatabase mimes;
  QString out;
  for (const QString& path : paths) {
    if (!out.isEmpty()) out += u'\n';
    auto line = [&out](const QString& caption, QStringView value) {
      out += caption;
      out += u' ';
      core::AppendRowField(&out, value);
      out += u'\n';
    };
    line(QStringLiteral("Path:"), path);
    platform::DirEntry e;
    if (!platform::StatPath(path, &e)) {
      out += QStringLiteral("[cannot be read]\n");
      continue;
    }
    if (!e.isDirectory())
      line(QStringLiteral("Size:"), core::FormatNumber(double(e.size), u"#,0") + QStringLiteral(" bytes"));
    line(QStringLiteral("Created:"), TimeText(e.creationTime));
    line(QStringLiteral("Modified:"), TimeText(e.lastWriteTime));
    line(QStringLiteral("Accessed:"), TimeText(e.lastAccessTime));
    line(QStringLiteral("Attributes:"), core::AttributeString(e.attributes));
    const QMimeType mime = e.isDirectory() ? mimes.mimeTypeForName(QStringLiteral("inode/directory"))
                                           : mimes.mimeTypeForFile(platform::DisplayText(path));
    line(QStringLiteral("Type:"), mime.comment());
    if (e.isDirectory()) continue;
    const fileinfo::VersionDisplay d = fileinfo::VersionDisplay::Read(path);
    if (!d.hasInfo) {
      line(QStringLiteral("Version:"), fileinfo::VersionDisplay::NoInfoText());
      continue;
    }
    const QString version = d.version(fixedVersion);
    if (!version.isEmpty()) line(QStringLiteral("Version:"), QStringLiteral("ver ") + version);
    for (int label = fileinfo::VersionDisplay::kFirstLabel;
         label < fileinfo::VersionDisplay::kFirstLabel + fileinfo::VersionDisplay::kLabelCount; ++label)
      if (!d.label(label).isEmpty()) line(fileinfo::VersionDisplay::Caption(label), d.label(label));
    for (const fileinfo::VersionDisplay::Item& item : d.items)
      line(item.text + u':', d.values.value(item.index));
  }
  return out;
}

}  // namespace report
