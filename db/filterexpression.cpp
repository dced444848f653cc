#include "db/filterexpression.h"

#include "db/connection.h"
#include "db/numbers.h"

#include <QLocale>

#include <optional>

namespace db {

namespace {

bool isWildcard(QChar c) { return c == QLatin1Char('%') || c == QLatin1Char('*'); }

bool isNameChar(QChar c) { return c.isLetterOrNumber() || c == QLatin1Char('_'); }

std::optional<double> numberIn(const QString& text) {
  bool ok = false;
  const double value = QLocale::c().toDouble(text.trimmed(), &ok);
  if (ok) return value;
  return std::nullopt;
}

// Walks the text of one expression; every failure is a sentence naming the offending text.
class Parser {
 public:
  Parser(const QString& text, const std::vector<FilterExpression::Field>& fields)
      : m_text(text), m_fields(fields) {}

  std::vector<std::vector<FilterExpression::Term>> parse() {
    std::vector<std::vector<FilterExpression::Term>> groups(1);
    skipBlanks();
    while (true) {
      groups.back().push_back(term());
      skipBlanks();
      if (atEnd()) break;
      const int start = m_pos;
      const QString word = connective();
      if (word.isEmpty())
        throw Error(QStringLiteral("The filter has no AND or OR before \"") + m_text.mid(start) +
                    QStringLiteral("\"."));
      skipBlanks();
      if (atEnd())
        throw Error(QStringLiteral("The filter ends with ") + word +
                    QStringLiteral(" but no term follows it."));
      if (word == QLatin1String("OR")) groups.emplace_back();
    }
    return groups;
  }

 private:
  bool atEnd() const { return m_pos >= m_text.size(); }
  QChar peek() const { return atEnd() ? QChar() : m_text.at(m_pos); }

  void skipBlanks() {
    while (!atEnd() && peek().isSpace()) ++m_pos;
  }

  // "AND" or "OR" followed by a blank, consumed; empty (nothing consumed) otherwise.
  QString connective() {
    for (const char* candidate : {"AND", "OR"}) {
      const QString word = QString::fromLatin1(candidate);
      const int end = m_pos + static_cast<int>(word.size());
      if (m_text.mid(m_pos, word.size()).compare(word, Qt::CaseInsensitive) == 0 &&
          (end >= m_text.size() || m_text.at(end).isSpace())) {
        m_pos = end;
        return word;
      }
    }
    return {};
  }

  FilterExpression::Term term() {
    FilterExpression::Term result;
    const QString name = fieldName();
    result.column = fieldIndex(name);
    skipBlanks();
    result.op = comparison(name);
    skipBlanks();
    result.value = value(name);
    const FilterExpression::Field& field = m_fields[static_cast<std::size_t>(result.column)];
    if (field.numeric && result.op != FilterExpression::Op::Like) {
      const std::optional<double> number = numberIn(result.value);
      if (!number)
        throw Error(QStringLiteral("The filter compares the numeric field ") + field.name +
                    QStringLiteral(" with \"") + result.value +
                    QStringLiteral("\", which is not a number."));
      result.number = *number;
    }
    return result;
  }

  QString fieldName() {
    if (peek() == QLatin1Char('[')) {
      const int close = m_text.indexOf(QLatin1Char(']'), m_pos + 1);
      if (close < 0)
        throw Error(QStringLiteral("The field name \"") + m_text.mid(m_pos) +
                    QStringLiteral("\" has no closing bracket."));
      const QString name = m_text.mid(m_pos + 1, close - m_pos - 1);
      m_pos = close + 1;
      return name;
    }
    const int start = m_pos;
    while (!atEnd() && isNameChar(peek())) ++m_pos;
    if (m_pos == start)
      throw Error(QStringLiteral("The filter expects a field name at \"") + m_text.mid(start) +
                  QStringLiteral("\"."));
    return m_text.mid(start, m_pos - start);
  }

  int fieldIndex(const QString& name) const {
    for (std::size_t i = 0; i < m_fields.size(); ++i)
      if (m_fields[i].name.compare(name, Qt::CaseInsensitive) == 0) return static_cast<int>(i);
    throw Error(QStringLiteral("The filter names the field \"") + name +
                QStringLiteral("\", which this sheet does not have."));
  }

  FilterExpression::Op comparison(const QString& field) {
    using Op = FilterExpression::Op;
    static const struct {
      const char* text;
      Op op;
    } kOperators[] = {{"<=", Op::LessEqual}, {">=", Op::GreaterEqual}, {"<>", Op::NotEqual},
                      {"=", Op::Equal},      {"<", Op::Less},          {">", Op::Greater}};
    for (const auto& candidate : kOperators) {
      const QString text = QString::fromLatin1(candidate.text);
      if (m_text.mid(m_pos, text.size()) == text) {
        m_pos += static_cast<int>(text.size());
        return candidate.op;
      }
    }
    const QString like = QStringLiteral("LIKE");
    const int end = m_pos + static_cast<int>(like.size());
    if (m_text.mid(m_pos, like.size()).compare(like, Qt::CaseInsensitive) == 0 &&
        (end >= m_text.size() || !isNameChar(m_text.at(end)))) {
      m_pos = end;
      return Op::Like;
    }
    throw Error(QStringLiteral("The filter term for [") + field +
                QStringLiteral("] has no comparison (=, <>, <, >, <=, >= or LIKE) at \"") +
                m_text.mid(m_pos) + QStringLiteral("\"."));
  }

