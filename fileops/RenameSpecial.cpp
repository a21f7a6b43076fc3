#include "fileops/RenameSpecial.h"

#include <QHash>
#include <QSet>
#include <cerrno>

#include "fileops/RenameLog.h"
#include "platform/FileCopier.h"
#include "platform/FolderReader.h"
#include "platform/NativePath.h"
#include "platform/SafeRename.h"

namespace fileops {

namespace {

constexpr qsizetype kNameMax = 255;  // bytes, as every Linux file system allows at most

// A raw byte of a name that is not valid UTF-8 (see NativePath.h). Valid
// text never holds a lone low surrogate, so one that follows no high
// surrogate is such a byte.
bool IsRawByte(QStringView s, qsizetype i) {
  const char16_t c = s[i].unicode();
  return c >= 0xDC80 && c <= 0xDCFF && (i == 0 || !QChar::isHighSurrogate(s[i - 1].unicode()));
}

// Case mapping of the valid text only: raw bytes stay exactly as they are.
QString MapCase(const QString& name, bool upper) {
  QString out;
  qsizetype start = 0;
  for (qsizetype i = 0; i < name.size(); ++i) {
    if (!IsRawByte(name, i)) continue;
    const QString run = name.mid(start, i - start);
    out += upper ? run.toUpper() : run.toLower();
    out += name[i];
    start = i + 1;
  }
  if (start == 0) return upper ? name.toUpper() : name.toLower();
  const QString run = name.mid(start);
  return out + (upper ? run.toUpper() : run.toLower());
}

QString ProperCase(const QString& name) {
  QString s = MapCase(name, false);
  // Lower case keeps every blank where it was, so the words start after them.
  for (qsizetype i = 0; i < s.size(); ++i) {
    if (s[i] == u' ' || (i > 0 && s[i - 1] != u' ') || IsRawByte(s, i)) continue;
    const qsizetype len = QChar::isHighSurrogate(s[i].unicode()) && i + 1 < s.size() ? 2 : 1;
    const QString first = s.mid(i, len).toUpper();
    s.replace(i, len, first);
    i += first.size() - 1;
  }
  if (s.contains(QStringLiteral(" of "), Qt::CaseInsensitive)) s.replace(QStringLiteral(" Of "), QStringLiteral(" of "));
  return s;
}

QString Htm(const QString& name) {
  const qsizetype dot = name.lastIndexOf(u'.');
  const QStringView ext = dot < 0 ? QStringView() : QStringView(name).mid(dot + 1);
  if (dot < 0 || !QStringLiteral(".html.shtml.shtm.").contains(u'.' + ext.toString() + u'.')) return QString();
  return name.left(name.size() - ext.size()) + QStringLiteral("htm");
}

QString Umlauts(QString s) {
  static const struct {
    char16_t from;
    const char16_t* to;
  } kPairs[] = {{u'\u00E4', u"ae"}, {u'\u00F6', u"oe"}, {u'\u00FC', u"ue"}, {u'\u00C4', u"Ae"},
                {u'\u00D6', u"Oe"}, {u'\u00DC', u"Ue"}, {u'\u00DF', u"ss"}};
  for (const auto& p : kPairs) s.replace(QChar(p.from), QString::fromUtf16(p.to));
  return s;
}

QString Shown(const QString& name) { return u'"' + platform::DisplayText(name) + u'"'; }

QString Join(const QString& folder, const QString& name) { return folder + u'/' + name; }

// name -> 8.3 alias of one folder; empty where the file system keeps none.
QHash<QString, QString> AliasesOf(const QString& folder) {
  QHash<QString, QString> out;
  platform::FolderReader reader(folder.isEmpty() ? QStringLiteral("/") : folder);
  if (!reader.isOpen() || !reader.isVfat()) return out;
  for (qsizetype i = 0; i < reader.count(); ++i)
    if (!reader.alias(i).isEmpty()) out.insert(reader.name(i), reader.alias(i));
  return out;
}

}  // namespace

bool RenameSpecial::FromKeyword(const QString& keyword, RenameHow* how) {
  const QStringList words = QString::fromLatin1(kKeywords).split(u',');
  const qsizetype i = words.indexOf(keyword);
  if (i < 0) return false;
  *how = RenameHow(i);
  return true;
}

QString RenameSpecial::NewName(RenameHow how, const QString& name, const QString& alias) {
  switch (how) {
    case RenameHow::kProper: return ProperCase(name);
    case RenameHow::kLower: return MapCase(name, false);
    case RenameHow::kUpper: return MapCase(name, true);
    case RenameHow::kHtm: return Htm(name);
    case RenameHow::kUnderscore: return QString(name).replace(u' ', u'_');
    case RenameHow::kUmlauts: return Umlauts(name);
    case RenameHow::kDos: return alias.left(alias.indexOf(QChar(0)));
  }
  return QString();
}

std::vector<RenameItem> RenameSpecial::Plan(RenameHow how, const QStringList& paths) {
  std::vector<RenameItem> items;
  QSet<QString> given;  // new paths this batch hands out
  QHash<QString, QHash<QString, QString>> aliases;
  for (const QString& path : paths) {
    RenameItem item;
    const qsizetype cut = path.lastIndexOf(u'/');
    item.folder = cut < 0 ? QStringLiteral(".") : path.left(cut);
    item.oldName = path.mid(cut + 1);
    QString alias;
    if (how == RenameHow::kDos) {
      auto it = aliases.find(item.folder);
      if (it == aliases.end()) it = aliases.insert(item.folder, AliasesOf(item.folder));
      alias = it->value(item.oldName);
    }
    item.newName = NewName(how, item.oldName, alias);
    if (item.newName.isEmpty() || item.newName == item.oldName) continue;
    if (item.oldName == u"." || item.oldName == u"..") continue;
    // A name that cannot be given is known now, before anyone is asked.
    item.refusal = CheckName(item.oldName, item.newName);
    const QString target = item.newPath();
    if (item.refusal.isEmpty() && given.contains(target))
      item.refusal = QStringLiteral("Another selected entry gets the name %1 first.").arg(Shown(item.newName));
    else if (item.refusal.isEmpty())
      given.insert(target);
    items.push_back(std::move(item));
  }
  return items;
}

std::vector<RenameItem> RenameSpecial::Reverse(const std::vector<RenameItem>& done) {
  std::vector<RenameItem> out;
  for (auto it = done.rbegin(); it != done.rend(); ++it) {
    if (!it->done) continue;
    RenameItem back;
    back.folder = it->folder;
    back.oldName = it->newName;
    back.newName = it->oldName;
    out.push_back(std::move(back));
  }
  return out;
}

RenameResult RenameSpecial::Run(std::vector<RenameItem>* items, RenameLog* log, const std::function<void()>& yield,
                                const std::atomic<bool>* abort) {
  RenameResult result;
  for (RenameItem& item : *items) {
    if (yield) yield();
    if (abort && abort->load(std::memory_order_relaxed)) {
      result.stopped = true;
      break;
    }
    if (item.done) continue;
    if (item.refusal.isEmpty()) item.refusal = RenameEntry(item.folder, item.oldName, item.newName);
    if (!item.refusal.isEmpty()) {
      ++result.refused;
      continue;
    }
    item.done = true;
    ++result.renamed;
    if (log && result.logError.isEmpty()) result.logError = log->append(item.oldPath(), item.newPath());
  }
  return result;
}

qsizetype RenameSpecial::Check(std::vector<RenameItem>* items) {
  qsizetype refused = 0;
  for (RenameItem& item : *items) {
    if (item.refusal.isEmpty()) item.refusal = CheckName(item.oldName, item.newName);
    if (item.refusal.isEmpty()) {
      const platform::NodeInfo from = platform::FileCopier::Stat(item.oldPath());
      const platform::NodeInfo to = platform::FileCopier::Stat(item.newPath());
      if (from.kind == platform::NodeInfo::kMissing)
        item.refusal = ReasonText(from.error ? from.error : ENOENT, item.newName);
      else if (to.kind != platform::NodeInfo::kMissing && (to.device != from.device || to.inode != from.inode))
        item.refusal = ReasonText(EEXIST, item.newName);
    }
    refused += !item.refusal.isEmpty();
  }
  return refused;
}

QString RenameSpecial::CheckName(const QString& oldName, const QString& newName) {
  if (oldName.isEmpty() || oldName == u"." || oldName == u"..")
    return QStringLiteral("%1 cannot be renamed.").arg(Shown(oldName));
  if (newName.isEmpty()) return QStringLiteral("The new name is empty.");
  if (newName == u"." || newName == u"..") return QStringLiteral("%1 cannot be a name.").arg(Shown(newName));
  if (newName.contains(u'/')) return QStringLiteral("A name cannot hold \"/\".");
  if (newName.contains(QChar(0))) return QStringLiteral("A name cannot hold a zero byte.");
  const qsizetype bytes = platform::ToNative(newName).size();
  if (bytes > kNameMax)
    return QStringLiteral("The new name %1 is too long: %2 bytes, at most %3.").arg(Shown(newName)).arg(bytes).arg(kNameMax);
  return QString();
}

QString RenameSpecial::RenameEntry(const QString& folder, const QString& oldName, const QString& newName) {
  const QString bad = CheckName(oldName, newName);
  if (!bad.isEmpty()) return bad;
  if (oldName == newName) return QString();
  const int error = platform::RenameNoReplace(Join(folder, oldName), Join(folder, newName));
  return error == 0 ? QString() : ReasonText(error, newName);
}

QString RenameSpecial::ReasonText(int error, const QString& newName) {
  switch (error) {
    case EEXIST:
    case ENOTEMPTY: return QStringLiteral("%1 already exists.").arg(Shown(newName));
    case ENOENT: return QStringLiteral("It is no longer there.");
    case EACCES:
    case EPERM: return QStringLiteral("Access denied.");
    case EROFS: return QStringLiteral("The file system is read-only.");
    case ENAMETOOLONG: return QStringLiteral("The new name %1 is too long.").arg(Shown(newName));
    case EINVAL:
    case EILSEQ: return QStringLiteral("The file system does not accept the name %1.").arg(Shown(newName));
    case EBUSY: return QStringLiteral("It is in use.");
    default: return platform::ErrorText(error) + u'.';
  }
}

}  // namespace fileops
