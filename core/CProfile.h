#pragma once
#include <QString>
#include <QStringList>
#include <optional>

#include "core/Flag16.h"
#include "core/IniFile.h"

namespace core {

// The settings profile: one INI file, the section the next key operations
// address, and the direction. The same Value calls read a key into a
// variable (fProfRead true) or write the variable into the file (false), so
// one routine per settings group serves both directions.
//
// Every call on its own reads (and on writing, saves) the file, like the
// private-profile calls. Between BeginBatch and EndBatch the file is read
// once, all operations work on it in memory, and EndBatch saves it once,
// atomically: a write of the whole catalogue is one save.
class CProfile {
 public:
  const QString& ProfileFile() const { return file_; }
  void setProfileFile(const QString& path) { file_ = path; }
  const QString& ProfileSection() const { return section_; }
  void setProfileSection(const QString& section) { section_ = section; }
  bool fProfRead() const { return read_; }
  void setProfRead(bool read) { read_ = read; }

  // Reading: 1 when the key held a value (the variable takes it, converted
  // by the variable's type), 0 when missing or empty (the variable keeps its
  // value). Writing: 1 when stored, 0 when the file could not be written.
  //  bool    written "1"/"0"; reads true from "True" and from any number but
  //          0 ("1", "-1"), false from anything else
  //  Flag16  written "-1"/"0" (its number); read by leading-number parse
  //  qint16, qint32, quint8  decimal; read by leading-number parse
  //          ("12abc" 12, "abc" 0, "1.5" 2), held to the type's range
  //  QString written as is, an empty text as one blank " "
  int Value(const QString& key, bool& variable);
  int Value(const QString& key, Flag16& variable);
  int Value(const QString& key, qint16& variable);
  int Value(const QString& key, qint32& variable);
  int Value(const QString& key, quint8& variable);
  int Value(const QString& key, QString& variable);
  // The text of an input control: written up to its first carriage return
  // (or line feed), at most 1024 characters, in double quotes (which keep its blanks); read
  // as the stored value without the quotes.
  int ControlText(const QString& key, QString& text);
  // The section's key names in file order through the 4096-character
  // key-list buffer: a list that does not fit ends with a cut name.
  int Keys(QStringList& names);

  // Leading-number parse: optional blanks and sign, digits, an optional
  // fraction rounded half to even; 0 when no digit leads. Saturates.
  static qint64 LeadingNumber(QStringView text);
  static bool TextToBool(QStringView text);

  // Batching. BeginBatch reads ProfileFile (false with LastError when the
  // file exists but cannot be read; the batch then holds an empty document
  // and refuses to save over the file). BeginBatch(content) works on the
  // given document and never touches the disk unless EndBatch is called.
  bool BeginBatch();
  void BeginBatch(IniFile content);
  bool InBatch() const { return batch_.has_value(); }
  // Saves the batch to ProfileFile when anything was written; false with
  // LastError when that failed.
  bool EndBatch();
  // Ends the batch without saving and hands back the document.
  IniFile TakeBatch();
  // Size in bytes of the settings source: the batch's document, else the
  // file on disk; -1 when there is no file.
  qint64 SourceSize() const;

  // The first failure since ClearError, worded for the status line.
  const QString& LastError() const { return error_; }
  bool HasError() const { return !error_.isEmpty(); }
  void ClearError() { error_.clear(); }

 private:
  int readText(const QString& key, QString* text);
  int writeText(const QString& key, const QString& text);
  template <typename Int>
  int valueInt(const QString& key, Int& variable);
  void noteError(const QString& message);

  QString file_;
  QString section_;
  bool read_ = true;
  std::optional<IniFile> batch_;
  QString error_;
};

}  // namespace core
