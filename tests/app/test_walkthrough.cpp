#include "app/helpwindow.h"
#include "engine/session.h"
#include "sheets/frmreport.h"
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QFileInfo>
#include <QLocale>
#include <QMdiArea>
#include <QStandardPaths>
#include <QTextBrowser>
#include <QToolBar>

using apptest::Desk;

namespace {

// Every warning and critical message Qt or the program wrote while a test ran.
QStringList g_warnings;
QtMessageHandler g_previousHandler = nullptr;

void recordWarnings(QtMsgType type, const QMessageLogContext& context, const QString& text) {
  // The offscreen platform says what it cannot do with a window; a desktop platform can.
  const bool platformLimit = text.startsWith(QLatin1String("This plugin does not support"));
  if ((type == QtWarningMsg || type == QtCriticalMsg || type == QtFatalMsg) && !platformLimit)
    g_warnings.append(text);
  if (g_previousHandler) g_previousHandler(type, context, text);
}

}  // namespace

class TestWalkthrough : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() {
    QStandardPaths::setTestModeEnabled(true);
    g_previousHandler = qInstallMessageHandler(recordWarnings);
  }
  void cleanupTestCase() { qInstallMessageHandler(g_previousHandler); }
  void init() { g_warnings.clear(); }
  void cleanup() { QVERIFY2(g_warnings.isEmpty(), qPrintable(g_warnings.join(QLatin1Char('\n')))); }

  void walksFromThePackageThroughEverySheetToTheReports();
};

