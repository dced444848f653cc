#include "db/connection.h"
#include "db/resultset.h"
#include "sheets/gridcontrol.h"
#include "tests/qtestmain.h"
#include "tests/testsupport.h"

#include <QApplication>
#include <QHeaderView>
#include <QLineEdit>
#include <QScrollBar>
#include <QSignalSpy>
#include <QTableView>
#include <QTest>
#include <QWheelEvent>

#include <memory>

using sheets::GridControl;

namespace {

// An unbound grid of cols columns and rows rows with the text "r,c" in every cell, shown.
std::unique_ptr<GridControl> reportGrid(int cols, int rows, QSize size = QSize(400, 300)) {
  auto grid = std::make_unique<GridControl>();
  grid->resize(size);
  grid->Cols(cols);
  grid->SetRowCount(rows);
  for (int c = 0; c < cols; ++c) grid->Text(-1, c, QStringLiteral("H") + QString::number(c));
  for (int r = 0; r < rows; ++r)
    for (int c = 0; c < cols; ++c)
      grid->Text(r, c, QString::number(r) + QLatin1Char(',') + QString::number(c));
  grid->show();
  return grid;
}

QPoint sectionCentre(QHeaderView* header, int section) {
  const int along = header->sectionViewportPosition(section) + header->sectionSize(section) / 2;
  return header->orientation() == Qt::Horizontal ? QPoint(along, header->height() / 2)
                                                 : QPoint(header->width() / 2, along);
}

void clickHeader(QHeaderView* header, int section, Qt::KeyboardModifiers modifiers = {}) {
  QTest::mouseClick(header->viewport(), Qt::LeftButton, modifiers, sectionCentre(header, section));
}

// Initial readings of section 1: chainage 0 to rows-1, offsets -5, 0, 5.
void writeInitial(db::Connection& connection, int chainages) {
  db::Transaction transaction(connection);
  db::Statement insert = connection.prepare(
      QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?,?,?,1)"));
  for (int ch = 0; ch < chainages; ++ch) {
    for (float offset : {-5.0f, 0.0f, 5.0f}) {
      insert.reset();
      insert.bindMeasure(1, static_cast<float>(ch) / 10.0f)
          .bindMeasure(2, offset)
          .bindMeasure(3, 100.0f + offset / 10.0f)
          .run();
    }
  }
  transaction.commit();
}

const QString kInitialQuery = QStringLiteral(
    "SELECT Chainage, Offset, [Level], ID from Initial WHERE [SectionID]=1 "
    "ORDER BY Chainage, Offset, ID");

}  // namespace

class TestGridControl : public QObject {
  Q_OBJECT

 private slots:
  void colWidthAtOrPastColsChangesNothing() {
    auto grid = reportGrid(3, 2);
    for (int c = 0; c < 3; ++c) grid->ColWidth(c, 50 + c);
    grid->ColWidth(3, 120);
    grid->ColWidth(10, 120);
    grid->ColWidth(-5, 120);
    QCOMPARE(grid->Cols(), 3);
    for (int c = 0; c < 3; ++c) QCOMPARE(grid->ColWidth(c), 50 + c);
    grid->ColWidth(-1, 60);
    for (int c = 0; c < 3; ++c) QCOMPARE(grid->ColWidth(c), 60);
  }

  void setRowCountZeroLeavesHeaderAndNoRows() {
    auto grid = reportGrid(5, 4);
    grid->CellBold(3, 1, true);
    grid->SetRowCount(0);
    QCOMPARE(grid->Rows(), 0);
    QCOMPARE(grid->Cols(), 5);
    for (int c = 0; c < 5; ++c)
      QCOMPARE(grid->Text(-1, c), QStringLiteral("H") + QString::number(c));
    // Rows made again start empty: nothing of the old rows comes back.
    grid->SetRowCount(4);
    QCOMPARE(grid->Text(3, 1), QString());
    QVERIFY(!grid->CellBold(3, 1));
  }

