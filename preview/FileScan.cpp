#include "preview/FileScan.h"

#include <algorithm>
#include <cerrno>
#include <condition_variable>
#include <memory>
#include <mutex>
#include <system_error>
#include <thread>
#include <unistd.h>

#if defined(__x86_64__)
#include <immintrin.h>
#elif defined(__SSE2__)
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

// Bit masks of 64 bytes with the instructions every build has.
struct BaseMasks {
  static constexpr bool kCounts = false;  // popcount may be a library call
  // Bit i set when p[i] is a text byte.
  template <bool Intl>
  static quint64 Text(const unsigned char* p) {
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
  static quint64 Byte(const unsigned char* p, char c) {
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
};

#if defined(__x86_64__)
// The same 32 bytes at a time, for processors that have AVX2. The scan
// templates below are inlined into AVX2 functions to use these.
struct Avx2Masks {
  static constexpr bool kCounts = true;
  __attribute__((target("avx2,popcnt,bmi"))) static inline quint64 Join(__m256i low, __m256i high) {
    return quint64(quint32(_mm256_movemask_epi8(low))) | quint64(quint32(_mm256_movemask_epi8(high))) << 32;
  }

  template <bool Intl>
  __attribute__((target("avx2,popcnt,bmi"))) static inline __m256i Text32(__m256i x) {
    const __m256i k94 = _mm256_set1_epi8(94);
    const __m256i t = _mm256_sub_epi8(x, _mm256_set1_epi8(32));
    __m256i ok = _mm256_cmpeq_epi8(_mm256_min_epu8(t, k94), t);
    ok = _mm256_andnot_si256(_mm256_or_si256(_mm256_cmpeq_epi8(x, k94), _mm256_cmpeq_epi8(x, _mm256_set1_epi8(96))), ok);
    if constexpr (Intl) {
      const __m256i u = _mm256_sub_epi8(x, _mm256_set1_epi8(char(191)));
      ok = _mm256_or_si256(ok, _mm256_cmpeq_epi8(_mm256_min_epu8(u, _mm256_set1_epi8(62)), u));
    }
    return ok;
  }

  template <bool Intl>
  __attribute__((target("avx2,popcnt,bmi"))) static inline quint64 Text(const unsigned char* p) {
    return Join(Text32<Intl>(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p))),
                Text32<Intl>(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32))));
  }

  __attribute__((target("avx2,popcnt,bmi"))) static inline quint64 Byte(const unsigned char* p, char c) {
    const __m256i k = _mm256_set1_epi8(c);
    return Join(_mm256_cmpeq_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p)), k),
                _mm256_cmpeq_epi8(_mm256_loadu_si256(reinterpret_cast<const __m256i*>(p + 32)), k));
  }
};

const bool kHasAvx2 = __builtin_cpu_supports("avx2") && __builtin_cpu_supports("popcnt") && __builtin_cpu_supports("bmi");
#endif

inline int Low(quint64 m) { return __builtin_ctzll(m); }
inline int High(quint64 m) { return 63 - __builtin_clzll(m); }

// Where a run scan stands between the steps of one piece.
struct RunState {
  qint64 start = -1;  // the open run's first byte
  quint64 top = 0;    // the last byte seen was text
  qint64 prefix = 0;
  bool inPrefix = true;
};

