#pragma once

#include "db/connection.h"
#include "db/numbers.h"
#include "engine/reporter.h"
#include "engine/session.h"
#include "tests/testsupport.h"

#include <gtest/gtest.h>

#include <initializer_list>
#include <optional>
#include <utility>

namespace testsupport {

// A fresh project with section 1 current, its session and what the session reported.
class SessionFixture : public ::testing::Test {
 protected:
  struct ProfileRow {
    const char* lcr;
    const char* offset;
    const char* value;
  };

  SessionFixture() : c(project.create()), session(c, reporter) {
    c.exec(QStringLiteral("PRAGMA synchronous=OFF"));  // test files need not survive a crash
    session.setSection(1);
    session.clearQuantityChainagesMark();
  }

  void exec(const char* sql) { c.exec(QString::fromLatin1(sql)); }

  // Replaces design 1's profile and loads it.
  void setProfile(std::initializer_list<ProfileRow> rows) {
    exec("DELETE FROM DesignExp");
    db::Statement st = c.prepare(QStringLiteral(
        "INSERT INTO DesignExp (DesignID, Serial, LCR, Offset, Value) VALUES (1, ?, ?, ?, ?)"));
    int serial = 1;
    for (const ProfileRow& row : rows) {
      st.reset();
      st.bindKey(1, serial++)
          .bindText(2, QString::fromLatin1(row.lcr))
          .bindText(3, QString::fromLatin1(row.offset))
          .bindText(4, QString::fromLatin1(row.value))
          .run();
    }
    ASSERT_FALSE(session.LoadDesignProfile());
    session.setSection(1);
  }

  QString errorText() const { return reporter.errors.join(QLatin1Char('\n')); }

  TempProject project;
  db::Connection& c;
  engine::RecordingReporter reporter;
  engine::EngineSession session;
};

// Section 1 holds cross-sections the test lays out by hand: a bed design (centre point and an
// edge on each side at bedHalfWidth, all at the centre-line level), side slopes, design levels,
// ground and executed readings, and the quantity columns.
class AreaFixture : public SessionFixture {
 protected:
  using Reading = std::pair<float, float>;  // signed offset, level

  AreaFixture() {
    exec("INSERT INTO Package (ID, Name) VALUES (1, 'P')");
    exec("INSERT INTO Sections (ID, PackageID, DesignID) VALUES (1, 1, 1)");
    setBedProfile(5.0f);
  }

  // The profile C (0, $CL), L and R (halfWidth, $CL).
  void setBedProfile(float halfWidth) {
    const QByteArray half = db::floatText(halfWidth).toLatin1();
    setProfile({{"C", "0", "$CL"}, {"L", half.constData(), "$CL"}, {"R", half.constData(), "$CL"}});
  }

  // Side slopes (horizontal per unit of height) from chainage on; nullopt leaves one empty.
  void setSlopes(float chainage, std::optional<float> left, std::optional<float> right) {
    db::Statement st =
        c.prepare(QStringLiteral("INSERT INTO DesignDetails (SectionID, Chainage, SRS_LEFT, "
                                 "SRS_RIGHT) VALUES (1, ?, ?, ?)"));
    st.bindMeasure(1, chainage).bindMeasure(2, left).bindMeasure(3, right);
    st.run();
  }

  void setDesignLevel(float chainage, float level) {
    c.prepare(
         QStringLiteral("INSERT INTO DesignLevels (SectionID, Chainage, Level) VALUES (1, ?, ?)"))
        .bindMeasure(1, chainage)
        .bindMeasure(2, level)
        .run();
  }

  // Ground readings of one chainage, and its DesignQty row.
  void setGround(float chainage, std::initializer_list<Reading> readings) {
    db::Statement st = c.prepare(QStringLiteral(
        "INSERT INTO Initial (SectionID, Chainage, Offset, Level) VALUES (1, ?, ?, ?)"));
    for (const Reading& r : readings) {
      st.reset();
      st.bindMeasure(1, chainage).bindMeasure(2, r.first).bindMeasure(3, r.second);
      st.run();
    }
    addQuantityRow(chainage);
  }

  // Flat ground at level over offsets -20, -10, 0, 10, 20.
  void setFlatGround(float chainage, float level) {
    setGround(chainage,
              {{-20.0f, level}, {-10.0f, level}, {0.0f, level}, {10.0f, level}, {20.0f, level}});
  }

  void addQuantityRow(float chainage, std::optional<float> cut = std::nullopt,
                      std::optional<float> fill = std::nullopt) {
    if (rowCount(c, QStringLiteral("DesignQty"),
                 QStringLiteral("SectionID=1 AND Chainage=") + db::floatText(chainage)) > 0)
      return;
    c
        .prepare(QStringLiteral(
            "INSERT INTO DesignQty (SectionID, Chainage, AreaCut, AreaFill) VALUES (1, ?, ?, ?)"))
        .bindMeasure(1, chainage)
        .bindMeasure(2, cut)
        .bindMeasure(3, fill)
        .run();
  }

  // Executed readings: signed offset, level (nullopt: null, the bank level is used), bank.
  struct ExecutedReading {
    float offset;
    std::optional<float> level;
    std::optional<float> bank;
  };
  void setExecuted(float chainage, std::initializer_list<ExecutedReading> readings) {
    db::Statement st = c.prepare(QStringLiteral(
        "INSERT INTO Executed (SectionID, Chainage, Offset, Level, Bank) VALUES (1, ?, ?, ?, ?)"));
    for (const ExecutedReading& r : readings) {
      st.reset();
      st.bindMeasure(1, chainage)
          .bindMeasure(2, r.offset)
          .bindMeasure(3, r.level)
          .bindMeasure(4, r.bank);
      st.run();
    }
  }

  // Replaces the quantity columns.
  struct QtyColumn {
    int colNo;
    const char* type;
    const char* start;
    const char* end;
    const char* lrb;
  };
  void setQuantityColumns(std::initializer_list<QtyColumn> columns) {
    c.exec(QStringLiteral("DELETE FROM QtyDefine"));
    db::Statement st = c.prepare(QStringLiteral(
        "INSERT INTO QtyDefine (DesignID, ColNo, QType, StartOffset, EndOffset, LRB) VALUES "
        "(1, ?, ?, ?, ?, ?)"));
    for (const QtyColumn& q : columns) {
      st.reset();
      st.bindKey(1, q.colNo)
          .bindText(2, QString::fromLatin1(q.type))
          .bindText(3, QString::fromLatin1(q.start))
          .bindText(4, QString::fromLatin1(q.end))
          .bindText(5, QString::fromLatin1(q.lrb));
      st.run();
    }
  }

  // The stored areas of a chainage; nullopt for null.
  std::pair<std::optional<float>, std::optional<float>> storedAreas(float chainage) {
    db::Statement st = c.prepare(
        QStringLiteral("SELECT AreaCut, AreaFill FROM DesignQty WHERE SectionID=1 AND Chainage=?"));
    st.bindMeasure(1, chainage);
    if (!st.step()) return {};
    return {st.optionalMeasure(0), st.optionalMeasure(1)};
  }

  // The canonical cross-section: design bed at 98 from 0 to 5 each side, slopes 1.5, flat
  // ground, the template's quantity columns (1 CUT and 2 FILL over 0 to 100, both sides).
  void canalAt(float chainage, float groundLevel, float slope = 1.5f) {
    setDesignLevel(0.0f, 98.0f);
    setDesignLevel(10.0f, 98.0f);
    setSlopes(0.0f, slope, slope);
    setFlatGround(chainage, groundLevel);
  }
};

}  // namespace testsupport
