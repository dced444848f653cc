#include "db/schema.h"

namespace db {

namespace {

const char* const kSchema[] = {
    "CREATE TABLE Package (ID INTEGER PRIMARY KEY, Name TEXT, Phase TEXT, District TEXT)",
    "CREATE TABLE Sections (ID INTEGER PRIMARY KEY, PackageID INTEGER, Description TEXT, "
    "Title TEXT, DesignID INTEGER DEFAULT 1)",
    "CREATE TABLE Initial (Chainage REAL, Offset REAL, Level REAL, SectionID INTEGER, "
    "ID INTEGER PRIMARY KEY AUTOINCREMENT)",
    "CREATE TABLE Executed (Chainage REAL, Offset REAL, Level REAL, SectionID INTEGER, "
    "ID INTEGER PRIMARY KEY AUTOINCREMENT, Bank REAL)",
    "CREATE TABLE DesignLevels (Chainage REAL, Level REAL, SectionID INTEGER, "
    "ID INTEGER PRIMARY KEY AUTOINCREMENT)",
    "CREATE TABLE DesignDetails (Chainage REAL, BED_WIDTH REAL, FSD REAL, FREEBOARD REAL, "
    "INNER_SLOPE REAL, BANK_WIDTH REAL, SRS_LEFT REAL, SRS_RIGHT REAL, SectionID INTEGER, "
    "ID INTEGER PRIMARY KEY AUTOINCREMENT)",
    "CREATE TABLE Outlets (SectionID INTEGER, Chainage REAL, ID INTEGER PRIMARY KEY "
    "AUTOINCREMENT, Name TEXT, Side TEXT, SillLevel REAL, Discharge REAL)",
    "CREATE TABLE DesignQty (SectionID INTEGER, Chainage REAL, AreaCut REAL, AreaFill REAL)",
    "CREATE TABLE DesignExp (DesignID INTEGER, Serial INTEGER, LCR TEXT, Offset TEXT, "
    "Value TEXT)",
    "CREATE TABLE QtyDefine (DesignID INTEGER, ColNo INTEGER, QType TEXT, StartOffset TEXT, "
    "EndOffset TEXT, LRB TEXT)",
    "CREATE TABLE DesignList (ID INTEGER PRIMARY KEY, Name TEXT)",
};

const char* const kIndexedTables[] = {"Initial", "Executed", "DesignLevels", "DesignDetails",
                                      "DesignQty"};

// The tables whose rows belong to a section, in the order the clean-up visits them.
const char* const kSectionTables[] = {"DesignLevels", "DesignDetails", "DesignQty",
                                      "Executed",     "Initial",       "Outlets"};

}  // namespace

QStringList requiredTables() {
  return {
      QStringLiteral("Package"),   QStringLiteral("Sections"),     QStringLiteral("Initial"),
      QStringLiteral("Executed"),  QStringLiteral("DesignLevels"), QStringLiteral("DesignDetails"),
      QStringLiteral("Outlets"),   QStringLiteral("DesignQty"),    QStringLiteral("DesignExp"),
      QStringLiteral("QtyDefine"), QStringLiteral("DesignList")};
}

void createSchema(Connection& connection) {
  Transaction tx(connection);
  for (const char* sql : kSchema)
    connection.exec(QString::fromLatin1(sql), QStringLiteral("Creating the project tables"));
  ensureIndexes(connection);
  tx.commit();
}

void ensureIndexes(Connection& connection) {
  for (const char* table : kIndexedTables) {
    const QString name = QString::fromLatin1(table);
    if (!connection.tableExists(name)) continue;
    connection.exec(QStringLiteral("CREATE INDEX IF NOT EXISTS [idx_%1_SectionChainage] ON %2 "
                                   "(SectionID, Chainage)")
                        .arg(name, quoteName(name)),
                    QStringLiteral("Indexing table %1").arg(name));
  }
}

std::int32_t GetNextID(Connection& connection, const QString& table) {
  const auto largest = connection.scalar(QStringLiteral("SELECT MAX(ID) FROM ") + quoteName(table),
                                         QStringLiteral("Finding the next key of %1").arg(table));
  return largest ? static_cast<std::int32_t>(*largest) + 1 : 1;
}

static void deleteSectionOrphans(Connection& connection) {
  for (const char* table : kSectionTables) {
    const QString name = QString::fromLatin1(table);
    connection.exec(QStringLiteral("DELETE FROM %1 WHERE [SectionID] NOT IN (SELECT ID FROM "
                                   "Sections)")
                        .arg(name),
                    QStringLiteral("Removing the %1 rows of deleted sections").arg(name));
  }
}

void DeleteOrphansAfterPackages(Connection& connection) {
  connection.exec(
      QStringLiteral("DELETE FROM Sections WHERE [PackageID] NOT IN (SELECT ID FROM Package)"),
      QStringLiteral("Removing the sections of deleted packages"));
  deleteSectionOrphans(connection);
}

void DeleteOrphansAfterSections(Connection& connection) { deleteSectionOrphans(connection); }

bool sectionExists(Connection& connection, std::int32_t sectionId) {
  Statement st = connection.prepare(QStringLiteral("SELECT ID FROM Sections WHERE ID=?"),
                                    QStringLiteral("Finding section %1").arg(sectionId));
  st.bindKey(1, sectionId);
  return st.step();
}

std::int32_t AddPackage(Connection& connection, int year) {
  const std::int32_t id = GetNextID(connection, QStringLiteral("Package"));
  connection
      .prepare(QStringLiteral("INSERT INTO Package (ID, PHASE) VALUES (?, ?)"),
               QStringLiteral("Adding a package"))
      .bindKey(1, id)
      .bindText(2, QString::number(year))
      .run();
  return id;
}

std::int32_t AddSection(Connection& connection, std::int32_t packageId) {
  const std::int32_t id = GetNextID(connection, QStringLiteral("Sections"));
  connection
      .prepare(QStringLiteral("INSERT INTO Sections (ID, PackageID) VALUES (?, ?)"),
               QStringLiteral("Adding a section"))
      .bindKey(1, id)
      .bindKey(2, packageId)
      .run();
  return id;
}

// Runs insert count times, bound by bind before each run, in one transaction. The rows before
// a failing one stay, as the Add command has always left them.
static void insertRows(Connection& connection, Statement& insert,
                       const std::function<void(Statement&)>& bind, int count,
                       const std::function<void(int done)>& onRow) {
  Savepoint work(connection, QStringLiteral("add_rows"));
  try {
    for (int done = 1; done <= count; ++done) {
      bind(insert);
      insert.run();
      insert.reset();
      if (onRow) onRow(done);
    }
  } catch (const Error&) {
    insert.reset();
    try {
      work.release();
    } catch (const Error&) {
      // Nothing could be kept; the savepoint rolls back as it goes.
    }
    throw;
  }
  work.release();
}

void AddLevelRows(Connection& connection, const QString& table, std::int32_t sectionId,
                  float chainage, int count, const std::function<void(int done)>& onRow) {
  Statement insert = connection.prepare(
      QStringLiteral("INSERT INTO %1 ([SectionID], Chainage) VALUES (?, ?)").arg(quoteName(table)),
      QStringLiteral("Adding a row to %1").arg(table));
  insertRows(
      connection, insert,
      [sectionId, chainage](Statement& st) { st.bindKey(1, sectionId).bindMeasure(2, chainage); },
      count, onRow);
}

void AddSectionRows(Connection& connection, const QString& table, std::int32_t sectionId, int count,
                    const std::function<void(int done)>& onRow) {
  Statement insert = connection.prepare(
      QStringLiteral("INSERT INTO %1 ([SectionID]) VALUES (?)").arg(quoteName(table)),
      QStringLiteral("Adding a row to %1").arg(table));
  insertRows(
      connection, insert, [sectionId](Statement& st) { st.bindKey(1, sectionId); }, count, onRow);
}

}  // namespace db
