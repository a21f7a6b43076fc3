#pragma once
#include <QtGlobal>
#include <functional>
#include <memory>
#include <utility>
#include <vector>

// The inner loops of the viewer's whole-file reads: 64 bytes at a time as
// bit masks, read in cache-sized steps, pieces of the file on two threads.
// Each piece is scanned on its own; the caller joins the pieces in order.
namespace preview {

// What a piece of a file holds of text runs.
struct RunPiece {
  qint64 got = 0;     // bytes read; fewer than asked when the file shrank
  qint64 prefix = 0;  // text bytes at the piece's start
  qint64 open = -1;   // file offset of the run still open at its end, -1 none
  // Runs of five or more text bytes that end inside the piece (file offset,
  // length); one starting at the piece's first byte is included.
  std::vector<std::pair<qint64, qint64>> runs;
};

// Scans the `n` bytes of open file `fd` from offset `from`.
void ScanRunPiece(int fd, qint64 from, qint64 n, bool international, RunPiece* out);

// What a piece of a file holds of line ends.
struct LinePiece {
  qint64 got = 0;  // bytes read; fewer than asked when the file shrank
  // Where a line starts after each line end, from the piece's start; room
  // for one a byte, kept from piece to piece.
  std::unique_ptr<quint32[]> starts;
  qint64 capacity = 0, count = 0;
  qint64 widest = 0;  // the longest line between two of those starts
};

// Finds the line ends in the `n` bytes of `fd` from `from`: every `needle`
// byte, or with `crlf` only an LF right after a CR. `separator` is the line
// end's length, left out of the widths.
void ScanLinePiece(int fd, qint64 from, qint64 n, char needle, bool crlf, int separator, LinePiece* out);

// Reads up to `size` bytes at `offset`, short only at the end of the file.
qint64 ReadFully(int fd, char* buffer, qint64 size, qint64 offset);

// Scans pieces 0..count-1 here and on a helper thread, each into slot
// piece % slots, and hands them to join(piece, slot) here in file order;
// the helper stays at most `slots` pieces ahead. `proceed` is asked here
// before each step; false stops it all, and so does join returning false.
// Returns false when `proceed` stopped it.
bool ScanInOrder(qint64 count, int slots, const std::function<void(qint64 piece, int slot)>& scan,
                 const std::function<bool(qint64 piece, int slot)>& join, const std::function<bool()>& proceed);

}  // namespace preview
