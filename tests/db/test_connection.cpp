#include "db/connection.h"
#include "db/numbers.h"
#include "tests/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <optional>

using testsupport::TempProject;

namespace {

TEST(Numbers, FloatTextIsShortestRoundTrip) {
  struct Case {
    float value;
    const char* text;
  } cases[] = {{0.1f, "0.1"},
               {1250.0f, "1250"},
               {-3.25f, "-3.25"},
               {0.0f, "0"},
               {-0.0f, "0"},
               {0.02f, "0.02"},
               {123.457f, "123.457"},
               {1e-7f, "1e-07"},
               {16777216.0f, "16777216"},
               {100000.0f, "100000"},
               {1.2e6f, "1200000"},
               {0.00025f, "0.00025"},
               {-4.5e7f, "-45000000"},
               {3e20f, "3e+20"}};
  for (const Case& c : cases)
    EXPECT_EQ(db::floatText(c.value), QString::fromLatin1(c.text)) << c.text;
}

TEST(Numbers, MeasureBindsAsItsDecimalText) {
  EXPECT_EQ(db::measureToDouble(0.1f), 0.1);
  EXPECT_EQ(db::measureToDouble(0.02f), 0.02);
  EXPECT_EQ(db::measureToDouble(4.98f), 4.98);
  EXPECT_NE(static_cast<double>(0.1f), 0.1);  // the reason the helper exists
}

// Every double of the range narrows to the single, and the next double out on either side does
// not, wherever the single lies: ties between two singles go to the even one.
TEST(Numbers, MeasureRangeHoldsExactlyTheDoublesOfTheSingle) {
  constexpr float kMax = std::numeric_limits<float>::max();
  constexpr double kHuge = std::numeric_limits<double>::max();
  for (float value : {0.1f, 12.4f, 0.0f, -3.25f, 1e-7f, 16777216.0f, 16777218.0f, kMax, -kMax,
                      std::numeric_limits<float>::denorm_min()}) {
    const db::MeasureRange range = db::measureRange(value);
    EXPECT_EQ(static_cast<float>(range.low), value) << value;
    EXPECT_EQ(static_cast<float>(range.high), value) << value;
    const double below = std::nextafter(range.low, -kHuge);
    const double above = std::nextafter(range.high, kHuge);
    if (value != -kMax) {
      EXPECT_NE(static_cast<float>(below), value) << value;
    }
    if (value != kMax) {
      EXPECT_NE(static_cast<float>(above), value) << value;
    }
  }
}

// Another program writes the double nearest to its own arithmetic, not the single's text.
TEST(Numbers, MeasureRangeFindsAChainageAnotherProgramWrote) {
  TempProject project;
  db::Connection& c = project.create();
  c.exec(
      QStringLiteral("INSERT INTO Initial (Chainage, SectionID) VALUES (12.39999999999999, 1), "
                     "(12.4000001, 1), (12.3999987, 1)"));
  db::Statement st = c.prepare(QStringLiteral(
      "SELECT Chainage FROM Initial WHERE SectionID=1 AND Chainage BETWEEN ? AND ?"));
  st.bindMeasureRange(1, 12.4f);
  ASSERT_TRUE(st.step());
  EXPECT_EQ(st.real(0), 12.39999999999999);
  EXPECT_FALSE(st.step());  // the neighbouring singles are other chainages
}

TEST(Numbers, ChainageWrittenByProgramIsFoundAgain) {
  TempProject project;
  db::Connection& c = project.create();
  const float chainages[] = {0.1f, 0.02f, 1.234f, 3.98f, 12.345f};
  for (float ch : chainages) {
    c.prepare(QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES "
                             "(?, 0, 100, 1)"))
        .bindMeasure(1, ch)
        .run();
  }
  for (float ch : chainages) {
    db::Statement st = c.prepare(QStringLiteral("SELECT COUNT(*) FROM Initial WHERE Chainage=?"));
    st.bindMeasure(1, ch);
    ASSERT_TRUE(st.step());
    EXPECT_EQ(st.int64(0), 1) << db::floatText(ch).toStdString();
    // Typed as text in a statement, as a user or another program would.
    EXPECT_EQ(c.scalar(QStringLiteral("SELECT COUNT(*) FROM Initial WHERE Chainage=") +
                       db::floatText(ch)),
              1.0);
  }
  // 0.1 typed as text by hand is found by the program's single 0.1f.
  c.exec(
      QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES "
                     "(0.3, 0, 100, 2)"));
  db::Statement st = c.prepare(QStringLiteral("SELECT COUNT(*) FROM Initial WHERE Chainage=?"));
  st.bindMeasure(1, 0.3f);
  ASSERT_TRUE(st.step());
  EXPECT_EQ(st.int64(0), 1);
}

