#include "engine/surveycsv.h"

#include "db/numbers.h"

#include <QStringDecoder>

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <unordered_map>

namespace engine {

namespace {

constexpr int kSampleLines = 50;

// The names a header gives each field, lower case.
const char* const kChainageNames[] = {"station", "chainage", "ch", "sta", "chain"};
const char* const kOffsetNames[] = {"offset", "off"};
const char* const kLevelNames[] = {"elevation", "level", "rl", "z", "elev"};
const char* const kCodeNames[] = {"code", "description", "desc"};

QChar firstNonBlank(QStringView line) {
  for (QChar c : line)
    if (!c.isSpace()) return c;
  return {};
}

// The field a header name stands for: "Level (m)" and "Ch." name the level and the chainage.
std::optional<SurveyField> fieldNamed(QString name) {
  name = name.trimmed().toLower();
  for (const char bracket : {'(', '['})
    if (const qsizetype at = name.indexOf(QLatin1Char(bracket)); at > 0)
      name = name.left(at).trimmed();
  while (name.endsWith(QLatin1Char('.'))) name.chop(1);
  const auto in = [&name](const auto& names) {
    return std::any_of(std::begin(names), std::end(names),
                       [&name](const char* n) { return name == QLatin1String(n); });
  };
  if (in(kChainageNames)) return SurveyField::Chainage;
  if (in(kOffsetNames)) return SurveyField::Offset;
  if (in(kLevelNames)) return SurveyField::Level;
  if (in(kCodeNames)) return SurveyField::Code;
  return std::nullopt;
}

// A chainage as written: a station (already in kilometres) or a plain number (in the file's
// unit, decided once every line is read).
struct WrittenChainage {
  double value = 0;
  bool station = false;
};

// "1+250.000": kilometres, '+', three digits of metres and any decimals; a sign may lead.
std::optional<double> stationValue(QStringView text) {
  const qsizetype plus = text.indexOf(QLatin1Char('+'), 1);
  if (plus < 0) return std::nullopt;
  QStringView km = text.left(plus);
  const QStringView metres = text.mid(plus + 1);
  bool negative = false;
  if (km.startsWith(QLatin1Char('-')) || km.startsWith(QLatin1Char('+'))) {
    negative = km.front() == QLatin1Char('-');
    km = km.mid(1);
  }
  const qsizetype point = metres.indexOf(QLatin1Char('.'));
  const qsizetype whole = point < 0 ? metres.size() : point;
  const auto digits = [](QStringView s) {
    return !s.isEmpty() && std::all_of(s.begin(), s.end(), [](QChar c) {
      return c >= QLatin1Char('0') && c <= QLatin1Char('9');
    });
  };
  if (!digits(km) || whole != 3 || !digits(metres.left(3)) ||
      (point >= 0 && point + 1 < metres.size() && !digits(metres.mid(point + 1))))
    return std::nullopt;
  const auto k = surveyNumber(km);
  const auto m = surveyNumber(metres);
  if (!k || !m) return std::nullopt;
  const double value = *k + *m / 1000.0;
  return negative ? -value : value;
}

std::optional<WrittenChainage> chainageValue(QStringView text) {
  if (const auto station = stationValue(text)) return WrittenChainage{*station, true};
  if (const auto number = surveyNumber(text)) return WrittenChainage{*number, false};
  return std::nullopt;
}

bool isSide(QChar c) {
  const QChar u = c.toUpper();
  return u == QLatin1Char('L') || u == QLatin1Char('R');
}

// Signed, or with a side before or after it: 12.5L and L12.5 are -12.5, 12.5R is 12.5, CL is 0.
std::optional<double> offsetValue(QStringView text) {
  if (text.compare(QLatin1String("CL"), Qt::CaseInsensitive) == 0) return 0.0;
  if (text.size() < 2) return surveyNumber(text);
  QChar side;
  QStringView body = text;
  if (isSide(text.back())) {
    side = text.back().toUpper();
    body = text.chopped(1).trimmed();
  } else if (isSide(text.front())) {
    side = text.front().toUpper();
    body = text.mid(1).trimmed();
  }
  if (side.isNull()) return surveyNumber(text);
  // A side and a sign contradict each other, or say the same twice: neither is a guess to make.
  if (body.startsWith(QLatin1Char('-')) || body.startsWith(QLatin1Char('+'))) return std::nullopt;
  const auto value = surveyNumber(body);
  if (!value) return std::nullopt;
  return side == QLatin1Char('L') ? -*value : *value;
}

// Whether a field holds something a data line holds: a number, a station or an offset.
bool holdsValue(QStringView field) {
  return chainageValue(field).has_value() || offsetValue(field).has_value();
}

// Blank lines and comments. A ';' line of a semicolon-delimited file that holds a value is a
// reading with an empty first column.
bool isSkipped(const QString& line, QChar delimiter) {
  const QChar first = firstNonBlank(line);
  if (first.isNull() || first == QLatin1Char('#')) return true;
  if (first != QLatin1Char(';')) return false;
  if (delimiter != QLatin1Char(';')) return true;
  const QStringList fields = surveyFields(line, delimiter);
  return std::none_of(fields.begin(), fields.end(),
                      [](const QString& field) { return holdsValue(field); });
}

QString quoted(QStringView text) { return QLatin1Char('\'') + text.toString() + QLatin1Char('\''); }

QString notANumber(QStringView text) {
  QString comma = text.toString();
  comma.replace(QLatin1Char(','), QLatin1Char('.'));
  if (text.contains(QLatin1Char(',')) && surveyNumber(comma))
    return quoted(text) + QStringLiteral(" is not a number: write the decimal point as '.'.");
  return quoted(text) + QStringLiteral(" is not a number.");
}

}  // namespace

std::uint64_t surveyPointKey(float chainage, float offset) {
  const auto bits = [](float v) {
    if (v == 0.0f) v = 0.0f;
    std::uint32_t b = 0;
    std::memcpy(&b, &v, sizeof b);
    return std::uint64_t{b};
  };
  return bits(chainage) << 32 | bits(offset);
}

QString surveyFieldName(SurveyField field) {
  switch (field) {
    case SurveyField::Chainage:
      return QStringLiteral("chainage");
    case SurveyField::Offset:
      return QStringLiteral("offset");
    case SurveyField::Level:
      return QStringLiteral("level");
    case SurveyField::Code:
      return QStringLiteral("code");
  }
  return {};
}

QString SurveyLayout::columnTitle(int column) const {
  if (column >= 0 && column < columnNames.size() && !columnNames[column].isEmpty())
    return columnNames[column];
  return QStringLiteral("Column %1").arg(column + 1);
}

QStringList surveyLines(const QByteArray& bytes) {
  QStringDecoder utf8(QStringDecoder::Utf8);
  QString text = utf8.decode(bytes);
  if (utf8.hasError()) {
    QStringDecoder windows("windows-1252");
    text = windows.isValid() ? QString(windows.decode(bytes)) : QString::fromLatin1(bytes);
  }
  text.replace(QStringLiteral("\r\n"), QStringLiteral("\n"));
  text.replace(QLatin1Char('\r'), QLatin1Char('\n'));
  QStringList lines = text.split(QLatin1Char('\n'));
  // The newline that ends the last line does not start another.
  if (!lines.isEmpty() && lines.last().isEmpty()) lines.removeLast();
  return lines;
}

QStringList surveyFields(QStringView line, QChar delimiter) {
  QStringList fields;
  const qsizetype n = line.size();
  if (delimiter == QLatin1Char(' ')) {
    qsizetype i = 0;
    while (i < n) {
      while (i < n && line[i].isSpace()) ++i;
      const qsizetype start = i;
      while (i < n && !line[i].isSpace()) ++i;
      if (i > start) fields.append(line.mid(start, i - start).toString());
    }
    return fields;
  }
  qsizetype i = 0;
  while (true) {
    while (i < n && line[i] != delimiter && line[i].isSpace()) ++i;
    if (i < n && line[i] == QLatin1Char('"')) {
      QString field;
      ++i;
      while (i < n) {
        if (line[i] == QLatin1Char('"')) {
          if (i + 1 < n && line[i + 1] == QLatin1Char('"')) {
            field += QLatin1Char('"');
            i += 2;
            continue;
          }
          ++i;
          break;
        }
        field += line[i++];
      }
      // Anything between the closing quote and the delimiter belongs to the field too.
      const qsizetype rest = i;
      while (i < n && line[i] != delimiter) ++i;
      field += line.mid(rest, i - rest).trimmed();
      fields.append(field.trimmed());
    } else {
      const qsizetype start = i;
      while (i < n && line[i] != delimiter) ++i;
      fields.append(line.mid(start, i - start).trimmed().toString());
    }
    if (i >= n) break;
    ++i;
  }
  return fields;
}

SurveyLayout detectSurveyLayout(const QStringList& lines) {
  SurveyLayout layout;
  QStringList sample;
  for (const QString& line : lines) {
    const QChar first = firstNonBlank(line);
    if (first.isNull() || first == QLatin1Char('#') || first == QLatin1Char(';')) continue;
    sample.append(line);
    if (sample.size() == kSampleLines) break;
  }

  int best = -1;
  for (const char candidate : {'\t', ';', ',', ' '}) {
    const QChar delimiter = QLatin1Char(candidate);
    const auto split = std::count_if(sample.begin(), sample.end(), [delimiter](const QString& l) {
      return surveyFields(l, delimiter).size() >= 3;
    });
    if (split > best) {
      best = static_cast<int>(split);
      layout.delimiter = delimiter;
    }
  }
  for (const QString& line : sample)
    layout.columnCount =
        std::max(layout.columnCount, static_cast<int>(surveyFields(line, layout.delimiter).size()));

  const auto first = std::find_if(lines.begin(), lines.end(), [&layout](const QString& line) {
    return !isSkipped(line, layout.delimiter);
  });
  if (first == lines.end()) return layout;
  const QStringList fields = surveyFields(*first, layout.delimiter);
  if (std::any_of(fields.begin(), fields.end(), [](const QString& f) { return holdsValue(f); })) {
    layout.setColumn(SurveyField::Code, layout.columnCount >= 4 ? 3 : -1);
    return layout;
  }
  layout.headerLine = static_cast<int>(first - lines.begin()) + 1;
  layout.columnNames = fields;
  layout.columnCount = std::max(layout.columnCount, static_cast<int>(fields.size()));
  layout.columns.fill(-1);
  for (int column = 0; column < fields.size(); ++column)
    if (const auto field = fieldNamed(fields[column]); field && layout.column(*field) < 0)
      layout.setColumn(*field, column);
  return layout;
}

SurveyRead readSurvey(const QStringList& lines, const SurveyLayout& layout,
                      std::optional<ChainageUnit> unit) {
  SurveyRead result;
  result.lines = lines;
  constexpr SurveyField kStored[] = {SurveyField::Chainage, SurveyField::Offset,
                                     SurveyField::Level};
  for (SurveyField field : kStored) {
    if (layout.column(field) >= 0) continue;
    const int line = layout.headerLine > 0 ? layout.headerLine : 1;
    static const char* const kNames[] = {"Station, Chainage or Ch", "Offset or Off",
                                         "Elevation, Level, RL or Z"};
    result.problems.push_back(
        {line, -1,
         QStringLiteral("no column holds the %1 (a header names it %2)")
                 .arg(surveyFieldName(field), QLatin1String(kNames[static_cast<int>(field)])) +
             (line <= lines.size() ? QStringLiteral(": ") + quoted(lines[line - 1]) : QString()) +
             QLatin1Char('.')});
    return result;
  }

  // The chainages as written; their unit is known only once every line has been read.
  std::vector<WrittenChainage> written;
  written.reserve(lines.size());
  result.readings.reserve(lines.size());
  const int codeColumn = layout.column(SurveyField::Code);
  for (int index = 0; index < lines.size(); ++index) {
    const int lineNumber = index + 1;
    const QString& line = lines[index];
    if (lineNumber == layout.headerLine || isSkipped(line, layout.delimiter)) continue;
    const QStringList fields = surveyFields(line, layout.delimiter);
    const auto problem = [&](SurveyField field, const QString& message) {
      result.problems.push_back({lineNumber, layout.column(field), message});
    };
    const auto field = [&](SurveyField f) -> std::optional<QStringView> {
      const int column = layout.column(f);
      if (column < fields.size() && !fields[column].isEmpty()) return QStringView(fields[column]);
      problem(f, QStringLiteral("the %1 is missing: ").arg(surveyFieldName(f)) + quoted(line) +
                     QLatin1Char('.'));
      return std::nullopt;
    };

    const auto chainageText = field(SurveyField::Chainage);
    if (!chainageText) continue;
    const auto chainage = chainageValue(*chainageText);
    if (!chainage) {
      problem(SurveyField::Chainage,
              chainageText->contains(QLatin1Char('+'))
                  ? quoted(*chainageText) +
                        QStringLiteral(" is not a station: write the kilometres, '+' and three "
                                       "digits of metres, as in 1+020.000.")
                  : notANumber(*chainageText));
      continue;
    }
    const auto offsetText = field(SurveyField::Offset);
    if (!offsetText) continue;
    const auto offset = offsetValue(*offsetText);
    if (!offset) {
      problem(SurveyField::Offset,
              isSide(offsetText->front()) || isSide(offsetText->back())
                  ? quoted(*offsetText) +
                        QStringLiteral(" is not an offset: write -12.5, 12.5L or 12.5R.")
                  : notANumber(*offsetText));
      continue;
    }
    const auto levelText = field(SurveyField::Level);
    if (!levelText) continue;
    const auto level = surveyNumber(*levelText);
    if (!level) {
      problem(SurveyField::Level, notANumber(*levelText));
      continue;
    }
    SurveyReading reading;
    reading.line = lineNumber;
    reading.offset = static_cast<float>(*offset);
    reading.level = static_cast<float>(*level);
    if (codeColumn >= 0 && codeColumn < fields.size()) reading.code = fields[codeColumn];
    if (!std::isfinite(reading.offset) || !std::isfinite(reading.level)) {
      const SurveyField f =
          std::isfinite(reading.offset) ? SurveyField::Level : SurveyField::Offset;
      problem(f, quoted(f == SurveyField::Level ? *levelText : *offsetText) +
                     QStringLiteral(" is too large."));
      continue;
    }
    written.push_back(*chainage);
    result.readings.push_back(reading);
  }

  if (unit) {
    result.unit = *unit;
  } else {
    // Only plain chainages leave a unit to guess.
    result.unitGuessed = std::any_of(written.begin(), written.end(),
                                     [](const WrittenChainage& c) { return !c.station; });
    const bool metres = std::any_of(written.begin(), written.end(), [](const WrittenChainage& c) {
      return !c.station && std::fabs(c.value) >= 100.0;
    });
    result.unit = metres ? ChainageUnit::Metres : ChainageUnit::Kilometres;
  }

  // Chainages in kilometres; a pair that an earlier line holds is a problem of the later line.
  std::unordered_map<std::uint64_t, int> firstLine;
  firstLine.reserve(result.readings.size());
  std::vector<SurveyReading> kept;
  kept.reserve(result.readings.size());
  const std::size_t problemsOfLines = result.problems.size();
  for (std::size_t i = 0; i < result.readings.size(); ++i) {
    SurveyReading& reading = result.readings[i];
    const WrittenChainage& c = written[i];
    const double km =
        c.station || result.unit == ChainageUnit::Kilometres ? c.value : c.value / 1000.0;
    reading.chainage = static_cast<float>(km);
    const int column = layout.column(SurveyField::Chainage);
    if (!std::isfinite(reading.chainage)) {
      result.problems.push_back(
          {reading.line, column,
           quoted(surveyFields(lines[reading.line - 1], layout.delimiter).value(column)) +
               QStringLiteral(" is too large.")});
      continue;
    }
    const auto [at, inserted] =
        firstLine.emplace(surveyPointKey(reading.chainage, reading.offset), reading.line);
    if (!inserted) {
      result.problems.push_back(
          {reading.line, column,
           QStringLiteral("chainage %1 and offset %2 are already on line %3: ")
                   .arg(db::floatText(reading.chainage), db::floatText(reading.offset))
                   .arg(at->second) +
               quoted(lines[reading.line - 1]) + QLatin1Char('.')});
      continue;
    }
    kept.push_back(std::move(reading));
  }
  result.readings = std::move(kept);
  if (result.problems.size() > problemsOfLines)
    std::stable_sort(
        result.problems.begin(), result.problems.end(),
        [](const SurveyProblem& a, const SurveyProblem& b) { return a.line < b.line; });
  return result;
}

QString surveyColumnText(const SurveyLayout& layout, int column) {
  QString text = QStringLiteral("column ") + QString::number(column + 1);
  for (int f = 0; f < kSurveyFieldCount; ++f)
    if (layout.columns[f] == column)
      return text + QStringLiteral(" (") + surveyFieldName(static_cast<SurveyField>(f)) +
             QLatin1Char(')');
  return text;
}

QString surveyProblemText(const QString& fileName, const SurveyLayout& layout,
                          const SurveyProblem& problem) {
  QString where = fileName + QStringLiteral(", line ") + QString::number(problem.line);
  if (problem.column >= 0) where += QStringLiteral(", ") + surveyColumnText(layout, problem.column);
  return where + QStringLiteral(": ") + problem.message;
}

std::optional<double> surveyNumber(QStringView text) {
  char buffer[64];
  qsizetype n = text.size();
  if (n == 0 || n >= static_cast<qsizetype>(sizeof buffer)) return std::nullopt;
  qsizetype from = 0;
  if (text[0] == QLatin1Char('+')) {
    from = 1;
    if (n == 1 || text[1] == QLatin1Char('-') || text[1] == QLatin1Char('+')) return std::nullopt;
  }
  int length = 0;
  for (qsizetype i = from; i < n; ++i) {
    const char16_t c = text[i].unicode();
    // Digits, sign, point and exponent only: no letters of "inf" or "nan", no hexadecimal.
    if (!((c >= u'0' && c <= u'9') || c == u'.' || c == u'-' || c == u'+' || c == u'e' ||
          c == u'E'))
      return std::nullopt;
    buffer[length++] = static_cast<char>(c);
  }
  double value = 0;
  const auto [end, error] = std::from_chars(buffer, buffer + length, value);
  if (error != std::errc() || end != buffer + length || !std::isfinite(value)) return std::nullopt;
  return value;
}

}  // namespace engine
