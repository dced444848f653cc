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
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QFile>
#include <QFileInfo>
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
using apptest::describe;
using engine::Reporter;

namespace {

// A reporter whose message boxes are recorded instead of shown.
struct RecordingDesktop {
  RecordingDesktop() {
    reporter.setMessageFunction([this](const QString& text, Reporter::Icon icon) {
      messages.append(text);
      icons.append(icon);
    });
  }
  DesktopReporter reporter;
  QStringList messages;
  QList<Reporter::Icon> icons;
};

void writeFile(const QString& path, const QByteArray& contents) {
  QFile file(path);
  QVERIFY(file.open(QIODevice::WriteOnly));
  file.write(contents);
}

// A folder holding project files for the chooser.
struct ChooserFolder {
  QTemporaryDir dir;
  QString path = dir.path() + QLatin1Char('/');
  RecordingDesktop desktop;
  std::unique_ptr<app::dlgSelectDB> open() {
    auto chooser = std::make_unique<app::dlgSelectDB>(path, desktop.reporter);
    chooser->show();
    return chooser;
  }
};

}  // namespace

class TestApp : public QObject {
  Q_OBJECT

 private slots:
  void errorListAppendsLinesUntilItOrItsParentCloses();

  void progressKeepsItsRangeOverBadValuesAndCentres();
  void reporterRoutesBoxesStatusAndTheSharedProgress();

  void emptyStoreGivesDefaults();
  void settingsRoundTripEveryKeyAsText();
  void nonConvertingValueFallsBackToDefault();
  void windowPlacementRoundTripsThroughTwips();

  void chooserRefusalStaysOpenWithMessage();
  void chooserListsProjectFilesAndDoubleClickOpensOne();
  void newCreatesListsAndOpensProjectButNotOverAFile();
  void demoIsWrittenOnlyIntoFolderWithoutProjects();

  void adoptingNeedsADesignProfileThenResetsTheSelection();

  void splashShowsVersionAndClosesOnClickOrKey();
};

void TestApp::errorListAppendsLinesUntilItOrItsParentCloses() {
  RecordingDesktop desktop;
  app::DesktopReporter& reporter = desktop.reporter;
  // Whether the list is loaded, and its text.
  const auto list = [&reporter]() -> QString {
    return QString::number(reporter.blnErrorListLoaded()) + ' ' +
           (reporter.errorForm() ? reporter.errorForm()->text() : QStringLiteral("none"));
  };
  QCOMPARE(list(), "0 none");
  reporter.ShowError(QStringLiteral("a"));
  reporter.ShowError(QStringLiteral("b"));
  QPointer<app::dlgErrorForm> first = reporter.errorForm();
  QVERIFY(first->isVisible());
  QCOMPARE(list(), "1 a\r\nb");
  QCOMPARE(first->ErrText()->toPlainText(), QStringLiteral("a\nb"));
  first->cmdClose()->click();
  QCOMPARE(list(), "0 none");
  // Before the closed window is even deleted, the next message opens a fresh list.
  reporter.ShowError(QStringLiteral("c"));
  QVERIFY(reporter.errorForm() != first.data());
  QTRY_VERIFY(first.isNull());
  QCOMPARE(list(), "1 c");

  // Closing the window it belongs to unloads it too.
  reporter.errorForm()->cmdClose()->click();
  auto parent = std::make_unique<QWidget>();
  reporter.setParentWindow(parent.get());
  reporter.ShowError(QStringLiteral("d"));
  parent.reset();
  QVERIFY(!reporter.blnErrorListLoaded());
}

void TestApp::progressKeepsItsRangeOverBadValuesAndCentres() {
  app::frmProgress progress;
  progress.show();
  const auto shown = [&progress] {
    return QStringLiteral("%1 %2 %3")
        .arg(progress.progressName()->text())
        .arg(progress.ProgressBar1()->maximum())
        .arg(progress.ProgressBar1()->isVisible());
  };
  progress.SetProperties(QStringLiteral("first"), 250, true);
  QCOMPARE(shown(), QStringLiteral("first 250 1"));
  progress.SetProperties(QStringLiteral("x"), 0, false);
  QCOMPARE(shown(), QStringLiteral("x 250 0"));
  progress.SetProperties(QStringLiteral("y"), -5, true);
  QCOMPARE(shown(), QStringLiteral("y 250 1"));
  // A value outside 0..250 is ignored.
  for (const auto& [value, expected] :
       {std::pair{3, 3}, {250, 250}, {251, 250}, {-1, 250}, {0, 0}}) {
    progress.UpdateValue(value);
    QCOMPARE(progress.ProgressBar1()->value(), expected);
  }

  // It centres itself when resized.
  const QRect screen = progress.screen()->geometry();
  progress.setFixedSize(300, 90);
  QCOMPARE(progress.pos(),
           screen.topLeft() + QPoint(screen.width() / 2 - 150, screen.height() / 2 - 45));
}

