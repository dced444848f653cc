#include "db/project.h"

#include "db/connection.h"
#include "db/schema.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QRandomGenerator>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <filesystem>
#include <system_error>
#include <vector>

namespace db {

namespace {

// The earthen canal: a bed at the centre-line design level, inner slopes up to the bank top,
// the bank top, and outer slopes that the catch-point search extends with SRS_LEFT/SRS_RIGHT.
struct ProfileRow {
  const char* lcr;
  const char* offset;
  const char* value;
};
const ProfileRow kCanalProfile[] = {
    {"C", "0", "$CL"},
    {"L", "$BED_WIDTH/2", "$CL"},
    {"R", "$BED_WIDTH/2", "$CL"},
    {"L", "$LP_Off+($FSD+$FREEBOARD)*$INNER_SLOPE", "$CL+$FSD+$FREEBOARD"},
    {"R", "$RP_Off+($FSD+$FREEBOARD)*$INNER_SLOPE", "$CL+$FSD+$FREEBOARD"},
    {"L", "$LP_Off+$BANK_WIDTH", "$LP_Val"},
    {"R", "$RP_Off+$BANK_WIDTH", "$RP_Val"},
};

// Deterministic across compilers and standard libraries, unlike <random>'s distributions.
class SplitMix {
 public:
  explicit SplitMix(std::uint64_t seed) : m_state(seed) {}
  double uniform() {  // [0, 1)
    std::uint64_t z = (m_state += 0x9E3779B97F4A7C15ull);
    z = (z ^ (z >> 30)) * 0xBF58476D1CE4E5B9ull;
    z = (z ^ (z >> 27)) * 0x94D049BB133111EBull;
    z ^= z >> 31;
    return static_cast<double>(z >> 11) * (1.0 / 9007199254740992.0);
  }
  double between(double lo, double hi) { return lo + (hi - lo) * uniform(); }
  int integer(int lo, int hi) { return lo + static_cast<int>(uniform() * (hi - lo + 1)); }

 private:
  std::uint64_t m_state;
};

struct Details {
  float chainage, bedWidth, fsd, freeboard, innerSlope, bankWidth, srsLeft, srsRight;
};

float round3(double v) { return static_cast<float>(std::round(v * 1000.0) / 1000.0); }

void writeTemplate(Connection& c) {
  Statement exp = c.prepare(QStringLiteral("INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, "
                                           "Value) VALUES (1, ?, ?, ?, ?)"),
                            QStringLiteral("Writing the design template"));
  int serial = 1;
  for (const ProfileRow& row : kCanalProfile) {
    exp.bindKey(1, serial++)
        .bindText(2, QString::fromLatin1(row.lcr))
        .bindText(3, QString::fromLatin1(row.offset))
        .bindText(4, QString::fromLatin1(row.value));
    exp.run();
    exp.reset();
  }
  c.exec(QStringLiteral("INSERT INTO QtyDefine (DesignID, ColNo, QType, StartOffset, EndOffset, "
                        "LRB) VALUES (1, 1, 'CUT', '0', '100', 'B'), (1, 2, 'FILL', '0', '100', "
                        "'B')"),
         QStringLiteral("Writing the quantity columns"));
  c.exec(QStringLiteral("INSERT INTO DesignList (ID, Name) VALUES (1, 'EarthenCanal')"),
         QStringLiteral("Writing the design list"));
}

// Centre-line bed level of the demo canal: falling 0.2 m per km from 151.000, inside the range
// of reduced levels the level checks accept.
double bedLevelAt(double chainageKm) { return 151.0 - 0.2 * chainageKm; }

const Details& detailsAt(const std::vector<Details>& rows, double chainage) {
  const Details* in = &rows.front();
  for (const Details& d : rows)
    if (d.chainage <= chainage + 1e-6) in = &d;
  return *in;
}

// The finished surface at a signed offset: the design template with its outer slopes.
double designSurfaceAt(const Details& d, double bed, double offset) {
  const double x = std::fabs(offset);
  const double top = bed + d.fsd + d.freeboard;
  const double bedEdge = d.bedWidth / 2.0;
  const double bankInner = bedEdge + (d.fsd + d.freeboard) * d.innerSlope;
  const double bankOuter = bankInner + d.bankWidth;
  if (x <= bedEdge) return bed;
  if (x <= bankInner) return bed + (x - bedEdge) / d.innerSlope;
  if (x <= bankOuter) return top;
  const double slope = offset < 0 ? d.srsLeft : d.srsRight;
  return top - (x - bankOuter) / slope;
}

struct SectionPlan {
  const char* description;
  const char* title;
  double fromKm, toKm;
  std::vector<Details> details;
  double executedToKm;  // executed levels surveyed from fromKm up to here; < fromKm for none
};

void writeSection(Connection& c, std::int32_t sectionId, const SectionPlan& plan, SplitMix& rng) {
  Statement initial = c.prepare(
      QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?,?,?,?)"),
      QStringLiteral("Writing the demo ground levels"));
  Statement executed = c.prepare(
      QStringLiteral("INSERT INTO Executed (Chainage, Offset, Level, SectionID) VALUES (?,?,?,?)"),
      QStringLiteral("Writing the demo executed levels"));
  Statement qty =
      c.prepare(QStringLiteral("INSERT INTO DesignQty (SectionID, Chainage) VALUES (?, ?)"),
                QStringLiteral("Writing the demo quantity chainages"));