  void reportRowsGrowOneByOne() {
    auto grid = reportGrid(5, 0);
    for (int r = 0; r < 3; ++r) {
      grid->Text(r, 0, QString::number(r));  // beyond the rows: ignored
      grid->SetRowCount(r + 1);
      grid->Text(r, 0, QString::number(r));
    }
    grid->CellBold(2, 3, true);
    QCOMPARE(grid->Rows(), 3);
    QCOMPARE(grid->Text(2, 0), QStringLiteral("2"));
    QVERIFY(grid->CellBold(2, 3));
    QVERIFY(!grid->CellBold(2, 4));
  }

  void colsChangeKeepsRemainingCells() {
    auto grid = reportGrid(4, 3);
    grid->Cols(6);
    QCOMPARE(grid->Text(2, 3), QStringLiteral("2,3"));
    QCOMPARE(grid->Text(2, 5), QString());
    grid->DeleteCols(1, 2);
    QCOMPARE(grid->Cols(), 4);
    QCOMPARE(grid->Text(2, 0), QStringLiteral("2,0"));
    QCOMPARE(grid->Text(2, 1), QStringLiteral("2,3"));
    QCOMPARE(grid->Text(-1, 1), QStringLiteral("H3"));
  }

  void headerClicksSelectWholeRowsOrColumns_data() {
    QTest::addColumn<QList<int>>("sections");  // >= 100: row header 100 + row, else column
    QTest::addColumn<QList<int>>("modifiers");
    QTest::addColumn<QList<int>>("expectedRows");
    QTest::addColumn<QList<int>>("expectedCols");
    const int ctrl = static_cast<int>(Qt::ControlModifier);
    const int shift = static_cast<int>(Qt::ShiftModifier);
    QTest::newRow("one column") << QList<int>{2} << QList<int>{0} << QList<int>{} << QList<int>{2};
    QTest::newRow("click replaces")
        << QList<int>{2, 1} << QList<int>{0, 0} << QList<int>{} << QList<int>{1};
    QTest::newRow("ctrl adds") << QList<int>{3, 1} << QList<int>{0, ctrl} << QList<int>{}
                               << QList<int>{1, 3};
    QTest::newRow("ctrl toggles off")
        << QList<int>{3, 1, 3} << QList<int>{0, ctrl, ctrl} << QList<int>{} << QList<int>{1};
    QTest::newRow("shift extends")
        << QList<int>{1, 3} << QList<int>{0, shift} << QList<int>{} << QList<int>{1, 2, 3};
    QTest::newRow("rows") << QList<int>{104, 101} << QList<int>{0, ctrl} << QList<int>{1, 4}
                          << QList<int>{};
    QTest::newRow("rows shift upwards")
        << QList<int>{106, 103} << QList<int>{0, shift} << QList<int>{3, 4, 5, 6} << QList<int>{};
    QTest::newRow("row clears columns")
        << QList<int>{2, 105} << QList<int>{0, 0} << QList<int>{5} << QList<int>{};
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
      const auto mods = Qt::KeyboardModifiers::fromInt(modifiers[i]);
      if (sections[i] >= 100)
        clickHeader(grid->rowHeader(), sections[i] - 100, mods);
      else
        clickHeader(grid->columnHeader(), sections[i], mods);
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
    const QList<QVariant> last = clicks.last();
    const int lastSection = sections.last();
    QCOMPARE(last.at(0).toInt(), lastSection >= 100 ? lastSection - 100 : -1);
    QCOMPARE(last.at(1).toInt(), lastSection >= 100 ? -1 : lastSection);
    QCOMPARE(current.size(), 0);
    QCOMPARE(grid->Row(), 7);
    grid->ClearSelection();
    QCOMPARE(grid->SelectedRowCount(), 0);
    QCOMPARE(grid->SelectedColCount(), 0);
    QCOMPARE(grid->SelectedIndex(1), -1);
  }

