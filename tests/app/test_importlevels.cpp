#include "app/dlgerrorform.h"
#include "app/importlevelsdialog.h"
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QPushButton>
#include <QTableWidget>
#include <QTimer>

namespace {

const QString kSample = QStringLiteral(DELVANE_TEST_DATA "/survey/rmc_km1_resurvey.csv");

// A row of the preview: line, chainage, offset, level, code, problem.
QString previewRow(const app::ImportLevelsDialog& dialog, int row) {
  QStringList cells;
  for (int column = 0; column < dialog.preview()->columnCount(); ++column)
    cells.append(dialog.preview()->item(row, column)->text());
  return cells.join(QLatin1Char('|'));
}

void choose(QComboBox* box, const char* text) {
  const int index = box->findText(QLatin1String(text));
  QVERIFY2(index >= 0, text);
  box->setCurrentIndex(index);
}

}  // namespace

class TestImportLevels : public QObject {
  Q_OBJECT

 private slots:
  void theColumnsAndTheUnitTheUserChoosesAreWhatIsRead();
  void importFillsTheOpenSheetOrListsTheLinesAndWritesNothing();
};

void TestImportLevels::theColumnsAndTheUnitTheUserChoosesAreWhatIsRead() {
  // Offset first, no header: the chainage column as detected reads "5R".
  app::ImportLevelsDialog dialog(QStringLiteral("s.txt"),
                                 {QStringLiteral("5R 1020 x"), QStringLiteral("5L 1020 101.2"),
                                  QStringLiteral("5R 1020 101.3")},
                                 engine::LevelTable::Executed);
  QCOMPARE(previewRow(dialog, 0),
           QStringLiteral("1|||||column 1 (chainage): '5R' is not a number."));
  QVERIFY(dialog.summary()->text().contains(QLatin1String("3 lines have problems")));

  choose(dialog.columnBox(engine::SurveyField::Chainage), "2: Column 2");
  choose(dialog.columnBox(engine::SurveyField::Offset), "1: Column 1");
  // The lines in file order, whether they read or not.
  QCOMPARE(previewRow(dialog, 0), QStringLiteral("1|||||column 3 (level): 'x' is not a number."));
  QCOMPARE(previewRow(dialog, 1), QStringLiteral("2|1.02|-5|101.2||"));
  QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("lblUnitRead"))->text(),
           QStringLiteral("read as metres"));
  choose(dialog.unitBox(), "Kilometres");
  QCOMPARE(previewRow(dialog, 1), QStringLiteral("2|1020|-5|101.2||"));
  QCOMPARE(dialog.summary()->text(),
           QStringLiteral("2 readings read; 1 line has a problem, the first on line 1. Nothing "
                          "is imported until every line reads."));
  QCOMPARE(dialog.read().readings.size(), std::size_t{2});
  QCOMPARE(dialog.read().readings[1].chainage, 1020.0f);
  QCOMPARE(dialog.table(), engine::LevelTable::Executed);
}

void TestImportLevels::importFillsTheOpenSheetOrListsTheLinesAndWritesNothing() {
  apptest::Desk desk(true);
  desk.choose(1, 1);
  desk.trigger("mnuDataInitial");
  sheets::frmDataGrid* sheet = desk.sheet();
  const int demoRows = desk.count(QStringLiteral("Initial"), QStringLiteral("SectionID=1"));
  desk.window->setOpenFileFunction(
      [](QWidget*, const QString&, const QString&, const QString&) { return kSample; });
  desk.state.engine->clearQuantityChainagesMark();

  // The demo holds the centre-line readings of the file's chainages: without Replace the import
  // is refused line by line.
  for (const bool replace : {false, true}) {
    QTimer::singleShot(0, [replace] {
      auto* dialog = qobject_cast<app::ImportLevelsDialog*>(QApplication::activeModalWidget());
      QVERIFY(dialog);
      dialog->findChild<QCheckBox*>(QStringLiteral("chkReplace"))->setChecked(replace);
      dialog->findChild<QPushButton*>(QStringLiteral("cmdImport"))->click();
    });
    desk.trigger("mnuFileImportLevels");
    if (!replace) {
      QVERIFY(desk.reporter.errorForm());
      QVERIFY(desk.reporter.errorForm()->text().startsWith(QLatin1String(
          "rmc_km1_resurvey.csv, line 8, column 1 (chainage): the Initial levels of section 1 "
          "already hold chainage 1.02 and offset 0")));
      QVERIFY(desk.messages.isEmpty());
      QCOMPARE(desk.count(QStringLiteral("Initial"), QStringLiteral("SectionID=1")), demoRows);
      QVERIFY(!desk.state.engine->quantityChainagesOutOfDate());
    }
  }
  QCOMPARE(desk.messagesText(),
           QStringLiteral("Delvane: Imported 27 readings at 3 chainages from rmc_km1_resurvey.csv "
                          "into the Initial levels of this section, in place of the %1 readings "
                          "it held.")
               .arg(demoRows));
  QCOMPARE(sheet->grid().Rows(), 27);
  QVERIFY(desk.state.engine->quantityChainagesOutOfDate());

  // With the Executed sheet in front, the dialog offers the executed levels.
  desk.trigger("mnuDataExecuted");
  std::optional<engine::LevelTable> offered;
  QTimer::singleShot(0, [&offered] {
    auto* dialog = qobject_cast<app::ImportLevelsDialog*>(QApplication::activeModalWidget());
    if (!dialog) return;
    offered = dialog->table();
    dialog->reject();
  });
  desk.trigger("mnuFileImportLevels");
  QCOMPARE(offered, std::optional(engine::LevelTable::Executed));
}

DELVANE_QTEST(TestImportLevels)

#include "test_importlevels.moc"
