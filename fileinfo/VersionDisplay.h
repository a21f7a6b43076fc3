#pragma once
#include <QString>
#include <QStringList>
#include <QVector>

namespace fileinfo {

// What the "Version" tab shows for one file, made from ReadVersionInfo:
// value labels 10 to 17 and the listed keys with their display names. The
// command line prints the same rows.
class VersionDisplay {
 public:
  static constexpr int kFirstLabel = 10;
  static constexpr int kLabelCount = 8;  // labels 10 to 17
  static QString NoInfoText() { return QStringLiteral("[No version info contained]"); }

  struct Item {
    QString text;  // display name
    int index;     // into names/values
  };

  // Reads `path` (replaces the reader's module state).
  static VersionDisplay Read(const QString& path);
  // The caption beside value label `label` (10 to 17).
  static QString Caption(int label);
  // "CompanyName" -> "Company Name" and the like; other keys unchanged.
  static QString DisplayName(const QString& key);

  bool hasInfo = false;
  QString labels[kLabelCount];  // labels[0] is value label 10
  QVector<Item> items;
  QStringList names, values;

  const QString& label(int number) const { return labels[number - kFirstLabel]; }
  // The caption's " [ver ...]": the fixed file version or the "FileVersion" string.
  QString version(bool useFixed) const { return useFixed ? label(14) : label(10); }
};

}  // namespace fileinfo
