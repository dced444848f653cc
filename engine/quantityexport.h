#pragma once

#include "engine/quantities.h"

#include <QByteArray>
#include <QDate>
#include <QString>

#include <cstdint>
#include <optional>
#include <vector>

namespace engine {

class EngineSession;

// The kinds of file the quantity sheet is exported as, told apart by the file name's extension.
enum class QuantitySheetFormat { Xlsx, Csv };

// The format for a file name ending in ".xlsx" or ".csv" (any case); nullopt for anything else.
std::optional<QuantitySheetFormat> QuantitySheetFormatOf(const QString& path);

// What the Quantity Summary shows for one section, as numbers, with the particulars of the
// section it belongs to.
struct QuantitySheet {
  std::int32_t SectionID = 0;
  QString PackageName;
  QString Phase;
  QString District;
  QString SectionDescription;
  QString SectionTitle;
  QDate Date;                   // the day the quantities were computed
  bool ExecutedLevels = false;  // computed against the executed levels
  std::vector<QuantityRow> Rows;
  float TotalCutVolume = 0.0f;  // m³
  float TotalFillVolume = 0.0f;
};

// Computes every chainage of the session's current section as the Quantity Summary does
// (progress and status-bar totals go through the session's reporter) and collects the rows.
// nullopt when invalid level data stopped the run (the error list names the bad rows) or the
// user cancelled it.
// Throws db::Error when the project cannot be read.
std::optional<QuantitySheet> CollectQuantitySheet(EngineSession& session);

// The sheet as comma-separated text: the header row, one row per chainage with plain numbers
// (the shortest text that reads back as the same single; no volumes on the first row) and the
// totals row with the two volumes only. Lines end in CR LF.
QByteArray QuantitySheetCsv(const QuantitySheet& sheet);

// Writes the sheet to path, replacing the file only once the whole file has been written.
// Returns an empty text on success, otherwise a sentence naming the file and the reason.
QString WriteQuantitySheetCsv(const QuantitySheet& sheet, const QString& path);
// A workbook with the sheet "Quantity Summary" (the summary, numbers as numbers with three
// decimals, the totals bold with two) and the sheet "Section" (package, section, date, totals).
QString WriteQuantitySheetXlsx(const QuantitySheet& sheet, const QString& path);
QString WriteQuantitySheet(const QuantitySheet& sheet, const QString& path,
                           QuantitySheetFormat format);

// The whole export of the current section: collect, then write. Nothing is written when invalid
// level data stop the run or the user cancels it.
struct QuantityExportResult {
  enum class Status { Written, StoppedByInvalidLevels, Cancelled, CannotWrite };
  Status status = Status::Written;
  QString message;  // CannotWrite: the file and the reason
  int rowCount = 0;
};
// A path that is the open project file, by any name or link, is refused (CannotWrite) before
// anything is computed.
QuantityExportResult ExportQuantitySheet(EngineSession& session, const QString& path,
                                         QuantitySheetFormat format);

}  // namespace engine
