#include "find/TextSearch.h"

#include <QChar>
#include <algorithm>
#include <cstring>
#include <mutex>
#include <utility>

#ifdef __SSE2__
#include <emmintrin.h>
#endif

namespace find {

namespace {

// How common a byte is in the files people search (text and binaries); the
// search anchors on the rarest byte of the needle.
int ByteFrequency(unsigned char b) {
  static const std::array<int, 256> table = [] {
    std::array<int, 256> t{};
    for (int i = 0; i < 256; ++i) t[i] = i < 0x20 ? 8 : i < 0x80 ? 24 : 40;
    const char* byRank = "etaoinsrhldcumfpgwybvkxjqz";
    for (int i = 0; i < 26; ++i) {
      t[size_t(byRank[i])] = 220 - i * 8;
      t[size_t(byRank[i] - 32)] = 60 - i * 2;
    }
    for (int c = '0'; c <= '9'; ++c) t[size_t(c)] = 70;
    t[' '] = 255;
    t['\n'] = 120;
    t['\t'] = 60;
    t['\r'] = 50;
    t[0] = 200;
    t[0xFF] = 90;
    t['.'] = 80;
    t[','] = 70;
    t['-'] = 50;
    t['_'] = 45;
    t['/'] = 45;
    t['"'] = 45;
    t['='] = 45;
    return t;
  }();
  return table[b];
}

unsigned char AsciiLower(unsigned char c) { return (c >= 'A' && c <= 'Z') ? c + 32 : c; }

// Length of the valid UTF-8 sequence at p (0 if invalid) and its code point.
int DecodeUtf8(const unsigned char* p, const unsigned char* end, char32_t* cp) {
  const unsigned char b0 = p[0];
  if (b0 < 0x80) {
    *cp = b0;
    return 1;
  }
  int len;
  char32_t c;
  if (b0 < 0xC2) return 0;
  if (b0 < 0xE0) len = 2, c = b0 & 0x1F;
  else if (b0 < 0xF0) len = 3, c = b0 & 0x0F;
  else if (b0 < 0xF5) len = 4, c = b0 & 0x07;
  else return 0;
  if (end - p < len) return 0;
  for (int i = 1; i < len; ++i) {
    if ((p[i] & 0xC0) != 0x80) return 0;
    c = (c << 6) | (p[i] & 0x3F);
  }
  if ((len == 3 && c < 0x800) || (len == 4 && (c < 0x10000 || c > 0x10FFFF)) || (c >= 0xD800 && c <= 0xDFFF))
    return 0;
  *cp = c;
  return len;
}

int EncodeUtf8(char32_t c, unsigned char* out) {
  if (c < 0x80) {
    out[0] = (unsigned char)c;
    return 1;
  }
  if (c < 0x800) {
    out[0] = (unsigned char)(0xC0 | (c >> 6));
    out[1] = (unsigned char)(0x80 | (c & 0x3F));
    return 2;
  }
  if (c < 0x10000) {
    out[0] = (unsigned char)(0xE0 | (c >> 12));
    out[1] = (unsigned char)(0x80 | ((c >> 6) & 0x3F));
    out[2] = (unsigned char)(0x80 | (c & 0x3F));
    return 3;
  }
  out[0] = (unsigned char)(0xF0 | (c >> 18));
  out[1] = (unsigned char)(0x80 | ((c >> 12) & 0x3F));
  out[2] = (unsigned char)(0x80 | ((c >> 6) & 0x3F));
  out[3] = (unsigned char)(0x80 | (c & 0x3F));
  return 4;
}

// Code points whose simple case folding differs from themselves, sorted by
// their folding: the inverse of the fold, built once.
const std::vector<std::pair<char32_t, char32_t>>& FoldInverse() {
  static std::vector<std::pair<char32_t, char32_t>> table;
  static std::once_flag once;
  std::call_once(once, [] {
    for (char32_t c = 0; c < 0x20000; ++c) {
      if (c >= 0xD800 && c <= 0xDFFF) continue;
      const char32_t f = QChar::toCaseFolded(c);
      if (f != c) table.emplace_back(f, c);
    }
    std::sort(table.begin(), table.end());
  });
  return table;
}

// Every code point with the same simple case folding as c, c first.
std::vector<char32_t> CaseVariants(char32_t c) {
  const char32_t f = QChar::toCaseFolded(c);
  std::vector<char32_t> out{c};
  auto add = [&](char32_t x) {
    if (std::find(out.begin(), out.end(), x) == out.end()) out.push_back(x);
  };
  add(f);
  const auto& inv = FoldInverse();
  auto it = std::lower_bound(inv.begin(), inv.end(), std::make_pair(f, char32_t(0)));
  for (; it != inv.end() && it->first == f; ++it) add(it->second);
  return out;
}

// First position in [p, end) holding one of `count` bytes (1 to 4), or end.
const unsigned char* FindAnyOf(const unsigned char* p, const unsigned char* end, const unsigned char* set,
                               int count) {
  if (count == 1) {
    const void* hit = std::memchr(p, set[0], size_t(end - p));
    return hit ? static_cast<const unsigned char*>(hit) : end;
  }
#ifdef __SSE2__
  __m128i v[4];
  for (int i = 0; i < 4; ++i) v[i] = _mm_set1_epi8(char(set[i < count ? i : 0]));
  while (end - p >= 16) {
    const __m128i block = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p));
    __m128i eq = _mm_or_si128(_mm_cmpeq_epi8(block, v[0]), _mm_cmpeq_epi8(block, v[1]));
    if (count > 2) eq = _mm_or_si128(eq, _mm_or_si128(_mm_cmpeq_epi8(block, v[2]), _mm_cmpeq_epi8(block, v[3])));
    const int mask = _mm_movemask_epi8(eq);
    if (mask) return p + __builtin_ctz(unsigned(mask));
    p += 16;
  }
#endif
  for (; p < end; ++p)
    for (int i = 0; i < count; ++i)
      if (*p == set[i]) return p;
  return end;
}

