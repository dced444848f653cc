#include "db/connection.h"
#include "db/filterexpression.h"

#include <QString>
#include <QVariant>

#include <cstddef>
#include <cstdint>
#include <vector>

// Feeds any text to the row filter parser, as if typed into the filter window of a sheet with
// numeric and text columns, and matches what it accepts against a few rows. It must either
// parse or throw db::Error, and matching must not fail, whatever the text.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static const std::vector<db::FilterExpression::Field> fields = {
      {QStringLiteral("Chainage"), true},
      {QStringLiteral("Offset"), true},
      {QStringLiteral("Level"), true},
      {QStringLiteral("Name"), false}};
  const QString text =
      QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  try {
    const db::FilterExpression filter = db::FilterExpression::parse(text, fields);
    const QVariant rows[][4] = {
        {0.5, -12.5, 151.25, QStringLiteral("OT 11")},
        {QVariant(), 0, QVariant(), QVariant()},
        {1e300, qint64(-7), 0.0, QStringLiteral("%*_'[]")},
    };
    for (const auto& row : rows) filter.matches([&row](int column) { return row[column]; });
  } catch (const db::Error&) {
    // A text that is not a filter is refused with a message: that is the expected outcome.
  }
  const qsizetype half = text.size() / 2;
  db::likeMatches(text.left(half), text.mid(half));
  return 0;
}
