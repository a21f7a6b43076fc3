#pragma once
#include <QHash>
#include <QString>
#include <QStringList>

namespace cli {

// A small option parser for the commands: "--name value", "--name=value",
// flags, repeatable options and positional arguments. Unknown options and
// missing values are errors with a message.
class ArgParser {
 public:
  ArgParser& flag(const QString& name);
  ArgParser& option(const QString& name);  // takes a value; may repeat

  bool parse(const QStringList& args);
  const QString& error() const { return error_; }

  bool isSet(const QString& name) const { return values_.contains(name); }
  QString value(const QString& name) const { return values_.value(name).value(0); }
  QStringList values(const QString& name) const { return values_.value(name); }
  const QStringList& positional() const { return positional_; }

  // Parses an integer option within [lo, hi]; on a bad value sets error().
  bool intValue(const QString& name, int lo, int hi, int* out);

 private:
  QHash<QString, bool> takesValue_;
  QHash<QString, QStringList> values_;
  QStringList positional_;
  QString error_;
};

}  // namespace cli