  void cellClickReportsMouseAndCurrentCell() {
    auto grid = reportGrid(4, 8);
    QStringList events;
    connect(grid.get(), &GridControl::mouseDown, this,
            [&](int r, int c, Qt::MouseButtons, Qt::KeyboardModifiers) {
              events << QStringLiteral("down %1,%2").arg(r).arg(c);
            });
    connect(grid.get(), &GridControl::mouseUp, this,
            [&](int r, int c, Qt::MouseButtons, Qt::KeyboardModifiers) {
              events << QStringLiteral("up %1,%2").arg(r).arg(c);
            });
    connect(grid.get(), &GridControl::currentCellChanged, this,
            [&](int r, int c) { events << QStringLiteral("current %1,%2").arg(r).arg(c); });
    connect(grid.get(), &GridControl::cellClicked, this,
            [&](int r, int c) { events << QStringLiteral("click %1,%2").arg(r).arg(c); });
    QTest::mouseClick(grid->cellArea(), Qt::LeftButton, {}, grid->cellRect(2, 1).center());
    QCOMPARE(events, (QStringList{QStringLiteral("down 2,1"), QStringLiteral("current 2,1"),
                                  QStringLiteral("up 2,1"), QStringLiteral("click 2,1")}));
    QCOMPARE(grid->Row(), 2);
    QCOMPARE(grid->Col(), 1);
  }

  void doubleClickReportsCellOrHeader() {
    auto grid = reportGrid(4, 8);
    QSignalSpy spy(grid.get(), &GridControl::doubleClicked);
    QTest::mouseDClick(grid->cellArea(), Qt::LeftButton, {}, grid->cellRect(3, 2).center());
    QTest::mouseDClick(grid->rowHeader()->viewport(), Qt::LeftButton, {},
                       sectionCentre(grid->rowHeader(), 5));
    QTest::mouseDClick(grid->columnHeader()->viewport(), Qt::LeftButton, {},
                       sectionCentre(grid->columnHeader(), 1));
    QCOMPARE(spy.size(), 3);
    QCOMPARE(spy.at(0), (QList<QVariant>{3, 2}));
    QCOMPARE(spy.at(1), (QList<QVariant>{5, -1}));
    QCOMPARE(spy.at(2), (QList<QVariant>{-1, 1}));
  }

  void keyDownComesFirstAndCanTakeTheKey() {
    auto grid = reportGrid(4, 8);
    grid->SetCurrentCell(1, 1);
    bool take = true;
    QList<int> keys;
    connect(grid.get(), &GridControl::keyDown, this,
            [&](int key, Qt::KeyboardModifiers, bool& handled) {
              keys << key;
              handled = take;
            });
    QTest::keyClick(grid->cellArea()->parentWidget(), Qt::Key_Down);
    QCOMPARE(keys, QList<int>{Qt::Key_Down});
    QCOMPARE(grid->Row(), 1);  // taken: the grid did not move
    take = false;
    QTest::keyClick(grid->cellArea()->parentWidget(), Qt::Key_Down);
    QCOMPARE(grid->Row(), 2);  // left alone: the grid's own navigation
  }

  void printableKeyReachesKeyPressAfterKeyDown() {
    auto grid = reportGrid(4, 8);
    grid->SetCurrentCell(1, 1);
    QStringList order;
    connect(grid.get(), &GridControl::keyDown, this,
            [&](int, Qt::KeyboardModifiers, bool&) { order << QStringLiteral("down"); });
    connect(grid.get(), &GridControl::keyPress, this, [&](QChar c, bool& handled) {
      order << QStringLiteral("press ") + c;
      handled = true;
    });
    QTest::keyClick(grid->cellArea()->parentWidget(), Qt::Key_7, {});
    QCOMPARE(order, (QStringList{QStringLiteral("down"), QStringLiteral("press 7")}));
    QVERIFY(!grid->IsEditing());
  }

