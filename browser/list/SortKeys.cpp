#include "browser/list/SortKeys.h"

#include "core/AttributeText.h"

namespace browser {

namespace {

void AppendHalf(QString* out, quint32 half) {
  char16_t field[8];
  int i = 8;
  do {
    const unsigned digit = half & 15;
    field[--i] = char16_t(digit < 10 ? u'0' + digit : u'A' + digit - 10);
    half >>= 4;
  } while (half != 0);
  while (i > 0) field[--i] = u' ';
  out->append(QStringView(field, 8));
}

}  // namespace

QString NameKey(QStringView name, bool grouping, bool folder) {
  QString key;
  key.reserve(name.size() + 1);
  if (grouping) key.append(folder ? u'0' : u'1');
  key.append(name);
  return key;
}

QString StampKey(quint64 value, bool grouping, bool folder) {
  QString key;
  key.reserve(17);
  if (grouping) key.append(folder ? u'9' : u'8');
  AppendHalf(&key, quint32(value >> 32));
  AppendHalf(&key, quint32(value));
  return key;
}

QString AttributeKey(quint32 attributes) { return core::AttributeString(attributes); }

}  // namespace browser
