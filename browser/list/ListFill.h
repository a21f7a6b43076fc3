#pragma once
#include <QString>
#include <atomic>
#include <functional>

namespace browser {

class ListModel;

// What a long fill gets from its owner: the process-wide abort flag (cleared
// at the start of a fill, polled after each entry) and a hook that lets
// pending input run.
struct FillContext {
  std::atomic<bool>* abort = nullptr;
  std::function<void()> yield;
};

// How a fill ended.
enum class FillResult { kDone, kAborted, kUnreadable };

// The fill dispatcher of the list: Browse lists a folder, Drives the mounted
// volumes. (Find rows come from the find engine through a RowBuilder.) Rows
// are added to the model as they come; sorting is the caller's next step.
class ListFill {
 public:
  // Enumerates folder + "*.*", skipping the names that occur inside "..".
  static FillResult Browse(ListModel* model, const QString& folder, const FillContext& context);
  // One row per mounted volume, texts at data indices 0, 3, 9, 10, 11, 12, 13.
  static FillResult Drives(ListModel* model, const FillContext& context);
};

}  // namespace browser