// Data > Package, drill down to a section, edit, add to and delete from every sheet, view the
// quantities and an area table, export them and open the help, as a user does with the mouse and
// keys on the demo project.
void TestWalkthrough::walksFromThePackageThroughEverySheetToTheReports() {
  Desk w(true);
  w.window->setManualFolder(QStringLiteral(DELVANE_MANUAL_DIR));
  w.trigger("mnuDataPackage");
  QVERIFY(w.sheet());
  QCOMPARE(w.sheet()->grid().Text(0, 0), QStringLiteral("Right Main Canal"));
  Desk::doubleClickRowHeader(w.sheet()->grid(), 0);
  QCOMPARE(w.childTitle(), QStringLiteral("Sections"));
  Desk::doubleClickRowHeader(w.sheet()->grid(), 0);
  QCOMPARE(w.state.lngSectionID, 1);
  QCOMPARE(w.window->windowTitle(),
           QStringLiteral("Delvane - Right Main Canal - RMC km 0.000 to 4.000"));
  QVERIFY(w.window->tbBlockBar()->isVisible());

  // Every sheet of the section opens, takes an edit that is saved, new rows and their deletion.
  const struct {
    const char* command;
    const char* table;
    int column;  // the column edited
    const char* columnName;
  } sheetsOfTheSection[] = {
      {"mnuDataSections", "Sections", 1, "Title"},
      {"mnuDataDesignSummary", "DesignDetails", 1, "BED_WIDTH"},
      {"mnuDataDesign", "DesignLevels", 1, "Level"},
      {"mnuDataInitial", "Initial", 2, "Level"},
      {"mnuDataExecuted", "Executed", 2, "Level"},
      {"mnuDataOutlets", "Outlets", 1, "Name"},
  };
  for (const auto& s : sheetsOfTheSection) {
    const QString table = QLatin1String(s.table);
    const QString ofSection = table == QLatin1String("Sections") ? QStringLiteral("PackageID=1")
                                                                 : QStringLiteral("SectionID=1");
    w.trigger(s.command);
    sheets::frmDataGrid* sheet = w.sheet();
    QVERIFY2(sheet, s.command);
    QCOMPARE(w.childTitle(), table);
    const int before = w.count(table, ofSection);
    QCOMPARE(sheet->grid().Rows(), before);
    QCOMPARE(sheet->grid().Text(-1, s.column), QLatin1String(s.columnName));

    // A number a little above the one shown, or a new name.
    const bool numeric = QLatin1String(s.columnName) == QLatin1String("Level") ||
                         QLatin1String(s.columnName) == QLatin1String("BED_WIDTH");
    const QString typed = numeric
                              ? QString::number(sheet->grid().Text(0, s.column).toDouble() + 0.25)
                              : QStringLiteral("OT 99");
    const int id = Desk::value(*sheet, 0, "ID").toInt();
    Desk::clickCell(sheet->grid(), 0, s.column);
    Desk::typeAndEnter(sheet->grid(), typed);
    w.trigger("mnuFileSave");
    QVERIFY2(!sheet->isDirty(), s.table);
    db::Statement stored = w.db().prepare(QStringLiteral("SELECT [%1] FROM %2 WHERE ID=%3")
                                              .arg(QLatin1String(s.columnName), table)
                                              .arg(id));
    QVERIFY(stored.step());
    if (numeric)
      QCOMPARE(static_cast<float>(stored.real(0)), typed.toFloat());
    else
      QCOMPARE(stored.text(0), typed);

    const int lastId = static_cast<int>(*w.scalar(QStringLiteral("SELECT max(ID) FROM ") + table));
    const QString added = QStringLiteral("ID>%1").arg(lastId);
    w.inputs = {QStringLiteral("2"), QStringLiteral("3.5")};
    w.trigger("mnuEditAdd");
    const int count = w.count(table, added);
    QCOMPARE(count, table == QLatin1String("Sections") ? 1 : 2);
    QCOMPARE(sheet->grid().Rows(), before + count);
    db::Statement rows = w.db().prepare(QStringLiteral("SELECT ID FROM ") + table +
                                        QStringLiteral(" WHERE ") + added);
    while (rows.step()) sheet->grid().SelectRow(sheet->resultSet()->findId(rows.int64(0)), true);
    w.messages.clear();
    w.trigger("mnuEditDelete");
    QCOMPARE(w.count(table, added), 0);
    QCOMPARE(sheet->grid().Rows(), before);
    QVERIFY2(w.messages.size() == 1 && w.messages[0].text.startsWith(QStringLiteral("Surely")),
             qPrintable(w.messagesText()));
    w.messages.clear();
  }

  // The quantities, and the area table of a chainage from a row header of the summary.
  w.window->mdiArea()->closeAllSubWindows();
  Desk::settle();
  w.trigger("mnuOutputViewQty");
  sheets::frmReport* summary = w.window->activeReport();
  QVERIFY(summary);
  QCOMPARE(w.childTitle(), QStringLiteral("Quantity Summary"));
  sheets::GridControl& grid = summary->scg();
  QVERIFY(grid.Rows() >= w.count(QStringLiteral("DesignQty"), QStringLiteral("SectionID=1")));
  QVERIFY(!grid.Text(2, 1).isEmpty());
  QVERIFY(!w.window->statusPanel(1).isEmpty() || !w.window->statusPanel(2).isEmpty());
  Desk::doubleClickRowHeader(grid, 2);
  sheets::frmReport* areas = w.window->activeReport();
  QVERIFY(areas && areas != summary);
  QCOMPARE(w.childTitle(), QStringLiteral("Area Calculation for Chainage : ") +
                               QString::number(QLocale::system().toDouble(grid.Text(2, 0))));
  QVERIFY(areas->scg().Rows() > 0);

  for (const char* name : {"summary.xlsx", "summary.csv"}) {
    w.saveAs = w.folder.filePath(QLatin1String(name));
    w.trigger("mnuOutputQuantity");
    QVERIFY2(QFileInfo(w.saveAs).size() > 0, name);
  }

  w.trigger("mnuHelpContents");
  QVERIFY(w.window->helpWindow());
  QCOMPARE(w.window->helpWindow()->browser()->documentTitle(), QStringLiteral("Contents"));
  QVERIFY2(w.messages.isEmpty(), qPrintable(w.messagesText()));
}

DELVANE_QTEST(TestWalkthrough)
#include "test_walkthrough.moc"