// A search that verifies too many false anchors falls back to memmem: the
// limit grows with the bytes searched so that normal text never reaches it.
constexpr qsizetype kFallbackSlack = 64;

}  // namespace

void TextSearch::SetTextCompare(bool caseSensitive) {
  caseSensitive_ = caseSensitive;
  compile();
}

void TextSearch::SetText(const QByteArray& bytes) {
  text_ = bytes;
  compile();
}

void TextSearch::compile() {
  units_.clear();
  lowered_.clear();
  anchorCount_ = 0;
  anchorOffset_ = 0;
  maxLength_ = text_.size();
  exact_ = true;
  asciiOnly_ = true;
  if (text_.isEmpty()) return;

  const auto* p = reinterpret_cast<const unsigned char*>(text_.constData());
  const auto* end = p + text_.size();
  if (!caseSensitive_) {
    while (p < end) {
      Unit u;
      char32_t cp = 0;
      const int len = DecodeUtf8(p, end, &cp);
      if (len == 0 || cp < 0x80) {
        // A raw byte, or ASCII: folds among ASCII only.
        const unsigned char b = *p;
        u.count = 1;
        u.length[0] = 1;
        u.bytes[0][0] = b;
        const unsigned char other = (b >= 'a' && b <= 'z') ? b - 32 : (b >= 'A' && b <= 'Z') ? b + 32 : b;
        if (other != b) {
          u.count = 2;
          u.length[1] = 1;
          u.bytes[1][0] = other;
        }
        p += 1;
      } else {
        for (char32_t v : CaseVariants(cp)) {
          if (u.count == kMaxVariants) break;
          u.length[size_t(u.count)] = (unsigned char)EncodeUtf8(v, u.bytes[size_t(u.count)].data());
          ++u.count;
        }
        p += len;
      }
      units_.push_back(u);
    }
    qsizetype total = 0;
    for (const Unit& u : units_) {
      unsigned char longest = 0;
      for (int i = 0; i < u.count; ++i) {
        longest = std::max(longest, u.length[size_t(i)]);
        if (u.length[size_t(i)] != 1) asciiOnly_ = false;
      }
      if (u.count > 1) exact_ = false;
      total += longest;
    }
    maxLength_ = total;
    if (asciiOnly_) {
      lowered_ = text_;
      for (char& c : lowered_) c = char(AsciiLower((unsigned char)c));
    }
  }

  if (exact_) {
    // Anchor on the rarest byte.
    qsizetype best = 0;
    for (qsizetype i = 1; i < text_.size(); ++i)
      if (ByteFrequency((unsigned char)text_[i]) < ByteFrequency((unsigned char)text_[best])) best = i;
    anchorOffset_ = best;
    anchorCount_ = 1;
    anchorBytes_[0] = (unsigned char)text_[best];
    units_.clear();
    return;
  }

  // Anchor on the unit whose lead bytes are rarest among those at a fixed
  // offset from the match start (every unit before it has one width).
  int bestScore = 1 << 30;
  qsizetype offset = 0;
  for (const Unit& u : units_) {
    std::array<unsigned char, kMaxVariants> leads{};
    int nLeads = 0;
    int score = 0;
    for (int i = 0; i < u.count; ++i) {
      const unsigned char lead = u.bytes[size_t(i)][0];
      if (std::find(leads.begin(), leads.begin() + nLeads, lead) == leads.begin() + nLeads) {
        leads[size_t(nLeads++)] = lead;
        score += ByteFrequency(lead);
      }
    }
    if (nLeads <= 4 && score < bestScore) {
      bestScore = score;
      anchorOffset_ = offset;
      anchorCount_ = nLeads;
      std::copy(leads.begin(), leads.begin() + nLeads, anchorBytes_.begin());
    }
    bool fixed = true;
    for (int i = 1; i < u.count; ++i) fixed = fixed && u.length[size_t(i)] == u.length[0];
    if (!fixed) break;
    offset += u.length[0];
  }
}

