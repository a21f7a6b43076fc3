#pragma once
#include <QString>
#include <QStringList>

namespace report {

// The file info texts that "&Copy Info" and "Copy E&xtended Info" put on the
// clipboard, for one file or a selection.
//
// Compact: one line per file, tab-separated: the name, the size ("#,0" and
// " bytes"), the modified date and time as reports write them and, where the
// file has one, its "ver ..." text (fixed or string version as chosen).
//
// Extended: per file a block of "Caption: value" lines with every fact the
// program knows (path, size in bytes, the three times, attributes, type, the
// version labels and every string of the version table), blocks separated by
// a blank line.
class FileInfoText {
 public:
  static QString Compact(const QStringList& paths, bool fixedVersion);
  static QString Extended(const QStringList& paths, bool fixedVersion);
};

}  // namespace report
