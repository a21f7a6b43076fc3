#include "preview/MciCommand.h"

namespace preview {

QStringList SplitMciWords(QStringView text) {
  QStringList words;
  qsizetype i = 0;
  const qsizetype n = text.size();
  while (i < n) {
    while (i < n && text[i].isSpace()) ++i;
    if (i >= n) break;
    QString word;
    if (text[i] == u'"') {
      const qsizetype end = text.indexOf(u'"', i + 1);
      const qsizetype stop = end < 0 ? n : end;
      word = text.mid(i + 1, stop - i - 1).toString();
      i = end < 0 ? n : end + 1;
    } else {
      const qsizetype start = i;
      while (i < n && !text[i].isSpace()) ++i;
      word = text.mid(start, i - start).toString();
    }
    words << word;
  }
  return words;
}

namespace {

QString Unquote(QString s) {
  s = s.trimmed();
  if (s.size() >= 2 && s.startsWith(u'"') && s.endsWith(u'"')) s = s.mid(1, s.size() - 2);
  return s;
}

}  // namespace

MciCommand MciCommand::Parse(const QString& text) {
  MciCommand c;
  const QString trimmed = text.trimmed();
  qsizetype verbEnd = 0;
  while (verbEnd < trimmed.size() && !trimmed[verbEnd].isSpace()) ++verbEnd;
  c.verb = trimmed.left(verbEnd).toLower();
  const QString rest = trimmed.mid(verbEnd).trimmed();
  if (rest.isEmpty()) return c;

  if (c.verb == u"open" && !rest.startsWith(u'"')) {
    // Padded with blanks so that keywords at either end are found too.
    const QString padded = u' ' + rest + u' ';
    qsizetype cut = padded.lastIndexOf(QStringLiteral(" type "), -1, Qt::CaseInsensitive);
    if (cut < 0) cut = padded.indexOf(QStringLiteral(" alias "), 0, Qt::CaseInsensitive);
    if (cut > 0) {
      c.device = Unquote(padded.left(cut));
      for (const QString& w : SplitMciWords(QStringView(padded).mid(cut))) c.words << w.toLower();
      return c;
    }
  }
  QStringList words = SplitMciWords(rest);
  if (words.isEmpty()) return c;
  c.device = words.takeFirst();
  for (const QString& w : words) c.words << w.toLower();
  return c;
}

QString MciCommand::valueAfter(const QString& key, bool* found) const {
  const QStringList parts = key.split(u' ');
  for (qsizetype i = 0; i + parts.size() <= words.size(); ++i) {
    bool match = true;
    for (qsizetype j = 0; j < parts.size() && match; ++j) match = words[i + j] == parts[j];
    if (!match) continue;
    if (found) *found = true;
    const qsizetype at = i + parts.size();
    return at < words.size() ? words[at] : QString();
  }
  if (found) *found = false;
  return QString();
}

}  // namespace preview
