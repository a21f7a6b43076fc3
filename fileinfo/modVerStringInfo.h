#pragma once
#include <QByteArray>
#include <QString>
#include <QStringList>
#include <QVector>
#include <functional>

// Loading a file's version block, its translations, the keys of its string
// table (walked in the raw block, both layouts) and their values, language
// and character-set names. One module-wide state, replaced by each load: one
// file at a time, from one thread.
namespace modVerStringInfo {

// Receives a fault inside a key walk: tag "BinaryReadNTError" (32-bit layout)
// or "BinaryRead95Error" (16-bit layout) and a message. What was gathered stays.
using ErrorReport = std::function<void(const QString& tag, const QString& message)>;
void SetErrorReport(ErrorReport report);

bool LoadVersionBlock(const QString& path);
// The same state from bytes already in memory (a block read elsewhere).
void LoadVersionBlockFromBytes(const QByteArray& bytes);
bool ReadTranslations(int* count);
// names/values: 0..4 fixed part (names empty), 5 language(s), 6 character
// set(s), 7.. the keys in block order with their values from the first table.
bool ReadVersionInfo(const QString& path, QStringList* names, QStringList* values);
// ReadVersionInfo on the block loaded last (LoadVersionBlockFromBytes).
bool ReadLoadedVersionInfo(QStringList* names, QStringList* values);
bool QueryStringValue(int tableIndex, const QString& key, QString* value);

QString LanguageName(quint32 langId);
QString CharSetName(quint32 codePage);

// prefix + the fixed file version (useFixed) or the "FileVersion" string of
// the first table; "" when there is none.
QString GetFileVersionText(bool useFixed, const QString& path, const QString& prefix);

// The state of the last load, for display and tests.
const QByteArray& block();
int translationCount();
const QVector<quint16>& langIds();
const QVector<quint16>& codePages();
const QStringList& tablePaths();

}  // namespace modVerStringInfo
