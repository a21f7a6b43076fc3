#pragma once
#include <QDialog>
#include <vector>

#include "fileops/RenameSpecial.h"

class QLabel;
class QPlainTextEdit;

namespace fileops {

// The question before a batch rename: every entry that will change as
// "old => new", with their count, and the entries already refused. Nothing
// is renamed unless it is accepted.
class RenameConfirmDialog : public QDialog {
  Q_OBJECT
 public:
  RenameConfirmDialog(const QString& caption, const std::vector<RenameItem>& items, QWidget* parent);

  // The listed lines (for tests).
  QString listText() const;
  // Shows the dialog; true when the user chose to rename.
  static bool Confirm(const QString& caption, const std::vector<RenameItem>& items, QWidget* parent);

 private:
  QLabel* lblRenameCount_;
  QPlainTextEdit* txtRenameList_;
};

}  // namespace fileops
