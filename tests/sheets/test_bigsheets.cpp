#include "tests/qtestmain.h"

#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "tests/sheets/sheetsfixture.h"

#include <QApplication>
#include <QClipboard>
#include <QTest>

using sheets::frmDataGrid;
using sheets::GridControl;

namespace {

constexpr int kLevelCol = 2;

}  // namespace

class TestBigSheets : public QObject {
  Q_OBJECT

 private slots:
  // Rows past 32,767 are reached by the keys, the clear, the undo and the clipboard alike.
  void rangeEditsReachRowsPastTheSixteenBitLimit() {
    const int rows = 40000;
    sheetstest::SheetsFixture fixture(false);
    fixture.writeInitialRows(rows);
    auto sheet = fixture.openSheet();
    sheet->show();
    GridControl& grid = sheet->grid();
    QWidget* view = grid.cellArea()->parentWidget();
    // The offsets of the readings without a level, as stored.
    const auto cleared = [&fixture] {
      db::Statement query = fixture.connection().prepare(
          QStringLiteral("SELECT Offset FROM Initial WHERE [Level] IS NULL ORDER BY Offset"));
      QStringList offsets;
      while (query.step()) offsets.append(query.text(0));
      return offsets.join(QLatin1Char(' '));
    };
    grid.SetCurrentCell(0, kLevelCol);

    QTest::keyClick(view, Qt::Key_End, Qt::ControlModifier);
    QTest::keyClick(view, Qt::Key_Up, Qt::ShiftModifier);
    QTest::keyClick(view, Qt::Key_Delete);
    sheet->HandleMenuEvent(frmDataGrid::kSave);
    QCOMPARE(cleared(), QStringLiteral("39998 39999"));

    sheet->HandleMenuEvent(frmDataGrid::kUndo);
    sheet->HandleMenuEvent(frmDataGrid::kSave);
    QCOMPARE(cleared(), QString());
    QCOMPARE(fixture.initialAt(rows - 1), 100.0 + rows - 1);

    QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
    sheet->HandleMenuEvent(frmDataGrid::kCopy);
    QCOMPARE(QApplication::clipboard()->text(), QStringLiteral("40098\r\n40099"));
  }
};

DELVANE_QTEST(TestBigSheets)
#include "test_bigsheets.moc"
