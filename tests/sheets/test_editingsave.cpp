#include "tests/qtestmain.h"

#include "db/connection.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/sheetcontext.h"
#include "sheets/sheetediting.h"
#include "tests/testsupport.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>

namespace {

constexpr int kRows = 10000;

// A project whose section 1 holds kRows Initial readings, opened in a data sheet with
// AutoSave on; column 0 of the sheet is Chainage.
struct BigSheet {
  BigSheet() {
    db::Connection& connection = project.create();
    {
      db::Transaction transaction(connection);
      auto insert = connection.prepare(QStringLiteral(
          "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?, 0, 100, 1)"));
      for (int i = 0; i < kRows; ++i) {
        insert.bindDouble(1, i).run();
        insert.reset();
      }
      transaction.commit();
    }
    context.connection = [this] { return &project.connection(); };
    context.sectionId = [] { return 1; };
    context.autoSave = [] { return true; };
    context.message = [](QWidget*, const QString& text, const QString&, sheets::MessageButtons,
                         sheets::MessageIcon) {
      qWarning("message box: %s", qPrintable(text));
      return sheets::MessageAnswer::Ok;
    };
    sheet = std::make_unique<sheets::frmDataGrid>(context);
    sheet->strSheetQuery = QStringLiteral(
        "SELECT Chainage, Offset, [Level], ID FROM Initial WHERE SectionID = <paramSectionID> "
        "ORDER BY ID");
    sheet->rsConPtr = &project.connection();
    sheet->load();
  }

  double storedLevelSum() {
    return project.connection()
        .scalar(QStringLiteral("SELECT SUM([Level]) FROM Initial"))
        .value_or(-1);
  }

  testsupport::TempProject project;
  sheets::SheetContext context;
  std::unique_ptr<sheets::frmDataGrid> sheet;
};

}  // namespace

class TestEditingSave : public QObject {
  Q_OBJECT

 private slots:
  void pasteOfTenThousandRowsSavesInOneGo();
  void transformOfTenThousandRowsSavesInOneGo();
};

void TestEditingSave::pasteOfTenThousandRowsSavesInOneGo() {
  BigSheet s;
  sheets::GridControl& grid = s.sheet->grid();
  QCOMPARE(grid.Rows(), kRows);
  QString text;
  for (int i = 0; i < kRows; ++i) text += QStringLiteral("101\r\n");
  QApplication::clipboard()->setText(text);
  grid.SetCurrentCell(0, 2);

  s.sheet->HandleMenuEvent(sheets::frmDataGrid::kPaste);
  QVERIFY(!s.sheet->isDirty());
  QCOMPARE(s.storedLevelSum(), 101.0 * kRows);

  s.sheet->HandleMenuEvent(sheets::frmDataGrid::kUndo);
  QCOMPARE(s.storedLevelSum(), 100.0 * kRows);
}

void TestEditingSave::transformOfTenThousandRowsSavesInOneGo() {
  BigSheet s;
  sheets::GridControl& grid = s.sheet->grid();
  grid.SetCurrentCell(0, 2);
  s.sheet->editing()->selectRange(0, 2, kRows - 1, 2);
  s.sheet->editing()->applyTransform({sheets::TransformRequest::Add, 1.5f});
  QVERIFY(!s.sheet->isDirty());
  QCOMPARE(s.storedLevelSum(), 101.5 * kRows);
}

DELVANE_QTEST(TestEditingSave)

#include "test_editingsave.moc"
