#include "app/dlgerrorform.h"
#include "tests/app/appfixture.h"
#include "tests/fakesource.h"
#include "tests/qtestmain.h"

#include <QDir>
#include <QFile>
#include <QMdiArea>
#include <QStandardPaths>

using apptest::Desk;
using db::SourceType;

namespace {

// An older project: the design profile, one package, a reading whose level was typed as text,
// and a table a project has no place for.
std::unique_ptr<db::TableSource> legacyProject(const QString&) {
  return std::make_unique<testsupport::FakeSource>(std::vector<testsupport::FakeTable>{
      testsupport::designProfileTable(),
      {QStringLiteral("Package"),
       {{QStringLiteral("ID"), SourceType::Integer}, {QStringLiteral("Name"), SourceType::Text}},
       {{std::int64_t{4}, QStringLiteral("Left Main Canal")}}},
      {QStringLiteral("Initial"),
       {{QStringLiteral("Level"), SourceType::Text}},
       {{QStringLiteral("152.4 m")}}},
      {QStringLiteral("Notes"), {{QStringLiteral("Text"), SourceType::Text}}, {}}});
}

// Answers the file dialog of File > Import Legacy Project with path.
void answerOpenWith(Desk& desk, const QString& path) {
  desk.window->setOpenFileFunction(
      [path](QWidget*, const QString&, const QString&, const QString&) { return path; });
}

}  // namespace

class TestImportLegacy : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  // The copy is made under the name the user gave (".delvane" added), the report names what was
  // skipped, and the new project replaces the open one and its windows.
  void importReportsAndOpensTheCopy() {
    Desk desk;
    desk.showChildren({"Initial"});
    answerOpenWith(desk, desk.folder.filePath(QStringLiteral("canal 1998.v2.mdb")));
    desk.window->setLegacySourceFunction(legacyProject);
    desk.saveAs = desk.folder.filePath(QStringLiteral("imported"));
    desk.trigger("mnuFileImportLegacy");

    const QString imported = desk.folder.filePath(QStringLiteral("imported.delvane"));
    QCOMPARE(desk.suggestedSave, desk.folder.filePath(QStringLiteral("canal 1998.v2.delvane")));
    QCOMPARE(desk.messages.size(), 1);
    QVERIFY2(desk.messages[0]
                 .text.split(QLatin1Char('\n'))
                 .contains(QStringLiteral("The table Notes is not part of a project; skipped.")),
             qPrintable(desk.messagesText()));
    QVERIFY(desk.reporter.errorForm());
    QCOMPARE(desk.reporter.errorForm()->text(),
             QStringLiteral("Table Initial, row 1, column Level: \"152.4 m\" is not a number; "
                            "kept as it was."));
    QVERIFY(desk.messages[0].text.endsWith(QStringLiteral("Open the new project now?")));
    QCOMPARE(desk.state.strDatabasePath, imported);
    QCOMPARE(desk.rows("SELECT ID, Name FROM Package"), QStringLiteral("4 Left Main Canal"));
    QCOMPARE(desk.window->mdiArea()->subWindowList().size(), 0);
  }

  // A file that is no Jet database is refused before the user is asked where to save; a Jet
  // file of something else after. Either way the message says why and no file is made.
  void refusedFilesLeaveNothing() {
    Desk desk;
    const QString text = desk.folder.filePath(QStringLiteral("levels.mdb"));
    QFile file(text);
    QVERIFY(file.open(QIODevice::WriteOnly));
    file.write("Chainage,Offset,Level\n");
    file.close();
    const struct {
      QString oldFile;
      bool askedWhereToSave;
      QString reason;
    } cases[] = {
        {text, false, QStringLiteral("is not a Jet database")},
        {QStringLiteral(DELVANE_TEST_DATA "/mdb/jet4-with-password.mdb"), true,
         QStringLiteral("holds none of a project's tables")},
    };
    for (const auto& k : cases) {
      desk.messages.clear();
      desk.suggestedSave.clear();
      answerOpenWith(desk, k.oldFile);
      desk.saveAs = desk.folder.filePath(QStringLiteral("new.delvane"));
      desk.trigger("mnuFileImportLegacy");
      QCOMPARE(!desk.suggestedSave.isEmpty(), k.askedWhereToSave);
      QCOMPARE(desk.messages.size(), 1);
      QCOMPARE(desk.messages[0].icon, sheets::MessageIcon::Critical);
      QVERIFY2(desk.messages[0].text.contains(k.reason), qPrintable(desk.messagesText()));
      QVERIFY(!QFile::exists(desk.saveAs));
      QCOMPARE(desk.state.strDatabasePath, desk.path);
    }
  }
};

DELVANE_QTEST(TestImportLegacy)
#include "test_importlegacy.moc"
