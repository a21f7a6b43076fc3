#include "platform/WildcardPattern.h"

namespace platform {

WildcardPattern::WildcardPattern(QStringView pattern) : text_(pattern.toString()) {
  if (pattern == u"*.*" || pattern == u"*") {
    kind_ = Kind::Everything;
    return;
  }
  const qsizetype n = pattern.size();
  tokens_.reserve(n);
  for (qsizetype i = 0; i < n; ++i) {
    const char16_t c = pattern[i].unicode();
    const char16_t next = i + 1 < n ? pattern[i + 1].unicode() : 0;
    if (c == u'?') tokens_.push_back({Op::DosQm, 0});
    else if (c == u'*') tokens_.push_back({next == u'.' ? Op::DosStar : Op::Star, 0});
    else if (c == u'.' && (next == u'?' || next == u'*' || i + 1 == n)) tokens_.push_back({Op::DosDot, 0});
    else tokens_.push_back({Op::Literal, FoldChar(c)});
  }

  bool onlyLiterals = true;
  for (const Token& t : tokens_) onlyLiterals = onlyLiterals && t.op == Op::Literal;
  if (onlyLiterals) {
    kind_ = Kind::Exact;
    for (const Token& t : tokens_) literal_.append(QChar(t.ch));
    return;
  }
  // "*.ext" with no dot or wildcard in ext: a suffix test on the last dot.
  if (tokens_.size() > 2 && tokens_[0].op == Op::DosStar && tokens_[1].op == Op::Literal && tokens_[1].ch == u'.') {
    bool plain = true;
    for (size_t i = 2; i < tokens_.size(); ++i)
      plain = plain && tokens_[i].op == Op::Literal && tokens_[i].ch != u'.';
    if (plain) {
      kind_ = Kind::Extension;
      for (size_t i = 2; i < tokens_.size(); ++i) literal_.append(QChar(tokens_[i].ch));
      return;
    }
  }
  kind_ = Kind::General;
}

static bool FoldEquals(QStringView name, qsizetype from, const QString& folded) {
  const char16_t* s = reinterpret_cast<const char16_t*>(name.utf16()) + from;
  const char16_t* f = reinterpret_cast<const char16_t*>(folded.utf16());
  for (qsizetype i = 0; i < folded.size(); ++i)
    if (FoldChar(s[i]) != f[i]) return false;
  return true;
}

bool WildcardPattern::matches(QStringView name) const {
  switch (kind_) {
    case Kind::Everything:
      return true;
    case Kind::Exact:
      return name.size() == literal_.size() && FoldEquals(name, 0, literal_);
    case Kind::Extension: {
      const qsizetype start = name.size() - literal_.size();
      return start >= 1 && name[start - 1] == u'.' && FoldEquals(name, start, literal_);
    }
    case Kind::General:
      break;
  }
  return matchGeneral(name);
}

// Simulates the pattern as an automaton over the name: the set of reachable
// pattern positions advances one name character at a time, so the cost stays
// pattern length x name length even for patterns full of stars.
bool WildcardPattern::matchGeneral(QStringView name) const {
  const size_t p = tokens_.size();
  const qsizetype n = name.size();
  const qsizetype lastDot = name.lastIndexOf(u'.');
  std::vector<char> cur(p + 1, 0), next(p + 1, 0);

  auto closure = [&](std::vector<char>& set, qsizetype i) {
    const bool atEnd = i == n;
    const bool atDot = !atEnd && name[i] == u'.';
    for (size_t k = 0; k < p; ++k) {
      if (!set[k]) continue;
      const Op op = tokens_[k].op;
      if (op == Op::Star || op == Op::DosStar || (op == Op::DosQm && (atEnd || atDot)) ||
          (op == Op::DosDot && atEnd))
        set[k + 1] = 1;
    }
  };

  cur[0] = 1;
  closure(cur, 0);
  for (qsizetype i = 0; i < n; ++i) {
    std::fill(next.begin(), next.end(), 0);
    const char16_t raw = name[i].unicode();
    const char16_t c = FoldChar(raw);
    bool any = false;
    for (size_t k = 0; k < p; ++k) {
      if (!cur[k]) continue;
      const Token& t = tokens_[k];
      switch (t.op) {
        case Op::Literal:
          if (t.ch == c) next[k + 1] = 1, any = true;
          break;
        case Op::Star:
          next[k] = 1, any = true;
          break;
        case Op::DosStar:
          if (i != lastDot) next[k] = 1, any = true;
          break;
        case Op::DosQm:
          if (raw != u'.') next[k + 1] = 1, any = true;
          break;
        case Op::DosDot:
          if (raw == u'.') next[k + 1] = 1, any = true;
          break;
      }
    }
    if (!any) return false;
    cur.swap(next);
    closure(cur, i + 1);
  }
  return cur[p] != 0;
}

}  // namespace platform
