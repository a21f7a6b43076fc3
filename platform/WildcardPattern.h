#pragma once
#include <QString>
#include <QStringView>
#include <vector>

namespace platform {

// A name pattern with the directory-enumeration rules of Windows: case-insensitive,
// "*" any run, "?" one character (none before a dot or at the end of the name),
// "*" before a dot stops at the name's last dot, a dot before a wildcard or at the
// end also matches the end of the name, and "*.*" matches every name.
class WildcardPattern {
 public:
  WildcardPattern() = default;
  explicit WildcardPattern(QStringView pattern);

  bool matches(QStringView name) const;
  bool matchesEverything() const { return kind_ == Kind::Everything; }
  const QString& text() const { return text_; }

 private:
  enum class Op : unsigned char { Literal, Star, DosStar, DosQm, DosDot };
  struct Token {
    Op op;
    char16_t ch;  // folded, for literals
  };
  enum class Kind { General, Everything, Extension, Exact };

  bool matchGeneral(QStringView name) const;

  QString text_;
  std::vector<Token> tokens_;
  Kind kind_ = Kind::Everything;
  QString literal_;  // folded: the extension (Extension) or the whole name (Exact)
};

// Case folding used by name matching: ASCII fast, Unicode simple folding otherwise.
inline char16_t FoldChar(char16_t c) {
  if (c < 0x80) return (c >= 'A' && c <= 'Z') ? char16_t(c + 32) : c;
  return QChar(c).toCaseFolded().unicode();
}

}  // namespace platform
