#include "app/appstate.h"
#include "app/desktopreporter.h"
#include "app/dlgerrorform.h"
#include "app/dlgselectdb.h"
#include "app/frmprogress.h"
#include "app/frmsplash.h"
#include "app/opendatabase.h"
#include "app/settings.h"
#include "app/twips.h"
#include "db/connection.h"
#include "db/project.h"
#include "tests/qtestmain.h"

#include <QFile>
#include <QLabel>
#include <QListWidget>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

using app::DesktopReporter;
using engine::Reporter;

namespace {

// A reporter whose message boxes are recorded instead of shown.
struct RecordingDesktop {
  RecordingDesktop() {
    reporter.setMessageFunction([this](const QString& text, Reporter::Icon icon) {
      messages.append({text, icon});
    });
  }
  struct Message {
    QString text;
    Reporter::Icon icon;
  };
  DesktopReporter reporter;
  QList<Message> messages;
};

void writeFile(const QString& path, const QByteArray& contents) {
  QFile file(path);
  QVERIFY(file.open(QIODevice::WriteOnly));
  file.write(contents);
}

void selectRow(QListWidget* list, const QString& name) {
  const auto items = list->findItems(name, Qt::MatchExactly);
  QVERIFY2(!items.isEmpty(), qPrintable(name));
  list->setCurrentItem(items.first());
}

}  // namespace

class TestApp : public QObject {
  Q_OBJECT

 private slots:
  // Error list
  void errorListAppendsLinesWithCarriageReturnLineFeed();
  void closingErrorListDiscardsItsMessages();
  void errorListIsUnloadedWhenItsParentCloses();

  // Progress window
  void progressZeroMaximumKeepsOldMaximumAndHidesBar();
  void progressPositiveMaximumReplacesMaximum();
  void progressValueOutsideRangeIsIgnored_data();
  void progressValueOutsideRangeIsIgnored();
  void progressCentresItselfWhenResized();
  void progressStartsWithItsCaptions();

  // Reporter
  void reporterRoutesMessageBoxesAndStatusText();
  void reporterProgressShowsAndHidesTheSharedWindow();

  // Settings
  void emptyStoreGivesDefaults();
  void settingsRoundTripEveryKey();
  void settingsAreStoredAsText();
  void nonConvertingValueFallsBackToDefault_data();
  void nonConvertingValueFallsBackToDefault();

  // Twips and placement
  void twipsConvertAtLogicalDpi_data();
  void twipsConvertAtLogicalDpi();
  void windowPlacementRoundTrips();

  // Project chooser
  void chooserListsOnlyProjectFiles();
  void selectWithNothingSelectedStaysOpenWithMessage();
  void selectingFileThatIsNotDatabaseStaysOpenNamingFile();
  void selectingDatabaseWithoutTablesStaysOpenNamingTable();
  void selectingProjectOpensItAndCloses();
  void doubleClickSelects();
  void newCreatesListsAndOpensProject();
  void demoIsWrittenOnlyIntoFolderWithoutProjects();

  // Adopting an opened project
  void adoptingProjectResetsSelectionAndKeepsConnection();
  void projectWithoutDesignProfileIsRefusedAndOldProjectKept();

  // About box
  void splashShowsVersionAndClosesOnClick();
  void splashClosesOnAnyKey();
};

void TestApp::errorListAppendsLinesWithCarriageReturnLineFeed() {
  RecordingDesktop desktop;
  QVERIFY(!desktop.reporter.blnErrorListLoaded());
  desktop.reporter.ShowError(QStringLiteral("a"));
  QVERIFY(desktop.reporter.blnErrorListLoaded());
  desktop.reporter.ShowError(QStringLiteral("b"));
  app::dlgErrorForm* form = desktop.reporter.errorForm();
  QVERIFY(form);
  QCOMPARE(form->text(), QStringLiteral("a\r\nb"));
  QCOMPARE(form->ErrText()->toPlainText(), QStringLiteral("a\nb"));
  QVERIFY(form->ErrText()->isReadOnly());
  QCOMPARE(form->windowTitle(), QStringLiteral("Errors encountered"));
  QCOMPARE(form->cmdClose()->text(), QStringLiteral("Close"));
  QVERIFY(form->isVisible());
}

