#include "engine/quantityexport.h"

#include "db/connection.h"
#include "db/numbers.h"
#include "db/project.h"
#include "engine/numberformat.h"
#include "engine/reporter.h"
#include "engine/session.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>
#include <QTemporaryDir>

#include <xlsxwriter.h>

#include <algorithm>

namespace engine {

namespace {

const QLatin1String kLineEnd("\r\n");

// The summary's number formats: rows with three decimals, totals with two, as on screen.
const char* const kRowFormat = "#,##0.000";
const char* const kTotalFormat = "#,##0.00";
constexpr int kRowDecimals = 3;
constexpr int kTotalDecimals = 2;

QString cannotWrite(const QString& path, const QString& reason) {
  return QStringLiteral("The file ") + QDir::toNativeSeparators(path) +
         QStringLiteral(" cannot be written: ") + reason + QLatin1Char('.');
}

// Writes bytes to path through a temporary file beside it, so that a failed export leaves any
// earlier file of that name as it was.
QString writeWhole(const QString& path, const QByteArray& bytes) {
  QSaveFile file(path);
  if (!file.open(QIODevice::WriteOnly)) return cannotWrite(path, file.errorString());
  if (file.write(bytes) != bytes.size()) {
    const QString reason = file.errorString();
    file.cancelWriting();
    return cannotWrite(path, reason);
  }
  if (!file.commit()) return cannotWrite(path, file.errorString());
  return {};
}

// The number a measure is written as: the value of its shortest text, so that 0.1f shows in
// the spreadsheet as 0.1 rather than 0.100000001490116.
double cellValue(float value) { return db::measureToDouble(value); }

void readParticulars(EngineSession& session, QuantitySheet& sheet) {
  db::Statement st = session.connection().prepare(
      QStringLiteral("SELECT s.Description, s.Title, p.Name, p.Phase, p.District FROM Sections s "
                     "LEFT JOIN Package p ON p.ID=s.PackageID WHERE s.ID=?"),
      QStringLiteral("Reading the section's package and description"));
  st.bindKey(1, session.sectionId());
  if (!st.step()) return;
  sheet.SectionDescription = st.text(0);
  sheet.SectionTitle = st.text(1);
  sheet.PackageName = st.text(2);
  sheet.Phase = st.text(3);
  sheet.District = st.text(4);
}

// Column widths in characters: the widest header or number shown in the column, and a margin.
std::vector<double> summaryColumnWidths(const QuantitySheet& sheet) {
  const QStringList headers = QuantitySummaryHeaders();
  std::vector<qsizetype> widest;
  for (const QString& header : headers) widest.push_back(header.size());
  auto widen = [&widest](int column, float value, int decimals) {
    const qsizetype size = formatNumber(value, decimals).size();
    widest[column] = std::max(widest[column], size);
  };
  for (const QuantityRow& row : sheet.Rows) {
    widen(0, row.Chainage, kRowDecimals);
    widen(1, row.CutArea, kRowDecimals);
    widen(2, row.FillArea, kRowDecimals);
    if (row.CutVolume) widen(3, *row.CutVolume, kRowDecimals);
    if (row.FillVolume) widen(4, *row.FillVolume, kRowDecimals);
  }
  widen(3, sheet.TotalCutVolume, kTotalDecimals);
  widen(4, sheet.TotalFillVolume, kTotalDecimals);
  std::vector<double> widths;
  for (qsizetype w : widest) widths.push_back(static_cast<double>(w) + 3.0);
  return widths;
}

// The workbook being built; the formats belong to it and go with it.
class Workbook {
 public:
  explicit Workbook(lxw_workbook* workbook) : m_workbook(workbook) {
    m_header = workbook_add_format(m_workbook);
    format_set_bold(m_header);
    format_set_align(m_header, LXW_ALIGN_RIGHT);
    format_set_bottom(m_header, LXW_BORDER_THIN);
    m_label = workbook_add_format(m_workbook);
    format_set_bold(m_label);
    m_row = workbook_add_format(m_workbook);
    format_set_num_format(m_row, kRowFormat);
    m_total = workbook_add_format(m_workbook);
    format_set_bold(m_total);
    format_set_num_format(m_total, kTotalFormat);
    m_date = workbook_add_format(m_workbook);
    format_set_num_format(m_date, "d mmm yyyy");
    format_set_align(m_date, LXW_ALIGN_LEFT);
  }

