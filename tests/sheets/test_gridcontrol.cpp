#include "tests/qtestmain.h"

#include "db/resultset.h"
#include "sheets/gridcontrol.h"
#include "tests/sheets/sheetsfixture.h"

#include <QApplication>
#include <QHeaderView>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>

#include <memory>

using sheets::GridControl;

namespace {

// An unbound grid, shown, with the header "Hc" and the text "r,c" in every cell.
std::unique_ptr<GridControl> reportGrid(int cols, int rows, QSize size = QSize(400, 300)) {
  auto grid = std::make_unique<GridControl>();
  grid->resize(size);
  grid->Cols(cols);
  grid->SetRowCount(rows);
  for (int c = 0; c < cols; ++c) {
    grid->Text(-1, c, QStringLiteral("H%1").arg(c));
    for (int r = 0; r < rows; ++r) grid->Text(r, c, QStringLiteral("%1,%2").arg(r).arg(c));
  }
  grid->show();
  return grid;
}

QPoint sectionCentre(QHeaderView* header, int section) {
  const int along = header->sectionViewportPosition(section) + header->sectionSize(section) / 2;
  return header->orientation() == Qt::Horizontal ? QPoint(along, header->height() / 2)
                                                 : QPoint(header->width() / 2, along);
}

}  // namespace

class TestGridControl : public QObject {
  Q_OBJECT

 private slots:
  void colWidthAtOrPastColsChangesNothing() {
    auto grid = reportGrid(3, 2);
    for (int c = 0; c < 3; ++c) grid->ColWidth(c, 50 + c);
    for (int c : {3, 10, -5}) grid->ColWidth(c, 120);
    QCOMPARE(grid->Cols(), 3);
    for (int c = 0; c < 3; ++c) QCOMPARE(grid->ColWidth(c), 50 + c);
  }

  void setRowCountZeroLeavesHeaderAndNoRows() {
    auto grid = reportGrid(5, 4);
    grid->CellBold(3, 1, true);
    grid->SetRowCount(0);
    QCOMPARE(grid->Rows(), 0);
    QCOMPARE(grid->Cols(), 5);
    QCOMPARE(grid->Text(-1, 4), QStringLiteral("H4"));
    // Rows made again start empty: nothing of the old rows comes back.
    grid->SetRowCount(4);
    QCOMPARE(grid->Text(3, 1), QString());
    QVERIFY(!grid->CellBold(3, 1));
  }

  void headerClicksSelectWholeRowsOrColumns_data() {
    QTest::addColumn<QList<int>>("sections");  // >= 100: row header 100 + row, else column
    QTest::addColumn<QList<int>>("modifiers");
    QTest::addColumn<QList<int>>("expectedRows");
    QTest::addColumn<QList<int>>("expectedCols");
    const int ctrl = static_cast<int>(Qt::ControlModifier);
    const int shift = static_cast<int>(Qt::ShiftModifier);
    using L = QList<int>;
    QTest::newRow("one column") << L{2} << L{0} << L{} << L{2};
    QTest::newRow("click replaces") << L{2, 1} << L{0, 0} << L{} << L{1};
    QTest::newRow("ctrl adds") << L{3, 1} << L{0, ctrl} << L{} << L{1, 3};
    QTest::newRow("ctrl toggles off") << L{3, 1, 3} << L{0, ctrl, ctrl} << L{} << L{1};
    QTest::newRow("shift extends") << L{1, 3} << L{0, shift} << L{} << L{1, 2, 3};
    QTest::newRow("rows") << L{104, 101} << L{0, ctrl} << L{1, 4} << L{};
    QTest::newRow("rows shift upwards") << L{106, 103} << L{0, shift} << L{3, 4, 5, 6} << L{};
    QTest::newRow("row clears columns") << L{2, 105} << L{0, 0} << L{5} << L{};
  }
  void headerClicksSelectWholeRowsOrColumns() {
    QFETCH(QList<int>, sections);
    QFETCH(QList<int>, modifiers);
    QFETCH(QList<int>, expectedRows);
    QFETCH(QList<int>, expectedCols);
    auto grid = reportGrid(4, 8, QSize(500, 400));
    grid->SetCurrentCell(7, 0);
    QSignalSpy clicks(grid.get(), &GridControl::cellClicked);
    QSignalSpy current(grid.get(), &GridControl::currentCellChanged);
    for (int i = 0; i < sections.size(); ++i) {
      QHeaderView* header = sections[i] >= 100 ? grid->rowHeader() : grid->columnHeader();
      QTest::mouseClick(header->viewport(), Qt::LeftButton,
                        Qt::KeyboardModifiers::fromInt(modifiers[i]),
                        sectionCentre(header, sections[i] % 100));
    }
    QList<int> rows;
    for (int i = 1; i <= grid->SelectedRowCount(); ++i) rows.append(grid->SelectedRow(i));
    QList<int> cols;
    for (int i = 1; i <= grid->SelectedColCount(); ++i) cols.append(grid->SelectedCol(i));
    QCOMPARE(rows, expectedRows);
    QCOMPARE(cols, expectedCols);
    QCOMPARE(grid->SelectedIndex(1),
             expectedRows.isEmpty() ? expectedCols.value(0, -1) : expectedRows.value(0));
    // Header clicks report the header cell and leave the current cell alone.
    QCOMPARE(clicks.size(), sections.size());
    const int lastSection = sections.last();
    QCOMPARE(clicks.last().at(0).toInt(), lastSection >= 100 ? lastSection - 100 : -1);
    QCOMPARE(clicks.last().at(1).toInt(), lastSection >= 100 ? -1 : lastSection);
    QCOMPARE(current.size(), 0);
    QCOMPARE(grid->Row(), 7);
    grid->ClearSelection();
    QCOMPARE(grid->SelectedIndex(1), -1);
  }

