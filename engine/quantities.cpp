#include "engine/quantities.h"

#include "db/numbers.h"
#include "engine/areas.h"
#include "engine/designsection.h"
#include "engine/numberformat.h"
#include "engine/numbertext.h"
#include "engine/numbertext.h"
#include "engine/progress.h"
#include "engine/session.h"
#include "engine/statementcache.h"
#include "engine/validation.h"

#include <QTime>

namespace engine {

namespace {

// The clock the run's duration is measured with: seconds since midnight.
float secondsSinceMidnight() {
  return static_cast<float>(QTime::currentTime().msecsSinceStartOfDay() / 1000.0);
}

// Makes sure row exists before it is written.
void ensureRow(ReportGrid& sheet, int row) {
  if (sheet.RowCount() < row + 1) sheet.SetRowCount(row + 1);
}

// The stretch from the previous chainage up to this one by the average-end-area rule, in m³
// (chainages in km).
float stretchVolume(float previousChainage, float chainage, float previousArea, float area) {
  const double length = (static_cast<double>(chainage) - previousChainage) * 1000.0;
  return static_cast<float>(length * (static_cast<double>(previousArea) + area) / 2.0);
}

}  // namespace

QStringList QuantitySummaryHeaders() {
  return {QStringLiteral("Chainage"), QStringLiteral("Cut Area"), QStringLiteral("Fill Area"),
          QStringLiteral("Cut Volume"), QStringLiteral("Fill Volume")};
}

QStringList AreaCalculationHeaders() {
  return {QStringLiteral("Offset"),
          QStringLiteral("OGL"),
          QStringLiteral("Design Level"),
          QStringLiteral("Depth of Cut"),
          QStringLiteral("Depth of Fill"),
          QStringLiteral("Avg Depth of Cut"),
          QStringLiteral("Avg Depth of Fill"),
          QStringLiteral("Horiz Distance"),
          QStringLiteral("Cut Area"),
          QStringLiteral("Fill Area")};
}

void ComputeQuantities(EngineSession& session, ReportGrid* sheet, float chainage,
                       const std::function<void(const QuantityRow&)>& onRow) {
  QuantityRunState& run = session.quantityRun();
  if (run.Running) return;
  Reporter& reporter = session.reporter();
  db::Connection& connection = session.connection();
  const NumberSymbols& symbols = session.numberSymbols();
  struct RunningFlag {
    bool& flag;
    explicit RunningFlag(bool& f) : flag(f) { flag = true; }
    ~RunningFlag() { flag = false; }
  } running(run.Running);

  const float startTime = secondsSinceMidnight();
  run.TotalCutVolume = 0.0f;
  run.TotalFillVolume = 0.0f;
  run.Computed = false;
  run.Cancelled = false;
  run.RowCount = 0;
  session.areas().ReportedColumns.clear();

  ResetDesignCache(session);

  int n = 0;
  {
    StatementUse count(
        cachedStatement(run.countRows, connection,
                        QStringLiteral("SELECT Count(*) FROM DesignQty WHERE SectionID=?"),
                        QStringLiteral("Counting the quantity chainages")));
    count->bindKey(1, session.sectionId());
    if (count->step()) n = count->key(0);
  }

  if (ValidateLevels(session, -1.0f)) return;
  run.Computed = true;

  std::optional<ProgressScope> progress;
  if (sheet) {
    reporter.progressStart(QStringLiteral("Quantity..."), n, true);
    progress.emplace(reporter);
  }

  // One transaction for the whole run: the areas of every chainage are written at once.
  db::Savepoint writes(connection, QStringLiteral("quantity_run"));
  float previousChainage = -1.0f;
  float previousCut = 0.0f;
  float previousFill = 0.0f;
  int row = 0;
  {
    StatementUse rows(cachedStatement(
        run.readRows, connection,
        QStringLiteral("SELECT Chainage, AreaCut, AreaFill FROM DesignQty WHERE SectionID=? "
                       "ORDER BY Chainage"),
        QStringLiteral("Reading the quantity chainages")));
    rows->bindKey(1, session.sectionId());
    while (rows->step()) {
      float c = rows->measure(0);
      if (sheet) {
        reporter.progressStart(
            QStringLiteral("Chainage : ") + db::floatText(c) + QStringLiteral("..."), 0, true);
        reporter.progressValue(row);
      }
      float cutArea = 0.0f;
      float fillArea = 0.0f;
      if (chainage == -1.0f || chainage == c) {
        ComputeSectionAreas(session, c);
        cutArea = session.areas().Area[0];
        fillArea = session.areas().Area[1];
      } else {
        cutArea = rows->measure(1);  // null (never computed) reads as 0
        fillArea = rows->measure(2);
      }

      QuantityRow out{c, cutArea, fillArea, std::nullopt, std::nullopt};
      if (sheet) {
        ensureRow(*sheet, row);
        sheet->setText(row, 0, formatNumber(c, 3, symbols));
        sheet->setText(row, 1, formatNumber(cutArea, 3, symbols));
        sheet->setText(row, 2, formatNumber(fillArea, 3, symbols));
      }
      if (previousChainage >= 0.0f) {
        const float cutVolume = stretchVolume(previousChainage, c, previousCut, cutArea);
        const float fillVolume = stretchVolume(previousChainage, c, previousFill, fillArea);
        run.TotalCutVolume += cutVolume;
        run.TotalFillVolume += fillVolume;
        out.CutVolume = cutVolume;
        out.FillVolume = fillVolume;
        if (sheet) {
          sheet->setText(row, 3, formatNumber(cutVolume, 3, symbols));
          sheet->setText(row, 4, formatNumber(fillVolume, 3, symbols));
        }
      }
      if (onRow) onRow(out);

      previousChainage = c;
      previousCut = cutArea;
      previousFill = fillArea;
      ++row;
      if (sheet) sheet->SetRowCount(row + 1);
      reporter.processEvents();
      if (reporter.cancelled()) {
        run.Cancelled = true;
        break;
      }
    }
  }
  writes.release();
  run.RowCount = row;
  progress.reset();

  if (run.Cancelled) {
    reporter.statusText(1, QStringLiteral("Quantity run cancelled after %1 of %2 chainages.")
                               .arg(formatNumber(row, 0, symbols), formatNumber(n, 0, symbols)));
    reporter.statusText(2, QString());
    reporter.statusText(3, QString());
    return;
  }

  if (sheet) {
    ensureRow(*sheet, row);
    sheet->setText(row, 3, formatNumber(run.TotalCutVolume, 2, symbols));
    sheet->setText(row, 4, formatNumber(run.TotalFillVolume, 2, symbols));
    sheet->setCellBold(row, 3, true);
    sheet->setCellBold(row, 4, true);
  }

  reporter.statusText(1, QStringLiteral("Cutting Volume : ") +
                             formatNumber(run.TotalCutVolume, 2, symbols) + QStringLiteral(" cum"));
  reporter.statusText(2, QStringLiteral("Filling Volume : ") +
                             formatNumber(run.TotalFillVolume, 2, symbols) +
                             QStringLiteral(" cum"));
  // A single's text: seven significant digits ("0.1992188"), not every digit of its binary
  // fraction ("0.19921875").
  reporter.statusText(3, QStringLiteral("Time : ") +
                             generalText7(secondsSinceMidnight() - startTime) +
                             QStringLiteral(" secs"));
}

void FillAreaDetails(EngineSession& session, float chainage, ReportGrid& sheet) {
  AreaState& st = session.areas();
  const NumberSymbols& symbols = session.numberSymbols();
  const bool executed = session.useExecutedLevel();
  st.ReportedColumns.clear();

  ComputeSectionAreas(session, chainage);

  const AreaDetailsTable& t = st.Table;
  const int n = st.RowCount;
  sheet.SetRowCount(n + 2);
  auto put = [&sheet, &symbols](int row, int column, float value) {
    sheet.setText(row, column, formatNumber(value, 3, symbols));
  };
  for (int r = 0; r <= n; ++r) {
    if (!t.isEmpty(r, kColDistance)) put(r, 0, t.value(r, kColDistance));
    if (t.value(r, kColOGL) > 0.0f) put(r, 1, t.value(r, kColOGL));
    if (t.value(r, kColDesignLevel) > 0.0f) put(r, 2, t.value(r, kColDesignLevel));
    if (executed) {
      if (t.value(r, kColExecutedLevel) > 0.0f) put(r, 10, t.value(r, kColExecutedLevel));
      for (int c = 11; c <= 18; ++c)
        if (t.value(r, c) != 0.0f) put(r, c, t.value(r, c));
    }
    for (int c = 4; c <= 10; ++c)
      if (t.value(r, c) != 0.0f) put(r, c - 1, t.value(r, c));
  }
  auto total = [&](int column, float value) {
    put(n + 1, column, value);
    sheet.setCellBold(n + 1, column, true);
  };
  total(8, st.Area[0]);
  total(9, st.Area[1]);
  if (executed)
    for (int slot = 2; slot <= 5; ++slot) total(13 + slot, st.Area[slot]);
}

}  // namespace engine