  QString value(const QString& field) {
    if (peek() == QLatin1Char('\'')) {
      // A quote inside the value is written twice: 'O''Brien' is O'Brien.
      QString text;
      int at = m_pos + 1;
      for (;;) {
        const int close = m_text.indexOf(QLatin1Char('\''), at);
        if (close < 0)
          throw Error(QStringLiteral("The value ") + m_text.mid(m_pos) +
                      QStringLiteral(" of the field [") + field +
                      QStringLiteral("] has no closing quote."));
        text += m_text.mid(at, close - at);
        if (close + 1 < m_text.size() && m_text[close + 1] == QLatin1Char('\'')) {
          text += QLatin1Char('\'');
          at = close + 2;
          continue;
        }
        m_pos = close + 1;
        return text;
      }
    }
    // A bare number, as someone typing the filter by hand might write it.
    const int start = m_pos;
    while (!atEnd() && (isNameChar(peek()) || peek() == QLatin1Char('.') ||
                        peek() == QLatin1Char('-') || peek() == QLatin1Char('+')))
      ++m_pos;
    const QString text = m_text.mid(start, m_pos - start);
    if (text.isEmpty() || !numberIn(text))
      throw Error(QStringLiteral("The filter expects a quoted value after [") + field +
                  QStringLiteral("] at \"") + m_text.mid(start) + QStringLiteral("\"."));
    return text;
  }

  const QString& m_text;
  const std::vector<FilterExpression::Field>& m_fields;
  int m_pos = 0;
};

template <typename T>
bool compareWith(FilterExpression::Op op, const T& a, const T& b) {
  using Op = FilterExpression::Op;
  switch (op) {
    case Op::Equal:
      return a == b;
    case Op::NotEqual:
      return a != b;
    case Op::Less:
      return a < b;
    case Op::Greater:
      return a > b;
    case Op::LessEqual:
      return a <= b;
    case Op::GreaterEqual:
      return a >= b;
    case Op::Like:
      break;
  }
  return false;
}

QString cellText(const QVariant& value) {
  switch (value.typeId()) {
    case QMetaType::Double:
      return floatText(static_cast<float>(value.toDouble()));
    case QMetaType::Float:
      return floatText(value.toFloat());
    default:
      return value.toString();
  }
}

}  // namespace

FilterExpression FilterExpression::parse(const QString& text, const std::vector<Field>& fields) {
  FilterExpression result;
  if (text.trimmed().isEmpty()) return result;
  result.m_groups = Parser(text, fields).parse();
  result.m_numeric.reserve(fields.size());
  for (const Field& field : fields) result.m_numeric.push_back(field.numeric);
  return result;
}

bool FilterExpression::matches(const std::function<QVariant(int column)>& cell) const {
  if (m_groups.empty()) return true;
  for (const std::vector<Term>& group : m_groups) {
    bool all = true;
    for (const Term& term : group) {
      if (!termMatches(term, m_numeric[static_cast<std::size_t>(term.column)], cell(term.column))) {
        all = false;
        break;
      }
    }
    if (all) return true;
  }
  return false;
}

bool FilterExpression::termMatches(const Term& term, bool numericColumn, const QVariant& value) {
  if (!value.isValid() || value.isNull()) return false;
  if (term.op == Op::Like) return likeMatches(cellText(value), term.value);
  if (numericColumn) {
    std::optional<double> number;
    if (value.typeId() == QMetaType::QString)
      number = numberIn(value.toString());
    else
      number = value.toDouble();
    return number && compareWith(term.op, *number, term.number);
  }
  const int order = cellText(value).compare(term.value, Qt::CaseInsensitive);
  return compareWith(term.op, order, 0);
}

bool likeMatches(const QString& text, const QString& pattern) {
  // The pattern's literal pieces between wildcards must appear in order; the first and the
  // last are anchored unless a wildcard stands before or after them.
  QStringList pieces;
  QString piece;
  for (QChar c : pattern) {
    if (isWildcard(c)) {
      pieces.append(piece);
      piece.clear();
    } else {
      piece.append(c);
    }
  }
  pieces.append(piece);
  if (pieces.size() == 1) return text.compare(pattern, Qt::CaseInsensitive) == 0;

  const QString& first = pieces.first();
  const QString& last = pieces.last();
  if (!text.startsWith(first, Qt::CaseInsensitive)) return false;
  qsizetype position = first.size();
  for (qsizetype i = 1; i + 1 < pieces.size(); ++i) {
    const qsizetype found = text.indexOf(pieces.at(i), position, Qt::CaseInsensitive);
    if (found < 0) return false;
    position = found + pieces.at(i).size();
  }
  return text.size() - last.size() >= position && text.endsWith(last, Qt::CaseInsensitive);
}

}  // namespace db