  void aClickOnACellEndsAHeaderSelection_data() {
    QTest::addColumn<bool>("rowHeader");
    QTest::newRow("row") << true;
    QTest::newRow("column") << false;
  }
  void aClickOnACellEndsAHeaderSelection() {
    QFETCH(bool, rowHeader);
    auto grid = reportGrid(4, 8);
    QHeaderView* header = rowHeader ? grid->rowHeader() : grid->columnHeader();
    QTest::mouseClick(header->viewport(), Qt::LeftButton, {}, sectionCentre(header, 2));
    QCOMPARE(grid->SelectedIndex(1), 2);
    QTest::mouseClick(grid->cellArea(), Qt::LeftButton, {}, grid->cellRect(5, 1).center());
    QCOMPARE(grid->SelectedRowCount() + grid->SelectedColCount(), 0);
    QCOMPARE(QPoint(grid->Col(), grid->Row()), QPoint(1, 5));
  }

  void deletingScatteredRowsMovesTheRestUpWithTheirFormats() {
    auto grid = reportGrid(2, 8);
    grid->CellBold(5, 1, true);
    grid->RowForeColor(7, sheets::RGB(255, 0, 0));
    grid->SelectRow(6);
    grid->deleteRows({4, 1, 3, 9});
    QStringList rows;
    for (int r = 0; r < grid->Rows(); ++r) rows.append(grid->Text(r, 0));
    QCOMPARE(rows.join(QLatin1Char(' ')), QStringLiteral("0,0 2,0 5,0 6,0 7,0"));
    QVERIFY(grid->CellBold(2, 1) && !grid->CellBold(5, 1));
    QCOMPARE(grid->RowForeColor(4), sheets::RGB(255, 0, 0));
    QCOMPARE(grid->SelectedRow(1), 3);
  }

  void clicksReportTheCellAndDoubleClicksTheHeaderSide() {
    auto grid = reportGrid(4, 8);
    QSignalSpy clicks(grid.get(), &GridControl::cellClicked);
    QTest::mouseClick(grid->cellArea(), Qt::LeftButton, {}, grid->cellRect(2, 1).center());
    QCOMPARE(QPoint(grid->Col(), grid->Row()), QPoint(1, 2));
    QCOMPARE(clicks.value(0), (QList<QVariant>{2, 1}));
    QSignalSpy doubles(grid.get(), &GridControl::doubleClicked);
    QTest::mouseDClick(grid->cellArea(), Qt::LeftButton, {}, grid->cellRect(3, 2).center());
    QTest::mouseDClick(grid->rowHeader()->viewport(), Qt::LeftButton, {},
                       sectionCentre(grid->rowHeader(), 5));
    QTest::mouseDClick(grid->columnHeader()->viewport(), Qt::LeftButton, {},
                       sectionCentre(grid->columnHeader(), 1));
    QCOMPARE(static_cast<QList<QList<QVariant>>>(doubles),
             (QList<QList<QVariant>>{{3, 2}, {5, -1}, {-1, 1}}));
  }