void TestApp::closingErrorListDiscardsItsMessages() {
  RecordingDesktop desktop;
  desktop.reporter.ShowError(QStringLiteral("a"));
  desktop.reporter.ShowError(QStringLiteral("b"));
  QPointer<app::dlgErrorForm> first = desktop.reporter.errorForm();
  first->cmdClose()->click();
  QVERIFY(!desktop.reporter.blnErrorListLoaded());
  QVERIFY(!desktop.reporter.errorForm());

  // Before the closed window is even deleted, the next message opens a fresh list.
  desktop.reporter.ShowError(QStringLiteral("c"));
  QVERIFY(desktop.reporter.blnErrorListLoaded());
  QVERIFY(desktop.reporter.errorForm() != first.data());
  QCOMPARE(desktop.reporter.errorForm()->text(), QStringLiteral("c"));
  QTRY_VERIFY(first.isNull());
  QCOMPARE(desktop.reporter.errorForm()->text(), QStringLiteral("c"));
}

void TestApp::errorListIsUnloadedWhenItsParentCloses() {
  RecordingDesktop desktop;
  auto parent = std::make_unique<QWidget>();
  desktop.reporter.setParentWindow(parent.get());
  desktop.reporter.ShowError(QStringLiteral("a"));
  QVERIFY(desktop.reporter.blnErrorListLoaded());
  parent.reset();
  QVERIFY(!desktop.reporter.blnErrorListLoaded());
  desktop.reporter.ShowError(QStringLiteral("b"));
  QCOMPARE(desktop.reporter.errorForm()->text(), QStringLiteral("b"));
}

void TestApp::progressZeroMaximumKeepsOldMaximumAndHidesBar() {
  app::frmProgress progress;
  progress.SetProperties(QStringLiteral("first"), 250, true);
  progress.show();
  QVERIFY(progress.ProgressBar1()->isVisible());
  progress.SetProperties(QStringLiteral("x"), 0, false);
  QCOMPARE(progress.progressName()->text(), QStringLiteral("x"));
  QCOMPARE(progress.ProgressBar1()->maximum(), 250);
  QVERIFY(progress.ProgressBar1()->isHidden());
  progress.SetProperties(QStringLiteral("y"), -5, true);
  QCOMPARE(progress.ProgressBar1()->maximum(), 250);
  QVERIFY(progress.ProgressBar1()->isVisible());
}

void TestApp::progressPositiveMaximumReplacesMaximum() {
  app::frmProgress progress;
  progress.SetProperties(QStringLiteral("Quantity..."), 37, true);
  QCOMPARE(progress.ProgressBar1()->maximum(), 37);
  QVERIFY(!progress.ProgressBar1()->isHidden());
}

void TestApp::progressValueOutsideRangeIsIgnored_data() {
  QTest::addColumn<int>("value");
  QTest::addColumn<int>("expected");
  QTest::newRow("inside") << 7 << 7;
  QTest::newRow("at maximum") << 10 << 10;
  QTest::newRow("at minimum") << 0 << 0;
  QTest::newRow("above maximum") << 11 << 3;
  QTest::newRow("negative") << -1 << 3;
}

void TestApp::progressValueOutsideRangeIsIgnored() {
  QFETCH(int, value);
  QFETCH(int, expected);
  app::frmProgress progress;
  progress.SetProperties(QStringLiteral("task"), 10, true);
  progress.UpdateValue(3);
  progress.UpdateValue(value);
  QCOMPARE(progress.ProgressBar1()->value(), expected);
}

void TestApp::progressCentresItselfWhenResized() {
  app::frmProgress progress;
  progress.show();
  const QRect screen = progress.screen()->geometry();
  QCOMPARE(progress.x(), screen.left() + screen.width() / 2 - progress.width() / 2);
  QCOMPARE(progress.y(), screen.top() + screen.height() / 2 - progress.height() / 2);
  progress.setFixedSize(300, 90);
  QCOMPARE(progress.x(), screen.left() + screen.width() / 2 - 150);
  QCOMPARE(progress.y(), screen.top() + screen.height() / 2 - 45);
  QVERIFY(progress.windowFlags() & Qt::WindowStaysOnTopHint);
  QVERIFY(progress.windowFlags() & Qt::FramelessWindowHint);
}

