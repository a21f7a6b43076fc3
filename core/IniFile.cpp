#include "core/IniFile.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

#include "platform/NativePath.h"

namespace core {

namespace {

bool IsBlank(char16_t c) { return c == u' ' || c == u'\t' || c == u'\r' || c == u'\v' || c == u'\f'; }

QByteArray TrimBytes(const QByteArray& s) {
  qsizetype b = 0, e = s.size();
  while (b < e && IsBlank(char16_t(uchar(s[b])))) ++b;
  while (e > b && IsBlank(char16_t(uchar(s[e - 1])))) --e;
  return s.mid(b, e - b);
}

QStringView TrimView(QStringView s) {
  qsizetype b = 0, e = s.size();
  while (b < e && IsBlank(s[b].unicode())) ++b;
  while (e > b && IsBlank(s[e - 1].unicode())) --e;
  return s.mid(b, e - b);
}

QString Fold(QStringView name) { return TrimView(name).toString().toCaseFolded(); }

bool HasLineBreak(QStringView s) { return s.contains(u'\n') || s.contains(u'\r'); }

}  // namespace

IniFile::Line IniFile::ParseLine(QByteArray text, QByteArray eol) {
  Line line;
  line.text = std::move(text);
  line.eol = std::move(eol);
  const QByteArray t = TrimBytes(line.text);
  if (t.isEmpty() || t[0] == ';' || t[0] == '#') return line;
  if (t[0] == '[') {
    qsizetype close = t.indexOf(']', 1);
    if (close < 0) close = t.size();
    line.kind = Line::kSection;
    line.name = platform::FromNative(TrimBytes(t.mid(1, close - 1)));
    line.folded = line.name.toCaseFolded();
    return line;
  }
  const qsizetype eq = line.text.indexOf('=');
  if (eq < 0) return line;
  const QByteArray name = TrimBytes(line.text.left(eq));
  if (name.isEmpty()) return line;
  line.kind = Line::kKey;
  line.name = platform::FromNative(name);
  line.folded = line.name.toCaseFolded();
  line.valueStart = eq + 1;
  return line;
}

IniFile::IniFile(const IniFile& other)
    : lines_(other.lines_),
      eol_(other.eol_),
      byteSize_(other.byteSize_),
      modified_(other.modified_),
      origin_(other.origin_),
      path_(other.path_),
      error_(other.error_) {
  buildIndex();
}

IniFile& IniFile::operator=(const IniFile& other) {
  if (this != &other) *this = IniFile(other);
  return *this;
}

IniFile IniFile::FromBytes(const QByteArray& bytes) {
  IniFile f;
  f.byteSize_ = bytes.size();
  qsizetype pos = 0;
  const qsizetype n = bytes.size();
  while (pos < n) {
    qsizetype nl = bytes.indexOf('\n', pos);
    if (nl < 0) {
      f.lines_.push_back(ParseLine(bytes.mid(pos), QByteArray()));
      break;
    }
    const bool crlf = nl > pos && bytes[nl - 1] == '\r';
    const qsizetype end = crlf ? nl - 1 : nl;
    f.lines_.push_back(ParseLine(bytes.mid(pos, end - pos), crlf ? QByteArrayLiteral("\r\n") : QByteArrayLiteral("\n")));
    pos = nl + 1;
  }
  for (const Line& l : f.lines_) {
    if (!l.eol.isEmpty()) {
      f.eol_ = l.eol;
      break;
    }
  }
  f.buildIndex();
  return f;
}

bool IniFile::load(const QString& path) {
  *this = IniFile();
  path_ = path;
  const QFileInfo info(path);
  if (!info.exists() && !info.isSymLink()) {
    origin_ = Origin::Absent;
    return true;
  }
  origin_ = Origin::Failed;
  if (info.isDir()) {
    error_ = QStringLiteral("%1 is a folder").arg(path);
    return false;
  }
  if (info.size() > kMaxFileSize) {
    error_ = QStringLiteral("%1 is too large for a settings file").arg(path);
    return false;
  }
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    error_ = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
    return false;
  }
  // Read at most one byte past the limit: a file may grow after the stat.
  const QByteArray bytes = file.read(kMaxFileSize + 1);
  if (bytes.size() > kMaxFileSize) {
    error_ = QStringLiteral("%1 is too large for a settings file").arg(path);
    return false;
  }
  if (file.error() != QFileDevice::NoError) {
    error_ = QStringLiteral("cannot read %1: %2").arg(path, file.errorString());
    return false;
  }
  const QString keepPath = path_;
  *this = FromBytes(bytes);
  path_ = keepPath;
  origin_ = Origin::Loaded;
  return true;
}

