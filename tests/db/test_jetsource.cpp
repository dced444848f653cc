#include "db/jetsource.h"

#include "tests/testsupport.h"

#include <QFile>
#include <QTemporaryFile>

#include <gtest/gtest.h>

#include <cstdio>

#include <unistd.h>

namespace {

QString fixture(const char* name) {
  return QStringLiteral(DELVANE_TEST_DATA "/mdb/") + QString::fromLatin1(name);
}

// Every row of table with the named columns (all when none are named), one line per row:
// whole numbers plain, singles with an 'f', doubles shortest, text quoted, NULL.
QStringList rowsOf(db::JetSource& source, const QString& table, QStringList columns = {}) {
  if (columns.isEmpty())
    for (const auto& c : source.columns(table)) columns.append(c.name);
  QStringList rows;
  source.readRows(table, columns, [&rows](const std::vector<db::SourceValue>& row) {
    QStringList values;
    for (const auto& v : row) {
      if (const auto* i = std::get_if<std::int64_t>(&v)) values.append(QString::number(*i));
      if (const auto* f = std::get_if<float>(&v))
        values.append(QString::number(*f, 'g', QLocale::FloatingPointShortest) + u'f');
      if (const auto* d = std::get_if<double>(&v))
        values.append(QString::number(*d, 'g', QLocale::FloatingPointShortest));
      if (const auto* s = std::get_if<QString>(&v)) values.append(u'"' + *s + u'"');
      if (std::holds_alternative<std::monostate>(v)) values.append(QStringLiteral("NULL"));
    }
    rows.append(values.join(QLatin1Char(' ')));
  });
  return rows;
}

// The three sample files, Jet 3, Jet 4 and Jet 4 behind a database password, with every column
// type they hold, read under a comma-decimal locale as a German user runs the program.
TEST(JetSource, SampleFilesReadWithTheirRowsAndValues) {
  testsupport::CommaDecimalLocale german;
  const struct {
    const char* file;
    QStringList tables;
    QString table;
    QString types;  // one letter a column: Integer, Single, Double, Text, Other
    QStringList rows;
  } cases[] = {
      {"jet3-test.mdb",
       {"Table1", "Table2", "Table3", "Table4"},
       "Table1",
       "TTIIIDTDI",
       {"\"a\" \"b\" 0 0 0 0 \"1981-12-12 00:00:00\" 0 0",
        "\"abcdefg\" \"hijklmnop\" 2 222 333333333 444.555 \"1974-09-21 00:00:00\" 3.5 1"}},
      {"jet4-numeric.mdb", {"test"}, "test", "TDDDDDD", {"\"some data\" 1 0 0 4 -1 1"}},
      {"jet4-with-password.mdb",
       {"Table1"},
       "Table1",
       "IT",
       {"1 \"One\"", "2 \"Two\"", "3 \"Three\""}},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.file);
    db::JetSource source(fixture(k.file));
    EXPECT_EQ(source.tableNames(), k.tables);
    QString types;
    for (const auto& c : source.columns(k.table))
      types += QLatin1Char("ISDTO"[static_cast<int>(c.type)]);
    EXPECT_EQ(types, k.types);
    EXPECT_EQ(rowsOf(source, k.table), k.rows);
  }
  // The copy asks only for the columns it keeps, in its own order.
  db::JetSource source(fixture("jet4-with-password.mdb"));
  EXPECT_EQ(
      rowsOf(source, QStringLiteral("Table1"), {QStringLiteral("Data"), QStringLiteral("ID")}),
      QStringList({"\"One\" 1", "\"Two\" 2", "\"Three\" 3"}));
  EXPECT_THROW(rowsOf(source, QStringLiteral("Table1"), {QStringLiteral("Remarks")}), db::Error);
}

// Files that are no Jet database, or one cut short, are refused with their name and the reason,
// and the library's page dumps stay off standard output, where the command line's JSON goes.
TEST(JetSource, FilesThatAreNoJetDatabaseOrCutShortAreRefused) {
  testsupport::TempProject dir;
  QFile sample(fixture("jet3-test.mdb"));
  ASSERT_TRUE(sample.open(QIODevice::ReadOnly));
  const QByteArray bytes = sample.readAll();
  const auto write = [&dir](const char* name, const QByteArray& content) {
    QFile file(dir.path(QString::fromLatin1(name)));
    file.open(QIODevice::WriteOnly);
    file.write(content);
    return file.fileName();
  };
  dir.create();
  const struct {
    QString path;
    const char* reason;
  } cases[] = {
      {write("notes.mdb", QByteArray("Chainage,Offset,Level\n").repeated(200)), "not a Jet"},
      {write("empty.mdb", {}), "is not a Jet database"},
      {dir.path(), "is not a Jet database"},
      {dir.path(QStringLiteral("absent.mdb")), "does not exist"},
      {dir.dir().path(), "is a folder"},
      {write("in-page.mdb", bytes.left(30 * 2048 + 1000)), "ends in the middle of a page."},
      {write("cut8.mdb", bytes.left(8 * 2048)), "its list of tables cannot be read."},
      {write("cut30.mdb", bytes.left(30 * 2048)),
       "the table Table1 should hold 2 rows, but 0 can be read."},
      {write("cut45.mdb", bytes.left(45 * 2048)), "the table Table3 cannot be read."},
  };
  for (const auto& k : cases) {
    QTemporaryFile captured;
    ASSERT_TRUE(captured.open());
    std::fflush(stdout);
    const int saved = ::dup(STDOUT_FILENO);
    ::dup2(captured.handle(), STDOUT_FILENO);
    QString error;
    try {
      db::JetSource source(k.path);
      for (const QString& table : source.tableNames()) rowsOf(source, table);
    } catch (const db::Error& e) {
      error = e.message();
    }
    std::fflush(stdout);
    ::dup2(saved, STDOUT_FILENO);
    ::close(saved);
    EXPECT_TRUE(error.contains(k.path) && error.contains(QString::fromLatin1(k.reason)))
        << k.path.toStdString() << ": " << error.toStdString();
    EXPECT_EQ(captured.size(), 0) << captured.readAll().left(200).toStdString();
  }
}

}  // namespace
