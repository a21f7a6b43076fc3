#include "browser/JobStatus.h"

#include "core/NumberFormat.h"

namespace browser {

void JobStatus::Start(qint64 nowMs) {
  aborted_ = false;
  startMs_ = double(nowMs);
}

double JobStatus::ElapsedSeconds(qint64 nowMs) const { return (double(nowMs) - startMs_) / 1000; }

QString JobStatus::AbortedSuffix() const { return aborted_ ? QStringLiteral("  ABORTED") : QString(); }

QString JobStatus::FindSummary(qint64 nowMs, double foldersScanned, double nameHits) const {
  QString s = core::FormatNumber(ElapsedSeconds(nowMs), u"0.000");
  s += QStringLiteral(" sec (");
  s += core::FormatNumber(foldersScanned, u"#,0");
  s += QStringLiteral(" folders scanned, ");
  s += core::FormatNumber(nameHits, u"#,0");
  s += QStringLiteral(" name hits)");
  s += AbortedSuffix();
  return s;
}

QString JobStatus::ShortSummary(qint64 nowMs) const {
  return core::FormatNumber(ElapsedSeconds(nowMs), u"0.000") + QStringLiteral(" sec") + AbortedSuffix();
}

}  // namespace browser