// Scans `got` bytes found at file offset `at`.
template <bool Intl, class Masks>
__attribute__((always_inline)) inline void RunStep(const unsigned char* p, qint64 got, qint64 at, RunState* state, RunPiece* out) {
  const auto record = [out](qint64 start, qint64 length) {
    if (length >= 5) out->runs.emplace_back(start, length);
  };
  qint64 start = state->start, prefix = state->prefix;
  quint64 top = state->top;
  bool inPrefix = state->inPrefix;
  const qint64 words = got / 64;
  quint64 m = words ? Masks::template Text<Intl>(p) : 0;
  for (qint64 w = 0; w < words; ++w) {
    // Past the bytes counts as text: a run found long here is measured by
    // its real end all the same.
    const quint64 next = w + 1 < words ? Masks::template Text<Intl>(p + 64 * (w + 1)) : ~quint64(0);
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
      const qint64 base = at + 64 * w;
      if (start >= 0 && ends) record(start, base + Low(ends) - start);
      // Starts of five text bytes or more in a row; the rest are too short.
      quint64 longStarts = starts & ((m >> 1) | (next << 63)) & ((m >> 2) | (next << 62)) & ((m >> 3) | (next << 61)) &
                           ((m >> 4) | (next << 60));
      while (longStarts) {
        const int s = Low(longStarts);
        longStarts &= longStarts - 1;
        const quint64 after = ends & (~quint64(0) << s);
        if (!after) break;  // goes on into the next word
        record(base + s, Low(after) - s);
      }
      start = (m >> 63) ? (starts ? base + High(starts) : start) : -1;
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
      if (start < 0) start = at + i;
    } else if (start >= 0) {
      record(start, at + i - start);
      start = -1;
    }
    top = text;
  }
  *state = {start, top, prefix, inPrefix};
}

template <bool Intl>
void RunStepBase(const unsigned char* p, qint64 got, qint64 at, RunState* state, RunPiece* out) {
  RunStep<Intl, BaseMasks>(p, got, at, state, out);
}

#if defined(__x86_64__)
template <bool Intl>
__attribute__((target("avx2,popcnt,bmi"))) void RunStepAvx2(const unsigned char* p, qint64 got, qint64 at, RunState* state, RunPiece* out) {
  RunStep<Intl, Avx2Masks>(p, got, at, state, out);
}
#endif

template <bool Intl>
void ScanRuns(int fd, qint64 from, qint64 n, RunPiece* out) {
  RunState state;
  const auto finish = [&](qint64 got) {
    out->got = got;
    out->prefix = state.prefix;
    out->open = state.start;
  };
  out->runs.clear();
  const std::unique_ptr<unsigned char[]> buffer(new unsigned char[kStep]);
  qint64 done = 0;
  while (done < n) {
    const qint64 want = std::min(kStep, n - done);
    const qint64 got = ReadFully(fd, reinterpret_cast<char*>(buffer.get()), want, from + done);
#if defined(__x86_64__)
    if (kHasAvx2) RunStepAvx2<Intl>(buffer.get(), got, from + done, &state, out);
    else
#endif
      RunStepBase<Intl>(buffer.get(), got, from + done, &state, out);
    done += got;
    if (got < want) break;  // the file shrank
  }
  finish(done);
}

// Line starts after the line ends in `got` bytes found `at` bytes into the
// piece; `before` is the byte ahead of them, then their last.
template <class Masks>
__attribute__((always_inline)) inline qint64 LineStep(const unsigned char* p, qint64 got, qint64 at, char needle, bool crlf,
                                                      char* before, quint32* starts) {
  qint64 count = 0;
  const qint64 words = got / 64;
  quint64 crTop = *before == '\r';
  for (qint64 w = 0; w < words; ++w) {
    const unsigned char* q = p + 64 * w;
    quint64 m = Masks::Byte(q, needle);
    if (crlf) {
      if (m) {
        const quint64 cr = Masks::Byte(q, '\r');
        m &= (cr << 1) | crTop;
        crTop = cr >> 63;
      } else {
        crTop = q[63] == '\r';
      }
    }
    const quint32 base = quint32(at + 64 * w + 1);
    if constexpr (Masks::kCounts) {
      // Four written whether there are or not (the buffer has room): no
      // branch to mispredict for the usual one or two line ends a word.
      const int found = __builtin_popcountll(m);
      quint32* out = starts + count;
      for (int k = 0; k < 4; ++k, m &= m - 1) out[k] = base + quint32(Low(m | (quint64(1) << 63)));
      for (int k = 4; m; ++k, m &= m - 1) out[k] = base + quint32(Low(m));
      count += found;
    } else {
      for (; m; m &= m - 1) starts[count++] = base + quint32(Low(m));
    }
  }
  for (qint64 i = words * 64; i < got; ++i) {
    const unsigned char previous = i ? p[i - 1] : static_cast<unsigned char>(*before);
    if (p[i] == static_cast<unsigned char>(needle) && (!crlf || previous == '\r')) starts[count++] = quint32(at + i + 1);
  }
  if (got > 0) *before = char(p[got - 1]);
  return count;
}

