#include "fileinfo/VersionDisplay.h"

#include "fileinfo/modVerStringInfo.h"

namespace fileinfo {

QString VersionDisplay::Caption(int label) {
  static const char* const kCaptions[kLabelCount] = {"File Version:", "Description:", "Copyright:",   "File Type:",
                                                     "Fixed File Version:", "Product Version:", "File Flags:",
                                                     "Target OS:"};
  const int i = label - kFirstLabel;
  return i >= 0 && i < kLabelCount ? QLatin1String(kCaptions[i]) : QString();
}

QString VersionDisplay::DisplayName(const QString& key) {
  static const struct {
    const char* key;
    const char* shown;
  } kNames[] = {{"CompanyName", "Company Name"},         {"InternalName", "Internal Name"},
                {"LegalTrademarks", "Legal Trademarks"}, {"OriginalFilename", "Original Filename"},
                {"ProductName", "Product Name"},         {"ProductVersion", "Product Version"}};
  for (const auto& n : kNames)
    if (key == QLatin1String(n.key)) return QLatin1String(n.shown);
  return key;
}

VersionDisplay VersionDisplay::Read(const QString& path) {
  VersionDisplay d;
  if (!modVerStringInfo::ReadVersionInfo(path, &d.names, &d.values)) {
    d.names.clear();
    d.values.clear();
    d.labels[0] = NoInfoText();
    return d;
  }
  d.hasInfo = true;
  for (int i = 0; i < 5; ++i) d.labels[3 + i] = d.values.value(i);
  for (qsizetype i = 5; i < d.names.size() && !d.names[i].isEmpty(); ++i) {
    const QString& name = d.names[i];
    if (name == u"FileVersion") d.labels[0] = d.values.value(i);
    else if (name == u"FileDescription") d.labels[1] = d.values.value(i);
    else if (name == u"LegalCopyright") d.labels[2] = d.values.value(i);
    else d.items.append({DisplayName(name), int(i)});
  }
  return d;
}

}  // namespace fileinfo
