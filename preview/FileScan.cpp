#include "preview/FileScan.h"

#include <algorithm>
#include <cerrno>
#include <memory>
#include <system_error>
#include <thread>
#include <unistd.h>

#if defined(__SSE2__)
#include <emmintrin.h>
#endif

namespace preview {

namespace {

// Read step: small enough that the bytes are still in cache when scanned.
constexpr qint64 kStep = 256 * 1024;

template <bool Intl>
inline bool IsText(unsigned char b) {
  if (b >= 32 && b <= 126) return b != 94 && b != 96;
  return Intl && b >= 191 && b <= 253;
}

// Bit i set when p[i] is a text byte.
template <bool Intl>
inline quint64 TextMask(const unsigned char* p) {
#if defined(__SSE2__)
  const __m128i k32 = _mm_set1_epi8(32), k94 = _mm_set1_epi8(94), k96 = _mm_set1_epi8(96);
  quint64 m = 0;
  for (int i = 0; i < 4; ++i) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i));
    const __m128i t = _mm_sub_epi8(x, k32);
    __m128i ok = _mm_cmpeq_epi8(_mm_min_epu8(t, k94), t);  // 32..126
    ok = _mm_andnot_si128(_mm_or_si128(_mm_cmpeq_epi8(x, k94), _mm_cmpeq_epi8(x, k96)), ok);
    if constexpr (Intl) {
      const __m128i u = _mm_sub_epi8(x, _mm_set1_epi8(char(191)));
      ok = _mm_or_si128(ok, _mm_cmpeq_epi8(_mm_min_epu8(u, _mm_set1_epi8(62)), u));  // 191..253
    }
    m |= quint64(quint32(_mm_movemask_epi8(ok)) & 0xFFFFu) << (16 * i);
  }
  return m;
#else
  quint64 m = 0;
  for (int i = 0; i < 64; ++i) m |= quint64(IsText<Intl>(p[i])) << i;
  return m;
#endif
}

// Bit i set when p[i] == c.
inline quint64 ByteMask(const unsigned char* p, char c) {
#if defined(__SSE2__)
  const __m128i k = _mm_set1_epi8(c);
  quint64 m = 0;
  for (int i = 0; i < 4; ++i) {
    const __m128i x = _mm_loadu_si128(reinterpret_cast<const __m128i*>(p + 16 * i));
    m |= quint64(quint32(_mm_movemask_epi8(_mm_cmpeq_epi8(x, k))) & 0xFFFFu) << (16 * i);
  }
  return m;
#else
  quint64 m = 0;
  for (int i = 0; i < 64; ++i) m |= quint64(p[i] == static_cast<unsigned char>(c)) << i;
  return m;
#endif
}

inline int Low(quint64 m) { return __builtin_ctzll(m); }
inline int High(quint64 m) { return 63 - __builtin_clzll(m); }