bool IniFile::save(const QString& path) {
  error_.clear();
  const bool samePath = !path_.isEmpty() && QFileInfo(path_).absoluteFilePath() == QFileInfo(path).absoluteFilePath();
  if (origin_ == Origin::Failed && samePath) {
    error_ = QStringLiteral("settings not saved: the file %1 could not be read").arg(path);
    return false;
  }
  if (!modified_ && samePath && (origin_ == Origin::Loaded || origin_ == Origin::Absent)) return true;

  const QFileInfo info(path);
  QFileDevice::Permissions keep;
  const bool existed = info.exists();
  if (existed) {
    keep = info.permissions();
    // The owner's write bit is the read-only attribute; it holds even for root.
    if (info.isDir() || !(keep & QFileDevice::WriteOwner) || !info.isWritable()) {
      error_ = QStringLiteral("settings not saved: %1 is read-only").arg(path);
      return false;
    }
  }
  QSaveFile out(path);
  if (!out.open(QIODevice::WriteOnly)) {
    error_ = QStringLiteral("settings not saved: cannot write %1: %2").arg(path, out.errorString());
    return false;
  }
  const QByteArray bytes = toBytes();
  if (out.write(bytes) != bytes.size() || !out.commit()) {
    error_ = QStringLiteral("settings not saved: cannot write %1: %2").arg(path, out.errorString());
    return false;
  }
  if (existed && QFileInfo(path).permissions() != keep) QFile::setPermissions(path, keep);
  path_ = path;
  origin_ = Origin::Loaded;
  modified_ = false;
  byteSize_ = bytes.size();
  return true;
}

QByteArray IniFile::toBytes() const {
  QByteArray out;
  qsizetype total = 0;
  for (const Line& l : lines_) total += l.text.size() + l.eol.size();
  out.reserve(total);
  for (const Line& l : lines_) {
    out.append(l.text);
    out.append(l.eol);
  }
  return out;
}

qint64 IniFile::byteSize() const { return byteSize_; }

void IniFile::indexLine(LineIt it) {
  if (it->kind == Line::kSection) {
    Section sec;
    sec.header = it;
    sec.first = !sectionIndex_.contains(it->folded);
    if (sec.first) sectionIndex_.insert(it->folded, qsizetype(sections_.size()));
    sections_.push_back(std::move(sec));
  } else if (it->kind == Line::kKey && !sections_.empty()) {
    // Keys of a repeated section land in its own record, which no lookup finds.
    Section& sec = sections_.back();
    sec.lastKey = it;
    sec.hasKeys = true;
    if (!sec.keyLine.contains(it->folded)) {
      sec.keyLine.insert(it->folded, it);
      sec.keyOrder.push_back(it);
    }
  }
}

void IniFile::buildIndex() {
  sections_.clear();
  sectionIndex_.clear();
  for (LineIt it = lines_.begin(); it != lines_.end(); ++it) indexLine(it);
}

IniFile::Section* IniFile::findSection(QStringView section) {
  const auto it = sectionIndex_.constFind(Fold(section));
  return it == sectionIndex_.cend() ? nullptr : &sections_[size_t(*it)];
}

const IniFile::Section* IniFile::findSection(QStringView section) const {
  const auto it = sectionIndex_.constFind(Fold(section));
  return it == sectionIndex_.cend() ? nullptr : &sections_[size_t(*it)];
}

std::optional<QString> IniFile::value(QStringView section, QStringView key) const {
  const Section* sec = findSection(section);
  if (!sec) return std::nullopt;
  const auto found = sec->keyLine.constFind(Fold(key));
  if (found == sec->keyLine.cend()) return std::nullopt;
  const Line* l = &**found;
  const QString raw = platform::FromNative(l->text.mid(l->valueStart));
  QStringView v = TrimView(raw);
  if (v.isEmpty()) return raw.isEmpty() ? QString() : QStringLiteral(" ");
  if (v.size() >= 2 && (v.front() == u'"' || v.front() == u'\'') && v.back() == v.front()) v = v.mid(1, v.size() - 2);
  return v.toString();
}