  void addSummary(const QuantitySheet& sheet) {
    lxw_worksheet* ws = workbook_add_worksheet(m_workbook, "Quantity Summary");
    const QStringList headers = QuantitySummaryHeaders();
    for (int c = 0; c < headers.size(); ++c) text(ws, 0, c, headers[c], m_header);
    lxw_row_t r = 1;
    for (const QuantityRow& row : sheet.Rows) {
      worksheet_write_number(ws, r, 0, cellValue(row.Chainage), m_row);
      worksheet_write_number(ws, r, 1, cellValue(row.CutArea), m_row);
      worksheet_write_number(ws, r, 2, cellValue(row.FillArea), m_row);
      if (row.CutVolume) worksheet_write_number(ws, r, 3, cellValue(*row.CutVolume), m_row);
      if (row.FillVolume) worksheet_write_number(ws, r, 4, cellValue(*row.FillVolume), m_row);
      ++r;
    }
    worksheet_write_number(ws, r, 3, cellValue(sheet.TotalCutVolume), m_total);
    worksheet_write_number(ws, r, 4, cellValue(sheet.TotalFillVolume), m_total);

    const std::vector<double> widths = summaryColumnWidths(sheet);
    for (std::size_t c = 0; c < widths.size(); ++c)
      worksheet_set_column(ws, static_cast<lxw_col_t>(c), static_cast<lxw_col_t>(c), widths[c],
                           nullptr);
    worksheet_freeze_panes(ws, 1, 0);
  }

  void addSection(const QuantitySheet& sheet) {
    lxw_worksheet* ws = workbook_add_worksheet(m_workbook, "Section");
    const QString labels[] = {QStringLiteral("Package"),
                              QStringLiteral("Phase"),
                              QStringLiteral("District"),
                              QStringLiteral("Section"),
                              QStringLiteral("Title"),
                              QStringLiteral("Date"),
                              QStringLiteral("Levels"),
                              QStringLiteral("Chainages"),
                              QStringLiteral("Cutting Volume (cum)"),
                              QStringLiteral("Filling Volume (cum)")};
    const QString texts[] = {sheet.PackageName, sheet.Phase, sheet.District,
                             sheet.SectionDescription, sheet.SectionTitle};
    qsizetype labelWidth = 0;
    qsizetype valueWidth = 12;
    lxw_row_t r = 0;
    for (const QString& label : labels) {
      text(ws, r++, 0, label, m_label);
      labelWidth = std::max(labelWidth, label.size());
    }
    r = 0;
    for (const QString& value : texts) {
      text(ws, r++, 1, value, nullptr);
      valueWidth = std::max(valueWidth, value.size());
    }
    if (sheet.Date.isValid()) {
      lxw_datetime date{sheet.Date.year(), sheet.Date.month(), sheet.Date.day(), 0, 0, 0.0};
      worksheet_write_datetime(ws, r, 1, &date, m_date);
    }
    ++r;
    text(ws, r++, 1, sheet.ExecutedLevels ? QStringLiteral("Executed") : QStringLiteral("Initial"),
         nullptr);
    worksheet_write_number(ws, r++, 1, static_cast<double>(sheet.Rows.size()), nullptr);
    worksheet_write_number(ws, r++, 1, cellValue(sheet.TotalCutVolume), m_total);
    worksheet_write_number(ws, r++, 1, cellValue(sheet.TotalFillVolume), m_total);
    worksheet_set_column(ws, 0, 0, static_cast<double>(labelWidth) + 3.0, nullptr);
    worksheet_set_column(ws, 1, 1, static_cast<double>(valueWidth) + 3.0, nullptr);
  }

 private:
  static void text(lxw_worksheet* ws, lxw_row_t row, lxw_col_t column, const QString& value,
                   lxw_format* format) {
    if (value.isEmpty()) return;
    worksheet_write_string(ws, row, column, value.toUtf8().constData(), format);
  }

