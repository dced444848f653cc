#pragma once

#include <QByteArray>
#include <QChar>
#include <QString>
#include <QStringList>
#include <QStringView>

#include <array>
#include <cstdint>
#include <optional>
#include <vector>

namespace engine {

// How the plain-number chainages of a survey file are written. Stations in the 1+250.000
// notation read the same in either.
enum class ChainageUnit { Kilometres, Metres };

// What a column of a survey file holds. The code is read for the preview only: the level tables
// have no column for it.
enum class SurveyField { Chainage, Offset, Level, Code };
constexpr int kSurveyFieldCount = 4;

// "chainage", "offset", "level", "code": the field's name in messages.
QString surveyFieldName(SurveyField field);

// How the lines of a survey file are laid out: the delimiter, the header and which column holds
// each field. Detected from the text; the user may change the columns.
struct SurveyLayout {
  // ',', ';', '\t', or ' ' for fields separated by runs of blanks.
  QChar delimiter = QLatin1Char(',');
  // The 1-based number of the header line, 0 when the file has none.
  int headerLine = 0;
  // The header's column names; empty without a header.
  QStringList columnNames;
  // The most fields found on a line.
  int columnCount = 0;
  // The 0-based column of each field, -1 for none. Chainage, offset and level need one each.
  std::array<int, kSurveyFieldCount> columns{0, 1, 2, -1};

  int column(SurveyField field) const { return columns[static_cast<int>(field)]; }
  void setColumn(SurveyField field, int column) { columns[static_cast<int>(field)] = column; }
  // The header's name of a 0-based column, or "Column 4" when it has none.
  QString columnTitle(int column) const;
};

// One reading as it will be stored: chainage in kilometres, offset in metres (negative left of
// the centre line), level in metres. line is the 1-based line of the file it came from.
struct SurveyReading {
  int line = 0;
  float chainage = 0;
  float offset = 0;
  float level = 0;
  QString code;
};

// A line that cannot be read. column is 0-based, -1 when the problem is not in one column;
// message says what is wrong and quotes the offending text.
struct SurveyProblem {
  int line = 0;
  int column = -1;
  QString message;
};

// The readings of a whole file, or the lines that stop it from being read.
struct SurveyRead {
  QStringList lines;
  std::vector<SurveyReading> readings;
  // In line order; at most one per line.
  std::vector<SurveyProblem> problems;
  // How the plain chainages were read, and whether that was guessed from their values (never
  // when the unit was given or every chainage is a station).
  ChainageUnit unit = ChainageUnit::Kilometres;
  bool unitGuessed = false;
};

// The lines of a survey file's bytes: UTF-8 (a byte-order mark dropped), or Windows-1252 when the
// bytes are not UTF-8, as older survey software writes; CR LF, LF and CR all end a line.
QStringList surveyLines(const QByteArray& bytes);

// Splits a line at delimiter into trimmed fields. Except with ' ', a field may be quoted with '"'
// (a doubled quote inside stands for one), so it can hold the delimiter.
QStringList surveyFields(QStringView line, QChar delimiter);

// Finds the delimiter, the header and the columns of a survey file:
// - a line whose first character is '#' is a comment, and so is one starting with ';', except in
//   a semicolon-delimited file when the line holds a number: that is a reading with an empty
//   first column, which must be reported rather than skipped;
// - the delimiter is the one of tab, ';', ',' and blanks (in that order of preference) that
//   splits the most of the first 50 lines into three or more fields;
// - the first line that is not a comment is a header when none of its fields is a number, a
//   station or an offset; its names give the columns (Station, Chainage or Ch; Offset or Off;
//   Elevation, Level, RL or Z; Code or Description; in any case, a unit in brackets ignored);
// - without a header, the columns are chainage, offset, level and code in that order.
SurveyLayout detectSurveyLayout(const QStringList& lines);

// Reads every data line of lines by layout. unit: how plain chainages are written; without one,
// they are metres when any is 100 or more and kilometres otherwise (no section is 100 km long,
// and a survey in metres rarely ends within 100 m). Stations are written 1+250.000 (kilometres,
// '+', three digits of metres), offsets signed or with an L or R before or after them (12.5L is
// -12.5; CL is 0), and every number with a decimal point whatever the user's locale. A missing
// field, text where a number belongs and a chainage and offset pair that an earlier line already
// holds are problems.
SurveyRead readSurvey(const QStringList& lines, const SurveyLayout& layout,
                      std::optional<ChainageUnit> unit);

// "column 3 (level)": a 0-based column as messages name it, with the field it holds.
QString surveyColumnText(const SurveyLayout& layout, int column);

// The error-list line of a problem of the file fileName:
// "survey.csv, line 7, column 3 (level): '10x.2' is not a number."
QString surveyProblemText(const QString& fileName, const SurveyLayout& layout,
                          const SurveyProblem& problem);

// Equal for a chainage and offset pair equal as singles (0 and -0 alike), different otherwise.
std::uint64_t surveyPointKey(float chainage, float offset);

// A number written with a decimal point, as a whole field; nullopt for anything else (including
// a decimal comma, infinity and NaN).
std::optional<double> surveyNumber(QStringView text);

}  // namespace engine
