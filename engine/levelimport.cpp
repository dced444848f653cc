#include "engine/levelimport.h"

#include "db/connection.h"
#include "db/numbers.h"
#include "engine/reporter.h"
#include "engine/session.h"

#include <QDir>
#include <QFile>

#include <algorithm>
#include <unordered_set>
#include <vector>

namespace engine {

namespace {

// The readings whose chainage and offset the section's rows of the table already hold.
std::vector<SurveyProblem> pairsInTable(db::Connection& connection, LevelTable table,
                                        std::int32_t sectionId, const SurveyLayout& layout,
                                        const SurveyRead& read) {
  const QString name = levelTableName(table);
  db::Statement stored = connection.prepare(
      QStringLiteral("SELECT Chainage, Offset FROM %1 WHERE SectionID=? AND Chainage IS NOT NULL "
                     "AND Offset IS NOT NULL")
          .arg(db::quoteName(name)),
      QStringLiteral("Reading the %1 levels of section %2").arg(name).arg(sectionId));
  stored.bindKey(1, sectionId);
  std::unordered_set<std::uint64_t> pairs;
  while (stored.step()) pairs.insert(surveyPointKey(stored.measure(0), stored.measure(1)));

  std::vector<SurveyProblem> problems;
  if (pairs.empty()) return problems;
  for (const SurveyReading& reading : read.readings)
    if (pairs.count(surveyPointKey(reading.chainage, reading.offset)))
      problems.push_back(
          {reading.line, layout.column(SurveyField::Chainage),
           QStringLiteral("the %1 levels of section %2 already hold chainage %3 and offset %4: '")
                   .arg(name)
                   .arg(sectionId)
                   .arg(db::floatText(reading.chainage), db::floatText(reading.offset)) +
               read.lines.value(reading.line - 1) + QStringLiteral("'.")});
  return problems;
}

void reportProblems(Reporter& reporter, const QString& fileName, const SurveyLayout& layout,
                    const std::vector<SurveyProblem>& problems) {
  const int shown = std::min(static_cast<int>(problems.size()), kImportProblemLines);
  for (int i = 0; i < shown; ++i)
    reporter.ShowError(surveyProblemText(fileName, layout, problems[i]));
  const int more = static_cast<int>(problems.size()) - shown;
  reporter.ShowError(
      (more > 0 ? QStringLiteral("%1 more lines of %2 have problems. ").arg(more).arg(fileName)
                : QString()) +
      QStringLiteral("Nothing was imported from %1: %2 %3 to be put right first.")
          .arg(fileName)
          .arg(problems.size())
          .arg(problems.size() == 1 ? QStringLiteral("line has") : QStringLiteral("lines have")));
}

}  // namespace

QString levelTableName(LevelTable table) {
  return table == LevelTable::Executed ? QStringLiteral("Executed") : QStringLiteral("Initial");
}

std::optional<QByteArray> readSurveyFile(const QString& path, QString& error) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) {
    error = QStringLiteral("The survey file %1 cannot be opened: %2.")
                .arg(QDir::toNativeSeparators(path), file.errorString());
    return std::nullopt;
  }
  return file.readAll();
}

LevelImportResult importLevels(EngineSession& session, const QString& fileName,
                               const SurveyLayout& layout, const SurveyRead& read, LevelTable table,
                               std::int32_t sectionId, bool replace) {
  db::Connection& connection = session.connection();
  const QString name = levelTableName(table);
  LevelImportResult result;

  db::Transaction work(connection);
  std::vector<SurveyProblem> problems = read.problems;
  if (!replace) {
    std::vector<SurveyProblem> stored = pairsInTable(connection, table, sectionId, layout, read);
    problems.insert(problems.end(), stored.begin(), stored.end());
    std::stable_sort(
        problems.begin(), problems.end(),
        [](const SurveyProblem& a, const SurveyProblem& b) { return a.line < b.line; });
  }
  if (!problems.empty()) {
    reportProblems(session.reporter(), fileName, layout, problems);
    return result;
  }
  // An empty file replacing a section's readings is far more likely a wrong file than a wish.
  if (read.readings.empty()) {
    session.reporter().ShowError(
        QStringLiteral("%1 holds no readings; nothing was imported.").arg(fileName));
    return result;
  }

  if (replace) {
    db::Statement clear = connection.prepare(
        QStringLiteral("DELETE FROM %1 WHERE SectionID=?").arg(db::quoteName(name)),
        QStringLiteral("Deleting the %1 levels of section %2").arg(name).arg(sectionId));
    clear.bindKey(1, sectionId).run();
    result.replaced = static_cast<int>(connection.changes());
  }
  db::Statement insert = connection.prepare(
      QStringLiteral("INSERT INTO %1 (SectionID, Chainage, Offset, Level) VALUES (?, ?, ?, ?)")
          .arg(db::quoteName(name)),
      QStringLiteral("Adding the readings of %1 to the %2 levels").arg(fileName, name));
  std::unordered_set<float> chainages;
  for (const SurveyReading& reading : read.readings) {
    insert.reset();
    insert.bindKey(1, sectionId)
        .bindMeasure(2, reading.chainage)
        .bindMeasure(3, reading.offset)
        .bindMeasure(4, reading.level)
        .run();
    chainages.insert(reading.chainage == 0.0f ? 0.0f : reading.chainage);
  }
  insert.reset();
  work.commit();

  result.written = true;
  result.rows = static_cast<int>(read.readings.size());
  result.chainages = static_cast<int>(chainages.size());
  session.levelDataChanged();
  return result;
}

}  // namespace engine
