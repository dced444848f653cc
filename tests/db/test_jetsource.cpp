#include "db/jetsource.h"

#include "tests/testsupport.h"

#include <QFile>
#include <QTemporaryFile>

#include <cstdio>

#include <unistd.h>

#include <gtest/gtest.h>

using db::SourceType;

namespace {

QString fixture(const char* name) {
  return QStringLiteral(DELVANE_TEST_DATA "/mdb/") + QString::fromLatin1(name);
}

// A value as the test writes it: "NULL", a whole number, a single as "1.5f", a double, "text".
QString describe(const db::SourceValue& value) {
  if (const auto* i = std::get_if<std::int64_t>(&value)) return QString::number(*i);
  if (const auto* f = std::get_if<float>(&value))
    return QString::number(*f, 'g', QLocale::FloatingPointShortest) + QLatin1Char('f');
  if (const auto* d = std::get_if<double>(&value))
    return QString::number(*d, 'g', QLocale::FloatingPointShortest);
  if (const auto* s = std::get_if<QString>(&value)) return QLatin1Char('"') + *s + QLatin1Char('"');
  return QStringLiteral("NULL");
}

QString describe(const std::vector<db::SourceColumn>& columns) {
  static const char* const kTypes[] = {"Integer", "Single", "Double", "Text", "Other"};
  QStringList out;
  for (const auto& c : columns)
    out.append(c.name + QLatin1Char(':') + QString::fromLatin1(kTypes[static_cast<int>(c.type)]));
  return out.join(QLatin1Char(' '));
}

// Every row of table with the named columns, one line per row.
QStringList rowsOf(db::JetSource& source, const QString& table, const QStringList& columns) {
  QStringList rows;
  source.readRows(table, columns, [&rows](const std::vector<db::SourceValue>& row) {
    QStringList values;
    for (const auto& v : row) values.append(describe(v));
    rows.append(values.join(QLatin1Char(' ')));
  });
  return rows;
}

// The three sample files, Jet 3, Jet 4 and Jet 4 behind a database password, read with every
// column type they hold. Under a comma-decimal locale, as a German user runs the program: the
// numbers must not depend on it.
TEST(JetSource, SampleFilesReadWithTheirRowsAndValues) {
  testsupport::CommaDecimalLocale german;
  const struct {
    const char* file;
    QStringList tables;
    const char* table;
    const char* columns;
    QStringList rows;
  } cases[] = {
      {"jet3-test.mdb",
       {"Table1", "Table2", "Table3", "Table4"},
       "Table1",
       "A:Text B:Text C:Integer D:Integer E:Integer F:Double G:Text H:Double I:Integer",
       {"\"a\" \"b\" 0 0 0 0 \"1981-12-12 00:00:00\" 0 0",
        "\"abcdefg\" \"hijklmnop\" 2 222 333333333 444.555 \"1974-09-21 00:00:00\" 3.5 1"}},
      {"jet4-numeric.mdb",
       {"test"},
       "test",
       "col1:Text col2:Double col3:Double col4:Double col5:Double col6:Double col7:Double",
       {"\"some data\" 1 0 0 4 -1 1"}},
      {"jet4-with-password.mdb",
       {"Table1"},
       "Table1",
       "ID:Integer Data:Text",
       {"1 \"One\"", "2 \"Two\"", "3 \"Three\""}},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.file);
    db::JetSource source(fixture(k.file));
    EXPECT_EQ(source.tableNames(), k.tables);
    const QString table = QString::fromLatin1(k.table);
    const auto columns = source.columns(table);
    EXPECT_EQ(describe(columns), QString::fromLatin1(k.columns));
    QStringList names;
    for (const auto& c : columns) names.append(c.name);
    EXPECT_EQ(rowsOf(source, table, names), k.rows);
  }
}

