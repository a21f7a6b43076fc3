#pragma once
#include <QTabWidget>

namespace browser {

// The info panel's tab strip. Each tab starts with an empty page that shows
// only its caption; a feature puts its own page in with SetPage.
class CTabCtrl : public QTabWidget {
  Q_OBJECT
 public:
  enum Tab : int { kTabFind = 0, kTabVersion, kTabGeneral, kTabPreview, kTabReport, kTabFileView, kTabCount };
  enum ReportPage : int { kRepList = 0, kRepFolder, kRepCount };

  static QString Caption(int tab);
  static QString ReportCaption(int page);

  explicit CTabCtrl(QWidget* parent = nullptr);

  // Replaces a tab's page (the empty one or an earlier page); the strip owns it.
  void SetPage(int tab, QWidget* page);
  void SetReportPage(int page, QWidget* widget);
  // Whether a feature's page is in place (not the empty one).
  bool HasPage(int tab) const;
  QTabWidget* reportTabs() const { return tabReport; }

 Q_SIGNALS:
  void TabSelected(int tab);

 private:
  static QWidget* EmptyPage(const QString& caption, const QString& name);

  QTabWidget* tabReport;
};

}  // namespace browser