  void editorOpensEditsAndCloses() {
    auto grid = reportGrid(4, 8);
    grid->SetCurrentCell(2, 3);
    QSignalSpy opened(grid.get(), &GridControl::editorOpened);
    QSignalSpy closed(grid.get(), &GridControl::editorClosed);
    QSignalSpy changed(grid.get(), &GridControl::cellValueChanged);
    grid->CellState(2, 3, GridControl::kCellEditing);
    grid->Text(2, 3, QStringLiteral("4"));
    grid->BeginEdit();
    QVERIFY(grid->IsEditing());
    QCOMPARE(opened.size(), 1);
    QCOMPARE(opened.at(0), (QList<QVariant>{2, 3}));
    QCOMPARE(grid->CellState(2, 3), static_cast<int>(GridControl::kCellEditing));
    grid->CellSelStart(1);
    grid->CellSelLength(0);
    QCOMPARE(grid->CellSelStart(), 1);
    QCOMPARE(grid->CellSelLength(), 0);
    auto* editor = qobject_cast<QLineEdit*>(grid->editor());
    QVERIFY(editor);
    QCOMPARE(editor->text(), QStringLiteral("4"));
    QTest::keyClicks(editor, QStringLiteral("2.5"));
    grid->EndEdit();
    QVERIFY(!grid->IsEditing());
    QCOMPARE(grid->Text(2, 3), QStringLiteral("42.5"));
    QCOMPARE(changed.size(), 1);
    QCOMPARE(closed.size(), 1);
    QCOMPARE(closed.at(0), (QList<QVariant>{2, 3}));
    grid->CellState(2, 3, GridControl::kCellNormal);
    QCOMPARE(grid->CellState(2, 3), static_cast<int>(GridControl::kCellNormal));
  }

  void keysInOpenEditorReachKeyDownFirst() {
    auto grid = reportGrid(4, 8);
    grid->SetCurrentCell(0, 0);
    QList<int> keys;
    connect(grid.get(), &GridControl::keyDown, this,
            [&](int key, Qt::KeyboardModifiers, bool& handled) {
              keys << key;
              handled = key == Qt::Key_Return;
            });
    grid->BeginEdit();
    QWidget* editor = grid->editor();
    QVERIFY(editor);
    QTest::keyClick(editor, Qt::Key_Return);
    QVERIFY(grid->IsEditing());  // taken by the handler: the editor stays open
    QTest::keyClick(editor, Qt::Key_Escape);
    QCOMPARE(keys, (QList<int>{Qt::Key_Return, Qt::Key_Escape}));
    QVERIFY(!grid->IsEditing());  // left to the editor: Escape closes it
    QCOMPARE(grid->Text(0, 0), QStringLiteral("0,0"));
  }

  void topAndBottomRowScroll() {
    auto grid = reportGrid(3, 200, QSize(300, 250));
    QTest::qWait(1);
    const int visible = grid->BottomRow() - grid->TopRow() + 1;
    QVERIFY(visible > 2);
    QVERIFY(visible < 200);
    grid->TopRow(50);
    QCOMPARE(grid->TopRow(), 50);
    QCOMPARE(grid->BottomRow(), 50 + visible - 1);
    grid->BottomRow(120);
    QCOMPARE(grid->BottomRow(), 120);
    QCOMPARE(grid->TopRow(), 120 - visible + 1);
    grid->BottomRow(199);
    QCOMPARE(grid->BottomRow(), 199);
    grid->TopRow(0);
    QCOMPARE(grid->TopRow(), 0);
  }

