#include "cli/ArgParser.h"

namespace cli {

ArgParser& ArgParser::flag(const QString& name) {
  takesValue_.insert(name, false);
  return *this;
}

ArgParser& ArgParser::option(const QString& name) {
  takesValue_.insert(name, true);
  return *this;
}

bool ArgParser::parse(const QStringList& args) {
  bool onlyPositional = false;
  positional_.reserve(positional_.size() + args.size());
  for (qsizetype i = 0; i < args.size(); ++i) {
    const QString& a = args[i];
    if (onlyPositional || !a.startsWith(QStringLiteral("--")) || a == QStringLiteral("-")) {
      positional_.append(a);
      continue;
    }
    if (a == QStringLiteral("--")) {
      onlyPositional = true;
      continue;
    }
    QString name = a.mid(2), inlineValue;
    const qsizetype eq = name.indexOf(u'=');
    const bool hasInline = eq >= 0;
    if (hasInline) {
      inlineValue = name.mid(eq + 1);
      name.truncate(eq);
    }
    if (!takesValue_.contains(name)) {
      error_ = QStringLiteral("unknown option --%1").arg(name);
      return false;
    }
    if (!takesValue_.value(name)) {
      if (hasInline) {
        error_ = QStringLiteral("option --%1 takes no value").arg(name);
        return false;
      }
      values_[name].append(QString());
      continue;
    }
    if (hasInline) {
      values_[name].append(inlineValue);
    } else if (i + 1 < args.size()) {
      values_[name].append(args[++i]);
    } else {
      error_ = QStringLiteral("option --%1 needs a value").arg(name);
      return false;
    }
  }
  return true;
}

bool ArgParser::intValue(const QString& name, int lo, int hi, int* out) {
  if (!isSet(name)) return true;
  bool ok = false;
  const int v = value(name).toInt(&ok);
  if (!ok || v < lo || v > hi) {
    error_ = QStringLiteral("--%1 takes a number from %2 to %3").arg(name).arg(lo).arg(hi);
    return false;
  }
  *out = v;
  return true;
}

}  // namespace cli