  // Ground: a long wave along the canal, a cross fall, and local roughness.
  const double phase = rng.between(0.0, 6.28);
  const int count = static_cast<int>(std::lround((plan.toKm - plan.fromKm) / 0.020)) + 1;
  for (int k = 0; k < count; ++k) {
    const float chainage = round3(plan.fromKm + 0.020 * k);
    const double bed = bedLevelAt(chainage);
    const double along =
        1.2 + 0.9 * std::sin(chainage * 2.3 + phase) + 0.4 * std::sin(chainage * 9.1);
    const double crossFall = 0.04 * std::sin(chainage * 1.7 + phase);
    const int readings = rng.integer(15, 40);
    const double halfWidth = rng.between(24.0, 34.0);

    std::vector<double> offsets{0.0};
    for (int i = 1; i < readings; ++i) {
      const double offset = rng.between(-halfWidth, halfWidth);
      if (std::fabs(offset) >= 0.25) offsets.push_back(offset);  // the centre reading stays
    }
    std::sort(offsets.begin(), offsets.end());
    offsets.erase(std::unique(offsets.begin(), offsets.end(),
                              [](double a, double b) { return std::fabs(a - b) < 0.25; }),
                  offsets.end());

    // One row of Initial or Executed at this chainage.
    const auto writeLevel = [&](Statement& insert, float off, double level) {
      insert.bindMeasure(1, chainage)
          .bindMeasure(2, off)
          .bindMeasure(3, round3(level))
          .bindKey(4, sectionId);
      insert.run();
      insert.reset();
    };
    const Details& d = detailsAt(plan.details, chainage);
    const bool withExecuted = chainage <= plan.executedToKm + 1e-6;
    for (double offset : offsets) {
      const float off = offset == 0.0 ? 0.0f : static_cast<float>(std::round(offset * 10.0) / 10.0);
      const double ground = bed + along + crossFall * off +
                            0.15 * std::sin(off * 0.7 + chainage * 40.0) + rng.between(-0.05, 0.05);
      writeLevel(initial, off, ground);
      if (withExecuted) {
        const double finished = designSurfaceAt(d, bed, off);
        // Outside the works the ground is untouched.
        const double level = std::fabs(finished - ground) < 1e-9 || finished < ground - 3.0
                                 ? ground
                                 : finished + rng.between(-0.04, 0.04);
        writeLevel(executed, off, level);
      }
    }
    qty.bindKey(1, sectionId).bindMeasure(2, chainage);
    qty.run();
    qty.reset();
  }

  Statement levels = c.prepare(
      QStringLiteral("INSERT INTO DesignLevels (Chainage, Level, SectionID) VALUES (?, ?, ?)"),
      QStringLiteral("Writing the demo design levels"));
  for (double km = plan.fromKm; km <= plan.toKm + 1e-9; km += 0.5) {
    const float at = round3(std::min(km, plan.toKm));
    levels.bindMeasure(1, at).bindMeasure(2, round3(bedLevelAt(at))).bindKey(3, sectionId);
    levels.run();
    levels.reset();
  }
  if (std::fmod(plan.toKm - plan.fromKm, 0.5) > 1e-6) {
    levels.bindMeasure(1, round3(plan.toKm))
        .bindMeasure(2, round3(bedLevelAt(plan.toKm)))
        .bindKey(3, sectionId);
    levels.run();
  }

