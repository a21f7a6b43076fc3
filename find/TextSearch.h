#pragma once
#include <QByteArray>
#include <array>
#include <vector>

namespace find {

// The contained text compiled for searching raw file bytes.
//
// Binary compare (case-sensitive): the bytes must occur as they are.
// Text compare (case-insensitive): the text is read as UTF-8 and every letter
// may appear in any of its simple case variants, each in its own UTF-8 form,
// so "müller" finds "MÜLLER" and "straße" finds "STRAẞE" (the variants of a
// letter are all code points with the same simple case folding); ASCII letters
// in the text fold to ASCII only. Bytes that are not valid UTF-8 (a hex string, say) match
// themselves, ASCII letters among them in either case. A variant can be longer
// in UTF-8 than its letter, so a match may span more bytes than the text
// holds: maxMatchLength() says how many, and block overlaps use it.
//
// Speed: the search looks for the needle's rarest byte (one byte, or the few
// lead bytes of one letter's variants) with memchr or a 16-byte SIMD compare,
// then verifies the whole needle there; degenerate inputs that would make this
// quadratic fall back to memmem.
class TextSearch {
 public:
  void SetTextCompare(bool caseSensitive);
  void SetText(const QByteArray& bytes);

  const QByteArray& text() const { return text_; }
  bool caseSensitive() const { return caseSensitive_; }
  qsizetype maxMatchLength() const { return maxLength_; }

  // Whether the text occurs within [data, data + size).
  bool foundIn(const char* data, qsizetype size) const;

 private:
  static constexpr int kMaxVariants = 6;
  struct Unit {
    int count = 0;
    std::array<unsigned char, kMaxVariants> length{};
    std::array<std::array<unsigned char, 4>, kMaxVariants> bytes{};
  };

  void compile();
  bool matchUnitsAt(const unsigned char* s, const unsigned char* end) const;
  bool foundFolded(const unsigned char* data, qsizetype size) const;
  bool foundExact(const unsigned char* data, qsizetype size) const;
  bool foundAsciiFolded(const unsigned char* data, qsizetype size) const;

  QByteArray text_;
  bool caseSensitive_ = true;

  // compiled
  bool exact_ = true;       // no letter to fold: plain byte search
  bool asciiOnly_ = true;   // every unit is one byte wide
  QByteArray lowered_;      // ASCII-lowered text (asciiOnly_ folding)
  std::vector<Unit> units_;
  qsizetype maxLength_ = 0;
  qsizetype anchorOffset_ = 0;  // byte offset of the anchor unit from the match start
  int anchorCount_ = 0;
  std::array<unsigned char, 4> anchorBytes_{};
};

}  // namespace find
