#include "app/appstate.h"
#include "app/desktopreporter.h"
#include "app/frmmain.h"
#include "app/frmoptions.h"
#include "app/helpwindow.h"
#include "app/opendatabase.h"
#include "db/connection.h"
#include "db/project.h"
#include "db/resultset.h"
#include "engine/session.h"
#include "sheets/dlgsearchwindow.h"
#include "sheets/frmdatagrid.h"
#include "sheets/frmreport.h"
#include "sheets/gridcontrol.h"
#include "sheets/mousewheel.h"
#include "sheets/sheetediting.h"
#include "tests/qtestmain.h"
#include "tests/testsupport.h"

#include <QAction>
#include <QApplication>
#include <QCheckBox>
#include <QClipboard>
#include <QComboBox>
#include <QFileInfo>
#include <QHeaderView>
#include <QLineEdit>
#include <QListWidget>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QPushButton>
#include <QRadioButton>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QTest>
#include <QTextBrowser>
#include <QTimer>
#include <QToolBar>

#include <functional>
#include <memory>
#include <optional>

using sheets::MessageAnswer;
using sheets::MessageIcon;

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

struct Message {
  QString title;
  QString text;
};

// The program as a user starts it on the demo project: the demo written into a fresh data
// folder, opened the way the chooser opens it, and the main window shown; every box is answered
// by the test.
struct Walk {
  Walk() {
    path = folder.filePath(db::demoProjectFileName());
    db::createProject(path, true);
    reporter.setMessageFunction([this](const QString& text, engine::Reporter::Icon) {
      messages.append({QStringLiteral("reporter"), text});
    });
    state.reporter = &reporter;
    state.mouseWheel = &mouseWheel;
    QCOMPARE(app::adoptProject(state, db::openProject(path), path), app::OpenResult::Opened);
    window = std::make_unique<app::frmMain>(state);
    reporter.setParentWindow(window.get());
    reporter.setStatusFunction(
        [this](int panel, const QString& text) { window->setStatusPanel(panel, text); });
    window->setMessageFunction([this](QWidget*, const QString& text, const QString& title,
                                      sheets::MessageButtons, MessageIcon) {
      messages.append({title, text});
      return answer;
    });
    window->setInputFunction([this](QWidget*, const QString&, const QString&, const QString&) {
      return inputs.isEmpty() ? QString() : inputs.takeFirst();
    });
    window->setSaveFileFunction(
        [this](QWidget*, const QString&, const QString&, const QString&) { return saveAs; });
    window->setManualFolder(QStringLiteral(DELVANE_MANUAL_DIR));
    window->resize(1000, 750);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
  }

  ~Walk() {
    window.reset();
    // The engine refers to the connection.
    state.engine.reset();
    state.cnProject.reset();
  }

