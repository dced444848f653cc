#include "tests/cli/clirunner.h"
#include "tests/testsupport.h"

#include <QDir>
#include <QFile>

#include <gtest/gtest.h>

using testsupport::runCli;

namespace {

QString fixture(const char* name) {
  return QStringLiteral(DELVANE_TEST_DATA "/mdb/") + QString::fromLatin1(name);
}

// Whatever goes wrong, the exit code says what kind of wrong, the message names the file, and
// no project file (nor a scratch file) is left behind.
TEST(ImportMdb, RefusalsSayWhyAndCreateNothing) {
  testsupport::TempProject dir;
  const QString notJet = dir.path(QStringLiteral("levels.mdb"));
  {
    QFile file(notJet);
    ASSERT_TRUE(file.open(QIODevice::WriteOnly));
    file.write("Chainage,Offset,Level\n0.000,0,152.4\n");
  }
  const QString target = dir.path(QStringLiteral("new.delvane"));
  const struct {
    const char* what;
    QStringList args;
    int code;
    QString mentioned;
  } cases[] = {
      {"a text file", {notJet, target}, 3, QStringLiteral("is not a Jet database")},
      {"a missing file",
       {dir.path(QStringLiteral("old.mdb")), target},
       3,
       QStringLiteral("does not exist")},
      {"a Jet file that holds no project",
       {fixture("jet3-test.mdb"), target},
       1,
       QStringLiteral("its tables are Table1, Table2, Table3, Table4.")},
      {"a password-protected Jet file that holds no project",
       {fixture("jet4-with-password.mdb"), target, QStringLiteral("--json")},
       1,
       QStringLiteral("holds none of a project's tables")},
      {"one file named", {fixture("jet3-test.mdb")}, 2, QStringLiteral("NEW.delvane")},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.what);
    QStringList args = k.args;
    args.prepend(QStringLiteral("import-mdb"));
    const auto r = runCli(args);
    EXPECT_EQ(r.code, k.code);
    EXPECT_TRUE(r.err.contains(k.mentioned)) << r.err.toStdString();
    EXPECT_EQ(r.out, QString());
    EXPECT_EQ(QDir(dir.dir().path()).entryList(QDir::Files | QDir::Hidden),
              QStringList{QStringLiteral("levels.mdb")});
  }
}

}  // namespace
