#pragma once

#include <QJsonArray>
#include <QJsonObject>
#include <QJsonValue>
#include <QStringList>
#include <QTextStream>

namespace cli {

// A single as a JSON number written in its shortest round-trip text (0.02, not 0.0199999995);
// null for NaN and the infinities, which JSON cannot hold.
QJsonValue jsonNumber(float value);

// Lines of text, for example the error-list lines of a run, as a JSON array of strings.
QJsonArray jsonLines(const QStringList& lines);

// Writes object to out as one line of compact JSON and a newline.
void writeJson(QTextStream& out, const QJsonObject& object);

}  // namespace cli