  Statement details = c.prepare(
      QStringLiteral("INSERT INTO DesignDetails (Chainage, BED_WIDTH, FSD, FREEBOARD, INNER_SLOPE, "
                     "BANK_WIDTH, SRS_LEFT, SRS_RIGHT, SectionID) VALUES (?,?,?,?,?,?,?,?,?)"),
      QStringLiteral("Writing the demo design details"));
  for (const Details& d : plan.details) {
    details.bindMeasure(1, d.chainage)
        .bindMeasure(2, d.bedWidth)
        .bindMeasure(3, d.fsd)
        .bindMeasure(4, d.freeboard)
        .bindMeasure(5, d.innerSlope)
        .bindMeasure(6, d.bankWidth)
        .bindMeasure(7, d.srsLeft)
        .bindMeasure(8, d.srsRight)
        .bindKey(9, sectionId);
    details.run();
    details.reset();
  }

  Statement outlet = c.prepare(
      QStringLiteral("INSERT INTO Outlets (SectionID, Chainage, Name, Side, SillLevel, Discharge) "
                     "VALUES (?, ?, ?, ?, ?, ?)"),
      QStringLiteral("Writing the demo outlets"));
  for (int i = 0; i < 3; ++i) {
    const float at = round3(plan.fromKm + (plan.toKm - plan.fromKm) * (0.2 + 0.3 * i));
    outlet.bindKey(1, sectionId)
        .bindMeasure(2, at)
        .bindText(3, QStringLiteral("OT %1").arg(sectionId * 10 + i + 1))
        .bindText(4, i % 2 == 0 ? QStringLiteral("L") : QStringLiteral("R"))
        .bindMeasure(5, round3(bedLevelAt(at) + 0.8))
        .bindMeasure(6, static_cast<float>(0.25 + 0.15 * i));
    outlet.run();
    outlet.reset();
  }
}

void writeDemo(Connection& c) {
  c.exec(QStringLiteral("INSERT INTO Package (ID, Name, Phase, District) VALUES "
                        "(1, 'Right Main Canal', '2025', 'Nalgonda')"),
         QStringLiteral("Writing the demo package"));
  const SectionPlan plans[] = {
      {"RMC km 0.000 to 4.000",
       "Right Main Canal, Reach 1",
       0.0,
       4.0,
       {{0.0f, 6.0f, 2.0f, 0.6f, 1.5f, 4.0f, 2.0f, 2.0f},
        {1.5f, 5.5f, 1.9f, 0.6f, 1.5f, 4.0f, 2.0f, 2.0f},
        {3.02f, 5.0f, 1.8f, 0.5f, 1.5f, 3.5f, 2.0f, 2.5f}},
       1.0},
      {"RMC km 4.000 to 7.000",
       "Right Main Canal, Reach 2",
       4.0,
       7.0,
       {{4.0f, 4.5f, 1.7f, 0.5f, 1.5f, 3.5f, 2.0f, 2.0f},
        {5.5f, 4.0f, 1.6f, 0.5f, 1.5f, 3.0f, 1.5f, 1.5f}},
       -1.0},
  };
  SplitMix rng(20261122);
  std::int32_t id = 1;
  for (const SectionPlan& plan : plans) {
    c.prepare(QStringLiteral("INSERT INTO Sections (ID, PackageID, Description, Title, DesignID) "
                             "VALUES (?, 1, ?, ?, 1)"),
              QStringLiteral("Writing the demo sections"))
        .bindKey(1, id)
        .bindText(2, QString::fromLatin1(plan.description))
        .bindText(3, QString::fromLatin1(plan.title))
        .run();
    writeSection(c, id, plan, rng);
    ++id;
  }
}

}  // namespace

std::unique_ptr<Connection> openProject(const QString& path, ProjectAccess access) {
  auto connection =
      Connection::open(path, access == ProjectAccess::Read ? Connection::Mode::ReadOnly
                                                           : Connection::Mode::OpenExisting);
  for (const QString& table : requiredTables()) {
    if (!connection->tableExists(table))
      throw Error(QStringLiteral("The file \"%1\" is not a Delvane project file: the table %2 is "
                                 "missing.")
                      .arg(path, table));
  }
  if (access == ProjectAccess::Edit && !connection->isReadOnly()) {
    try {
      ensureIndexes(*connection);
    } catch (const Error&) {
      // A file another program holds still opens; its queries are merely slower.
    }
  }
  return connection;
}

QString demoProjectFileName() { return QStringLiteral("Demo.delvane"); }

