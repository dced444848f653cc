#include "app/frmoptions.h"
#include "app/twips.h"
#include "db/filterexpression.h"
#include "sheets/dlgsearchwindow.h"
#include "sheets/frmreport.h"
#include "sheets/gridcontrol.h"
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QCheckBox>
#include <QClipboard>
#include <QGuiApplication>
#include <QHeaderView>
#include <QHelpEvent>
#include <QLabel>
#include <QLineEdit>
#include <QMdiArea>
#include <QPushButton>
#include <QStandardPaths>
#include <QToolTip>

using apptest::Desk;

// What a user meets at once: where the window comes back, what Add says, what the status bar
// shows.
class TestPolish : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  void windowsComeBackOntoAScreen_data() {
    QTest::addColumn<QRect>("wanted");
    QTest::addColumn<QRect>("placed");
    QTest::newRow("on the screen") << QRect(100, 50, 800, 600) << QRect(100, 50, 800, 600);
    QTest::newRow("partly off, caption reachable")
        << QRect(1800, 50, 800, 600) << QRect(1800, 50, 800, 600);
    QTest::newRow("on a monitor unplugged")
        << QRect(2500, 100, 800, 600) << QRect(1120, 100, 800, 600);
    QTest::newRow("caption above the screen")
        << QRect(100, -300, 800, 600) << QRect(100, 0, 800, 600);
    QTest::newRow("larger than the screen")
        << QRect(-3000, 0, 2500, 1500) << QRect(0, 0, 1920, 1040);
  }
  void windowsComeBackOntoAScreen() {
    QFETCH(QRect, wanted);
    QFETCH(QRect, placed);
    QCOMPARE(app::placeOnScreens(wanted, {QRect(0, 0, 1920, 1040)}), placed);
  }

  void addSaysWhenTheCountIsNoCountAndTakesAnEmptyChainageAsZero() {
    Desk desk;
    desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
    desk.exec("INSERT INTO Sections (ID, PackageID) VALUES (6, 1)");
    desk.choose(1, 6);
    desk.window->dataInitial();
    desk.inputs = {"40000"};
    desk.window->editAdd();
    QVERIFY2(desk.messagesText().contains("give a whole number from 1 to 32767"),
             qPrintable(desk.messagesText()));
    QCOMPARE(desk.count("Initial"), 0);
    desk.inputs = {"2", ""};
    desk.window->editAdd();
    QCOMPARE(desk.count("Initial", "SectionID=6 AND Chainage=0"), 2);
  }

  // A value with an apostrophe is written with the quote doubled and read back whole.
  void filterValuesKeepTheirApostrophes_data() {
    QTest::addColumn<QString>("condition");
    QTest::addColumn<QString>("value");
    QTest::addColumn<QString>("cell");
    QTest::addColumn<bool>("matches");
    QTest::newRow("equal") << "="
                           << "O'Brien"
                           << "O'Brien" << true;
    QTest::newRow("equal, other") << "="
                                  << "O'Brien"
                                  << "O" << false;
    QTest::newRow("like") << "LIKE"
                          << "'B"
                          << "O'Brien" << true;
    QTest::newRow("two quotes") << "="
                                << "''"
                                << "''" << true;
  }
  void filterValuesKeepTheirApostrophes() {
    QFETCH(QString, condition);
    QFETCH(QString, value);
    QFETCH(QString, cell);
    QFETCH(bool, matches);
    const QString term = sheets::dlgSearchWindow::filterTerm("Name", condition, value);
    const db::FilterExpression filter =
        db::FilterExpression::parse(term + " AND [Name] <> 'x'", {{"Name", false}});
    QCOMPARE(filter.matches([&cell](int) { return QVariant(cell); }), matches);
  }

  // After Apply the boxes show what was stored; a refused box's message shows whole.
  void optionsShowWhatWasStoredAndTheWholeMessage() {
    app::Settings settings;
    app::frmOptions dialog(settings, {});
    dialog.show();
    auto* metres = dialog.findChild<QLineEdit*>("txtMetresPerPage");
    metres->setText("1250.6");
    dialog.findChild<QPushButton*>("cmdApply")->click();
    QCOMPARE(metres->text(), QString("1251"));
    metres->setText("40000");
    dialog.findChild<QPushButton*>("cmdApply")->click();
    auto* problem = dialog.findChild<QLabel*>("txtMetresPerPageProblem");
    QVERIFY(problem->isVisible());
    QCoreApplication::processEvents();
    QVERIFY(problem->width() >= problem->sizeHint().width());
  }

  // A clipped cell shows its whole text as a tooltip; a column fitted to its contents by a
  // double-click on its edge keeps that width when the grid is resized.
  void clippedCellsTellTheirTextAndFittedColumnsStay() {
    sheets::GridControl grid;
    grid.Cols(2);
    grid.SetRowCount(1);
    const QString total = QStringLiteral("10,974,363.25");
    grid.Text(0, 0, total);
    grid.ColWidthPercent(-1, 10);
    grid.resize(400, 200);
    grid.show();
    QVERIFY(QTest::qWaitForWindowExposed(&grid));
    QWidget* cells = grid.cellArea();
    QHelpEvent help(QEvent::ToolTip, grid.cellRect(0, 0).center(),
                    cells->mapToGlobal(grid.cellRect(0, 0).center()));
    QCoreApplication::sendEvent(cells, &help);
    QCOMPARE(QToolTip::text(), total);

    QHeaderView* header = grid.columnHeader();
    const QPoint edge(header->sectionViewportPosition(0) + header->sectionSize(0) - 1,
                      header->height() / 2);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, {}, edge);
    const int fitted = grid.ColWidth(0);
    QVERIFY2(fitted > 40, qPrintable(QString::number(fitted)));
    const int share = grid.ColWidth(1);
    grid.resize(800, 200);
    QCoreApplication::processEvents();
    QCOMPARE(grid.ColWidth(0), fitted);
    QVERIFY(grid.ColWidth(1) > share);  // the other column still takes its share
  }

  // A block of a report is copied as tab-separated lines; typing changes nothing in it. The
  // export says where it wrote.
  void reportBlocksCopyAsTabSeparatedLines() {
    Desk desk(true);
    desk.choose(1, 1);
    desk.window->outputViewQuantity();
    sheets::frmReport* report = desk.window->activeReport();
    QVERIFY(report);
    sheets::GridControl& grid = report->scg();
    const QString before = grid.Text(1, 1);
    QTest::mouseDClick(grid.cellArea(), Qt::LeftButton, {}, grid.cellRect(1, 1).center());
    QTest::keyClicks(grid.cellArea(), "9");
    QCOMPARE(grid.Text(1, 1), before);
    QVERIFY(!grid.IsEditing());
    QTest::mouseClick(grid.cellArea(), Qt::LeftButton, {}, grid.cellRect(1, 0).center());
    QWidget* view = grid.cellArea()->parentWidget();
    QTest::keyClick(view, Qt::Key_Down, Qt::ShiftModifier);
    QTest::keyClick(view, Qt::Key_Right, Qt::ShiftModifier);
    QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
    const QString expected = grid.Text(1, 0) + "\t" + grid.Text(1, 1) + "\r\n" + grid.Text(2, 0) +
                             "\t" + grid.Text(2, 1);
    QCOMPARE(QGuiApplication::clipboard()->text(), expected);

    const QString sheet = desk.folder.filePath(QStringLiteral("q.csv"));
    QVERIFY(desk.window->exportQuantitySheet(sheet));
    QVERIFY2(desk.window->statusPanel(4).endsWith(QDir::toNativeSeparators(sheet)),
             qPrintable(desk.window->statusPanel(4)));
  }

  // The filter and help windows open over the work area, not over the menus; the filter window
  // has its caption bar to drag it by.
  void filterAndHelpOpenInsideTheWorkArea() {
    Desk desk(true);
    desk.choose(1, 1);
    desk.window->dataInitial();
    desk.window->viewFilterWindow();
    desk.window->setManualFolder(QStringLiteral(DELVANE_MANUAL_DIR));
    desk.window->helpContents();
    QMdiArea* mdi = desk.window->mdiArea();
    const QRect area(mdi->mapToGlobal(QPoint(0, 0)), mdi->size());
    auto* filter = desk.window->findChild<sheets::dlgSearchWindow*>();
    QVERIFY(filter && filter->findChild<QLabel*>("wnTitle"));
    for (QWidget* window :
         {static_cast<QWidget*>(filter), static_cast<QWidget*>(desk.window->helpWindow())})
      QVERIFY2(area.contains(window->geometry().topLeft()), qPrintable(window->objectName()));
  }

  // Seven significant digits, as a single is written; stale totals go.
  void statusTotalsShowSingleTimeAndClearWhenStale() {
    Desk desk(true);
    desk.choose(1, 1);
    desk.window->outputViewQuantity();
    const QString time = desk.window->statusPanel(3);
    QVERIFY2(time.startsWith("Time : ") && time.endsWith(" secs"), qPrintable(time));
    QString digits = time.section(QLatin1Char(' '), 2, 2).section(QLatin1Char('E'), 0, 0);
    digits.remove(QLatin1Char('.'));
    while (digits.startsWith(QLatin1Char('0'))) digits.remove(0, 1);
    QVERIFY2(digits.size() <= 7, qPrintable(time));
    QVERIFY(!desk.window->statusPanel(1).isEmpty());
    desk.window->chkUseExecutedLevel()->click();
    for (int panel = 1; panel <= 3; ++panel) QCOMPARE(desk.window->statusPanel(panel), QString());
  }
};

DELVANE_QTEST(TestPolish)
#include "test_polish.moc"
