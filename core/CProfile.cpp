#include "core/CProfile.h"

#include <QFileInfo>
#include <algorithm>
#include <limits>

#include "core/Rounding.h"

namespace core {

namespace {

constexpr int kControlTextMax = 1024;

bool IsDigit(QChar c) { return c >= u'0' && c <= u'9'; }

// [blanks][sign]digits[.digits] or [blanks][sign].digits; *used is the
// length of the number (0 when none leads).
double ParseLeading(QStringView text, qsizetype* used) {
  qsizetype i = 0;
  while (i < text.size() && (text[i] == u' ' || text[i] == u'\t')) ++i;
  const qsizetype start = i;
  if (i < text.size() && (text[i] == u'+' || text[i] == u'-')) ++i;
  const qsizetype digits = i;
  while (i < text.size() && IsDigit(text[i])) ++i;
  qsizetype end = i;
  if (i < text.size() && text[i] == u'.') {
    qsizetype j = i + 1;
    while (j < text.size() && IsDigit(text[j])) ++j;
    if (j > i + 1 || end > digits) end = j;
  }
  if (end == digits) {
    *used = 0;
    return 0;
  }
  *used = end;
  bool ok = false;
  const double v = text.mid(start, end - start).toString().toDouble(&ok);
  if (ok) return v;
  // Only a number too large for a double fails here.
  return text[start] == u'-' ? -std::numeric_limits<double>::infinity() : std::numeric_limits<double>::infinity();
}

}  // namespace

qint64 CProfile::LeadingNumber(QStringView text) {
  qsizetype used = 0;
  const double v = RoundHalfEven(ParseLeading(text, &used));
  // 2^63 is exact in a double; anything at or past it saturates.
  if (v >= 9223372036854775807.0) return std::numeric_limits<qint64>::max();
  if (v <= -9223372036854775807.0) return std::numeric_limits<qint64>::min();
  return qint64(v);
}

bool CProfile::TextToBool(QStringView text) {
  const QStringView t = text.trimmed();
  if (t.compare(u"true", Qt::CaseInsensitive) == 0) return true;
  if (t.compare(u"false", Qt::CaseInsensitive) == 0) return false;
  qsizetype used = 0;
  const double v = ParseLeading(t, &used);
  return used == t.size() && v != 0;  // only a whole number converts
}

void CProfile::noteError(const QString& message) {
  if (error_.isEmpty()) error_ = message;
}

int CProfile::readText(const QString& key, QString* text) {
  if (batch_) return batch_->getString(section_, key, text);
  IniFile file;
  if (!file.load(file_)) {
    text->clear();
    return 0;
  }
  return file.getString(section_, key, text);
}

int CProfile::writeText(const QString& key, const QString& text) {
  if (batch_) return batch_->setValue(section_, key, text) ? 1 : 0;
  IniFile file;
  if (!file.load(file_)) {
    noteError(QStringLiteral("settings not saved: %1").arg(file.errorString()));
    return 0;
  }
  if (!file.setValue(section_, key, text)) return 0;
  if (!file.save(file_)) {
    noteError(file.errorString());
    return 0;
  }
  return 1;
}

template <typename Int>
int CProfile::valueInt(const QString& key, Int& variable) {
  if (!read_) return writeText(key, QString::number(variable));
  QString text;
  if (readText(key, &text) <= 0) return 0;
  const qint64 n = LeadingNumber(text);
  variable = Int(std::clamp<qint64>(n, std::numeric_limits<Int>::min(), std::numeric_limits<Int>::max()));
  return 1;
}

int CProfile::Value(const QString& key, qint16& variable) { return valueInt(key, variable); }
int CProfile::Value(const QString& key, qint32& variable) { return valueInt(key, variable); }
int CProfile::Value(const QString& key, quint8& variable) { return valueInt(key, variable); }
int CProfile::Value(const QString& key, Flag16& variable) { return valueInt(key, variable.raw); }

int CProfile::Value(const QString& key, bool& variable) {
  if (!read_) return writeText(key, variable ? QStringLiteral("1") : QStringLiteral("0"));
  QString text;
  if (readText(key, &text) <= 0) return 0;
  variable = TextToBool(text);
  return 1;
}

int CProfile::Value(const QString& key, QString& variable) {
  if (!read_) return writeText(key, variable.isEmpty() ? QStringLiteral(" ") : variable);
  QString text;
  if (readText(key, &text) <= 0) return 0;
  variable = text;
  return 1;
}

int CProfile::ControlText(const QString& key, QString& text) {
  if (!read_) {
    // A carriage return ends the text; so does a bare line feed, which a
    // line of the file could not hold either.
    qsizetype cut = 0;
    while (cut < text.size() && text[cut] != u'\r' && text[cut] != u'\n') ++cut;
    cut = std::min<qsizetype>(cut, kControlTextMax);
    if (cut > 0 && cut < text.size() && text[cut - 1].isHighSurrogate()) --cut;
    QString quoted;
    quoted.reserve(cut + 2);
    quoted.append(u'"').append(QStringView(text).left(cut)).append(u'"');
    return writeText(key, quoted);
  }
  QString value;
  if (readText(key, &value) <= 0) return 0;
  text = value;
  return 1;
}

int CProfile::Keys(QStringList& names) {
  names.clear();
  QStringList all;
  if (batch_) {
    all = batch_->keys(section_);
  } else {
    IniFile file;
    if (file.load(file_)) all = file.keys(section_);
  }
  // The names, each ended by a NUL, and one more NUL must fit the buffer;
  // otherwise the list is cut two characters short of its end.
  qsizetype total = 0;
  for (const QString& n : all) total += n.size() + 1;
  if (total + 1 <= IniFile::kKeysBuffer) {
    names = all;
    return int(names.size());
  }
  qsizetype room = IniFile::kKeysBuffer - 2;
  for (const QString& n : all) {
    if (room <= 0) break;
    names.append(n.left(room));
    room -= n.size() + 1;
  }
  return int(names.size());
}

bool CProfile::BeginBatch() {
  batch_.emplace();
  if (batch_->load(file_)) return true;
  noteError(QStringLiteral("settings not read: %1").arg(batch_->errorString()));
  return false;
}

void CProfile::BeginBatch(IniFile content) { batch_ = std::move(content); }

bool CProfile::EndBatch() {
  if (!batch_) return true;
  IniFile done = std::move(*batch_);
  batch_.reset();
  if (!done.isModified() && done.origin() != IniFile::Origin::Empty) return true;
  if (done.save(file_)) return true;
  noteError(done.errorString());
  return false;
}

IniFile CProfile::TakeBatch() {
  IniFile done = batch_ ? std::move(*batch_) : IniFile();
  batch_.reset();
  return done;
}

qint64 CProfile::SourceSize() const {
  if (batch_) return batch_->origin() == IniFile::Origin::Absent ? -1 : batch_->byteSize();
  const QFileInfo info(file_);
  return info.exists() && info.isFile() ? info.size() : -1;
}

}  // namespace core
