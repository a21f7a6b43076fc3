#pragma once
#include <QString>
#include <QStringList>

namespace preview {

// One command string taken apart: the verb, the device (alias, or for
// "open" the element: a file or a device type), and the remaining words in
// lower case. Blanks separate words however many there are; a word in
// double quotes keeps its blanks. For "open" the element runs up to the last
// " type " or the first " alias ", so a file name may hold blanks.
struct MciCommand {
  QString verb;     // lower case; empty for an empty command
  QString device;   // as written (an alias compares without case)
  QStringList words;

  static MciCommand Parse(const QString& text);

  // The word after `key` (key may be two words, "time format"); empty when
  // missing. `found` tells a missing key from an empty value.
  QString valueAfter(const QString& key, bool* found = nullptr) const;
  bool has(const QString& word) const { return words.contains(word); }
};

// Splits on runs of blanks; "..." keeps its blanks (quotes removed).
QStringList SplitMciWords(QStringView text);

}  // namespace preview