  db::Connection& db() { return *state.cnProject; }
  int count(const QString& table, const QString& where = {}) {
    return testsupport::rowCount(db(), table, where);
  }
  std::optional<double> scalar(const QString& sql) { return db().scalar(sql); }
  void trigger(const char* name) {
    QAction* item = window->action(QLatin1String(name));
    QVERIFY2(item, name);
    QVERIFY2(item->isEnabled(), name);
    item->trigger();
    settle();
  }
  QAction* action(const char* name) const { return window->action(QLatin1String(name)); }
  sheets::frmDataGrid* sheet() const { return window->activeDataSheet(); }
  QString childTitle() const {
    QMdiSubWindow* child = window->activeChild();
    return child ? child->windowTitle() : QString();
  }
  static void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  // Double-clicks the header of row, as the user drills down.
  static void doubleClickRowHeader(sheets::GridControl& grid, int row) {
    QHeaderView* header = grid.rowHeader();
    const QPoint at(header->width() / 2,
                    header->sectionViewportPosition(row) + header->sectionSize(row) / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    settle();
  }

  static void clickCell(sheets::GridControl& grid, int row, int col,
                        Qt::KeyboardModifiers modifiers = Qt::NoModifier) {
    QTest::mouseClick(grid.cellArea(), Qt::LeftButton, modifiers, grid.cellRect(row, col).center());
  }

  // Types text into the current cell as the user does: the first key opens the editor, the
  // rest go to it, and Enter ends the edit.
  static void typeAndEnter(sheets::GridControl& grid, const QString& text) {
    QWidget* view = grid.cellArea()->parentWidget();
    for (QChar character : text) {
      QWidget* target = grid.IsEditing() ? grid.editor() : view;
      QTest::keyClicks(target, QString(character));
    }
    QTest::keyClick(grid.IsEditing() ? grid.editor() : view, Qt::Key_Return);
  }

  // The value of a column of the sheet's row, by column name.
  static QVariant value(sheets::frmDataGrid& sheet, int row, const char* column) {
    db::ResultSet* rows = sheet.resultSet();
    return rows->value(row, rows->columnIndex(QLatin1String(column)));
  }

  QTemporaryDir folder;
  QString path;
  app::DesktopReporter reporter;
  sheets::MouseWheelModule mouseWheel;
  app::AppState state;
  std::unique_ptr<app::frmMain> window;
  QList<Message> messages;
  QStringList inputs;
  QString saveAs;
  MessageAnswer answer = MessageAnswer::Yes;
};

// Runs action on the next modal window once it is shown; the caller then opens the window.
void whenModalShows(const std::function<void(QWidget*)>& action) {
  auto* timer = new QTimer;
  timer->setInterval(10);
  QObject::connect(timer, &QTimer::timeout, timer, [timer, action] {
    if (QWidget* modal = QApplication::activeModalWidget()) {
      timer->stop();
      timer->deleteLater();
      action(modal);
    }
  });
  timer->start();
}

QString messagesText(const QList<Message>& messages) {
  QStringList lines;
  for (const Message& m : messages) lines.append(m.title + QStringLiteral(": ") + m.text);
  return lines.join(QLatin1Char('\n'));
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
  void editsTheInitialLevelsAsAUserDoes();
  void keyboardCommandsReachTheActiveSheet();
  void theOtherCommandsOfTheWalkWork();
};

// Data > Package, drill down to a section, open, edit, add to and delete from every sheet, view
// the quantities and an area table, export them and open the help.
void TestWalkthrough::walksFromThePackageThroughEverySheetToTheReports() {
  Walk w;
  QCOMPARE(w.window->windowTitle(), QStringLiteral("Delvane"));

  w.trigger("mnuDataPackage");
  QVERIFY(w.sheet());
  QCOMPARE(w.childTitle(), QStringLiteral("Package"));
  QCOMPARE(w.sheet()->grid().Rows(), 1);
  QCOMPARE(w.sheet()->grid().Text(0, 0), QStringLiteral("Right Main Canal"));

  // A new package, given a name, then drilled into to give it a section with a level.
  w.trigger("mnuEditAdd");
  QCOMPARE(w.count(QStringLiteral("Package")), 2);
  sheets::frmDataGrid* packages = w.sheet();
  const int newRow = packages->grid().Row();
  QVERIFY(newRow >= 0);
  QCOMPARE(Walk::value(*packages, newRow, "ID").toInt(), 2);
  Walk::clickCell(packages->grid(), newRow, 0);
  Walk::typeAndEnter(packages->grid(), QStringLiteral("Spare"));
  w.trigger("mnuFileSave");
  QCOMPARE(w.count(QStringLiteral("Package"), QStringLiteral("ID=2 AND Name='Spare'")), 1);
  Walk::doubleClickRowHeader(packages->grid(), packages->resultSet()->findId(2));
  QCOMPARE(w.window->windowTitle(), QStringLiteral("Delvane - Spare"));
  QCOMPARE(w.childTitle(), QStringLiteral("Sections"));
  w.trigger("mnuEditAdd");
  QCOMPARE(w.count(QStringLiteral("Sections"), QStringLiteral("PackageID=2")), 1);
  const int spareSection =
      static_cast<int>(*w.scalar(QStringLiteral("SELECT ID FROM Sections WHERE PackageID=2")));
  w.db().exec(
      QStringLiteral("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (") +
      QString::number(spareSection) + QStringLiteral(", 0, 0, 10)"));

  // Deleting the spare package takes its section and levels with it.
  w.window->activeChild()->close();
  Walk::settle();
  w.trigger("mnuDataPackage");
  packages = w.sheet();
  packages->grid().SelectRow(packages->resultSet()->findId(2));
  w.trigger("mnuEditDelete");
  QCOMPARE(w.count(QStringLiteral("Package")), 1);
  QCOMPARE(w.count(QStringLiteral("Sections"), QStringLiteral("PackageID=2")), 0);
  QCOMPARE(w.count(QStringLiteral("Initial"),
                   QStringLiteral("SectionID=") + QString::number(spareSection)),
           0);
  QCOMPARE(w.count(QStringLiteral("Sections")), 2);
  QVERIFY2(w.messages.size() == 1, qPrintable(messagesText(w.messages)));
  w.messages.clear();

  // Drill down to the first section of the demo package.
  Walk::doubleClickRowHeader(packages->grid(), 0);
  QCOMPARE(w.state.lngPackageID, 1);
  QCOMPARE(w.window->windowTitle(), QStringLiteral("Delvane - Right Main Canal"));
  QCOMPARE(w.childTitle(), QStringLiteral("Sections"));
  sheets::frmDataGrid* sections = w.sheet();
  QCOMPARE(sections->grid().Text(0, 0), QStringLiteral("RMC km 0.000 to 4.000"));
  Walk::doubleClickRowHeader(sections->grid(), 0);
  QCOMPARE(w.state.lngSectionID, 1);
  QCOMPARE(w.window->windowTitle(),
           QStringLiteral("Delvane - Right Main Canal - RMC km 0.000 to 4.000"));
  QVERIFY(w.window->tbBlockBar()->isVisible());

  // Sections: edit a title and save.
  w.trigger("mnuDataSections");
  QCOMPARE(w.childTitle(), QStringLiteral("Sections"));
  Walk::clickCell(w.sheet()->grid(), 1, 1);
  Walk::typeAndEnter(w.sheet()->grid(), QStringLiteral("Reach Two"));
  w.trigger("mnuFileSave");
  QCOMPARE(w.count(QStringLiteral("Sections"), QStringLiteral("ID=2 AND Title='Reach Two'")), 1);

  // Every section sheet opens with its caption, takes an edit, new rows and their deletion.
  const struct {
    const char* command;
    const char* table;
    int column;  // the column edited
    const char* columnName;
  } sheetsOfTheSection[] = {
      {"mnuDataDesignSummary", "DesignDetails", 1, "BED_WIDTH"},
      {"mnuDataDesign", "DesignLevels", 1, "Level"},
      {"mnuDataInitial", "Initial", 2, "Level"},
      {"mnuDataExecuted", "Executed", 2, "Level"},
      {"mnuDataOutlets", "Outlets", 1, "Name"},
  };
  for (const auto& s : sheetsOfTheSection) {
    const QString table = QLatin1String(s.table);
    const QString ofSection = QStringLiteral("SectionID=1");
    w.trigger(s.command);
    sheets::frmDataGrid* sheet = w.sheet();
    QVERIFY2(sheet, s.command);
    QCOMPARE(w.childTitle(), table);
    QCOMPARE(sheet->strCurrentDataSheet, table);
    const int before = w.count(table, ofSection);
    QCOMPARE(sheet->grid().Rows(), before);
    QCOMPARE(sheet->grid().Text(-1, s.column), QLatin1String(s.columnName));

    // A number a little above the one shown, or a new name.
    const QString old = sheet->grid().Text(0, s.column);
    const bool numeric = table != QLatin1String("Outlets");
    const QString typed =
        numeric ? QString::number(old.toDouble() + 0.25) : QStringLiteral("OT 99");
    const int id = Walk::value(*sheet, 0, "ID").toInt();
    Walk::clickCell(sheet->grid(), 0, s.column);
    Walk::typeAndEnter(sheet->grid(), typed);
    QCOMPARE(sheet->grid().Text(0, s.column), typed);
    w.trigger("mnuFileSave");
    QVERIFY2(!sheet->isDirty(), s.table);
    db::Statement stored = w.db().prepare(QStringLiteral("SELECT [") + QLatin1String(s.columnName) +
                                          QStringLiteral("] FROM ") + table +
                                          QStringLiteral(" WHERE ID=") + QString::number(id));
    QVERIFY(stored.step());
    if (numeric)
      QCOMPARE(static_cast<float>(stored.real(0)), typed.toFloat());
    else
      QCOMPARE(stored.text(0), typed);

    const int lastId = static_cast<int>(*w.scalar(QStringLiteral("SELECT max(ID) FROM ") + table));
    w.inputs = {QStringLiteral("2"), QStringLiteral("3.5")};
    w.trigger("mnuEditAdd");
    QCOMPARE(w.count(table, ofSection), before + 2);
    QCOMPARE(sheet->grid().Rows(), before + 2);

    db::Statement added = w.db().prepare(QStringLiteral("SELECT ID FROM ") + table +
                                         QStringLiteral(" WHERE ID>") + QString::number(lastId));
    while (added.step()) sheet->grid().SelectRow(sheet->resultSet()->findId(added.int64(0)), true);
    QCOMPARE(sheet->grid().SelectedRowCount(), 2);
    w.trigger("mnuEditDelete");
    QCOMPARE(w.count(table, ofSection), before);
    QCOMPARE(sheet->grid().Rows(), before);
    QCOMPARE(w.count(table, QStringLiteral("ID>") + QString::number(lastId)), 0);
    QVERIFY2(w.messages.size() == 1 && w.messages[0].text.startsWith(QStringLiteral("Surely")),
             qPrintable(messagesText(w.messages)));
    w.messages.clear();
  }

  // The quantities, and the area table of a chainage from a row header of the summary.
  w.window->mdiArea()->closeAllSubWindows();
  Walk::settle();
  QVERIFY(w.window->mdiArea()->subWindowList().isEmpty());
  w.trigger("mnuOutputViewQty");
  QVERIFY2(w.messages.isEmpty(), qPrintable(messagesText(w.messages)));
  sheets::frmReport* summary = w.window->activeReport();
  QVERIFY(summary);
  QCOMPARE(w.childTitle(), QStringLiteral("Quantity Summary"));
  QCOMPARE(summary->strCurrentDataSheet, QStringLiteral("QuantitySummary"));
  sheets::GridControl& grid = summary->scg();
  const int chainages = w.count(QStringLiteral("DesignQty"), QStringLiteral("SectionID=1"));
  QVERIFY2(grid.Rows() >= chainages, qPrintable(QString::number(grid.Rows())));
  QCOMPARE(grid.Text(0, 0).trimmed().toDouble(), 0.0);
  QVERIFY(!grid.Text(2, 1).isEmpty());
  QVERIFY(!w.window->statusPanel(1).isEmpty() || !w.window->statusPanel(2).isEmpty());

  Walk::doubleClickRowHeader(grid, 2);
  sheets::frmReport* areas = w.window->activeReport();
  QVERIFY(areas);
  QVERIFY(areas != summary);
  QCOMPARE(areas->strCurrentDataSheet, QStringLiteral("QuantityDetails"));
  QCOMPARE(w.childTitle(), QStringLiteral("Area Calculation for Chainage : ") +
                               QString::number(grid.Text(2, 0).trimmed().toDouble()));
  QVERIFY(areas->scg().Rows() > 0);
  QVERIFY2(w.messages.isEmpty(), qPrintable(messagesText(w.messages)));

  for (const char* name : {"summary.xlsx", "summary.csv"}) {
    w.saveAs = w.folder.filePath(QLatin1String(name));
    w.trigger("mnuOutputQuantity");
    QVERIFY2(QFileInfo(w.saveAs).size() > 0, name);
  }
  QVERIFY2(w.messages.isEmpty(), qPrintable(messagesText(w.messages)));

  w.trigger("mnuHelpContents");
  QVERIFY2(w.messages.isEmpty(), qPrintable(messagesText(w.messages)));
  QVERIFY(w.window->helpWindow());
  QCOMPARE(w.window->helpWindow()->browser()->documentTitle(), QStringLiteral("Contents"));
}

// The Initial sheet: a column of levels typed with Enter, a block pasted from a spreadsheet and
// undone twice, a filter to one chainage, a transform of a range, and the Options.
void TestWalkthrough::editsTheInitialLevelsAsAUserDoes() {
  Walk w;
  w.state.lngPackageID = 1;
  w.state.lngSectionID = 1;
  w.state.engine->setSection(1);
  w.window->EnableMenus();
  w.trigger("mnuDataInitial");
  sheets::frmDataGrid* sheet = w.sheet();
  QVERIFY(sheet);
  sheets::GridControl& grid = sheet->grid();
  QCOMPARE(grid.Text(-1, 2), QStringLiteral("Level"));
  const auto idOf = [&](int row) { return Walk::value(*sheet, row, "ID").toInt(); };
  const auto levelOf = [&](int id) {
    return *w.scalar(QStringLiteral("SELECT [Level] FROM Initial WHERE ID=") + QString::number(id));
  };

  // A column of levels, Enter moving down.
  Walk::clickCell(grid, 0, 2);
  for (const char* level : {"101.5", "101.6", "101.7"}) {
    Walk::typeAndEnter(grid, QLatin1String(level));
    QVERIFY(!grid.IsEditing());
  }
  QCOMPARE(grid.Row(), 3);
  QCOMPARE(grid.Col(), 2);
  w.trigger("mnuFileSave");
  QCOMPARE(levelOf(idOf(0)), 101.5);
  QCOMPARE(levelOf(idOf(1)), 101.6);
  QCOMPARE(levelOf(idOf(2)), 101.7);

  // A block copied from a spreadsheet: tab-separated, every line ended, the last one too.
  const QString before4 = grid.Text(4, 1);
  const QString before5 = grid.Text(5, 2);
  QApplication::clipboard()->setText(QStringLiteral("-7.5\t99.25\n-7\t99.5\n"));
  Walk::clickCell(grid, 4, 1);
  w.trigger("mnuEditPaste");
  QCOMPARE(grid.Text(4, 1), QStringLiteral("-7.5"));
  QCOMPARE(grid.Text(4, 2), QStringLiteral("99.25"));
  QCOMPARE(grid.Text(5, 1), QStringLiteral("-7"));
  QCOMPARE(grid.Text(5, 2), QStringLiteral("99.5"));
  QCOMPARE(grid.Text(6, 1), Walk::value(*sheet, 6, "Offset").toString());

  // Undo twice: the paste, then the last typed level.
  w.trigger("mnuEditUndo");
  QCOMPARE(grid.Text(4, 1), before4);
  QCOMPARE(grid.Text(5, 2), before5);
  w.trigger("mnuEditUndo");
  w.trigger("mnuFileSave");
  QVERIFY(!sheet->isDirty());
  QCOMPARE(levelOf(idOf(1)), 101.6);
  QVERIFY(levelOf(idOf(2)) != 101.7);
  QCOMPARE(QString::number(levelOf(idOf(4))),
           QString::number(Walk::value(*sheet, 4, "Level").toDouble()));

  // The filter builder: [Chainage] = '0.5'.
  w.trigger("mnuViewDetail");
  auto* filter = w.window->findChild<sheets::dlgSearchWindow*>(QStringLiteral("dlgSearchWindow"));
  QVERIFY(filter);
  QVERIFY(filter->isVisible());
  auto* field = filter->findChild<QComboBox*>(QStringLiteral("cmbField"));
  auto* condition = filter->findChild<QComboBox*>(QStringLiteral("cmbCondition"));
  field->setCurrentIndex(field->findText(QStringLiteral("Chainage")));
  condition->setCurrentIndex(condition->findText(QStringLiteral("=")));
  QTest::keyClicks(filter->findChild<QLineEdit*>(QStringLiteral("txtValue")),
                   QStringLiteral("0.5"));
  QTest::mouseClick(filter->findChild<QPushButton*>(QStringLiteral("cmdExecute")), Qt::LeftButton);
  QCOMPARE(filter->searchText(), QStringLiteral("[Chainage] = '0.5'"));
  const int atHalf =
      w.count(QStringLiteral("Initial"), QStringLiteral("SectionID=1 AND Chainage=0.5"));
  QVERIFY(atHalf > 2);
  QCOMPARE(grid.Rows(), atHalf);
  for (int row = 0; row < grid.Rows(); ++row) QCOMPARE(grid.Text(row, 0), QStringLiteral("0.5"));

  // Transform: add 0.5 to the levels of rows 1 to 3.
  QList<double> levels;
  for (int row = 1; row <= 3; ++row) levels.append(levelOf(idOf(row)));
  Walk::clickCell(grid, 1, 2);
  Walk::clickCell(grid, 3, 2, Qt::ShiftModifier);
  QVERIFY(sheet->editing()->rangeSelected());
  whenModalShows([](QWidget* dialog) {
    auto* operation = dialog->findChild<QComboBox*>(QStringLiteral("cmbTransformation"));
    operation->setCurrentIndex(operation->findText(QStringLiteral("Add")));
    QTest::keyClicks(dialog->findChild<QLineEdit*>(QStringLiteral("txtValue")),
                     QStringLiteral("0.5"));
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("OKButton")), Qt::LeftButton);
  });
  w.trigger("mnuEditTransform");
  w.trigger("mnuFileSave");
  for (int row = 1; row <= 3; ++row)
    QCOMPARE(static_cast<float>(levelOf(idOf(row))), static_cast<float>(levels[row - 1] + 0.5));
  QCOMPARE(grid.Rows(), atHalf);

  // Tools > Options: Enter moves right, changes save at once.
  QVERIFY(!w.state.settings.EnterRight);
  w.state.settings.AutoSave = false;
  whenModalShows([](QWidget* dialog) {
    dialog->findChild<QRadioButton*>(QStringLiteral("optRight"))->setChecked(true);
    QVERIFY(!dialog->findChild<QCheckBox*>(QStringLiteral("chkAutoSave"))->isChecked());
    dialog->findChild<QCheckBox*>(QStringLiteral("chkAutoSave"))->setChecked(true);
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("cmdOK")), Qt::LeftButton);
  });
  w.trigger("mnuToolsOptions");
  QVERIFY(w.state.settings.EnterRight);
  QVERIFY(w.state.settings.AutoSave);
  Walk::clickCell(grid, 0, 1);
  const int id0 = idOf(0);
  Walk::typeAndEnter(grid, QStringLiteral("-2.5"));
  QCOMPARE(grid.Col(), 2);
  QCOMPARE(*w.scalar(QStringLiteral("SELECT Offset FROM Initial WHERE ID=") + QString::number(id0)),
           -2.5);

  w.trigger("mnuViewDetail");
  QVERIFY(!w.window->findChild<sheets::dlgSearchWindow*>(QStringLiteral("dlgSearchWindow")) ||
          !filter->isVisible());
  QVERIFY2(w.messages.isEmpty(), qPrintable(messagesText(w.messages)));
}

