// Times the import of a survey file of 100,000 readings (2,500 cross-sections of 40 readings,
// stations as 1+020.000, offsets with L and R, a code column) into the Initial levels of a
// section: the file read, split into lines, its layout found, every line read, and the rows
// written in one transaction. The first run fills an empty table, the others replace its rows.
// Usage: level_import [runs]
#include "bench/benchproject.h"
#include "db/connection.h"
#include "db/project.h"
#include "engine/levelimport.h"
#include "engine/session.h"
#include "engine/surveycsv.h"

#include <QCoreApplication>
#include <QElapsedTimer>
#include <QFile>
#include <QTemporaryDir>

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <vector>

namespace {

constexpr int kChainages = 2500;
constexpr int kReadings = 40;

double ms(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

void writeSurvey(const QString& path) {
  QByteArray text =
      "# Bench survey: 2,500 cross-sections of 40 readings\nStation,Offset,Level,Code\n";
  char line[96];
  for (int k = 0; k < kChainages; ++k) {
    const int metres = 20 * k;
    for (int i = 0; i < kReadings; ++i) {
      const double offset = -29.25 + 1.5 * i;
      const double level = 152.0 + 0.6 * std::sin(k * 0.01) + 0.02 * offset;
      std::snprintf(line, sizeof line, "%d+%03d.000,%.3f%c,%.3f,%s\n", metres / 1000, metres % 1000,
                    std::fabs(offset), offset < 0 ? 'L' : 'R', level,
                    std::fabs(offset) < 5 ? "BED" : "NGL");
      text += line;
    }
  }
  QFile file(path);
  if (!file.open(QIODevice::WriteOnly) || file.write(text) != text.size())
    qFatal("cannot write %s", qPrintable(path));
}

}  // namespace

int main(int argc, char** argv) {
  QCoreApplication application(argc, argv);
  const int runs = argc > 1 ? std::max(1, std::atoi(argv[1])) : 5;
  QTemporaryDir dir;
  const QString survey = dir.filePath(QStringLiteral("survey.csv"));
  const QString project = dir.filePath(QStringLiteral("import.delvane"));
  writeSurvey(survey);
  db::createProject(project, false);
  std::unique_ptr<db::Connection> connection = db::openProject(project);
  connection->exec(QStringLiteral("INSERT INTO Sections (ID, PackageID) VALUES (1, 1)"));
  bench::QuietReporter reporter;
  engine::EngineSession session(*connection, reporter);

  std::vector<double> totals;
  for (int run = 0; run < runs; ++run) {
    QElapsedTimer timer;
    timer.start();
    QString error;
    const auto bytes = engine::readSurveyFile(survey, error);
    if (!bytes) qFatal("%s", qPrintable(error));
    const QStringList lines = engine::surveyLines(*bytes);
    const engine::SurveyLayout layout = engine::detectSurveyLayout(lines);
    const double split = ms(timer);
    const engine::SurveyRead read = engine::readSurvey(lines, layout, std::nullopt);
    const double parsed = ms(timer);
    const engine::LevelImportResult result = engine::importLevels(
        session, QStringLiteral("survey.csv"), layout, read, engine::LevelTable::Initial, 1, true);
    const double total = ms(timer);
    if (!result.written || result.rows != kChainages * kReadings)
      qFatal("the import failed: %d rows, %d error lines", result.rows, reporter.errors);
    std::printf(
        "run %d: %d rows (%d replaced): read and split %.0f ms, lines read %.0f ms, "
        "written %.0f ms, total %.0f ms\n",
        run + 1, result.rows, result.replaced, split, parsed - split, total - parsed, total);
    totals.push_back(total);
  }
  std::sort(totals.begin(), totals.end());
  std::printf("level_import of %d lines: median %.0f ms, best %.0f ms (target 2000 ms)\n",
              kChainages * kReadings, totals[totals.size() / 2], totals.front());
  return 0;
}