void buildNewFile(const QString& path, const std::function<void(Connection&)>& build) {
  if (path.isEmpty()) throw Error(QStringLiteral("No project file was named."));
  const QFileInfo target(fileSystemPath(path));
  if (target.isDir())
    throw Error(QStringLiteral("The file \"%1\" already exists: it is a folder.").arg(path));
  if (target.exists() || target.isSymLink())
    throw Error(QStringLiteral("The file \"%1\" already exists.").arg(path));
  if (!target.absoluteDir().exists())
    throw Error(QStringLiteral("The project file \"%1\" could not be written: its folder does "
                               "not exist.")
                    .arg(path));

  // A hidden name beside the target, so that the rename below stays on one file system.
  const QString scratch = target.absoluteDir().filePath(
      QStringLiteral(".%1.%2.new")
          .arg(target.fileName(), QString::number(QRandomGenerator::global()->generate64(), 36)));
  const auto removeScratch = [&scratch] {
    QFile::remove(scratch);
    QFile::remove(scratch + QStringLiteral("-journal"));
  };
  try {
    auto connection = Connection::open(scratch, Connection::Mode::Create);
    build(*connection);
  } catch (const Error& e) {
    removeScratch();
    throw Error(
        QStringLiteral("The project file \"%1\" could not be written: %2").arg(path, e.message()));
  }
  // QFile::rename never replaces an existing file, so a file made meanwhile under the name
  // is kept.
  if (!QFile::rename(scratch, target.absoluteFilePath())) {
    removeScratch();
    throw Error(QStringLiteral("The project file \"%1\" could not be written: %2")
                    .arg(path, QFileInfo::exists(target.filePath())
                                   ? QStringLiteral("the file already exists.")
                                   : QStringLiteral("it cannot be renamed.")));
  }
}

void createProject(const QString& path, bool demo) {
  buildNewFile(path, [demo](Connection& connection) {
    createSchema(connection);
    Transaction data(connection);
    writeTemplate(connection);
    if (demo) writeDemo(connection);
    data.commit();
  });
}

bool isSameFile(const QString& a, const QString& b) {
  if (a.isEmpty() || b.isEmpty()) return false;
  const QFileInfo first(fileSystemPath(a));
  const QFileInfo second(fileSystemPath(b));
  if (!first.exists() || !second.exists()) return false;
  if (first.canonicalFilePath() == second.canonicalFilePath()) return true;
  std::error_code error;
  return std::filesystem::equivalent(QFile::encodeName(first.filePath()).toStdString(),
                                     QFile::encodeName(second.filePath()).toStdString(), error);
}

SectionNames sectionNames(Connection& connection, std::int32_t section) {
  Statement st = connection.prepare(
      QStringLiteral("SELECT s.Description, p.Name FROM Sections s LEFT JOIN Package p ON p.ID "
                     "= s.PackageID WHERE s.ID=?"),
      QStringLiteral("Reading the names of section %1").arg(section));
  st.bindKey(1, section);
  if (!st.step()) return {};
  return {st.text(0), st.text(1)};
}

bool keyExists(Connection& connection, const QString& table, std::int32_t key) {
  Statement query =
      connection.prepare(QStringLiteral("SELECT ID FROM %1 WHERE ID=?").arg(table),
                         QStringLiteral("Finding the row with ID %1 of %2").arg(key).arg(table));
  query.bindKey(1, key);
  return query.step();
}

QString packageName(Connection& connection, std::int32_t id) {
  Statement st = connection.prepare(QStringLiteral("SELECT [Name] FROM Package WHERE ID=?"),
                                    QStringLiteral("Reading the chosen package"));
  st.bindKey(1, id);
  return st.step() ? st.text(0) : QString();
}

std::optional<QString> designName(Connection& connection) {
  Statement st = connection.prepare(QStringLiteral("SELECT [Name] FROM DesignList WHERE ID=1"),
                                    QStringLiteral("Reading the name of the design"));
  if (!st.step()) return std::nullopt;
  return st.text(0);
}

std::vector<SectionEntry> listSections(Connection& connection) {
  Statement st = connection.prepare(
      QStringLiteral("SELECT p.ID, p.Name, s.ID, s.Description FROM Sections s JOIN Package p "
                     "ON p.ID = s.PackageID ORDER BY p.District, p.Name, p.ID, s.Description, "
                     "s.ID"),
      QStringLiteral("Listing the sections"));
  std::vector<SectionEntry> sections;
  while (st.step()) sections.push_back({st.key(0), st.text(1), st.key(2), st.text(3)});
  return sections;
}

std::int64_t quantityChainageCount(Connection& connection, std::int32_t section) {
  Statement st =
      connection.prepare(QStringLiteral("SELECT count(*) FROM DesignQty WHERE SectionID=?"),
                         QStringLiteral("Counting the quantity chainages"));
  st.bindKey(1, section);
  return st.step() ? st.int64(0) : 0;
}

}  // namespace db
