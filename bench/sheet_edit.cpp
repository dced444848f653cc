// Times the edits that rewrite many rows of a data sheet at once, each saved by AutoSave in one
// transaction: a paste of a column of levels, its undo, and a transform of the same range.
// Usage: sheet_edit [rows]   (default 10000; run with QT_QPA_PLATFORM=offscreen if headless)
#include "db/connection.h"
#include "db/project.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/sheetcontext.h"
#include "sheets/sheetediting.h"

#include <QApplication>
#include <QClipboard>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

double ms(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const int rows = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 10000;
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("bench.delvane"));
  db::createProject(path, false);
  std::unique_ptr<db::Connection> connection = db::openProject(path);
  {
    db::Transaction transaction(*connection);
    auto insert = connection->prepare(QStringLiteral(
        "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?, 0, 100, 1)"));
    for (int i = 0; i < rows; ++i) {
      insert.bindMeasure(1, static_cast<float>(i) * 0.02f).run();
      insert.reset();
    }
    transaction.commit();
  }

  sheets::SheetContext context;
  context.connection = [&] { return connection.get(); };
  context.sectionId = [] { return 1; };
  context.autoSave = [] { return true; };
  context.message = [](QWidget*, const QString& text, const QString&, sheets::MessageButtons,
                       sheets::MessageIcon) {
    std::fprintf(stderr, "unexpected message: %s\n", qPrintable(text));
    return sheets::MessageAnswer::Ok;
  };
  sheets::frmDataGrid sheet(context);
  sheet.strSheetQuery = QStringLiteral(
      "SELECT Chainage, Offset, [Level], ID from Initial WHERE [SectionID]=<paramSectionID> "
      "ORDER BY Chainage, Offset, ID");
  sheet.rsConPtr = connection.get();
  sheet.load();

  QString text;
  for (int i = 0; i < rows; ++i) text += QStringLiteral("101.25\r\n");
  QApplication::clipboard()->setText(text);
  sheet.grid().SetCurrentCell(0, 2);

  QElapsedTimer timer;
  timer.start();
  sheet.HandleMenuEvent(sheets::frmDataGrid::kPaste);
  const double pasteMs = ms(timer);
  timer.restart();
  sheet.HandleMenuEvent(sheets::frmDataGrid::kUndo);
  const double undoMs = ms(timer);
  sheet.editing()->selectRange(0, 2, rows - 1, 2);
  timer.restart();
  sheet.editing()->applyTransform({sheets::TransformRequest::Add, 0.5f});
  const double transformMs = ms(timer);

  const double sum =
      connection->scalar(QStringLiteral("SELECT SUM([Level]) FROM Initial")).value_or(0);
  std::printf(
      "rows %d: paste and save %.0f ms, undo and save %.0f ms, transform and save %.0f ms\n", rows,
      pasteMs, undoMs, transformMs);
  std::printf("check: stored levels sum to %.2f (expected %.2f)\n", sum, 100.5 * rows);
  return sheet.isDirty() ? 1 : 0;
}