bool TextSearch::matchUnitsAt(const unsigned char* s, const unsigned char* end) const {
  // Variants of one unit are whole UTF-8 sequences of distinct code points,
  // so at most one of them can match here: no backtracking is needed.
  for (const Unit& u : units_) {
    bool ok = false;
    for (int i = 0; i < u.count; ++i) {
      const size_t len = u.length[size_t(i)];
      if (size_t(end - s) >= len && std::memcmp(s, u.bytes[size_t(i)].data(), len) == 0) {
        s += len;
        ok = true;
        break;
      }
    }
    if (!ok) return false;
  }
  return true;
}

bool TextSearch::foundIn(const char* data, qsizetype size) const {
  if (text_.isEmpty()) return size > 0;  // an empty text is found in any non-empty text
  const auto* d = reinterpret_cast<const unsigned char*>(data);
  if (exact_) return foundExact(d, size);
  if (asciiOnly_) return foundAsciiFolded(d, size);
  return foundFolded(d, size);
}

bool TextSearch::foundExact(const unsigned char* data, qsizetype size) const {
  const qsizetype m = text_.size();
  if (size < m) return false;
  const auto* needle = reinterpret_cast<const unsigned char*>(text_.constData());
  const unsigned char* end = data + size;
  const unsigned char* const stop = end - m + anchorOffset_ + 1;
  const unsigned char* p = data + anchorOffset_;
  qsizetype misses = 0;
  while (p < stop) {
    p = FindAnyOf(p, stop, anchorBytes_.data(), 1);
    if (p >= stop) return false;
    const unsigned char* start = p - anchorOffset_;
    if (std::memcmp(start, needle, size_t(m)) == 0) return true;
    if (++misses > kFallbackSlack + (p - data) / 16)
      return memmem(start, size_t(end - start), needle, size_t(m)) != nullptr;
    ++p;
  }
  return false;
}

bool TextSearch::foundAsciiFolded(const unsigned char* data, qsizetype size) const {
  const qsizetype m = text_.size();
  if (size < m) return false;
  const auto* needle = reinterpret_cast<const unsigned char*>(lowered_.constData());
  const unsigned char* last = data + size - m;
  const unsigned char* p = data + anchorOffset_;
  const unsigned char* const stop = last + anchorOffset_ + 1;
  qsizetype misses = 0;
  while (p < stop) {
    p = FindAnyOf(p, stop, anchorBytes_.data(), anchorCount_);
    if (p >= stop) return false;
    const unsigned char* start = p - anchorOffset_;
    qsizetype i = 0;
    while (i < m && AsciiLower(start[i]) == needle[i]) ++i;
    if (i == m) return true;
    if (++misses > kFallbackSlack + (p - data) / 16) {
      // Degenerate input: lower the rest once and search it plainly.
      QByteArray lowered(reinterpret_cast<const char*>(start), qsizetype(data + size - start));
      for (char& c : lowered) c = char(AsciiLower((unsigned char)c));
      return memmem(lowered.constData(), size_t(lowered.size()), needle, size_t(m)) != nullptr;
    }
    ++p;
  }
  return false;
}

bool TextSearch::foundFolded(const unsigned char* data, qsizetype size) const {
  const unsigned char* end = data + size;
  if (anchorCount_ == 0) {  // no usable anchor: try every position
    for (const unsigned char* s = data; s < end; ++s)
      if (matchUnitsAt(s, end)) return true;
    return false;
  }
  const unsigned char* p = data + anchorOffset_;
  while (p < end) {
    p = FindAnyOf(p, end, anchorBytes_.data(), anchorCount_);
    if (p >= end) return false;
    if (matchUnitsAt(p - anchorOffset_, end)) return true;
    ++p;
  }
  return false;
}

}  // namespace find