template <bool Intl>
void ScanRuns(int fd, qint64 from, qint64 n, RunPiece* out) {
  out->runs.clear();
  const std::unique_ptr<unsigned char[]> buffer(new unsigned char[kStep]);
  const auto record = [out](qint64 start, qint64 length) {
    if (length >= 5) out->runs.emplace_back(start, length);
  };
  qint64 start = -1;  // the open run's first byte
  quint64 top = 0;    // the last byte seen was text
  qint64 prefix = 0;
  bool inPrefix = true;
  qint64 done = 0;
  while (done < n) {
    const qint64 want = std::min(kStep, n - done);
    const qint64 got = ReadFully(fd, reinterpret_cast<char*>(buffer.get()), want, from + done);
    const unsigned char* p = buffer.get();
    const qint64 words = got / 64;
    quint64 m = words ? TextMask<Intl>(p) : 0;
    for (qint64 w = 0; w < words; ++w) {
      // Past the buffer counts as text: a run found long here is measured
      // by its real end all the same.
      const quint64 next = w + 1 < words ? TextMask<Intl>(p + 64 * (w + 1)) : ~quint64(0);
      if (inPrefix) {
        if (~m == 0) {
          prefix += 64;
        } else {
          prefix += Low(~m);
          inPrefix = false;
        }
      }
      const quint64 shifted = (m << 1) | top;
      const quint64 ends = ~m & shifted, starts = m & ~shifted;
      if (ends | starts) {
        const qint64 at = from + done + 64 * w;
        if (start >= 0 && ends) record(start, at + Low(ends) - start);
        // Starts of five text bytes or more in a row; the rest are too short.
        quint64 longStarts = starts & ((m >> 1) | (next << 63)) & ((m >> 2) | (next << 62)) &
                             ((m >> 3) | (next << 61)) & ((m >> 4) | (next << 60));
        while (longStarts) {
          const int s = Low(longStarts);
          longStarts &= longStarts - 1;
          const quint64 after = ends & (~quint64(0) << s);
          if (!after) break;  // goes on into the next word
          record(at + s, Low(after) - s);
        }
        start = (m >> 63) ? (starts ? at + High(starts) : start) : -1;
      }
      top = m >> 63;
      m = next;
    }
    for (qint64 i = words * 64; i < got; ++i) {
      const bool text = IsText<Intl>(p[i]);
      if (inPrefix) {
        if (text) ++prefix;
        else inPrefix = false;
      }
      if (text) {
        if (start < 0) start = from + done + i;
      } else if (start >= 0) {
        record(start, from + done + i - start);
        start = -1;
      }
      top = text;
    }
    done += got;
    if (got < want) break;  // the file shrank
  }
  out->got = done;
  out->prefix = prefix;
  out->open = start;
}

}  // namespace

qint64 ReadFully(int fd, char* buffer, qint64 size, qint64 offset) {
  qint64 done = 0;
  while (done < size) {
    const ssize_t r = pread(fd, buffer + done, size_t(size - done), off_t(offset + done));
    if (r < 0 && errno == EINTR) continue;
    if (r <= 0) break;
    done += r;
  }
  return done;
}

void ScanRunPiece(int fd, qint64 from, qint64 n, bool international, RunPiece* out) {
  if (international) ScanRuns<true>(fd, from, n, out);
  else ScanRuns<false>(fd, from, n, out);
}

void ScanLinePiece(int fd, qint64 from, qint64 n, char needle, bool crlf, int separator, LinePiece* out) {
  out->starts.clear();
  out->widest = 0;
  const std::unique_ptr<unsigned char[]> buffer(new unsigned char[kStep]);
  char before = 0;
  if (crlf && from > 0) ReadFully(fd, &before, 1, from - 1);
  qint64 last = -1;
  const auto add = [&](qint64 at) {
    if (last >= 0) out->widest = std::max(out->widest, at - separator - last);
    out->starts.push_back(quint32(at));
    last = at;
  };
  quint64 crTop = before == '\r';
  qint64 done = 0;
  while (done < n) {
    const qint64 want = std::min(kStep, n - done);
    const qint64 got = ReadFully(fd, reinterpret_cast<char*>(buffer.get()), want, from + done);
    const unsigned char* p = buffer.get();
    const qint64 words = got / 64;
    for (qint64 w = 0; w < words; ++w) {
      const unsigned char* q = p + 64 * w;
      quint64 m = ByteMask(q, needle);
      if (crlf) {
        if (m) {
          const quint64 cr = ByteMask(q, '\r');
          m &= (cr << 1) | crTop;
          crTop = cr >> 63;
        } else {
          crTop = q[63] == '\r';
        }
      }
      for (; m; m &= m - 1) add(done + 64 * w + Low(m) + 1);
    }
    for (qint64 i = words * 64; i < got; ++i) {
      const unsigned char previous = i ? p[i - 1] : static_cast<unsigned char>(before);
      if (p[i] == static_cast<unsigned char>(needle) && (!crlf || previous == '\r')) add(done + i + 1);
    }
    if (got > 0) before = char(p[got - 1]);
    crTop = before == '\r';
    done += got;
    if (got < want) break;  // the file shrank
  }
  out->got = done;
}

void RunPair(const std::function<void(int)>& job) {
  std::thread second;
  try {
    second = std::thread([&job] { job(1); });
  } catch (const std::system_error&) {
    job(0);
    job(1);
    return;
  }
  job(0);
  second.join();
}

}  // namespace preview