  void topAndBottomRowScrollAndTheWheelIsLeftToTheWindow() {
    auto grid = reportGrid(3, 200, QSize(300, 250));
    QTest::qWait(1);
    QWheelEvent wheel(QPointF(20, 20), grid->cellArea()->mapToGlobal(QPointF(20, 20)), QPoint(),
                      QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(grid->cellArea(), &wheel);
    QCOMPARE(grid->TopRow(), 0);

    const int visible = grid->BottomRow() - grid->TopRow() + 1;
    QVERIFY(visible > 2 && visible < 200);
    grid->TopRow(50);
    QCOMPARE(grid->BottomRow(), 50 + visible - 1);
    grid->BottomRow(120);
    QCOMPARE(grid->TopRow(), 120 - visible + 1);
  }

  void colWidthPercentFollowsGridWidth() {
    auto grid = reportGrid(2, 3, QSize(400, 200));
    grid->ColWidthPercent(0, 50);
    QCOMPARE(grid->ColWidth(0), grid->cellArea()->width() / 2);
    grid->resize(600, 200);
    QTest::qWait(1);
    QCOMPARE(grid->ColWidth(0), grid->cellArea()->width() / 2);
    grid->ColWidth(0, 80);  // a width in pixels ends the share
    grid->resize(500, 200);
    QCOMPARE(grid->ColWidth(0), 80);
  }

  void frozenFirstColumnStaysInViewWhenScrolledSideways() {
    auto grid = reportGrid(10, 20, QSize(300, 200));
    grid->ColWidth(-1, 100);
    grid->FrozenCols(1);
    grid->Frozen(true);
    grid->SetCurrentCell(3, 9);
    QTest::qWait(1);
    QTableView* overlay = nullptr;
    for (QTableView* view : grid->findChildren<QTableView*>())
      if (view->viewport() != grid->cellArea()) overlay = view;
    QVERIFY(overlay && overlay->isVisible());
    QVERIFY(!overlay->isColumnHidden(0));
    QVERIFY(overlay->isColumnHidden(1));
    QCOMPARE(overlay->width(), 100);
    QCOMPARE(overlay->verticalScrollBar()->value(), grid->TopRow());
    // The last column was scrolled into view beside the overlay, not under it.
    QVERIFY(grid->cellRect(3, 0).left() < 0);
    QVERIFY(grid->cellRect(3, 9).left() >= 100);
    grid->Frozen(false);
    QVERIFY(!overlay->isVisible());
  }

  void headerColourShowsTheLockedOrRaisedStyle() {
    auto grid = reportGrid(3, 4);
    const auto headerColour = [model = grid->columnHeader()->model()] {
      return model->headerData(1, Qt::Horizontal, Qt::BackgroundRole).value<QColor>();
    };
    grid->CellBackColor(-1, 1, sheets::RGB(255, 102, 51));
    QCOMPARE(headerColour(), QColor(255, 102, 51));
    grid->CellStyle(-1, 1, GridControl::kStyleRaised);
    grid->CellStyleColor(-1, 1, sheets::RGB(255, 162, 130));
    QCOMPARE(headerColour(), QColor(255, 162, 130));
    QCOMPARE(sheets::RGB(0, 128, 192), 0xC08000u);
  }

  void boundGridShowsWritesAndDeletesRecords() {
    sheetstest::SheetsFixture fixture(false);
    db::Connection& connection = fixture.connection();
    fixture.writeInitialRows(15);
    db::ResultSet set;
    set.open(connection, QStringLiteral("SELECT Chainage, Offset, [Level], ID from Initial "
                                        "WHERE [SectionID]=1 ORDER BY Chainage, Offset, ID"));
    GridControl grid;
    grid.resize(400, 300);
    grid.DataSource(&set);
    grid.show();
    QCOMPARE(grid.Cols(), 4);
    QCOMPARE(grid.Rows(), 15);
    grid.DeleteCols(grid.Cols() - 1, 1);
    QCOMPARE(grid.Text(-1, 2), QStringLiteral("Level"));
    QCOMPARE(grid.Text(4, 0) + ' ' + grid.Text(4, 2), QStringLiteral("0.1 104"));

    grid.Text(4, 2, QStringLiteral("101.25"));
    grid.UpdateRow(4);
    QCOMPARE(fixture.initialAt(4), 101.25);

    grid.ColWidth(0, 77);
    grid.SelectRow(0);
    grid.SelectRow(3, true);
    grid.DeleteRow(0);
    QCOMPARE(grid.Rows(), 14);
    QCOMPARE(grid.SelectedRow(1), 2);  // the selection moves up with its row
    QCOMPARE(fixture.initialAt(0), -1.0);

    // A filter and Refresh change the rows but keep the columns as laid out and the current
    // cell, without announcing it.
    grid.SetCurrentCell(5, 1);
    QSignalSpy current(&grid, &GridControl::currentCellChanged);
    set.setFilter(QStringLiteral("[Offset] > '8'"));
    grid.Refresh();
    QCOMPARE(grid.Rows(), 6);
    QCOMPARE(grid.Cols(), 3);
    QCOMPARE(grid.ColWidth(0), 77);
    QCOMPARE(grid.Text(0, 1), QStringLiteral("9"));
    QCOMPARE(QPoint(grid.Col(), grid.Row()), QPoint(1, 5));
    QCOMPARE(current.size(), 0);
  }
};

DELVANE_QTEST(TestGridControl)
#include "test_gridcontrol.moc"
