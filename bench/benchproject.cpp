#include "bench/benchproject.h"

#include "db/connection.h"
#include "db/project.h"

#include <cmath>

namespace bench {

namespace {

float round3(double v) { return static_cast<float>(std::round(v * 1000.0) / 1000.0); }

}  // namespace

void writeBenchProject(const QString& path, int chainages, int readings) {
  db::createProject(path, false);
  auto connection = db::openProject(path);
  db::Connection& c = *connection;
  db::Transaction data(c);
  c.exec(
      QStringLiteral("INSERT INTO Package (ID, Name, Phase, District) VALUES (1, 'Bench', "
                     "'2025', 'Bench')"));
  c.exec(
      QStringLiteral("INSERT INTO Sections (ID, PackageID, Description, Title, DesignID) "
                     "VALUES (1, 1, 'Bench section', 'Bench section', 1)"));
  db::Statement initial = c.prepare(
      QStringLiteral("INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?,?,?,1)"),
      QStringLiteral("Writing the bench ground levels"));
  db::Statement levels = c.prepare(
      QStringLiteral("INSERT INTO DesignLevels (Chainage, Level, SectionID) VALUES (?, ?, 1)"),
      QStringLiteral("Writing the bench design levels"));
  db::Statement details =
      c.prepare(QStringLiteral("INSERT INTO DesignDetails (Chainage, BED_WIDTH, FSD, FREEBOARD, "
                               "INNER_SLOPE, BANK_WIDTH, SRS_LEFT, SRS_RIGHT, SectionID) VALUES "
                               "(?,?,?,?,?,?,?,?,1)"),
                QStringLiteral("Writing the bench design details"));
  db::Statement qty =
      c.prepare(QStringLiteral("INSERT INTO DesignQty (SectionID, Chainage) VALUES (1, ?)"),
                QStringLiteral("Writing the bench quantity chainages"));

  const double halfWidth = 30.0;
  const double step = readings > 1 ? 2.0 * halfWidth / (readings - 1) : 0.0;
  for (int k = 0; k < chainages; ++k) {
    const float chainage = round3(0.020 * k);
    const double bed = 151.0 - 0.2 * chainage;  // within the accepted 50 to 200 m
    const double along = 1.2 + 0.9 * std::sin(chainage * 2.3) + 0.4 * std::sin(chainage * 9.1);
    const double crossFall = 0.04 * std::sin(chainage * 1.7);
    for (int r = 0; r < readings; ++r) {
      const double offset = readings > 1 ? -halfWidth + step * r : 0.0;
      const float off = round3(offset);
      const double ground = bed + along + crossFall * off + 0.15 * std::sin(off * 0.7 + k);
      initial.bindMeasure(1, chainage).bindMeasure(2, off).bindMeasure(3, round3(ground));
      initial.run();
      initial.reset();
    }
    levels.bindMeasure(1, chainage).bindMeasure(2, round3(bed));
    levels.run();
    levels.reset();
    // The dimensions change a little along the canal, as they do between real details rows.
    const float bedWidth = 6.0f - 0.5f * static_cast<float>(k % 4);
    details.bindMeasure(1, chainage)
        .bindMeasure(2, bedWidth)
        .bindMeasure(3, 2.0f)
        .bindMeasure(4, 0.6f)
        .bindMeasure(5, 1.5f)
        .bindMeasure(6, 4.0f)
        .bindMeasure(7, 2.0f)
        .bindMeasure(8, 2.0f);
    details.run();
    details.reset();
    qty.bindMeasure(1, chainage);
    qty.run();
    qty.reset();
  }
  data.commit();
}

}  // namespace bench
