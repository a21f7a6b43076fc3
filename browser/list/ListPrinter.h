#pragma once
#include <QTextStream>

namespace browser {

class ListModel;

// Prints a list as it shows: the visible columns in display order,
// tab-separated, a header line first unless asked not to. Output goes out in
// large chunks.
class ListPrinter {
 public:
  static void Print(const ListModel& model, QTextStream& out, bool header);
};

}  // namespace browser
