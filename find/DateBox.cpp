#include "find/DateBox.h"

#include <QLocale>

#include "core/DateStyles.h"
#include "core/FormatLocale.h"
#include "platform/FileTime.h"

namespace find {

namespace {

// Qt's locale data puts narrow and non-breaking spaces into time formats;
// typed text has plain blanks. Both sides are compared with plain ones.
QString Blanks(QString s) {
  s.replace(QChar(0x202F), u' ');
  s.replace(QChar(0x00A0), u' ');
  return s.simplified();
}

void AddUnique(QStringList* list, const QString& item) {
  if (!item.isEmpty() && !list->contains(item)) list->append(item);
}

bool TwoDigitYear(const QString& format) { return format.contains(u"yy") && !format.contains(u"yyyy"); }

}  // namespace

QString TimeWithSeconds(const QString& shortTime) {
  if (shortTime.contains(u"ss")) return shortTime;
  QString out = shortTime;
  const qsizetype mm = out.indexOf(u"mm");
  if (mm >= 0) out.insert(mm + 2, QStringLiteral(":ss"));
  return out;
}

QStringList DateBoxDateFormats() {
  QStringList formats;
  AddUnique(&formats, Blanks(core::ShortDate4()));
  AddUnique(&formats, Blanks(core::FormatLocale().dateFormat(QLocale::ShortFormat)));
  AddUnique(&formats, QStringLiteral("yyyy-MM-dd"));
  return formats;
}

QStringList DateBoxTimeFormats() {
  const QString shortTime = Blanks(core::FormatLocale().timeFormat(QLocale::ShortFormat));
  QStringList formats;
  AddUnique(&formats, TimeWithSeconds(shortTime));
  AddUnique(&formats, shortTime);
  for (const char* f : {"HH:mm:ss", "H:mm:ss", "HH:mm", "H:mm"}) AddUnique(&formats, QString::fromLatin1(f));
  return formats;
}

bool ParseDateBox(const QString& text, qint64* fileTime) {
  const QString t = Blanks(text);
  if (t.isEmpty()) return false;
  const QLocale& locale = core::FormatLocale();
  const QStringList dates = DateBoxDateFormats();
  const QStringList times = DateBoxTimeFormats();

  QDateTime found;
  QString used;
  for (const QString& d : dates) {
    const QDate date = locale.toDate(t, d);
    if (date.isValid()) {
      found = QDateTime(date, QTime(0, 0));
      used = d;
      break;
    }
    for (const QString& tf : times) {
      const QString format = d + u' ' + tf;
      const QDateTime dt = locale.toDateTime(t, format);
      if (dt.isValid()) {
        found = dt;
        used = d;
        break;
      }
    }
    if (found.isValid()) break;
  }
  if (!found.isValid()) return false;

  QDate date = found.date();
  if (TwoDigitYear(used) && date.year() >= 1900 && date.year() < 1930) date = date.addYears(100);
  const QTime time = found.time();
  const QDateTime local(date, QTime(time.hour(), time.minute(), time.second()), Qt::LocalTime);
  if (!local.isValid()) return false;
  *fileTime = platform::kUnixEpochTicks + local.toSecsSinceEpoch() * platform::kTicksPerSecond;
  return true;
}

QString DateBoxText(const QDateTime& local) {
  const QLocale& locale = core::FormatLocale();
  const QString time = TimeWithSeconds(Blanks(locale.timeFormat(QLocale::ShortFormat)));
  return locale.toString(local.date(), core::ShortDate4()) + u' ' + locale.toString(local.time(), time);
}

}  // namespace find
