#include "find/FindFilesTab.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDateTime>
#include <QFontDatabase>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QListWidget>
#include <QMenu>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QToolButton>
#include <QVBoxLayout>

#include "core/AttributeText.h"
#include "core/JobFlags.h"
#include "find/DateBox.h"
#include "find/DateQuickFilter.h"
#include "find/DescribeCriteria.h"
#include "find/FindCriteria.h"
#include "platform/FileTime.h"

namespace find {

namespace {

template <typename T>
T* Named(T* widget, const QString& name) {
  widget->setObjectName(name);
  return widget;
}

QString Indexed(const char* base, int i) { return QString::fromLatin1(base) + QString::number(i); }

QLabel* Hint(const char* text) {
  auto* label = new QLabel(QString::fromUtf8(text));
  label->setWordWrap(true);
  QFont f = label->font();
  f.setItalic(true);
  label->setFont(f);
  return label;
}

QLabel* Buddy(const char* caption, QWidget* buddy) {
  auto* label = new QLabel(QString::fromUtf8(caption));
  label->setBuddy(buddy);
  return label;
}

}  // namespace

FindFilesTab::FindFilesTab(QWidget* parent) : QWidget(parent) {
  setObjectName(QStringLiteral("FindFilesTab"));
  auto* columns = new QHBoxLayout(this);
  columns->setContentsMargins(4, 4, 4, 4);

  auto* left = new QVBoxLayout;
  left->addWidget(buildNameGroup());
  left->addWidget(buildTextGroup());
  left->addStretch();
  auto* middle = new QVBoxLayout;
  middle->addWidget(buildDateGroup());
  middle->addWidget(buildSizeGroup());
  middle->addStretch();
  auto* right = new QVBoxLayout;
  right->addWidget(buildAttributeGroup());
  right->addStretch();
  auto* far = new QVBoxLayout;
  far->addWidget(buildExcludeGroup());
  far->addWidget(buildCommands());
  far->addStretch();
  columns->addLayout(left, 3);
  columns->addLayout(middle, 3);
  columns->addLayout(right, 2);
  columns->addLayout(far, 2);

  setValues(core::FindTabValues());
}

QGroupBox* FindFilesTab::buildNameGroup() {
  auto* box = Named(new QGroupBox(QStringLiteral("Name && Location")), QStringLiteral("fraNameLocation"));
  auto* grid = new QGridLayout(box);
  cboNamed = Named(new QComboBox, QStringLiteral("cboNamed"));
  cboNamed->setEditable(true);
  cboNamed->setInsertPolicy(QComboBox::NoInsert);
  cboLookIn = Named(new QComboBox, QStringLiteral("cboLookIn"));
  cboLookIn->setEditable(true);
  cboLookIn->setInsertPolicy(QComboBox::NoInsert);
  // Only the user's own gestures count as a choice, not followFolder().
  connect(cboLookIn->lineEdit(), &QLineEdit::textEdited, this, [this] { lookInChosen_ = true; });
  connect(cboLookIn, &QComboBox::activated, this, [this] { lookInChosen_ = true; });
  grid->addWidget(Buddy("&Named:", cboNamed), 0, 0);
  grid->addWidget(cboNamed, 0, 1);
  grid->addWidget(Buddy("&Look in:", cboLookIn), 1, 0);
  grid->addWidget(cboLookIn, 1, 1);
  chkNamed[0] = Named(new QCheckBox(QStringLiteral("Exact &match")), Indexed("chkNamed", 0));
  chkNamed[1] = Named(new QCheckBox(QStringLiteral("Include &subfolders")), Indexed("chkNamed", 1));
  auto* checks = new QHBoxLayout;
  checks->addWidget(chkNamed[0]);
  checks->addWidget(chkNamed[1]);
  checks->addStretch();
  grid->addLayout(checks, 2, 0, 1, 2);
  grid->setColumnStretch(1, 1);
  return box;
}

QGroupBox* FindFilesTab::buildDateGroup() {
  auto* box = Named(new QGroupBox(QStringLiteral("Date")), QStringLiteral("fraDate"));
  auto* grid = new QGridLayout(box);
  const QStringList kinds = DateKindCaptions();
  for (int i = 0; i < 4; ++i) {
    optDate[size_t(i)] = Named(new QRadioButton(kinds[i]), Indexed("optDate", i));
    grid->addWidget(optDate[size_t(i)], i / 2, i % 2);
  }
  auto* range = new QHBoxLayout;
  for (int i = 0; i < 2; ++i) txtDate[size_t(i)] = Named(new QLineEdit, Indexed("txtDate", i));
  range->addWidget(txtDate[0], 1);
  range->addWidget(new QLabel(QStringLiteral("between")));
  range->addWidget(txtDate[1], 1);
  grid->addLayout(range, 2, 0, 1, 2);

  chkRangeNot = Named(new QCheckBox(QStringLiteral("&Not")), QStringLiteral("chkRangeNot"));
  cmdDateMenu = Named(new QToolButton, QStringLiteral("cmdDateMenu"));
  cmdDateMenu->setText(QStringLiteral("..."));
  cmdDateMenu->setToolTip(QStringLiteral("Quick filters"));
  cmdDateMenu->setPopupMode(QToolButton::InstantPopup);
  dateMenu_ = Named(new QMenu(cmdDateMenu), QStringLiteral("menDate"));
  cmdDateMenu->setMenu(dateMenu_);
  connect(dateMenu_, &QMenu::aboutToShow, this, &FindFilesTab::fillDateMenu);
  fillDateMenu();
  auto* row = new QHBoxLayout;
  row->addWidget(chkRangeNot);
  row->addStretch();
  row->addWidget(cmdDateMenu);
  grid->addLayout(row, 3, 0, 1, 2);
  return box;
}

QGroupBox* FindFilesTab::buildSizeGroup() {
  auto* box = Named(new QGroupBox(QStringLiteral("Size")), QStringLiteral("fraSize"));
  auto* grid = new QGridLayout(box);
  for (int i = 0; i < 2; ++i) {
    txtSize[size_t(i)] = Named(new QLineEdit, Indexed("txtSize", i));
    txtSize[size_t(i)]->setMinimumWidth(80);
  }
  grid->addWidget(Buddy("At &least", txtSize[0]), 0, 0);
  grid->addWidget(txtSize[0], 0, 1);
  grid->addWidget(Buddy("At &most", txtSize[1]), 1, 0);
  grid->addWidget(txtSize[1], 1, 1);
  auto* units = new QHBoxLayout;
  const QStringList captions = SizeUnitCaptions();
  for (int i = 0; i < 3; ++i) {
    optSizeUnit[size_t(i)] = Named(new QRadioButton(captions[i]), Indexed("optSizeUnit", i));
    units->addWidget(optSizeUnit[size_t(i)]);
  }
  grid->addLayout(units, 0, 2, 2, 1);
  grid->addWidget(Hint("To ignore lower or upper limit leave field empty."), 2, 0, 1, 3);
  return box;
}

QGroupBox* FindFilesTab::buildAttributeGroup() {
  auto* box = Named(new QGroupBox(QStringLiteral("Attributes")), QStringLiteral("fraAttributes"));
  auto* grid = new QGridLayout(box);
  grid->setVerticalSpacing(0);
  grid->addWidget(new QLabel(QStringLiteral("Has")), 0, 1);
  grid->addWidget(new QLabel(QStringLiteral("Not")), 0, 2);
  const QStringList names = AttributeCaptions();
  for (int i = 0; i < 8; ++i) {
    const size_t k = size_t(i);
    chkAttrFind[k] = Named(new QCheckBox(names[i]), Indexed("chkAttrFind", i));
    chkAttrFindNot[k] = Named(new QCheckBox, Indexed("chkAttrFindNot", i));
    chkAttrFindNot[k]->setToolTip(QStringLiteral("Not ") + names[i]);
    grid->addWidget(chkAttrFind[k], i + 1, 1);
    grid->addWidget(chkAttrFindNot[k], i + 1, 2);
  }
  grid->addWidget(new QLabel(QStringLiteral("NT only:")), 7, 0, 2, 1, Qt::AlignVCenter);
  return box;
}

QGroupBox* FindFilesTab::buildExcludeGroup() {
  auto* box = Named(new QGroupBox(QStringLiteral("Exclude Folders")), QStringLiteral("fraExclude"));
  auto* grid = new QGridLayout(box);
  lstExclude = Named(new QListWidget, QStringLiteral("lstExclude"));
  txtExclude = Named(new QLineEdit, QStringLiteral("txtExclude"));
  cmdExclude[0] = Named(new QPushButton(QStringLiteral("<< Add")), Indexed("cmdExclude", 0));
  cmdExclude[1] = Named(new QPushButton(QStringLiteral("Remove")), Indexed("cmdExclude", 1));
  grid->addWidget(lstExclude, 0, 0, 3, 1);
  grid->addWidget(cmdExclude[0], 0, 1);
  grid->addWidget(txtExclude, 0, 2);
  grid->addWidget(cmdExclude[1], 1, 1);
  grid->addWidget(Hint("Exclude folders from file find. You may also add parts of paths to the list (but no wildcards)."),
                  3, 0, 1, 3);
  grid->setRowStretch(2, 1);
  grid->setColumnStretch(0, 1);
  grid->setColumnStretch(2, 1);
  connect(cmdExclude[0], &QPushButton::clicked, this, [this] {
    const QString text = txtExclude->text();
    if (text.isEmpty()) return;  // an empty entry would exclude every folder
    lstExclude->addItem(text);
    lstExclude->setCurrentRow(lstExclude->count() - 1);
  });
  connect(cmdExclude[1], &QPushButton::clicked, this, [this] {
    const int row = lstExclude->currentRow();
    if (row >= 0) delete lstExclude->takeItem(row);
  });
  return box;
}

QGroupBox* FindFilesTab::buildTextGroup() {
  auto* box = Named(new QGroupBox(QStringLiteral("Contained Text")), QStringLiteral("fraContainedText"));
  auto* grid = new QGridLayout(box);
  txtContText = Named(new QPlainTextEdit, QStringLiteral("txtContText"));
  txtContText->setTabChangesFocus(true);
  txtContText->setFixedHeight(txtContText->fontMetrics().lineSpacing() * 3 + 12);
  chkCaseSens = Named(new QCheckBox(QStringLiteral("&Case Sensitive")), QStringLiteral("chkCaseSens"));
  chkHex = Named(new QCheckBox(QStringLiteral("It's a &Hex String")), QStringLiteral("chkHex"));
  connect(chkHex, &QCheckBox::toggled, this, &FindFilesTab::setHexFont);
  grid->addWidget(txtContText, 0, 0, 1, 2);
  grid->addWidget(chkCaseSens, 1, 0);
  grid->addWidget(chkHex, 1, 1);
  grid->addWidget(Hint("Type or paste parts of the contents of the file(s) you're looking for."), 2, 0, 1, 2);
  return box;
}

QWidget* FindFilesTab::buildCommands() {
  auto* panel = new QWidget;
  auto* layout = new QVBoxLayout(panel);
  layout->setContentsMargins(0, 0, 0, 0);
  auto* toggles = new QHBoxLayout;
  const QStringList captions = WatchCaptions();
  for (int i = 0; i < 6; ++i) {
    chkWatch[size_t(i)] = Named(new QCheckBox(captions[i]), Indexed("chkWatch", i));
    chkWatch[size_t(i)]->setToolTip(QStringLiteral("Use this filter group in the next find"));
    toggles->addWidget(chkWatch[size_t(i)]);
  }
  layout->addLayout(toggles);
  auto* buttons = new QHBoxLayout;
  cmdFind = Named(new QPushButton(QStringLiteral("F&ind Now")), QStringLiteral("cmdFind"));
  cmdFindStop = Named(new QPushButton(QStringLiteral("Sto&p (Esc)")), QStringLiteral("cmdFindStop"));
  buttons->addWidget(cmdFind);
  buttons->addWidget(cmdFindStop);
  layout->addLayout(buttons);
  connect(cmdFind, &QPushButton::clicked, this, &FindFilesTab::findRequested);
  connect(cmdFindStop, &QPushButton::clicked, this, [this] {
    core::JobFlags::RequestAbort();
    Q_EMIT stopRequested();
  });
  return panel;
}

void FindFilesTab::setHexFont(bool hex) {
  if (!hex) {
    txtContText->setFont(font());
    return;
  }
  // Hex digits line up in a fixed-pitch face.
  QFont f(QStringLiteral("Courier New"));
  f.setStyleHint(QFont::TypeWriter);
  f.setFixedPitch(true);
  if (!QFontInfo(f).fixedPitch()) f = QFontDatabase::systemFont(QFontDatabase::FixedFont);
  // Some systems' "monospace" has wide glyphs and counts as proportional.
  if (!QFontInfo(f).fixedPitch()) {
    const QStringList families = QFontDatabase::families();
    for (const QString& family : families)
      if (QFontDatabase::isFixedPitch(family)) {
        f.setFamily(family);
        break;
      }
  }
  txtContText->setFont(f);
}

qint64 FindFilesTab::currentEntryTime() const {
  int kind = kDateModified;
  for (int i = 0; i < 4; ++i)
    if (optDate[size_t(i)]->isChecked()) kind = i;
  switch (kind) {
    case kDateCreated: return entryTimes_[0];
    case kDateAccessed: return entryTimes_[2];
    default: return entryTimes_[1];
  }
}

void FindFilesTab::fillDateMenu() {
  dateMenu_->clear();
  const QStringList relative = RelativeRangeCaptions();
  for (int i = 0; i < relative.size(); ++i) {
    QAction* a = dateMenu_->addAction(relative[i]);
    a->setObjectName(Indexed("menDateRange", i));
    connect(a, &QAction::triggered, this, [this, i] {
      const DateFill f = RelativeRange(i, QDateTime::currentDateTime());
      applyDateFill(f.from, f.to, f.rangeNot);
    });
  }
  dateMenu_->addSeparator();
  const QStringList periods = PeriodCaptions();
  const char* periodNames[] = {"menDateToday", "menDateWeek", "menDateMonth", "menDateYear"};
  for (int i = 0; i < periods.size(); ++i) {
    QAction* a = dateMenu_->addAction(periods[i]);
    a->setObjectName(QString::fromLatin1(periodNames[i]));
    connect(a, &QAction::triggered, this, [this, i] {
      const DateFill f = PeriodRange(i, QDateTime::currentDateTime());
      applyDateFill(f.from, f.to, f.rangeNot);
    });
  }
  dateMenu_->addSeparator();
  const qint64 t = currentEntryTime();
  const QDateTime local = t == 0 ? QDateTime()
                                 : QDateTime::fromMSecsSinceEpoch((t - platform::kUnixEpochTicks) / 10'000, Qt::LocalTime);
  const QString text = local.isValid() ? DateBoxText(local) : QString();
  QAction* like = dateMenu_->addAction(LikeCaption(text));
  like->setObjectName(QStringLiteral("menDateLike"));
  QAction* similar = dateMenu_->addAction(SimilarCaption(text));
  similar->setObjectName(QStringLiteral("menDateSimilar"));
  like->setEnabled(local.isValid());
  similar->setEnabled(local.isValid());
  connect(like, &QAction::triggered, this, [this, local] {
    const DateFill f = LikeRange(local);
    applyDateFill(f.from, f.to, f.rangeNot);
  });
  connect(similar, &QAction::triggered, this, [this, local] {
    const DateFill f = SimilarRange(local);
    applyDateFill(f.from, f.to, f.rangeNot);
  });
  dateMenu_->addSeparator();
  QAction* unknown = dateMenu_->addAction(QString::fromLatin1(kUnknownDate));
  unknown->setObjectName(QStringLiteral("menDateUnknown"));
  connect(unknown, &QAction::triggered, this, [this] {
    const DateFill f = UnknownRange();
    applyDateFill(f.from, f.to, f.rangeNot);
  });
}

void FindFilesTab::applyDateFill(const QString& from, const QString& to, bool rangeNot) {
  txtDate[0]->setText(from);
  txtDate[1]->setText(to);
  chkRangeNot->setChecked(rangeNot);
}

void FindFilesTab::setLookInItems(const QStringList& items) {
  const QString text = cboLookIn->currentText();
  cboLookIn->clear();
  cboLookIn->addItems(items);
  cboLookIn->setCurrentText(text);
}

void FindFilesTab::followFolder(const QString& folder) {
  if (!lookInChosen_ && !folder.isEmpty()) cboLookIn->setCurrentText(folder);
}

void FindFilesTab::setCurrentEntry(const QString& name, qint64 created, qint64 modified, qint64 accessed) {
  entryName_ = name;
  entryTimes_ = {created, modified, accessed};
}

core::FindTabValues FindFilesTab::values() const {
  core::FindTabValues v;
  v.exactMatch = chkNamed[0]->isChecked();
  v.includeSubfolders = chkNamed[1]->isChecked();
  v.rangeNot = chkRangeNot->isChecked();
  v.dateKind = kDateModified;
  for (int i = 0; i < 4; ++i)
    if (optDate[size_t(i)]->isChecked()) v.dateKind = qint16(i);
  v.dateFrom = txtDate[0]->text();
  v.dateTo = txtDate[1]->text();
  v.sizeMin = txtSize[0]->text();
  v.sizeMax = txtSize[1]->text();
  v.sizeUnit = 0;
  for (int i = 2; i >= 0; --i)  // the first selected, in caption order
    if (optSizeUnit[size_t(i)]->isChecked()) v.sizeUnit = qint16(i);
  v.attrMust = v.attrMustNot = 0;
  for (size_t i = 0; i < core::kAttributeTable.size(); ++i) {
    if (chkAttrFind[i]->isChecked()) v.attrMust |= qint32(core::kAttributeTable[i].bit);
    if (chkAttrFindNot[i]->isChecked()) v.attrMustNot |= qint32(core::kAttributeTable[i].bit);
  }
  v.containedText = txtContText->toPlainText();
  v.caseSensitive = chkCaseSens->isChecked();
  v.isHex = chkHex->isChecked();
  v.watch = 0;
  for (int i = 0; i < 6; ++i)
    if (chkWatch[size_t(i)]->isChecked()) v.watch |= qint32(1) << i;
  v.named = cboNamed->currentText();
  v.lookIn = cboLookIn->currentText();
  v.excludeInput = txtExclude->text();
  v.excludes.clear();
  for (int i = 0; i < lstExclude->count(); ++i) v.excludes.append(lstExclude->item(i)->text());
  return v;
}

void FindFilesTab::setValues(const core::FindTabValues& v) {
  chkNamed[0]->setChecked(v.exactMatch);
  chkNamed[1]->setChecked(v.includeSubfolders);
  chkRangeNot->setChecked(v.rangeNot);
  optDate[size_t(v.dateKind >= 0 && v.dateKind < 4 ? int(v.dateKind) : int(kDateModified))]->setChecked(true);
  txtDate[0]->setText(v.dateFrom);
  txtDate[1]->setText(v.dateTo);
  txtSize[0]->setText(v.sizeMin);
  txtSize[1]->setText(v.sizeMax);
  optSizeUnit[size_t(v.sizeUnit >= 0 && v.sizeUnit < 3 ? v.sizeUnit : 0)]->setChecked(true);
  for (size_t i = 0; i < core::kAttributeTable.size(); ++i) {
    chkAttrFindNot[i]->setChecked(quint32(v.attrMustNot) & core::kAttributeTable[i].bit);
    chkAttrFind[i]->setChecked(quint32(v.attrMust) & core::kAttributeTable[i].bit);
  }
  txtContText->setPlainText(v.containedText);
  chkCaseSens->setChecked(v.caseSensitive);
  chkHex->setChecked(v.isHex);
  setHexFont(v.isHex);
  for (int i = 0; i < 6; ++i) chkWatch[size_t(i)]->setChecked(v.watch & (qint32(1) << i));
  cboNamed->setCurrentText(v.named);
  cboLookIn->setCurrentText(v.lookIn);
  txtExclude->setText(v.excludeInput);
  lstExclude->clear();
  lstExclude->addItems(v.excludes);
}

}  // namespace find