void TestApp::reporterRoutesBoxesStatusAndTheSharedProgress() {
  RecordingDesktop desktop;
  QStringList status;
  desktop.reporter.setStatusFunction(
      [&status](int panel, const QString& text) { status.append(QString::number(panel) + text); });
  desktop.reporter.messageBox(QStringLiteral("No design profile"), Reporter::Icon::Exclamation);
  desktop.reporter.statusText(2, QStringLiteral("Cut 1,234 cum"));
  QCOMPARE(desktop.messages + status, QStringList({"No design profile", "2Cut 1,234 cum"}));
  QCOMPARE(desktop.icons, QList<Reporter::Icon>{Reporter::Icon::Exclamation});

  desktop.reporter.progressStart(QStringLiteral("Quantity..."), 20, true);
  app::frmProgress& progress = desktop.reporter.progress();
  QVERIFY(progress.isVisible());
  desktop.reporter.progressValue(5);
  QCOMPARE(progress.ProgressBar1()->value(), 5);
  desktop.reporter.progressEnd();
  QVERIFY(!progress.isVisible());
  desktop.reporter.progressStart(QStringLiteral("Again"), 0, false);
  QCOMPARE(&desktop.reporter.progress(), &progress);
}

void TestApp::emptyStoreGivesDefaults() {
  QTemporaryDir dir;
  QSettings store(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
  app::Settings settings;
  settings.MainLeft = 5;
  settings.MaxReadings = 99;
  app::LoadSettings(store, settings);
  QCOMPARE(describe(settings), QStringLiteral("1000 1000 6500 6500 1 0 15 20 8 1 1 0 0 100 1000"));
}

void TestApp::settingsRoundTripEveryKeyAsText() {
  const QString text = QStringLiteral(
      "Settings/AutoSave=False Settings/BranchScale=32767 Settings/DisplayQtyXSection=False "
      "Settings/EnterRight=True Settings/FixedDatum=True Settings/FixedDatumVal=-32768 "
      "Settings/LSectionScale=250 Settings/MainHeight=7200 Settings/MainLeft=123.5 "
      "Settings/MainTop=-40 Settings/MainWidth=9000.25 Settings/MaxReadings=31 "
      "Settings/MetersPerPage=500 Settings/MinorScale=-7 Settings/QtyBifurcate=False");
  QTemporaryDir dir;
  QSettings written(dir.filePath(QStringLiteral("written.ini")), QSettings::IniFormat);
  for (const QString& pair : text.split(' '))
    written.setValue(pair.section('=', 0, 0), pair.section('=', 1));
  app::Settings read;
  app::LoadSettings(written, read);
  QCOMPARE(describe(read),
           QStringLiteral("123.5 -40 9000.25 7200 0 1 31 -7 32767 0 0 1 -32768 250 500"));
  QSettings saved(dir.filePath(QStringLiteral("saved.ini")), QSettings::IniFormat);
  app::SaveSettings(saved, read);
  QStringList stored;
  for (const QString& key : saved.allKeys()) stored.append(key + '=' + saved.value(key).toString());
  QCOMPARE(stored.join(' '), text);
}

void TestApp::nonConvertingValueFallsBackToDefault() {
  const struct {
    const char* key;
    const char* stored;
    const char* savedBack;
  } cases[] = {
      {"MinorScale", "twenty", "20"},      // text in an integer
      {"MetersPerPage", "40000", "1000"},  // above 16 bits
      {"FixedDatumVal", "-32769", "0"},    // below 16 bits
      {"MaxReadings", "12.5", "15"},       // a fraction in an integer
      {"AutoSave", "maybe", "True"},       // a word in a boolean
      {"EnterRight", "", "False"},         // an empty boolean
      {"MainLeft", "wide", "1000"},        // text in a single
      {"MainHeight", "inf", "6500"},       // an infinite single
  };
  for (const auto& c : cases) {
    QTemporaryDir dir;
    QSettings store(dir.filePath(QStringLiteral("settings.ini")), QSettings::IniFormat);
    const QString key = QStringLiteral("Settings/") + QLatin1String(c.key);
    store.setValue(key, QString::fromLatin1(c.stored));
    store.setValue(QStringLiteral("Settings/BranchScale"), QStringLiteral("12"));
    app::Settings settings;
    app::LoadSettings(store, settings);
    QCOMPARE(settings.BranchScale, std::int16_t(12));  // the other keys still read
    app::SaveSettings(store, settings);
    QCOMPARE(store.value(key).toString(), QLatin1String(c.savedBack));
  }
}

void TestApp::windowPlacementRoundTripsThroughTwips() {
  QCOMPARE(app::pixelsToTwips(96, 96.0), 1440.0);
  // One inch, the default left and width, and the threshold of a pixel.
  for (const auto& [twips, dpi, pixels] :
       {std::tuple{1440.0, 96.0, 96}, {1000.0, 96.0, 67}, {6500.0, 120.0, 542}, {30.0, 96.0, 2}})
    QCOMPARE(app::twipsToPixels(twips, dpi), pixels);

  QWidget window;
  app::applyWindowPlacement(window, app::Settings());
  const double dpi = app::screenLogicalDpiX(window);
  QCOMPARE(window.width(), app::twipsToPixels(6500, dpi));
  QCOMPARE(window.x(), app::twipsToPixels(1000, dpi));
  app::Settings recorded;
  recorded.MainLeft = 0;
  app::recordWindowPlacement(window, recorded);
  for (const auto& [value, expected] : {std::pair{recorded.MainLeft, 1000.0f},
                                        {recorded.MainTop, 1000.0f},
                                        {recorded.MainWidth, 6500.0f},
                                        {recorded.MainHeight, 6500.0f}})
    QVERIFY(std::abs(value - expected) < 1440.0 / dpi);  // within a pixel
}

void TestApp::chooserRefusalStaysOpenWithMessage() {
  ChooserFolder folder;
  db::createProject(folder.path + QStringLiteral("p.delvane"), false);
  writeFile(folder.path + QStringLiteral("letter.delvane"),
            QByteArray("Dear sir,\n").repeated(200));
  db::Connection::open(folder.path + QStringLiteral("other.delvane"), db::Connection::Mode::Create)
      ->exec(QStringLiteral("CREATE TABLE Customers (ID INTEGER, Name TEXT)"));
  // Nothing selected, not a database, a database without the tables.
  for (const auto& [file, says] :
       {std::pair{QString(), QStringList{"Select a project file"}},
        {folder.path + "letter.delvane", {"not an SQLite database"}},
        {folder.path + "other.delvane", {"is not a Delvane project file", "is missing"}}}) {
    folder.desktop.messages.clear();
    const auto chooser = folder.open();
    chooser->File1()->clearSelection();
    for (QListWidgetItem* item : chooser->File1()->findItems(QFileInfo(file).fileName(), {}))
      chooser->File1()->setCurrentItem(item);
    chooser->cmdSelect()->click();
    QVERIFY(chooser->isVisible());
    QCOMPARE(chooser->result(), int(QDialog::Rejected));
    QCOMPARE(folder.desktop.messages.size(), 1);
    for (const QString& part : says + QStringList{file})
      QVERIFY2(folder.desktop.messages[0].contains(part), qPrintable(folder.desktop.messages[0]));
    QVERIFY(!chooser->takeConnection());
  }
}

void TestApp::chooserListsProjectFilesAndDoubleClickOpensOne() {
  ChooserFolder folder;
  db::createProject(folder.path + QStringLiteral("canal.delvane"), false);
  for (const char* name : {"notes.txt", "zz.delvane"})
    writeFile(folder.path + QLatin1String(name), "x");
  const auto chooser = folder.open();
  QVERIFY(QTest::qWaitForWindowExposed(chooser.get()));
  QListWidget* list = chooser->File1();
  QStringList listed;  // only project files, in order, the first selected
  for (int i = 0; i < list->count(); ++i)
    listed.append(list->item(i)->text() + (list->item(i)->isSelected() ? "*" : ""));
  QCOMPARE(listed, QStringList({"canal.delvane*", "zz.delvane"}));
  const QRect rect = list->visualItemRect(list->item(0));
  QTest::mouseClick(list->viewport(), Qt::LeftButton, {}, rect.center());
  QTest::mouseDClick(list->viewport(), Qt::LeftButton, {}, rect.center());
  QVERIFY(!chooser->isVisible());
  QCOMPARE(chooser->result(), int(QDialog::Accepted));
  QCOMPARE(chooser->strDatabasePath(), folder.path + QStringLiteral("canal.delvane"));
  auto connection = chooser->takeConnection();
  QVERIFY(connection && connection->tableExists(QStringLiteral("DesignExp")));
  QVERIFY(folder.desktop.messages.isEmpty());
}

void TestApp::newCreatesListsAndOpensProjectButNotOverAFile() {
  ChooserFolder folder;
  const QString fresh = folder.path + QStringLiteral("fresh.delvane");
  const auto chooser = folder.open();
  QVERIFY(chooser->createFile(fresh));
  QCOMPARE(chooser->File1()->currentItem()->text(), QStringLiteral("fresh.delvane"));
  QCOMPARE(chooser->result(), int(QDialog::Accepted));
  QCOMPARE(chooser->takeConnection()->scalar("SELECT Count(*) FROM Package").value_or(-1), 0.0);

  const auto again = folder.open();
  QVERIFY(!again->createFile(fresh));
  QVERIFY(again->isVisible());
  QVERIFY(folder.desktop.messages.join('\n').contains(QStringLiteral("already exists")));
}

void TestApp::demoIsWrittenOnlyIntoFolderWithoutProjects() {
  QTemporaryDir empty, other;
  db::createProject(other.filePath(QStringLiteral("mine.delvane")), false);
  for (QTemporaryDir* dir : {&empty, &other}) app::ensureDemoProject(dir->path() + '/');
  const auto demo = db::openProject(empty.filePath(db::demoProjectFileName()));
  QVERIFY(demo->scalar(QStringLiteral("SELECT Count(*) FROM Sections")).value_or(0) > 0);
  QVERIFY(!QFile::exists(other.filePath(db::demoProjectFileName())));
}

void TestApp::adoptingNeedsADesignProfileThenResetsTheSelection() {
  QTemporaryDir dir;
  const QString old = dir.filePath(QStringLiteral("old.delvane"));
  const QString demo = dir.filePath(QStringLiteral("demo.delvane"));
  const QString empty = dir.filePath(QStringLiteral("empty.delvane"));
  db::createProject(old, false);
  db::createProject(demo, true);
  db::createProject(empty, false);
  db::openProject(empty)->exec(QStringLiteral("DELETE FROM DesignExp"));
  RecordingDesktop desktop;
  app::AppState state;
  state.reporter = &desktop.reporter;
  QCOMPARE(app::adoptProject(state, db::openProject(old), old), app::OpenResult::Opened);
  db::Connection* kept = state.cnProject.get();
  state.lngPackageID = 4;
  state.lngSectionID = 9;
  state.strPackageName = QStringLiteral("old");
  const auto selection = [&state] {
    return QStringLiteral("%1 %2 %3 %4")
        .arg(state.strDatabasePath)
        .arg(state.lngPackageID)
        .arg(state.lngSectionID)
        .arg(state.strPackageName);
  };

  bool replaced = false;
  QCOMPARE(app::adoptProject(state, db::openProject(empty), empty,
                             [&] {
                               replaced = true;
                               return true;
                             }),
           app::OpenResult::Refused);
  QVERIFY(!replaced);
  QCOMPARE(desktop.messages,
           QStringList{"No design profile found in the database. DB not correctly installed."});
  QCOMPARE(desktop.icons, QList<Reporter::Icon>{Reporter::Icon::Exclamation});
  QCOMPARE(state.cnProject.get(), kept);
  QCOMPARE(selection(), old + QStringLiteral(" 4 9 old"));

  // Windows on the previous project close while its connection is still open; a window the
  // user keeps open keeps that project.
  desktop.messages.clear();
  QString openDuringSwitch;
  bool windowsClose = false;
  const auto closeWindows = [&] {
    openDuringSwitch = state.cnProject->path();
    return windowsClose;
  };
  QCOMPARE(app::adoptProject(state, db::openProject(demo), demo, closeWindows),
           app::OpenResult::Cancelled);
  QCOMPARE(state.cnProject.get(), kept);
  QCOMPARE(selection(), old + QStringLiteral(" 4 9 old"));
  windowsClose = true;
  QCOMPARE(app::adoptProject(state, db::openProject(demo), demo, closeWindows),
           app::OpenResult::Opened);
  QCOMPARE(openDuringSwitch, old);
  QCOMPARE(&state.engine->connection(), state.cnProject.get());
  QVERIFY(!state.engine->designProfile().empty());
  QCOMPARE(selection(), demo + QStringLiteral(" 0 0 "));
  QVERIFY(desktop.messages.isEmpty());
}

void TestApp::splashShowsVersionAndClosesOnClickOrKey() {
  app::frmSplash splash;
  QCOMPARE(splash.lblVersion()->text(), QStringLiteral("Version 1.9.2"));
  QVERIFY(!splash.lblNotice()->text().isEmpty());
  for (bool click : {true, false}) {
    splash.show();
    QVERIFY(QTest::qWaitForWindowExposed(&splash));
    if (click)
      QTest::mouseClick(splash.lblNotice(), Qt::LeftButton);
    else
      QTest::keyClick(&splash, Qt::Key_A);
    QVERIFY(!splash.isVisible());
  }
}

DELVANE_QTEST(TestApp)
#include "test_app.moc"
