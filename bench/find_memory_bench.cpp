// Memory per hit of a find that lists 1,000,000 rows or more: the corpus is
// searched several times over (one location per pass) into the Find-mode
// list model, and the model's bytes and the growth of the resident set are
// divided by the rows.
//
//   find_memory_bench CORPUS_DIR [MIN_HITS]
#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <cstdio>

#include "browser/list/ListModel.h"
#include "browser/list/RowBuilder.h"
#include "core/ListModes.h"
#include "find/FindJob.h"

namespace {

double ResidentBytes() {
  QFile status(QStringLiteral("/proc/self/status"));
  if (!status.open(QIODevice::ReadOnly)) return 0;
  for (const QByteArray& line : status.readAll().split('\n'))
    if (line.startsWith("VmRSS:")) return line.mid(6).trimmed().split(' ').value(0).toDouble() * 1024;
  return 0;
}

class ModelSink : public find::FindSink {
 public:
  explicit ModelSink(browser::ListModel* model) : model_(model), builder_(model) {}
  void startFill() override { model_->beginFill(); }
  void addRow(const platform::DirEntry& e, const QString& folder, const QString&) override { builder_.add(e, folder); }
  qsizetype rowCount() const override { return model_->rowCount(); }

 private:
  browser::ListModel* model_;
  browser::RowBuilder builder_;
};

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication app(argc, argv);
  if (argc < 2) {
    std::fprintf(stderr, "usage: find_memory_bench CORPUS_DIR [MIN_HITS]\n");
    return 2;
  }
  const QString corpus = QDir(QString::fromLocal8Bit(argv[1])).absolutePath() + u'/';
  const double minHits = argc > 2 ? std::atof(argv[2]) : 1e6;

  browser::ListModel model;
  model.setMode(core::kModeFind, core::DefaultModeRecord(core::kModeFind));
  ModelSink sink(&model);

  // One pass tells the hits per location; then enough passes for the total.
  find::FindCriteria probe;
  probe.locations = {corpus};
  probe.patterns = {QStringLiteral("*.*")};
  probe.includeSubfolders = true;
  find::FindJob::Run(probe, sink, false);
  const qsizetype perPass = model.rowCount();
  if (perPass == 0) return 1;
  model.clearRows();

  find::FindCriteria c = probe;
  c.locations.clear();
  while (double(c.locations.size()) * double(perPass) < minHits) c.locations.append(corpus);
  const double before = ResidentBytes();
  find::FindJob::Run(c, sink, false);
  const double after = ResidentBytes();
  const double rows = model.rowCount();
  std::printf("rows: %.0f (%lld passes)\n", rows, static_cast<long long>(c.locations.size()));
  std::printf("list model: %.1f bytes per hit\n", double(model.memoryBytes()) / rows);
  std::printf("resident set growth: %.1f bytes per hit\n", (after - before) / rows);
  return 0;
}