// The same edits through the keys of the menus, with the focus in the grid.
void TestWalkthrough::keyboardCommandsReachTheActiveSheet() {
  Walk w;
  w.state.settings.AutoSave = false;
  w.state.lngPackageID = 1;
  w.state.lngSectionID = 1;
  w.state.engine->setSection(1);
  w.window->EnableMenus();
  w.trigger("mnuDataInitial");
  sheets::frmDataGrid* sheet = w.sheet();
  QVERIFY(sheet);
  sheets::GridControl& grid = sheet->grid();
  w.window->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(w.window.get()));
  QWidget* view = grid.cellArea()->parentWidget();
  Walk::clickCell(grid, 2, 2);
  view->setFocus();
  QCOMPARE(QApplication::focusWidget(), view);
  const int id2 = Walk::value(*sheet, 2, "ID").toInt();
  const QString old = grid.Text(2, 2);

  QApplication::clipboard()->setText(QStringLiteral("55.5"));
  QTest::keyClick(view, Qt::Key_V, Qt::ControlModifier);
  QCOMPARE(grid.Text(2, 2), QStringLiteral("55.5"));
  QVERIFY(sheet->isDirty());
  QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
  QCOMPARE(grid.Text(2, 2), old);
  QTest::keyClick(view, Qt::Key_V, Qt::ControlModifier);
  QTest::keyClick(view, Qt::Key_S, Qt::ControlModifier);
  QVERIFY(!sheet->isDirty());
  QCOMPARE(
      *w.scalar(QStringLiteral("SELECT [Level] FROM Initial WHERE ID=") + QString::number(id2)),
      55.5);

  // Copy a cell to the clipboard, and clear a range with Delete.
  Walk::clickCell(grid, 3, 1);
  QTest::keyClick(view, Qt::Key_C, Qt::ControlModifier);
  QCOMPARE(QApplication::clipboard()->text(), grid.Text(3, 1));
  Walk::clickCell(grid, 3, 2, Qt::ShiftModifier);
  QTest::keyClick(view, Qt::Key_Delete);
  QCOMPARE(grid.Text(3, 1), QString());
  QCOMPARE(grid.Text(3, 2), QString());
  QTest::keyClick(view, Qt::Key_Z, Qt::ControlModifier);
  QVERIFY(!grid.Text(3, 2).isEmpty());

  // Ctrl+T with a range: the transform dialog; Cancel changes nothing.
  Walk::clickCell(grid, 4, 2);
  Walk::clickCell(grid, 5, 2, Qt::ShiftModifier);
  const QString level4 = grid.Text(4, 2);
  bool asked = false;
  whenModalShows([&asked](QWidget* dialog) {
    asked = true;
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("CancelButton")),
                      Qt::LeftButton);
  });
  QTest::keyClick(view, Qt::Key_T, Qt::ControlModifier);
  QVERIFY(asked);
  QCOMPARE(grid.Text(4, 2), level4);
  // The offscreen platform gives the activation back to no window once a dialog closes.
  w.window->activateWindow();
  QVERIFY(QTest::qWaitForWindowActive(w.window.get()));

  // Ctrl+N and Ctrl+D add and delete.
  const int before = w.count(QStringLiteral("Initial"), QStringLiteral("SectionID=1"));
  w.inputs = {QStringLiteral("1"), QStringLiteral("0.25")};
  QTest::keyClick(view, Qt::Key_N, Qt::ControlModifier);
  QCOMPARE(w.count(QStringLiteral("Initial"), QStringLiteral("SectionID=1")), before + 1);

  // The Window menu lists the sheet; F1 opens the help.
  w.window->updateWindowMenu();
  QTest::keyClick(view, Qt::Key_F1);
  Walk::settle();
  QVERIFY(w.window->helpWindow());
  w.window->helpWindow()->close();
  Walk::settle();

  // Closing the main window with a changed sheet asks to save it, then saves the settings.
  Walk::clickCell(grid, 0, 2);
  Walk::typeAndEnter(grid, QStringLiteral("77"));
  QVERIFY(sheet->isDirty());
  const int id0 = Walk::value(*sheet, 0, "ID").toInt();
  QVERIFY(w.window->close());
  QCOMPARE(
      *w.scalar(QStringLiteral("SELECT [Level] FROM Initial WHERE ID=") + QString::number(id0)),
      77.0);
  QVERIFY2(w.messages.size() == 1 && w.messages[0].title == QStringLiteral("Save Changes"),
           qPrintable(messagesText(w.messages)));
}

