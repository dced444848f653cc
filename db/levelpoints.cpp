#include "db/levelpoints.h"

#include "db/connection.h"

#include <QString>

namespace db {

namespace {

Neighbours neighboursOf(Statement below, Statement above) {
  Neighbours n;
  if (below.step() && !below.isNull(0)) n.below = below.optionalMeasure(0);
  if (above.step() && !above.isNull(0)) n.above = above.optionalMeasure(0);
  return n;
}

}  // namespace

std::optional<float> Neighbours::nearestTo(double position) const {
  if (!below) return above;
  if (!above) return below;
  return position - *below <= *above - position ? below : above;
}

Neighbours groundOffsetsAround(Connection& connection, std::int32_t section, float chainage,
                               double offset) {
  const auto query = [&](const char* sql) {
    Statement st =
        connection.prepare(QString::fromLatin1(sql) +
                               QStringLiteral(" AND Chainage BETWEEN ?2 AND ?3 AND SectionID=?4"),
                           QStringLiteral("Finding the nearest ground reading"));
    st.bindDouble(1, offset).bindMeasureRange(2, chainage).bindKey(4, section);
    return st;
  };
  return neighboursOf(query("SELECT Max(Offset) FROM Initial WHERE Offset <= ?1"),
                      query("SELECT Min(Offset) FROM Initial WHERE Offset > ?1"));
}

std::optional<float> groundLevelAt(Connection& connection, std::int32_t section, float chainage,
                                   float offset) {
  Statement st = connection.prepare(
      QStringLiteral("SELECT [Level] FROM Initial WHERE Offset BETWEEN ?1 AND ?2 AND Chainage "
                     "BETWEEN ?3 AND ?4 AND SectionID=?5"),
      QStringLiteral("Reading the level of the ground reading"));
  st.bindMeasureRange(1, offset).bindMeasureRange(3, chainage).bindKey(5, section);
  if (!st.step()) return std::nullopt;
  return st.measure(0);
}

Neighbours quantityChainagesAround(Connection& connection, std::int32_t section, double chainage) {
  const auto query = [&](const char* sql) {
    Statement st =
        connection.prepare(QString::fromLatin1(sql) + QStringLiteral(" AND SectionID=?2"),
                           QStringLiteral("Finding the nearest chainage"));
    st.bindDouble(1, chainage).bindKey(2, section);
    return st;
  };
  return neighboursOf(query("SELECT Max(Chainage) FROM DesignQty WHERE Chainage <= ?1"),
                      query("SELECT Min(Chainage) FROM DesignQty WHERE Chainage > ?1"));
}

void addGroundPoint(Connection& connection, std::int32_t section, float chainage,
                    LevelPoint point) {
  Statement st = connection.prepare(
      QStringLiteral(
          "INSERT INTO Initial ([SectionID], Chainage, Offset, [Level]) VALUES (?1, ?2, ?3, ?4)"),
      QStringLiteral("Adding the ground reading"));
  st.bindKey(1, section)
      .bindMeasure(2, chainage)
      .bindMeasure(3, point.position)
      .bindMeasure(4, point.level);
  st.run();
}

void changeGroundPoint(Connection& connection, std::int32_t section, float chainage, LevelPoint was,
                       LevelPoint now) {
  Statement st = connection.prepare(
      QStringLiteral(
          "UPDATE Initial SET Offset=?1, [Level]=?2 WHERE SectionID=?3 AND Chainage "
          "BETWEEN ?4 AND ?5 AND Offset BETWEEN ?6 AND ?7 AND [Level] BETWEEN ?8 AND ?9"),
      QStringLiteral("Changing the ground reading"));
  st.bindMeasure(1, now.position).bindMeasure(2, now.level).bindKey(3, section);
  st.bindMeasureRange(4, chainage).bindMeasureRange(6, was.position).bindMeasureRange(8, was.level);
  st.run();
}

void deleteGroundPoint(Connection& connection, std::int32_t section, float chainage,
                       LevelPoint point) {
  Statement st = connection.prepare(
      QStringLiteral("DELETE FROM Initial WHERE SectionID=?1 AND Chainage BETWEEN ?2 AND ?3 AND "
                     "Offset BETWEEN ?4 AND ?5 AND [Level] BETWEEN ?6 AND ?7"),
      QStringLiteral("Deleting the ground reading"));
  st.bindKey(1, section)
      .bindMeasureRange(2, chainage)
      .bindMeasureRange(4, point.position)
      .bindMeasureRange(6, point.level);
  st.run();
}

void addDesignLevel(Connection& connection, std::int32_t section, LevelPoint point) {
  Statement st = connection.prepare(
      QStringLiteral(
          "INSERT INTO DesignLevels ([SectionID], Chainage, [Level]) VALUES (?1, ?2, ?3)"),
      QStringLiteral("Adding the design level"));
  st.bindKey(1, section).bindMeasure(2, point.position).bindMeasure(3, point.level);
  st.run();
}

void changeDesignLevel(Connection& connection, std::int32_t section, LevelPoint was,
                       LevelPoint now) {
  Statement st = connection.prepare(
      QStringLiteral("UPDATE DesignLevels SET Chainage=?1, [Level]=?2 WHERE SectionID=?3 AND "
                     "Chainage BETWEEN ?4 AND ?5 AND [Level] BETWEEN ?6 AND ?7"),
      QStringLiteral("Changing the design level"));
  st.bindMeasure(1, now.position).bindMeasure(2, now.level).bindKey(3, section);
  st.bindMeasureRange(4, was.position).bindMeasureRange(6, was.level);
  st.run();
}

void deleteDesignLevel(Connection& connection, std::int32_t section, LevelPoint point) {
  Statement st = connection.prepare(
      QStringLiteral("DELETE FROM DesignLevels WHERE SectionID=?1 AND Chainage BETWEEN ?2 AND "
                     "?3 AND [Level] BETWEEN ?4 AND ?5"),
      QStringLiteral("Deleting the design level"));
  st.bindKey(1, section).bindMeasureRange(2, point.position).bindMeasureRange(4, point.level);
  st.run();
}

}  // namespace db