TEST(Statement, ReadsAreNullAwareWhateverTheDeclaredType) {
  TempProject project;
  db::Connection& c = project.create();
  c.exec(QStringLiteral("CREATE TABLE Mixed (a TEXT, b NUMERIC, c DOUBLE, d INTEGER)"));
  c.exec(QStringLiteral("INSERT INTO Mixed VALUES ('2.5', 3, NULL, 2026)"));
  db::Statement st = c.prepare(QStringLiteral("SELECT a, b, c, d FROM Mixed"));
  ASSERT_TRUE(st.step());
  EXPECT_FLOAT_EQ(st.measure(0), 2.5f);
  EXPECT_FLOAT_EQ(st.measure(1), 3.0f);
  EXPECT_FALSE(st.optionalMeasure(2).has_value());
  EXPECT_EQ(st.measure(2), 0.0f);
  EXPECT_EQ(st.text(3), QStringLiteral("2026"));
  EXPECT_TRUE(st.text(2).isEmpty());
}

// What a foreign tool may leave in a measure column: a number held as text reads as that
// number; other text, a blob, NaN and values beyond the single range read as null.
TEST(Statement, AMeasureIsAFiniteSingleOrNull) {
  TempProject project;
  db::Connection& c = project.create();
  c.exec(QStringLiteral("CREATE TABLE Loose (v TEXT, w REAL)"));
  const struct {
    const char* sql;  // the stored value, as an SQL expression
    std::optional<float> read;
  } cases[] = {
      {"'152.4'", 152.4f},     {"' -3.5 '", -3.5f},      {"'NaN'", std::nullopt},
      {"'inf'", std::nullopt}, {"'-inf'", std::nullopt}, {"'abc'", std::nullopt},
      {"''", std::nullopt},    {"'1,5'", std::nullopt},  {"x'3135322e34'", std::nullopt},
      {"1e39", std::nullopt},  {"9e999", std::nullopt},  {"-9e999", std::nullopt},
  };
  for (const auto& k : cases) {
    c.exec(QStringLiteral("DELETE FROM Loose"));
    c.exec(QStringLiteral("INSERT INTO Loose VALUES (%1, %1)").arg(QLatin1String(k.sql)));
    db::Statement st = c.prepare(QStringLiteral("SELECT v, w FROM Loose"));
    ASSERT_TRUE(st.step());
    for (int column = 0; column < 2; ++column) {
      EXPECT_EQ(st.optionalMeasure(column), k.read) << k.sql << " column " << column;
      EXPECT_EQ(st.measure(column), k.read.value_or(0.0f)) << k.sql << " column " << column;
    }
  }
}

TEST(Connection, ErrorsNameTheWorkAndSqliteReason) {
  TempProject project;
  db::Connection& c = project.create();
  try {
    c.prepare(QStringLiteral("SELECT Nope FROM Initial"), QStringLiteral("Reading Initial"));
    FAIL() << "expected an error";
  } catch (const db::Error& e) {
    EXPECT_TRUE(e.message().startsWith(QStringLiteral("Reading Initial: "))) << e.what();
    EXPECT_TRUE(e.message().contains(QStringLiteral("Nope"))) << e.what();
  }
}

TEST(Connection, SavepointRollsBackOnlyItsOwnWork) {
  TempProject project;
  db::Connection& c = project.create();
  {
    db::Transaction tx(c);
    {
      db::Savepoint first(c, QStringLiteral("row1"));
      c.exec(QStringLiteral("INSERT INTO Package (ID, Name) VALUES (1, 'kept')"));
      first.release();
    }
    {
      db::Savepoint second(c, QStringLiteral("row2"));
      c.exec(QStringLiteral("INSERT INTO Package (ID, Name) VALUES (2, 'dropped')"));
      second.rollback();
    }
    tx.commit();
  }
  EXPECT_EQ(testsupport::rowCount(c, QStringLiteral("Package")), 1);
  {
    db::Transaction abandoned(c);
    c.exec(QStringLiteral("INSERT INTO Package (ID, Name) VALUES (3, 'gone')"));
  }
  EXPECT_EQ(testsupport::rowCount(c, QStringLiteral("Package")), 1);
}

}  // namespace