// The view, window, executed-level, About and Open commands on the way, with no noise.
void TestWalkthrough::theOtherCommandsOfTheWalkWork() {
  Walk w;
  w.state.lngPackageID = 1;
  w.state.lngSectionID = 1;
  w.state.engine->setSection(1);
  w.window->EnableMenus();
  w.trigger("mnuDataInitial");
  sheets::frmDataGrid* sheet = w.sheet();
  QVERIFY(sheet);
  sheets::GridControl& grid = sheet->grid();
  QHeaderView* columns = grid.columnHeader();
  QTest::mouseClick(columns->viewport(), Qt::LeftButton, {},
                    QPoint(columns->sectionViewportPosition(1) + 5, columns->height() / 2));
  QCOMPARE(grid.SelectedColCount(), 1);
  w.trigger("mnuLockColumn");
  QVERIFY(!grid.ColEditable(1));
  w.trigger("mnuLockColumn");
  QVERIFY(grid.ColEditable(1));
  w.trigger("mnuViewFreeze");
  QVERIFY(grid.Frozen());
  w.trigger("mnuViewFreeze");
  QVERIFY(!grid.Frozen());
  const int rows = grid.Rows();
  w.trigger("mnuViewRefresh");
  QCOMPARE(grid.Rows(), rows);

  // A filter, then Clear shows every row again.
  w.trigger("mnuViewDetail");
  QVERIFY(w.action("mnuViewDetail")->isChecked());
  auto* filter = w.window->findChild<sheets::dlgSearchWindow*>(QStringLiteral("dlgSearchWindow"));
  QVERIFY(filter);
  sheet->FilterData(QStringLiteral("[Chainage] = '0.5'"));
  QVERIFY(grid.Rows() < rows);
  QTest::mouseClick(filter->findChild<QPushButton*>(QStringLiteral("cmdClear")), Qt::LeftButton);
  QCOMPARE(grid.Rows(), rows);
  w.trigger("mnuViewDetail");
  QVERIFY(!w.action("mnuViewDetail")->isChecked());

  for (const char* arrange : {"mnuWindowCascade", "mnuWindowTileHorizontal",
                              "mnuWindowTileVertical", "mnuWindowArrangeIcons"})
    w.trigger(arrange);

  // With the executed levels (surveyed up to km 1 only, so the error list names the rest): the
  // area table of a surveyed chainage has its nineteen columns.
  w.window->chkUseExecutedLevel()->setChecked(true);
  w.trigger("mnuOutputViewQty");
  sheets::frmReport* summary = w.window->activeReport();
  QVERIFY(summary);
  QVERIFY2(w.messages.isEmpty(), qPrintable(messagesText(w.messages)));
  Walk::doubleClickRowHeader(summary->scg(), 1);
  QVERIFY(w.window->activeReport() != summary);
  QCOMPARE(w.window->activeReport()->scg().Cols(), 19);
  QVERIFY(w.window->activeReport()->scg().Rows() > 2);
  w.window->chkUseExecutedLevel()->setChecked(false);

  bool about = false;
  whenModalShows([&about](QWidget* dialog) {
    about = dialog->objectName() == QLatin1String("frmSplash");
    dialog->close();
  });
  w.trigger("mnuHelpAbout");
  QVERIFY(about);

  // File > Open DB... of the demo in the data folder closes the windows of the old project.
  app::ensureDemoProject(app::dataFolder());
  whenModalShows([](QWidget* dialog) {
    auto* files = dialog->findChild<QListWidget*>(QStringLiteral("File1"));
    const QList<QListWidgetItem*> demo =
        files->findItems(db::demoProjectFileName(), Qt::MatchExactly);
    QVERIFY(!demo.isEmpty());
    files->setCurrentItem(demo.first());
    QTest::mouseClick(dialog->findChild<QPushButton*>(QStringLiteral("cmdSelect")), Qt::LeftButton);
  });
  w.trigger("mnuFileOpen");
  QVERIFY(w.window->mdiArea()->subWindowList().isEmpty());
  QCOMPARE(QFileInfo(w.state.strDatabasePath).fileName(), db::demoProjectFileName());
  QCOMPARE(w.state.lngSectionID, 0);
  QCOMPARE(w.window->windowTitle(), QStringLiteral("Delvane"));
  QVERIFY(!w.action("mnuDataInitial")->isEnabled());
  QVERIFY2(w.messages.isEmpty(), qPrintable(messagesText(w.messages)));
}

DELVANE_QTEST(TestWalkthrough)
#include "test_walkthrough.moc"