  lxw_workbook* m_workbook;
  lxw_format* m_header = nullptr;
  lxw_format* m_label = nullptr;
  lxw_format* m_row = nullptr;
  lxw_format* m_total = nullptr;
  lxw_format* m_date = nullptr;
};

}  // namespace

std::optional<QuantitySheetFormat> QuantitySheetFormatOf(const QString& path) {
  const QString suffix = QFileInfo(path).suffix();
  if (suffix.compare(QLatin1String("xlsx"), Qt::CaseInsensitive) == 0)
    return QuantitySheetFormat::Xlsx;
  if (suffix.compare(QLatin1String("csv"), Qt::CaseInsensitive) == 0)
    return QuantitySheetFormat::Csv;
  return std::nullopt;
}

std::optional<QuantitySheet> CollectQuantitySheet(EngineSession& session) {
  QuantitySheet sheet;
  sheet.SectionID = session.sectionId();
  sheet.ExecutedLevels = session.useExecutedLevel();
  readParticulars(session, sheet);

  // The run shows its progress only while it fills a grid; the rows come as numbers through
  // onRow, so the texts of this grid are not needed.
  MemoryReportGrid grid;
  ComputeQuantities(session, &grid, -1.0f,
                    [&sheet](const QuantityRow& row) { sheet.Rows.push_back(row); });
  const QuantityRunState& run = session.quantityRun();
  if (!run.Computed || run.Cancelled) return std::nullopt;
  sheet.TotalCutVolume = run.TotalCutVolume;
  sheet.TotalFillVolume = run.TotalFillVolume;
  sheet.Date = QDate::currentDate();
  return sheet;
}

QByteArray QuantitySheetCsv(const QuantitySheet& sheet) {
  const QLatin1Char comma(',');
  auto optional = [](const std::optional<float>& value) {
    return value ? db::floatText(*value) : QString();
  };
  QString text = QuantitySummaryHeaders().join(comma) + kLineEnd;
  for (const QuantityRow& row : sheet.Rows)
    text += db::floatText(row.Chainage) + comma + db::floatText(row.CutArea) + comma +
            db::floatText(row.FillArea) + comma + optional(row.CutVolume) + comma +
            optional(row.FillVolume) + kLineEnd;
  text += QString(3, comma) + db::floatText(sheet.TotalCutVolume) + comma +
          db::floatText(sheet.TotalFillVolume) + kLineEnd;
  return text.toUtf8();
}

QString WriteQuantitySheetCsv(const QuantitySheet& sheet, const QString& path) {
  return writeWhole(path, QuantitySheetCsv(sheet));
}

QString WriteQuantitySheetXlsx(const QuantitySheet& sheet, const QString& path) {
  // The library writes to a file name of its own; it builds the workbook in a scratch folder
  // and the finished bytes go to path in one piece.
  QTemporaryDir scratch;
  if (!scratch.isValid())
    return cannotWrite(path, QStringLiteral("no temporary folder could be made (") +
                                 scratch.errorString() + QLatin1Char(')'));
  const QString scratchFile = scratch.filePath(QStringLiteral("quantity.xlsx"));
  const QByteArray scratchName = QFile::encodeName(scratchFile);
  QByteArray scratchDir = QFile::encodeName(scratch.path());
  lxw_workbook_options options = {};
  options.tmpdir = scratchDir.data();
  lxw_workbook* workbook = workbook_new_opt(scratchName.constData(), &options);
  if (!workbook) return cannotWrite(path, QStringLiteral("the workbook could not be started"));

  QByteArray title = QByteArrayLiteral("Quantity Summary");
  QByteArray subject = sheet.SectionDescription.toUtf8();
  lxw_doc_properties properties = {};
  properties.title = title.data();
  properties.subject = subject.data();
  workbook_set_properties(workbook, &properties);

  Workbook book(workbook);
  book.addSummary(sheet);
  book.addSection(sheet);
  const lxw_error error = workbook_close(workbook);
  if (error != LXW_NO_ERROR) return cannotWrite(path, QString::fromUtf8(lxw_strerror(error)));

  QFile made(scratchFile);
  if (!made.open(QIODevice::ReadOnly)) return cannotWrite(path, made.errorString());
  return writeWhole(path, made.readAll());
}

QString WriteQuantitySheet(const QuantitySheet& sheet, const QString& path,
                           QuantitySheetFormat format) {
  return format == QuantitySheetFormat::Xlsx ? WriteQuantitySheetXlsx(sheet, path)
                                             : WriteQuantitySheetCsv(sheet, path);
}

QuantityExportResult ExportQuantitySheet(EngineSession& session, const QString& path,
                                         QuantitySheetFormat format) {
  QuantityExportResult result;
  if (db::isSameFile(path, session.connection().path())) {
    result.status = QuantityExportResult::Status::CannotWrite;
    result.message = cannotWrite(path, QStringLiteral("it is the open project file"));
    return result;
  }
  const std::optional<QuantitySheet> sheet = CollectQuantitySheet(session);
  if (!sheet) {
    result.status = session.quantityRun().Cancelled
                        ? QuantityExportResult::Status::Cancelled
                        : QuantityExportResult::Status::StoppedByInvalidLevels;
    return result;
  }
  result.rowCount = static_cast<int>(sheet->Rows.size());

  Reporter& reporter = session.reporter();
  reporter.progressStart(
      QStringLiteral("Writing ") + QFileInfo(path).fileName() + QStringLiteral("..."), 0, false);
  result.message = WriteQuantitySheet(*sheet, path, format);
  reporter.progressEnd();
  if (!result.message.isEmpty()) result.status = QuantityExportResult::Status::CannotWrite;
  return result;
}

}  // namespace engine