  void wheelLeavesScrollingToTheWindow() {
    auto grid = reportGrid(3, 200, QSize(300, 250));
    QWheelEvent wheel(QPointF(20, 20), grid->cellArea()->mapToGlobal(QPointF(20, 20)), QPoint(),
                      QPoint(0, -120), Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
    QApplication::sendEvent(grid->cellArea(), &wheel);
    QCOMPARE(grid->TopRow(), 0);
  }

  void colWidthPercentFollowsGridWidth() {
    auto grid = reportGrid(2, 3, QSize(400, 200));
    grid->ColWidthPercent(0, 50);
    const int width = grid->cellArea()->width();
    QCOMPARE(grid->ColWidth(0), width / 2);
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
    QVERIFY(overlay);
    QVERIFY(overlay->isVisible());
    QVERIFY(!overlay->isColumnHidden(0));
    QVERIFY(overlay->isColumnHidden(1));
    QCOMPARE(overlay->width(), 100);
    QCOMPARE(overlay->verticalScrollBar()->value(), grid->TopRow());
    // The last column was scrolled into view beside the overlay, not under it.
    QVERIFY(grid->cellRect(3, 0).left() < 0);
    QVERIFY(grid->cellRect(3, 9).left() >= 100);
    grid->Frozen(false);
    QVERIFY(!overlay->isVisible());
    QVERIFY(grid->FrozenCols() == 1 && !grid->Frozen());
  }

  void headerColoursFollowBackColourAndStyle() {
    auto grid = reportGrid(3, 2);
    const QAbstractItemModel* model = grid->columnHeader()->model();
    grid->CellBackColor(-1, 1, sheets::RGB(255, 102, 51));
    QCOMPARE(grid->CellBackColor(-1, 1), sheets::RGB(255, 102, 51));
    QCOMPARE(model->headerData(1, Qt::Horizontal, Qt::BackgroundRole).value<QColor>(),
             QColor(255, 102, 51));
    grid->CellStyle(-1, 1, GridControl::kStyleRaised);
    grid->CellStyleColor(-1, 1, sheets::RGB(255, 162, 130));
    QCOMPARE(grid->CellStyle(-1, 1), 3);
    QCOMPARE(model->headerData(1, Qt::Horizontal, Qt::BackgroundRole).value<QColor>(),
             QColor(255, 162, 130));
    grid->CellBackColor(-1, 1, sheets::RGB(255, 102, 51));  // locking again
    QCOMPARE(grid->CellStyle(-1, 1), 0);
    QCOMPARE(model->headerData(1, Qt::Horizontal, Qt::BackgroundRole).value<QColor>(),
             QColor(255, 102, 51));
    QCOMPARE(sheets::RGB(0, 128, 192), 0xC08000u);
  }

  void rowForeColorReplacesCellColours() {
    auto grid = reportGrid(3, 4);
    grid->CellForeColor(1, 0, sheets::RGB(255, 255, 255));
    grid->CellBackColor(1, 0, sheets::RGB(0, 128, 192));
    QCOMPARE(grid->CellForeColor(1, 0), sheets::RGB(255, 255, 255));
    grid->RowForeColor(1, 0);
    QCOMPARE(grid->CellForeColor(1, 0), 0u);
    QCOMPARE(grid->CellBackColor(1, 0), sheets::RGB(0, 128, 192));
    grid->RowForeColor(2, sheets::RGB(255, 0, 0));
    QCOMPARE(grid->CellForeColor(2, 2), sheets::RGB(255, 0, 0));
    QCOMPARE(grid->RowForeColor(3), 0u);
  }

  void lineSettingsForAllApplyToLaterColumns() {
    GridControl grid;
    grid.ColLineStyle(-1, 3);
    grid.ColLineColor(-1, sheets::RGB(130, 162, 255));
    grid.RowLineStyle(-1, 3);
    grid.RowLineColor(-1, sheets::RGB(130, 162, 255));
    grid.Cols(2);
    QCOMPARE(grid.ColLineStyle(1), 3);
    QCOMPARE(grid.ColLineColor(1), sheets::RGB(130, 162, 255));
    grid.SetRowCount(2);
    QCOMPARE(grid.RowLineColor(1), sheets::RGB(130, 162, 255));
  }

  void redrawOffStillKeepsContents() {
    auto grid = reportGrid(2, 2);
    grid->Redraw(false);
    QVERIFY(!grid->Redraw());
    grid->Text(1, 1, QStringLiteral("x"));
    grid->CellBold(1, 1, true);
    QCOMPARE(grid->Text(1, 1), QStringLiteral("x"));
    grid->Redraw(true);
    QVERIFY(grid->Redraw());
    QVERIFY(grid->CellBold(1, 1));
  }

  void boundGridShowsWritesAndDeletesRecords() {
    testsupport::TempProject project;
    db::Connection& connection = project.create();
    writeInitial(connection, 5);
    db::ResultSet set;
    set.open(connection, kInitialQuery);
    GridControl grid;
    grid.resize(400, 300);
    grid.DataSource(&set);
    grid.show();
    QCOMPARE(grid.Cols(), 4);
    QCOMPARE(grid.Rows(), 15);
    grid.DeleteCols(grid.Cols() - 1, 1);
    QCOMPARE(grid.Cols(), 3);
    QCOMPARE(grid.Text(-1, 2), QStringLiteral("Level"));
    QCOMPARE(grid.Text(4, 0), QStringLiteral("0.1"));
    QCOMPARE(grid.Text(4, 2), QStringLiteral("100"));
    QCOMPARE(grid.ColKind(0), static_cast<int>(GridControl::kKindText));
    QVERIFY(grid.ColEditable(0));

    grid.Text(4, 2, QStringLiteral("101.25"));
    grid.UpdateRow(4);
    QCOMPARE(connection.scalar(QStringLiteral("SELECT Level FROM Initial WHERE ID=") +
                               QString::number(set.id(4))),
             101.25);
    grid.Text(5, 1, QStringLiteral("left"));
    QVERIFY_THROWS_EXCEPTION(db::Error, grid.UpdateRow(5));

    const std::int64_t deleted = set.id(0);
    grid.ColWidth(0, 77);
    grid.SelectRow(0);
    grid.SelectRow(3, true);
    grid.DeleteRow(0);
    QCOMPARE(grid.Rows(), 14);
    QCOMPARE(grid.SelectedRow(1), 2);  // the selection moves up with its row
    QCOMPARE(testsupport::rowCount(connection, QStringLiteral("Initial"),
                                   QStringLiteral("ID=") + QString::number(deleted)),
             0);

    // A filter and Refresh change the rows but keep the columns as laid out.
    set.setFilter(QStringLiteral("[Offset] = '0'"));
    grid.Refresh();
    QCOMPARE(grid.Rows(), 5);
    QCOMPARE(grid.Cols(), 3);
    QCOMPARE(grid.ColWidth(0), 77);
    QCOMPARE(grid.Text(0, 1), QStringLiteral("0"));
    set.setFilter(QString());
    grid.Refresh();
    QCOMPARE(grid.Rows(), 14);
  }

  void refreshKeepsCurrentCellQuietly() {
    testsupport::TempProject project;
    db::Connection& connection = project.create();
    writeInitial(connection, 3);
    db::ResultSet set;
    set.open(connection, kInitialQuery);
    GridControl grid;
    grid.DataSource(&set);
    grid.show();
    grid.SetCurrentCell(5, 1);
    QSignalSpy current(&grid, &GridControl::currentCellChanged);
    set.requery();
    grid.Refresh();
    QCOMPARE(grid.Row(), 5);
    QCOMPARE(grid.Col(), 1);
    QCOMPARE(current.size(), 0);
  }

  void emptyResultStillHasItsColumns() {
    testsupport::TempProject project;
    db::Connection& connection = project.create();
    db::ResultSet set;
    set.open(connection, QStringLiteral("Select * from DesignDetails WHERE [SectionID]=0 order "
                                        "by Chainage"));
    GridControl grid;
    grid.DataSource(&set);
    QCOMPARE(grid.Rows(), 0);
    QCOMPARE(grid.Cols(), 10);
    grid.DeleteCols(grid.Cols() - 2, 2);
    for (int c = 0; c < grid.Cols(); ++c) {
      grid.ColWidth(c, 70);
      grid.ColTextAlign(c, GridControl::kAlignCenter);
    }
    QCOMPARE(grid.Cols(), 8);
    QCOMPARE(grid.Text(-1, 7), QStringLiteral("SRS_RIGHT"));
    QCOMPARE(grid.ColTextAlign(7), static_cast<int>(GridControl::kAlignCenter));
  }
};

DELVANE_QTEST(TestGridControl)
#include "test_gridcontrol.moc"