int IniFile::getString(QStringView section, QStringView key, QString* out, int bufferSize) const {
  out->clear();
  if (bufferSize <= 1) return 0;
  std::optional<QString> v = value(section, key);
  if (!v) return 0;
  QString s = std::move(*v);
  if (s.size() > bufferSize - 1) {
    s.truncate(bufferSize - 1);
    if (s.back().isHighSurrogate()) s.chop(1);  // never keep half a character
  }
  *out = std::move(s);
  return int(out->size());
}

QStringList IniFile::keys(QStringView section) const {
  QStringList names;
  if (const Section* s = findSection(section)) {
    names.reserve(qsizetype(s->keyOrder.size()));
    for (const LineIt& it : s->keyOrder) names.append(it->name);
  }
  return names;
}

QStringList IniFile::sections() const {
  QStringList names;
  for (const Section& sec : sections_)
    if (sec.first) names.append(sec.header->name);
  return names;
}

IniFile::LineIt IniFile::insertAfter(LineIt pos, Line line) {
  line.eol = eol_;
  // A file that ended without a line break goes on ending without one.
  if (pos != lines_.end() && std::next(pos) == lines_.end() && pos->eol.isEmpty()) {
    pos->eol = eol_;
    line.eol.clear();
  }
  return lines_.insert(std::next(pos), std::move(line));
}

bool IniFile::setValue(QStringView section, QStringView key, QStringView value) {
  const QStringView sec = TrimView(section);
  const QStringView k = TrimView(key);
  if (HasLineBreak(sec) || sec.contains(u']') || sec.contains(u'\0')) return false;
  if (k.isEmpty() || HasLineBreak(k) || k.contains(u'=') || k.contains(u'\0') || k.front() == u'[' ||
      k.front() == u';' || k.front() == u'#')
    return false;
  qsizetype cut = value.size();
  for (qsizetype i = 0; i < value.size(); ++i) {
    if (value[i] == u'\n' || value[i] == u'\r') {
      cut = i;
      break;
    }
  }
  const QByteArray encoded = platform::ToNative(value.left(cut));
  const bool wasModified = modified_;

  modified_ = true;  // cleared again below when the value is already there
  if (Section* s = findSection(sec)) {
    const auto it = s->keyLine.constFind(Fold(k));
    if (it != s->keyLine.cend()) {
      Line& l = **it;
      // Blanks after the "=" are kept unless the new value begins with its own.
      qsizetype start = l.valueStart;
      const bool keepLead = !encoded.isEmpty() && encoded[0] != ' ' && encoded[0] != '\t';
      if (keepLead)
        while (start < l.text.size() && (l.text[start] == ' ' || l.text[start] == '\t')) ++start;
      if (l.text.mid(start) == encoded) {
        modified_ = wasModified;
        return true;
      }
      l.text.truncate(start);
      l.text.append(encoded);
      return true;
    }
    const LineIt after = s->hasKeys ? s->lastKey : s->header;
    const LineIt added = insertAfter(after, ParseLine(platform::ToNative(k) + '=' + encoded, QByteArray()));
    s->lastKey = added;
    s->hasKeys = true;
    s->keyLine.insert(added->folded, added);
    s->keyOrder.push_back(added);
    return true;
  }
  LineIt last = lines_.empty() ? lines_.end() : std::prev(lines_.end());
  if (last != lines_.end() && !TrimBytes(last->text).isEmpty()) last = insertAfter(last, Line{});
  auto append = [&](Line line) {
    if (last == lines_.end()) {
      line.eol = eol_;
      lines_.push_back(std::move(line));
      last = std::prev(lines_.end());
    } else {
      last = insertAfter(last, std::move(line));
    }
    indexLine(last);
  };
  append(ParseLine('[' + platform::ToNative(sec) + ']', QByteArray()));
  append(ParseLine(platform::ToNative(k) + '=' + encoded, QByteArray()));
  return true;
}

}  // namespace core