void TestApp::progressStartsWithItsCaptions() {
  app::frmProgress progress;
  QCOMPARE(progress.wnTitle()->text(), QStringLiteral("  Progress"));
  QCOMPARE(progress.progressName()->text(), QStringLiteral("Task Progress"));
}

void TestApp::reporterRoutesMessageBoxesAndStatusText() {
  RecordingDesktop desktop;
  QStringList status;
  desktop.reporter.setStatusFunction(
      [&status](int panel, const QString& text) { status.append(QString::number(panel) + text); });
  desktop.reporter.messageBox(QStringLiteral("No design profile"), Reporter::Icon::Exclamation);
  desktop.reporter.statusText(2, QStringLiteral("Cut 1,234 cum"));
  QCOMPARE(desktop.messages.size(), 1);
  QCOMPARE(desktop.messages[0].text, QStringLiteral("No design profile"));
  QCOMPARE(desktop.messages[0].icon, Reporter::Icon::Exclamation);
  QCOMPARE(status, QStringList{QStringLiteral("2Cut 1,234 cum")});
}

void TestApp::reporterProgressShowsAndHidesTheSharedWindow() {
  RecordingDesktop desktop;
  desktop.reporter.progressStart(QStringLiteral("Quantity..."), 20, true);
  app::frmProgress& progress = desktop.reporter.progress();
  QVERIFY(progress.isVisible());
  desktop.reporter.progressValue(5);
  QCOMPARE(progress.ProgressBar1()->value(), 5);
  desktop.reporter.processEvents();
  desktop.reporter.progressEnd();
  QVERIFY(!progress.isVisible());
  desktop.reporter.progressStart(QStringLiteral("Again"), 0, false);
  QCOMPARE(&desktop.reporter.progress(), &progress);
  QCOMPARE(progress.ProgressBar1()->maximum(), 20);
}

void TestApp::emptyStoreGivesDefaults() {
  QTemporaryDir dir;
  QSettings store(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
  app::Settings settings;
  settings.MainLeft = 5;
  settings.MaxReadings = 99;
  app::LoadSettings(store, settings);
  QCOMPARE(settings.MainLeft, 1000.0f);
  QCOMPARE(settings.MainTop, 1000.0f);
  QCOMPARE(settings.MainWidth, 6500.0f);
  QCOMPARE(settings.MainHeight, 6500.0f);
  QCOMPARE(settings.AutoSave, true);
  QCOMPARE(settings.EnterRight, false);
  QCOMPARE(settings.MaxReadings, std::int16_t(15));
  QCOMPARE(settings.MinorScale, std::int16_t(20));
  QCOMPARE(settings.BranchScale, std::int16_t(8));
  QCOMPARE(settings.QtyBifurcate, true);
  QCOMPARE(settings.DisplayQtyXSection, true);
  QCOMPARE(settings.FixedDatum, false);
  QCOMPARE(settings.FixedDatumVal, std::int16_t(0));
  QCOMPARE(settings.LSectionScale, std::int16_t(100));
  QCOMPARE(settings.MetersPerPage, std::int16_t(1000));
}

void TestApp::settingsRoundTripEveryKey() {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("settings.ini"));
  app::Settings written;
  written.MainLeft = 123.5f;
  written.MainTop = -40;
  written.MainWidth = 9000.25f;
  written.MainHeight = 7200;
  written.AutoSave = false;
  written.EnterRight = true;
  written.MaxReadings = 31;
  written.MinorScale = -7;
  written.BranchScale = 32767;
  written.QtyBifurcate = false;
  written.DisplayQtyXSection = false;
  written.FixedDatum = true;
  written.FixedDatumVal = -32768;
  written.LSectionScale = 250;
  written.MetersPerPage = 500;
  {
    QSettings store(path, QSettings::IniFormat);
    app::SaveSettings(store, written);
  }
  QSettings store(path, QSettings::IniFormat);
  app::Settings read;
  app::LoadSettings(store, read);
  QCOMPARE(read.MainLeft, written.MainLeft);
  QCOMPARE(read.MainTop, written.MainTop);
  QCOMPARE(read.MainWidth, written.MainWidth);
  QCOMPARE(read.MainHeight, written.MainHeight);
  QCOMPARE(read.AutoSave, written.AutoSave);
  QCOMPARE(read.EnterRight, written.EnterRight);
  QCOMPARE(read.MaxReadings, written.MaxReadings);
  QCOMPARE(read.MinorScale, written.MinorScale);
  QCOMPARE(read.BranchScale, written.BranchScale);
  QCOMPARE(read.QtyBifurcate, written.QtyBifurcate);
  QCOMPARE(read.DisplayQtyXSection, written.DisplayQtyXSection);
  QCOMPARE(read.FixedDatum, written.FixedDatum);
  QCOMPARE(read.FixedDatumVal, written.FixedDatumVal);
  QCOMPARE(read.LSectionScale, written.LSectionScale);
  QCOMPARE(read.MetersPerPage, written.MetersPerPage);
}

