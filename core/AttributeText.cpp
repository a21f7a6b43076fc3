#include "core/AttributeText.h"

#include "core/AppendText.h"

namespace core {

QString AttributeString(quint32 attributes) {
  QString out(8, u'-');
  for (size_t i = 0; i < kAttributeTable.size(); ++i)
    if (attributes & kAttributeTable[i].bit) out[qsizetype(i)] = QLatin1Char(kAttributeTable[i].letter);
  return out;
}

void AppendAttributeString(QString* out, quint32 attributes) {
  char16_t text[kAttributeTable.size()];
  for (size_t i = 0; i < kAttributeTable.size(); ++i)
    text[i] = attributes & kAttributeTable[i].bit ? char16_t(kAttributeTable[i].letter) : u'-';
  AppendText(out, QStringView(text, qsizetype(kAttributeTable.size())));
}

bool AttributeBitsFromLetters(const QString& letters, quint32* bits) {
  quint32 out = 0;
  for (QChar c : letters) {
    bool found = false;
    for (const AttributeRow& row : kAttributeTable) {
      if (c.toUpper() == QLatin1Char(row.letter)) {
        out |= row.bit;
        found = true;
      }
    }
    if (!found && c != u'-') return false;
  }
  *bits = out;
  return true;
}

}  // namespace core
