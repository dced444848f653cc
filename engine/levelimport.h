#pragma once

#include "engine/surveycsv.h"

#include <QByteArray>
#include <QString>

#include <cstdint>
#include <optional>

namespace engine {

class EngineSession;

// The level tables a survey file can fill.
enum class LevelTable { Initial, Executed };

// "Initial" or "Executed": the table's name in the project file and in messages.
QString levelTableName(LevelTable table);

// What an import did.
struct LevelImportResult {
  // False when nothing was written: the error list says why.
  bool written = false;
  // Readings added, and rows of the section deleted before them (with replace).
  int rows = 0;
  int replaced = 0;
  // The different chainages among the readings added.
  int chainages = 0;
};

// At most this many problem lines go to the error list; one more line counts the rest.
constexpr int kImportProblemLines = 100;

// Reads a survey file whole. nullopt when it cannot be read, and error then names the file and
// the reason.
std::optional<QByteArray> readSurveyFile(const QString& path, QString& error);

// Adds the readings of a survey file (named fileName in messages) to table for section, all or
// nothing in one transaction. When the file has problems, or, without replace, a reading's
// chainage and offset pair is already among the section's rows of the table, every such line
// goes to the session's error list with its line number, column and text, and nothing is
// written. With replace, the section's rows of the table are deleted first in the same
// transaction. After a write, the session's level data are marked changed, so the next quantity
// run brings its chainages in line. Throws db::Error when the project cannot be read or written;
// nothing is written then either.
LevelImportResult importLevels(EngineSession& session, const QString& fileName,
                               const SurveyLayout& layout, const SurveyRead& read, LevelTable table,
                               std::int32_t sectionId, bool replace);

}  // namespace engine
