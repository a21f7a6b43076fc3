#include "browser/CTabCtrl.h"

#include <QLabel>
#include <QVBoxLayout>

namespace browser {

namespace {
const char* const kCaptions[] = {"Find Files", "Version", "General File Info", "Preview", "Report", "File View"};
const char* const kPageNames[] = {"pageFind", "pageVersion", "pageGeneral", "pagePreview", "pageReport", "pageFileView"};
const char* const kReportCaptions[] = {"Current List", "Current Folder"};
const char* const kReportNames[] = {"pageRepList", "pageRepFolder"};
const char* const kEmptyProperty = "quorvaneEmptyPage";
}  // namespace

QString CTabCtrl::Caption(int tab) {
  return tab >= 0 && tab < kTabCount ? QString::fromLatin1(kCaptions[tab]) : QString();
}

QString CTabCtrl::ReportCaption(int page) {
  return page >= 0 && page < kRepCount ? QString::fromLatin1(kReportCaptions[page]) : QString();
}

QWidget* CTabCtrl::EmptyPage(const QString& caption, const QString& name) {
  auto* page = new QWidget;
  page->setObjectName(name);
  page->setProperty(kEmptyProperty, true);
  auto* layout = new QVBoxLayout(page);
  auto* label = new QLabel(caption, page);
  label->setAlignment(Qt::AlignCenter);
  label->setEnabled(false);  // drawn greyed: there is nothing here yet
  layout->addWidget(label);
  return page;
}

CTabCtrl::CTabCtrl(QWidget* parent) : QTabWidget(parent) {
  setObjectName(QStringLiteral("CTabCtrl"));
  setDocumentMode(false);
  setUsesScrollButtons(true);
  for (int t = 0; t < kTabCount; ++t) {
    if (t == kTabReport) {
      auto* page = new QWidget;
      page->setObjectName(QString::fromLatin1(kPageNames[t]));
      auto* layout = new QVBoxLayout(page);
      layout->setContentsMargins(2, 2, 2, 2);
      tabReport = new QTabWidget(page);
      tabReport->setObjectName(QStringLiteral("tabReport"));
      tabReport->setTabPosition(QTabWidget::South);
      for (int r = 0; r < kRepCount; ++r)
        tabReport->addTab(EmptyPage(ReportCaption(r), QString::fromLatin1(kReportNames[r])), ReportCaption(r));
      layout->addWidget(tabReport);
      addTab(page, Caption(t));
    } else {
      addTab(EmptyPage(Caption(t), QString::fromLatin1(kPageNames[t])), Caption(t));
    }
  }
  connect(this, &QTabWidget::currentChanged, this, &CTabCtrl::TabSelected);
}

void CTabCtrl::SetPage(int tab, QWidget* page) {
  if (tab < 0 || tab >= kTabCount || !page) return;
  const bool wasCurrent = currentIndex() == tab;
  QWidget* old = widget(tab);
  blockSignals(true);
  removeTab(tab);
  insertTab(tab, page, Caption(tab));
  if (wasCurrent) setCurrentIndex(tab);
  blockSignals(false);
  if (old) old->deleteLater();
}

void CTabCtrl::SetReportPage(int index, QWidget* widget) {
  if (index < 0 || index >= kRepCount || !widget) return;
  const bool wasCurrent = tabReport->currentIndex() == index;
  QWidget* old = tabReport->widget(index);
  tabReport->removeTab(index);
  tabReport->insertTab(index, widget, ReportCaption(index));
  if (wasCurrent) tabReport->setCurrentIndex(index);
  if (old) old->deleteLater();
}

bool CTabCtrl::HasPage(int tab) const {
  if (tab == kTabReport) {
    for (int r = 0; r < kRepCount; ++r)
      if (!tabReport->widget(r)->property(kEmptyProperty).toBool()) return true;
    return false;
  }
  const QWidget* page = widget(tab);
  return page && !page->property(kEmptyProperty).toBool();
}

}  // namespace browser