// The copy asks only for the columns it keeps, in its own order.
TEST(JetSource, RowsCarryTheAskedColumnsInTheAskedOrder) {
  db::JetSource source(fixture("jet4-with-password.mdb"));
  EXPECT_EQ(
      rowsOf(source, QStringLiteral("Table1"), {QStringLiteral("Data"), QStringLiteral("ID")}),
      QStringList({"\"One\" 1", "\"Two\" 2", "\"Three\" 3"}));
  EXPECT_EQ(rowsOf(source, QStringLiteral("Table1"), {}), QStringList({"", "", ""}));
  EXPECT_THROW(rowsOf(source, QStringLiteral("Table1"), {QStringLiteral("Remarks")}), db::Error);
  EXPECT_THROW(source.columns(QStringLiteral("Table9")), db::Error);
}

// Files that are no Jet database are refused with their name and the reason.
TEST(JetSource, FilesThatAreNoJetDatabaseAreRefused) {
  testsupport::TempProject dir;
  const auto write = [&dir](const char* name, const QByteArray& bytes) {
    const QString path = dir.path(QString::fromLatin1(name));
    QFile file(path);
    file.open(QIODevice::WriteOnly);
    file.write(bytes);
    return path;
  };
  QFile sample(fixture("jet3-test.mdb"));
  ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
  const QByteArray bytes = sample.readAll();
  dir.create();
  const struct {
    QString path;
    const char* reason;
  } cases[] = {
      {write("notes.mdb", QByteArray("Chainage,Offset,Level\n0,0,100\n").repeated(200)),
       "is not a Jet database"},
      {write("empty.mdb", {}), "is not a Jet database"},
      {dir.path(), "is not a Jet database"},
      {write("cut.mdb", bytes.left(30 * 2048 + 1000)), "ends in the middle of a page"},
      {write("cut8.mdb", bytes.left(8 * 2048)), "is damaged"},
      {dir.path(QStringLiteral("absent.mdb")), "does not exist"},
      {dir.dir().path(), "is a folder"},
  };
  for (const auto& k : cases) {
    try {
      db::JetSource source(k.path);
      ADD_FAILURE() << "opened " << k.path.toStdString();
    } catch (const db::Error& e) {
      EXPECT_TRUE(e.message().contains(k.path)) << e.what();
      EXPECT_TRUE(e.message().contains(QString::fromLatin1(k.reason))) << e.what();
    }
  }
}

// A file cut short at a page boundary after its list of tables: the rows it lost are missed,
// and the library's page dumps stay off standard output, where the command line's JSON goes.
TEST(JetSource, ACutFileLosesNoRowUnnoticedAndKeepsStandardOutputClean) {
  testsupport::TempProject dir;
  QFile sample(fixture("jet3-test.mdb"));
  ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
  const QByteArray bytes = sample.readAll();
  const struct {
    int pages;
    const char* table;
    const char* reason;
  } cases[] = {
      {30, "Table1", "the table Table1 should hold 2 rows, but 0 can be read."},
      {45, "Table3", "the table Table3 cannot be read."},
  };
  for (const auto& k : cases) {
    const QString path = dir.path(QStringLiteral("cut%1.mdb").arg(k.pages));
    QFile cut(path);
    ASSERT_TRUE(cut.open(QIODevice::WriteOnly));
    cut.write(bytes.left(k.pages * 2048));
    cut.close();

    QTemporaryFile captured;
    ASSERT_TRUE(captured.open());
    std::fflush(stdout);
    const int saved = ::dup(STDOUT_FILENO);
    ::dup2(captured.handle(), STDOUT_FILENO);
    QString error;
    try {
      db::JetSource source(path);
      rowsOf(source, QString::fromLatin1(k.table), {});
    } catch (const db::Error& e) {
      error = e.message();
    }
    std::fflush(stdout);
    ::dup2(saved, STDOUT_FILENO);
    ::close(saved);
    EXPECT_TRUE(error.endsWith(QString::fromLatin1(k.reason))) << error.toStdString();
    EXPECT_EQ(captured.size(), 0) << captured.readAll().left(200).toStdString();
  }
}

}  // namespace
