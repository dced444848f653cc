#include "app/frmprogress.h"
#include "app/printform.h"
#include "engine/session.h"
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QApplication>
#include <QMdiArea>
#include <QPointer>
#include <QPushButton>
#include <QStandardPaths>
#include <QTimer>

#include <sqlite3.h>

#include <utility>

using apptest::Desk;

namespace {

// The children of the main window by title, joined by '|'.
QString childTitles(const Desk& desk) {
  QStringList titles;
  for (QMdiSubWindow* child : desk.window->mdiArea()->subWindowList())
    titles.append(child->windowTitle());
  titles.sort();
  return titles.join(QLatin1Char('|'));
}

// Counts the transactions committed on a connection while it lives.
class CommitCounter {
 public:
  explicit CommitCounter(db::Connection& connection) : m_handle(connection.handle()) {
    sqlite3_commit_hook(
        m_handle,
        [](void* count) {
          ++*static_cast<int*>(count);
          return 0;
        },
        &m_count);
  }
  ~CommitCounter() { sqlite3_commit_hook(m_handle, nullptr, nullptr); }
  int take() { return std::exchange(m_count, 0); }

 private:
  sqlite3* m_handle;
  int m_count = 0;
};

}  // namespace

class TestLongRuns : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  // While View Quantity runs, the user tries another command from the events the run lets
  // through.
  void commandsThatWouldDisturbARunAreRefused_data() {
    QTest::addColumn<QString>("command");
    for (const char* command :
         {"mnuFileOpen", "tbToolBar/Open", "mnuFileExit", "mnuOutputViewQty",
          "tbBlockBar/QuantityReport", "mnuOutputXSection", "mnuOutputLSection", "mnuEditAdd",
          "mnuEditDelete", "mnuFileImportLevels", "drill-down"})
      QTest::newRow(command) << command;
  }
  void commandsThatWouldDisturbARunAreRefused() {
    QFETCH(QString, command);
    Desk desk(true);
    desk.choose(1, 1);
    desk.window->dataSections();
    sheets::frmDataGrid& sections = *desk.sheet();
    sections.grid().SelectRow(sections.resultSet()->findId(2));
    const db::Connection* project = desk.state.cnProject.get();
    // A dialog that opens is closed at once, and counted.
    int dialogs = 0;
    QTimer closer;
    connect(&closer, &QTimer::timeout, [&dialogs] {
      if (QWidget* dialog = QApplication::activeModalWidget()) {
        ++dialogs;
        dialog->close();
      }
    });
    closer.start(10);
    bool duringTheRun = false;
    QString notice;
    QTimer::singleShot(0, desk.window.get(), [&] {
      duringTheRun = desk.state.engine->quantityRun().Running;
      if (command == QLatin1String("drill-down"))
        desk.window->DoubleClickHandler(sections.grid().SelectedRow(1));
      else
        desk.action(command.toLatin1().constData())->trigger();
      notice = desk.window->statusPanel(4);
    });

    desk.trigger("mnuOutputViewQty");

    QVERIFY(duringTheRun);
    QVERIFY2(notice.contains(QLatin1String("wait")), qPrintable(notice));
    QCOMPARE(dialogs, 0);
    QVERIFY(desk.window->isVisible());
    QCOMPARE(desk.state.cnProject.get(), project);
    QCOMPARE(desk.state.lngSectionID, 1);
    QCOMPARE(desk.state.engine->sectionId(), 1);
    QCOMPARE(desk.count(QStringLiteral("Sections")), 2);
    QCOMPARE(childTitles(desk), QStringLiteral("Quantity Summary|Sections"));
    QCOMPARE(desk.window->statusPanel(4), QString());  // the notice goes with the run
  }

  // Cancel on the progress window, clicked during the first chainage.
  void cancelStopsTheRunBetweenChainages_data() {
    QTest::addColumn<QString>("command");
    QTest::addColumn<QString>("opened");
    QTest::newRow("View Quantity") << "mnuOutputViewQty"
                                   << "Quantity Summary";
    QTest::newRow("Plot X Section") << "mnuOutputXSection"
                                    << "Cross sections - Reach A";
    QTest::newRow("Export Quantity Sheet") << "mnuOutputQuantity"
                                           << "";
  }
  void cancelStopsTheRunBetweenChainages() {
    QFETCH(QString, command);
    QFETCH(QString, opened);
    Desk desk(true);
    desk.choose(1, 1);
    desk.state.strSectionDescription = QStringLiteral("Reach A");
    desk.saveAs = desk.folder.filePath(QStringLiteral("q.csv"));
    app::frmProgress& progress = desk.reporter.progress();
    bool offered = false;
    QTimer::singleShot(0, desk.window.get(), [&] {
      offered = progress.cmdCancel()->isVisible();
      QTest::mouseClick(progress.cmdCancel(), Qt::LeftButton);
    });

    desk.trigger(command.toLatin1().constData());

    QVERIFY(offered);
    QVERIFY(!progress.isVisible());
    QCOMPARE(childTitles(desk), QString());
    QVERIFY(!QFileInfo::exists(desk.saveAs));
    QVERIFY2(sqlite3_get_autocommit(desk.db().handle()), "the run left a transaction open");
    if (command != QLatin1String("mnuOutputXSection")) {
      QCOMPARE(desk.state.engine->quantityRun().RowCount, 1);
      QVERIFY(desk.window->statusPanel(1).startsWith(
          QLatin1String("Quantity run cancelled after 1 of ")));
    }

    // The click belongs to that run: the next one goes to the end.
    desk.trigger(command.toLatin1().constData());
    QCOMPARE(childTitles(desk), opened);
    QCOMPARE(QFileInfo::exists(desk.saveAs), opened.isEmpty());
  }

  void openSheetsWaitForTheRun() {
    Desk desk(true);
    desk.choose(1, 1);
    desk.trigger("mnuDataInitial");
    QPointer<QWidget> sheet = desk.sheet();
    QVERIFY(sheet);
    bool enabledDuringRun = true;
    QTimer::singleShot(0, desk.window.get(), [&] { enabledDuringRun = sheet->isEnabled(); });
    desk.trigger("mnuOutputViewQty");
    QVERIFY(!enabledDuringRun);  // no typing that a save could not write
    QVERIFY(sheet && sheet->isEnabled());
  }

  void aDatabaseErrorEndsTheRunWithTheProgressClosedAndSaysWhy() {
    Desk desk(true);
    desk.choose(1, 1);
    desk.exec(
        "CREATE TRIGGER damaged BEFORE UPDATE ON DesignQty BEGIN SELECT RAISE(ABORT, 'disk I/O "
        "error'); END");

    desk.trigger("mnuOutputViewQty");

    QVERIFY(!desk.reporter.progress().isVisible());
    QCOMPARE(childTitles(desk), QString());
    QCOMPARE(desk.messages.size(), 1);
    QVERIFY2(
        desk.messages[0].text.startsWith(QLatin1String("The quantities could not be computed")) &&
            desk.messages[0].text.contains(QLatin1String("disk I/O error")),
        qPrintable(desk.messagesText()));
  }

  void addAndDeleteOfManyRowsCommitOnceEach_data() {
    QTest::addColumn<QString>("sheet");
    QTest::addColumn<QStringList>("inputs");
    QTest::newRow("Initial") << "Initial" << QStringList{"300", "0.5"};
    QTest::newRow("Design Levels") << "DesignLevels" << QStringList{"300"};
  }
  void addAndDeleteOfManyRowsCommitOnceEach() {
    QFETCH(QString, sheet);
    QFETCH(QStringList, inputs);
    Desk desk;
    desk.exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
    desk.exec("INSERT INTO Sections (ID, PackageID) VALUES (1, 1)");
    desk.choose(1, 1);
    sheet == QLatin1String("Initial") ? desk.window->dataInitial() : desk.window->dataDesign();
    sheets::frmDataGrid& grid = *desk.sheet();
    CommitCounter commits(desk.db());

    desk.inputs = inputs;
    desk.trigger("mnuEditAdd");
    QCOMPARE(desk.count(sheet), 300);
    QCOMPARE(grid.grid().Rows(), 300);
    QCOMPARE(commits.take(), 1);

    for (int row = 0; row < 300; ++row) grid.grid().SelectRow(row, true);
    desk.trigger("mnuEditDelete");
    QCOMPARE(desk.count(sheet), 0);
    QCOMPARE(grid.grid().Rows(), 0);
    QCOMPARE(commits.take(), 1);
  }
};

DELVANE_QTEST(TestLongRuns)
#include "test_longruns.moc"