void TestApp::settingsAreStoredAsText() {
  QTemporaryDir dir;
  QSettings store(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
  app::Settings settings;
  settings.MainLeft = 0.1f;
  app::SaveSettings(store, settings);
  QCOMPARE(store.value(QStringLiteral("Settings/MainLeft")).toString(), QStringLiteral("0.1"));
  QCOMPARE(store.value(QStringLiteral("Settings/MainWidth")).toString(), QStringLiteral("6500"));
  QCOMPARE(store.value(QStringLiteral("Settings/AutoSave")).toString(), QStringLiteral("True"));
  QCOMPARE(store.value(QStringLiteral("Settings/EnterRight")).toString(), QStringLiteral("False"));
  QCOMPARE(store.value(QStringLiteral("Settings/MaxReadings")).toString(), QStringLiteral("15"));
  QCOMPARE(store.allKeys().size(), 15);
}

void TestApp::nonConvertingValueFallsBackToDefault_data() {
  QTest::addColumn<QString>("key");
  QTest::addColumn<QString>("stored");
  QTest::addColumn<QString>("savedBack");
  QTest::newRow("text in an integer") << "MinorScale"
                                      << "twenty"
                                      << "20";
  QTest::newRow("integer above 16 bits") << "MetersPerPage"
                                         << "40000"
                                         << "1000";
  QTest::newRow("integer below 16 bits") << "FixedDatumVal"
                                         << "-32769"
                                         << "0";
  QTest::newRow("fraction in an integer") << "MaxReadings"
                                          << "12.5"
                                          << "15";
  QTest::newRow("word in a boolean") << "AutoSave"
                                     << "maybe"
                                     << "True";
  QTest::newRow("empty boolean") << "EnterRight"
                                 << ""
                                 << "False";
  QTest::newRow("text in a single") << "MainLeft"
                                    << "wide"
                                    << "1000";
  QTest::newRow("infinite single") << "MainHeight"
                                   << "inf"
                                   << "6500";
}

void TestApp::nonConvertingValueFallsBackToDefault() {
  QFETCH(QString, key);
  QFETCH(QString, stored);
  QFETCH(QString, savedBack);
  QTemporaryDir dir;
  QSettings store(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
  store.setValue(QStringLiteral("Settings/") + key, stored);
  store.setValue(QStringLiteral("Settings/BranchScale"), QStringLiteral("12"));
  app::Settings settings;
  app::LoadSettings(store, settings);
  QCOMPARE(settings.BranchScale, std::int16_t(12));  // the other keys still read
  app::SaveSettings(store, settings);
  QCOMPARE(store.value(QStringLiteral("Settings/") + key).toString(), savedBack);
}

void TestApp::twipsConvertAtLogicalDpi_data() {
  QTest::addColumn<double>("twips");
  QTest::addColumn<double>("dpi");
  QTest::addColumn<int>("pixels");
  QTest::newRow("one inch at 96") << 1440.0 << 96.0 << 96;
  QTest::newRow("default left at 96") << 1000.0 << 96.0 << 67;
  QTest::newRow("default width at 120") << 6500.0 << 120.0 << 542;
  QTest::newRow("threshold at 96") << 30.0 << 96.0 << 2;
}

void TestApp::twipsConvertAtLogicalDpi() {
  QFETCH(double, twips);
  QFETCH(double, dpi);
  QFETCH(int, pixels);
  QCOMPARE(app::twipsToPixels(twips, dpi), pixels);
  QCOMPARE(app::pixelsToTwips(96, 96.0), 1440.0);
}

void TestApp::windowPlacementRoundTrips() {
  QWidget window;
  app::Settings settings;
  app::applyWindowPlacement(window, settings);
  const double dpi = app::screenLogicalDpiX(window);
  QCOMPARE(window.width(), app::twipsToPixels(6500, dpi));
  QCOMPARE(window.x(), app::twipsToPixels(1000, dpi));
  app::Settings recorded;
  recorded.MainLeft = 0;
  app::recordWindowPlacement(window, recorded);
  const double onePixel = 1440.0 / dpi;
  QVERIFY(std::abs(recorded.MainLeft - 1000) < onePixel);
  QVERIFY(std::abs(recorded.MainTop - 1000) < onePixel);
  QVERIFY(std::abs(recorded.MainWidth - 6500) < onePixel);
  QVERIFY(std::abs(recorded.MainHeight - 6500) < onePixel);
}

void TestApp::chooserListsOnlyProjectFiles() {
  QTemporaryDir dir;
  const QString folder = dir.path() + QLatin1Char('/');
  writeFile(folder + QStringLiteral("b.delvane"), "x");
  writeFile(folder + QStringLiteral("a.delvane"), "x");
  writeFile(folder + QStringLiteral("notes.txt"), "x");
  RecordingDesktop desktop;
  app::dlgSelectDB chooser(folder, desktop.reporter);
  QCOMPARE(chooser.File1()->count(), 2);
  QCOMPARE(chooser.File1()->item(0)->text(), QStringLiteral("a.delvane"));
  QCOMPARE(chooser.File1()->item(1)->text(), QStringLiteral("b.delvane"));
  QCOMPARE(chooser.File1()->currentRow(), 0);
  QVERIFY(chooser.File1()->item(0)->isSelected());
  QCOMPARE(chooser.wnTitle()->text(), QStringLiteral(" Select DB"));
  QCOMPARE(chooser.cmdSelect()->text(), QStringLiteral("&Select"));
  QCOMPARE(chooser.cmdCancel()->text(), QStringLiteral("&Cancel"));
  QVERIFY(chooser.windowFlags() & Qt::FramelessWindowHint);
}

void TestApp::selectWithNothingSelectedStaysOpenWithMessage() {
  QTemporaryDir dir;
  const QString folder = dir.path() + QLatin1Char('/');
  db::createProject(folder + QStringLiteral("p.delvane"), false);
  RecordingDesktop desktop;
  app::dlgSelectDB chooser(folder, desktop.reporter);
  chooser.show();
  chooser.File1()->clearSelection();
  chooser.cmdSelect()->click();
  QVERIFY(chooser.isVisible());
  QCOMPARE(chooser.result(), int(QDialog::Rejected));
  QCOMPARE(desktop.messages.size(), 1);
  QVERIFY(desktop.messages[0].text.contains(QStringLiteral("Select a project file")));
  QVERIFY(chooser.strDatabasePath().isEmpty());
}

void TestApp::selectingFileThatIsNotDatabaseStaysOpenNamingFile() {
  QTemporaryDir dir;
  const QString folder = dir.path() + QLatin1Char('/');
  writeFile(folder + QStringLiteral("letter.delvane"), QByteArray("Dear sir,\n").repeated(200));
  RecordingDesktop desktop;
  app::dlgSelectDB chooser(folder, desktop.reporter);
  chooser.show();
  selectRow(chooser.File1(), QStringLiteral("letter.delvane"));
  chooser.cmdSelect()->click();
  QVERIFY(chooser.isVisible());
  QCOMPARE(desktop.messages.size(), 1);
  const QString& text = desktop.messages[0].text;
  QVERIFY2(text.contains(folder + QStringLiteral("letter.delvane")), qPrintable(text));
  QVERIFY2(text.contains(QStringLiteral("not an SQLite database")), qPrintable(text));
  QVERIFY(!chooser.takeConnection());
}

void TestApp::selectingDatabaseWithoutTablesStaysOpenNamingTable() {
  QTemporaryDir dir;
  const QString folder = dir.path() + QLatin1Char('/');
  {
    auto other = db::Connection::open(folder + QStringLiteral("other.delvane"),
                                      db::Connection::Mode::Create);
    other->exec(QStringLiteral("CREATE TABLE Customers (ID INTEGER, Name TEXT)"));
  }
  RecordingDesktop desktop;
  app::dlgSelectDB chooser(folder, desktop.reporter);
  chooser.show();
  selectRow(chooser.File1(), QStringLiteral("other.delvane"));
  chooser.cmdSelect()->click();
  QVERIFY(chooser.isVisible());
  QCOMPARE(desktop.messages.size(), 1);
  const QString& text = desktop.messages[0].text;
  QVERIFY2(text.contains(folder + QStringLiteral("other.delvane")), qPrintable(text));
  QVERIFY2(text.contains(QStringLiteral("is not a Delvane project file")), qPrintable(text));
  QVERIFY2(text.contains(QStringLiteral("is missing")), qPrintable(text));
}

void TestApp::selectingProjectOpensItAndCloses() {
  QTemporaryDir dir;
  const QString folder = dir.path() + QLatin1Char('/');
  db::createProject(folder + QStringLiteral("canal.delvane"), false);
  RecordingDesktop desktop;
  app::dlgSelectDB chooser(folder, desktop.reporter);
  chooser.show();
  selectRow(chooser.File1(), QStringLiteral("canal.delvane"));
  chooser.cmdSelect()->click();
  QVERIFY(!chooser.isVisible());
  QCOMPARE(chooser.result(), int(QDialog::Accepted));
  QCOMPARE(chooser.strDatabasePath(), folder + QStringLiteral("canal.delvane"));
  auto connection = chooser.takeConnection();
  QVERIFY(connection);
  QVERIFY(connection->tableExists(QStringLiteral("DesignExp")));
  QVERIFY(desktop.messages.isEmpty());
}

void TestApp::doubleClickSelects() {
  QTemporaryDir dir;
  const QString folder = dir.path() + QLatin1Char('/');
  db::createProject(folder + QStringLiteral("canal.delvane"), false);
  RecordingDesktop desktop;
  app::dlgSelectDB chooser(folder, desktop.reporter);
  chooser.show();
  QVERIFY(QTest::qWaitForWindowExposed(&chooser));
  QListWidget* list = chooser.File1();
  const QRect rect = list->visualItemRect(list->item(0));
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, rect.center());
  QCOMPARE(chooser.result(), int(QDialog::Accepted));
  QCOMPARE(chooser.strDatabasePath(), folder + QStringLiteral("canal.delvane"));
}

void TestApp::newCreatesListsAndOpensProject() {
  QTemporaryDir dir;
  const QString folder = dir.path() + QLatin1Char('/');
  RecordingDesktop desktop;
  app::dlgSelectDB chooser(folder, desktop.reporter);
  chooser.show();
  QCOMPARE(chooser.File1()->count(), 0);
  QVERIFY(chooser.createFile(folder + QStringLiteral("fresh.delvane")));
  QCOMPARE(chooser.File1()->count(), 1);
  QCOMPARE(chooser.File1()->currentItem()->text(), QStringLiteral("fresh.delvane"));
  QCOMPARE(chooser.result(), int(QDialog::Accepted));
  auto connection = chooser.takeConnection();
  QVERIFY(connection);
  QCOMPARE(connection->scalar(QStringLiteral("SELECT Count(*) FROM Package")).value_or(-1), 0.0);

  // Creating over an existing file is refused with the reason, and the chooser stays.
  app::dlgSelectDB again(folder, desktop.reporter);
  again.show();
  QVERIFY(!again.createFile(folder + QStringLiteral("fresh.delvane")));
  QVERIFY(again.isVisible());
  QCOMPARE(desktop.messages.size(), 1);
  QVERIFY(desktop.messages[0].text.contains(QStringLiteral("already exists")));
}

void TestApp::demoIsWrittenOnlyIntoFolderWithoutProjects() {
  QTemporaryDir dir;
  const QString folder = dir.path() + QLatin1Char('/');
  app::ensureDemoProject(folder);
  const QString demo = folder + db::demoProjectFileName();
  QVERIFY(QFile::exists(demo));
  QVERIFY(
      db::openProject(demo)->scalar(QStringLiteral("SELECT Count(*) FROM Sections")).value_or(0) >
      0);

  QTemporaryDir other;
  const QString otherFolder = other.path() + QLatin1Char('/');
  db::createProject(otherFolder + QStringLiteral("mine.delvane"), false);
  app::ensureDemoProject(otherFolder);
  QVERIFY(!QFile::exists(otherFolder + db::demoProjectFileName()));
}

void TestApp::adoptingProjectResetsSelectionAndKeepsConnection() {
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("canal.delvane"));
  db::createProject(path, true);
  RecordingDesktop desktop;
  app::AppState state;
  state.reporter = &desktop.reporter;
  state.lngPackageID = 4;
  state.lngSectionID = 9;
  state.strPackageName = QStringLiteral("old");
  const QString oldPath = dir.filePath(QStringLiteral("old.delvane"));
  db::createProject(oldPath, false);
  QCOMPARE(app::adoptProject(state, db::openProject(oldPath), oldPath), app::OpenResult::Opened);
  state.lngPackageID = 4;
  state.lngSectionID = 9;
  state.strPackageName = QStringLiteral("old");
  // Windows on the previous project close while its connection is still open.
  QString openDuringSwitch;
  const auto closeWindows = [&] { openDuringSwitch = state.cnProject->path(); };
  QCOMPARE(app::adoptProject(state, db::openProject(path), path, closeWindows),
           app::OpenResult::Opened);
  QCOMPARE(openDuringSwitch, oldPath);
  QVERIFY(state.cnProject);
  QVERIFY(state.engine);
  QCOMPARE(&state.engine->connection(), state.cnProject.get());
  QVERIFY(!state.engine->designProfile().empty());
  QCOMPARE(state.strDatabasePath, path);
  QCOMPARE(state.lngPackageID, 0);
  QCOMPARE(state.lngSectionID, 0);
  QVERIFY(state.strPackageName.isEmpty());
  QVERIFY(desktop.messages.isEmpty());
}

