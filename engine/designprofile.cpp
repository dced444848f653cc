#include "engine/designprofile.h"

#include "db/connection.h"

namespace engine {

bool LoadDesignProfile(db::Connection& connection, Reporter& reporter,
                       std::vector<DesignProfileRow>& profile) {
  try {
    const auto count =
        connection.scalar(QStringLiteral("SELECT Count(*) FROM DesignExp WHERE DesignID=1"),
                          QStringLiteral("Counting the design profile rows"));
    if (count.value_or(0) < 1) {
      reporter.messageBox(
          QStringLiteral("No design profile found in the database. DB not correctly installed."),
          Reporter::Icon::Exclamation);
      return true;
    }
    std::vector<DesignProfileRow> rows;
    rows.reserve(static_cast<std::size_t>(*count));
    db::Statement st = connection.prepare(
        QStringLiteral("SELECT * FROM DesignExp WHERE DesignID=1 ORDER BY Serial"),
        QStringLiteral("Reading the design profile"));
    int lcr = -1, offset = -1, value = -1, serial = -1;
    for (int i = 0; i < st.columnCount(); ++i) {
      const QString name = st.columnName(i);
      if (name.compare(QLatin1String("Serial"), Qt::CaseInsensitive) == 0) serial = i;
      if (name.compare(QLatin1String("LCR"), Qt::CaseInsensitive) == 0) lcr = i;
      if (name.compare(QLatin1String("Offset"), Qt::CaseInsensitive) == 0) offset = i;
      if (name.compare(QLatin1String("Value"), Qt::CaseInsensitive) == 0) value = i;
    }
    if (lcr < 0 || offset < 0 || value < 0)
      throw db::Error(QStringLiteral("DesignExp lacks one of the columns LCR, Offset, Value"));
    while (st.step())
      rows.push_back({st.text(lcr), st.text(offset), st.text(value),
                      serial >= 0 ? st.text(serial) : QString()});
    profile = std::move(rows);
    return false;
  } catch (const db::Error&) {
    reporter.messageBox(
        QStringLiteral("LoadDesignProfile: Table not found! Database is probably corrupt."),
        Reporter::Icon::Exclamation);
    return true;
  }
}

}  // namespace engine