qint64 LineStepBase(const unsigned char* p, qint64 got, qint64 at, char needle, bool crlf, char* before, quint32* starts) {
  return LineStep<BaseMasks>(p, got, at, needle, crlf, before, starts);
}

#if defined(__x86_64__)
__attribute__((target("avx2,popcnt,bmi"))) qint64 LineStepAvx2(const unsigned char* p, qint64 got, qint64 at, char needle, bool crlf,
                                                    char* before, quint32* starts) {
  return LineStep<Avx2Masks>(p, got, at, needle, crlf, before, starts);
}
#endif

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
  if (out->capacity < n) {
    out->starts.reset(new quint32[size_t(n) + 64]);  // room to write past the last
    out->capacity = n;
  }
  quint32* starts = out->starts.get();
  qint64 count = 0, done = 0;
  char before = 0;
  if (crlf && from > 0) ReadFully(fd, &before, 1, from - 1);
  const std::unique_ptr<unsigned char[]> buffer(new unsigned char[kStep]);
  while (done < n) {
    const qint64 want = std::min(kStep, n - done);
    const qint64 got = ReadFully(fd, reinterpret_cast<char*>(buffer.get()), want, from + done);
#if defined(__x86_64__)
    if (kHasAvx2) count += LineStepAvx2(buffer.get(), got, done, needle, crlf, &before, starts + count);
    else
#endif
      count += LineStepBase(buffer.get(), got, done, needle, crlf, &before, starts + count);
    done += got;
    if (got < want) break;  // the file shrank
  }
  qint64 widest = 0;
  for (qint64 k = 1; k < count; ++k) widest = std::max<qint64>(widest, qint64(starts[k] - starts[k - 1]));
  out->widest = count > 1 ? widest - separator : 0;
  out->count = count;
  out->got = done;
}

bool ScanInOrder(qint64 count, int slots, const std::function<void(qint64, int)>& scan,
                 const std::function<bool(qint64, int)>& join, const std::function<bool()>& proceed) {
  std::mutex mutex;
  std::condition_variable changed;
  qint64 next = 0, joined = 0;  // the next piece to scan, to join
  bool stop = false;
  std::vector<char> done(size_t(slots), 0);
  const auto canClaim = [&] { return !stop && next < count && next < joined + slots; };
  // Scans a claimed piece unlocked, then marks its slot done.
  const auto run = [&](std::unique_lock<std::mutex>& lock) {
    const qint64 k = next++;
    lock.unlock();
    scan(k, int(k % slots));
    lock.lock();
    done[size_t(k % slots)] = 1;
    changed.notify_all();
  };
  std::thread helper;
  if (count > 1) {
    try {
      helper = std::thread([&] {
        std::unique_lock<std::mutex> lock(mutex);
        while (!stop && next < count) {
          if (canClaim()) run(lock);
          else changed.wait(lock);
        }
      });
    } catch (const std::system_error&) {
      // No second thread: this one does it all.
    }
  }
  bool finished = true;
  std::unique_lock<std::mutex> lock(mutex);
  while (joined < count) {
    lock.unlock();
    const bool go = proceed();
    lock.lock();
    if (!go) {
      finished = false;
      break;
    }
    const size_t slot = size_t(joined % slots);
    if (done[slot]) {
      lock.unlock();
      const bool more = join(joined, int(slot));
      lock.lock();
      done[slot] = 0;
      ++joined;
      changed.notify_all();
      if (!more) break;
    } else if (canClaim()) {
      run(lock);
    } else {
      changed.wait(lock, [&] { return done[slot] != 0; });
    }
  }
  stop = true;
  changed.notify_all();
  lock.unlock();
  if (helper.joinable()) helper.join();
  return finished;
}

}  // namespace preview
