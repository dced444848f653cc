#include "cli/json.h"

#include "db/numbers.h"

#include <QJsonDocument>

#include <cmath>

namespace cli {

QJsonValue jsonNumber(float value) {
  if (!std::isfinite(value)) return QJsonValue(QJsonValue::Null);
  // The writer prints the shortest text of the double; the double of the single's shortest
  // text prints as that text.
  return QJsonValue(db::measureToDouble(value));
}

QJsonArray jsonLines(const QStringList& lines) {
  QJsonArray array;
  for (const QString& line : lines) array.append(line);
  return array;
}

void writeJson(QTextStream& out, const QJsonObject& object) {
  out << QString::fromUtf8(QJsonDocument(object).toJson(QJsonDocument::Compact)) << '\n';
}

}  // namespace cli
