#pragma once
#include <QString>
#include <QStringList>
#include <atomic>
#include <functional>
#include <vector>

namespace fileops {

class RenameLog;

// The seven batch transformations of "R&ename Special", in menu order.
enum class RenameHow { kProper = 0, kLower, kUpper, kHtm, kUnderscore, kUmlauts, kDos };

// One entry of a batch: where it is, its name and the name it gets.
struct RenameItem {
  QString folder;  // without a trailing separator ("" for the root)
  QString oldName;
  QString newName;
  QString refusal;  // why it was not renamed; empty while it may be
  bool done = false;

  QString oldPath() const { return folder + u'/' + oldName; }
  QString newPath() const { return folder + u'/' + newName; }
};

struct RenameResult {
  qsizetype renamed = 0;
  qsizetype refused = 0;
  bool stopped = false;
  QString logError;  // set when the undo log could not be written
};

// Computes the new names of a batch and renames, never onto an existing
// entry: a taken name, a vanished entry, a name the file system refuses are
// reported with their reason, and the entries renamed before stay renamed.
class RenameSpecial {
 public:
  // Command-line keywords, in menu order.
  static constexpr const char* kKeywords = "proper,lower,upper,htm,underscore,umlauts,dos";
  static bool FromKeyword(const QString& keyword, RenameHow* how);

  // The name `how` makes of `name`; empty when it makes none (no rename).
  // `alias` is the entry's 8.3 short name where the file system keeps one.
  // Bytes of a name that are not valid UTF-8 are kept as they are.
  static QString NewName(RenameHow how, const QString& name, const QString& alias = QString());

  // The working set for `paths` (in that order): entries whose name does not
  // change are left out; of two that would get the same name the first wins
  // and the second is refused.
  static std::vector<RenameItem> Plan(RenameHow how, const QStringList& paths);
  // The batch that puts back what `done` renamed, last rename first.
  static std::vector<RenameItem> Reverse(const std::vector<RenameItem>& done);

  // Renames every item not yet refused; done items are appended to `log`
  // when one is given. Polls `abort` between entries.
  static RenameResult Run(std::vector<RenameItem>* items, RenameLog* log, const std::function<void()>& yield,
                          const std::atomic<bool>* abort);
  // What Run would refuse, found without renaming (for a dry run): sets the
  // refusal of each item whose rename is bound to fail.
  static qsizetype Check(std::vector<RenameItem>* items);

  // One entry: `oldName` in `folder` becomes `newName`, never replacing an
  // existing entry, a link renamed itself. Empty on success, else the reason
  // as a sentence ("\"b.txt\" already exists.").
  static QString RenameEntry(const QString& folder, const QString& oldName, const QString& newName);
  // Why a name cannot be given at all, or empty when it can.
  static QString CheckName(const QString& oldName, const QString& newName);
  // The sentence for an errno value of a failed rename to `newName`.
  static QString ReasonText(int error, const QString& newName);
};

}  // namespace fileops
