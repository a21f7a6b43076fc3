#pragma once
#include <QByteArray>
#include <QHash>
#include <QString>
#include <QStringList>
#include <QStringView>
#include <list>
#include <optional>
#include <vector>

namespace core {

// An INI document read and written by the private-profile rules:
// - section and key names are trimmed and compared without regard to case;
// - a section header is "[name]" (text after the first "]" is ignored);
//   lines starting with ";" or "#", lines without "=" and lines before the
//   first section are kept but never read;
// - the first of duplicate sections, and the first of duplicate keys in it, wins;
// - a value is trimmed, then one pair of enclosing double or single quotes is
//   removed; a value of blanks only reads as one blank, so that a text stored
//   as " " stays apart from an absent key; an empty value reads as nothing.
// Writing changes the one line of the key (the text up to the "=" and the
// blanks after it stay as they were), inserts a new key after the last key of
// its section, or appends a new section; every other byte of the file stays
// as it was, including comments, order, unknown keys and line endings.
// Files are bytes; names and values are UTF-8 with invalid bytes carried as
// escapes (platform::FromNative), so any byte sequence survives.
class IniFile {
 public:
  enum class Origin { Empty, Loaded, Absent, Failed };

  // GetPrivateProfileString's value buffer and key-list buffer.
  static constexpr int kValueBuffer = 1024;
  static constexpr int kKeysBuffer = 4096;
  // Larger files are not settings; they are neither read nor overwritten.
  static constexpr qint64 kMaxFileSize = 64 * 1024 * 1024;

  IniFile() = default;
  // The index points into the line list: a copy builds its own.
  IniFile(const IniFile& other);
  IniFile& operator=(const IniFile& other);
  IniFile(IniFile&&) noexcept = default;
  IniFile& operator=(IniFile&&) noexcept = default;
  static IniFile FromBytes(const QByteArray& bytes);

  // Reads `path`. An absent file gives an empty document and true. False
  // (with errorString) when the file exists but cannot be read; such a
  // document refuses to be saved over the file it could not read.
  bool load(const QString& path);
  // Writes the document atomically (temporary file beside it, then rename),
  // keeping the file's permissions. Does nothing when nothing changed since
  // loading from that same path. Fails, changing nothing, when the file is
  // read-only, the folder cannot be written, or the file could not be read.
  bool save(const QString& path);

  QByteArray toBytes() const;
  qint64 byteSize() const;  // size of the bytes as loaded or given
  Origin origin() const { return origin_; }
  bool isModified() const { return modified_; }
  const QString& errorString() const { return error_; }

  // GetPrivateProfileString for one key: the value cut to bufferSize - 1
  // characters into *out (emptied when nothing is read); returns its length.
  // 0 means the key is missing or its value empty.
  int getString(QStringView section, QStringView key, QString* out, int bufferSize = kValueBuffer) const;
  // The value by the reading rules, uncut; nullopt when the key is missing.
  std::optional<QString> value(QStringView section, QStringView key) const;
  // Key names of a section in file order (first spelling of each name).
  QStringList keys(QStringView section) const;
  // Section names in file order (first of duplicates only).
  QStringList sections() const;

  // WritePrivateProfileString. The value is cut at its first line break (a
  // value cannot span lines). False for a name that cannot be stored: an
  // empty key, names with line breaks, a key with "=" or starting with "[",
  // ";" or "#", a section with "]".
  bool setValue(QStringView section, QStringView key, QStringView value);

 private:
  struct Line {
    enum Kind : quint8 { kOther, kSection, kKey };
    QByteArray text;  // without its line end
    QByteArray eol;   // "\r\n", "\n" or "" for a last line without one
    Kind kind = kOther;
    QString name;    // trimmed section or key name
    QString folded;  // the name case-folded, for comparing
    qsizetype valueStart = 0;  // kKey: offset just past the "="
  };
  using LineIt = std::list<Line>::iterator;
  struct Section {
    LineIt header;
    LineIt lastKey;        // last key line (duplicates included)
    bool hasKeys = false;
    bool first = false;    // the one lookups find (not a later duplicate)
    QHash<QString, LineIt> keyLine;  // first of each name
    std::vector<LineIt> keyOrder;    // unique names in file order
  };

  static Line ParseLine(QByteArray text, QByteArray eol);
  void buildIndex();
  void indexLine(LineIt it);
  Section* findSection(QStringView section);
  const Section* findSection(QStringView section) const;
  LineIt insertAfter(LineIt pos, Line line);

  // Lines live in a list so that the index's iterators survive insertions:
  // adding thousands of keys stays linear.
  std::list<Line> lines_;
  std::vector<Section> sections_;
  QHash<QString, qsizetype> sectionIndex_;  // folded name -> first section
  QByteArray eol_ = QByteArrayLiteral("\n");  // line end for new lines
  qint64 byteSize_ = 0;
  bool modified_ = false;
  Origin origin_ = Origin::Empty;
  QString path_;  // where it was loaded from
  QString error_;
};

}  // namespace core