void TestApp::projectWithoutDesignProfileIsRefusedAndOldProjectKept() {
  QTemporaryDir dir;
  const QString good = dir.filePath(QStringLiteral("good.delvane"));
  const QString empty = dir.filePath(QStringLiteral("empty.delvane"));
  db::createProject(good, false);
  db::createProject(empty, false);
  db::openProject(empty)->exec(QStringLiteral("DELETE FROM DesignExp"));

  RecordingDesktop desktop;
  app::AppState state;
  state.reporter = &desktop.reporter;
  QCOMPARE(app::adoptProject(state, db::openProject(good), good), app::OpenResult::Opened);
  db::Connection* kept = state.cnProject.get();
  state.lngSectionID = 3;

  bool replaced = false;
  QCOMPARE(app::adoptProject(state, db::openProject(empty), empty, [&] { replaced = true; }),
           app::OpenResult::Refused);
  QVERIFY(!replaced);
  QCOMPARE(desktop.messages.size(), 1);
  QCOMPARE(desktop.messages[0].text,
           QStringLiteral("No design profile found in the database. DB not correctly installed."));
  QCOMPARE(desktop.messages[0].icon, Reporter::Icon::Exclamation);
  QCOMPARE(state.cnProject.get(), kept);
  QCOMPARE(state.strDatabasePath, good);
  QCOMPARE(state.lngSectionID, 3);
}

void TestApp::splashShowsVersionAndClosesOnClick() {
  app::frmSplash splash;
  QCOMPARE(splash.lblVersion()->text(), QStringLiteral("Version 1.9.2"));
  QVERIFY(!splash.lblNotice()->text().isEmpty());
  splash.show();
  QVERIFY(QTest::qWaitForWindowExposed(&splash));
  QTest::mouseClick(splash.lblNotice(), Qt::LeftButton);
  QVERIFY(!splash.isVisible());
}

void TestApp::splashClosesOnAnyKey() {
  app::frmSplash splash;
  splash.show();
  QVERIFY(QTest::qWaitForWindowExposed(&splash));
  QTest::keyClick(&splash, Qt::Key_A);
  QVERIFY(!splash.isVisible());
}

DELVANE_QTEST(TestApp)
#include "test_app.moc"
