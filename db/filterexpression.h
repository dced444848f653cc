#pragma once

#include <QString>
#include <QVariant>

#include <functional>
#include <vector>

namespace db {

// A row filter as the filter window writes it: terms "[field] op 'value'" joined by AND and
// OR, for example [Chainage] >= '100' AND [Offset] LIKE '%5%'. AND binds tighter than OR. A quote
// inside a value is doubled: [Name] = 'O''Brien'.
// Operators: =, <>, <, >, <=, >=, LIKE. LIKE matches case-insensitively with % or * standing
// for any run of characters. Text comparisons ignore case; a value compared with a numeric
// column is compared as a number. A NULL cell matches no term.
class FilterExpression {
 public:
  enum class Op { Equal, NotEqual, Less, Greater, LessEqual, GreaterEqual, Like };

  // A field the expression may name.
  struct Field {
    QString name;
    bool numeric = false;
  };

  struct Term {
    int column = -1;  // index into the fields given to parse
    Op op = Op::Equal;
    QString value;      // between the quotes, a doubled quote read as one
    double number = 0;  // the value as a number, for numeric columns
  };

  // The empty expression: every row matches.
  FilterExpression() = default;

  // Parses text against the given fields (names matched case-insensitively). Throws db::Error
  // with a sentence saying what is wrong and where: a term that follows another without AND or
  // OR, an unknown field, an unterminated quote, a missing operator, a value that is not a
  // number for a numeric column. Blank text gives the empty expression.
  static FilterExpression parse(const QString& text, const std::vector<Field>& fields);

  bool isEmpty() const { return m_groups.empty(); }

  // Whether a row passes. cell(column) gives the row's value of a field: an invalid QVariant
  // for NULL, a number (double or integer) or a QString.
  bool matches(const std::function<QVariant(int column)>& cell) const;

  // Whether one value passes one term; exposed for callers that keep their cells their own way.
  static bool termMatches(const Term& term, bool numericColumn, const QVariant& value);

  // The terms as OR-ed groups of AND-ed terms.
  const std::vector<std::vector<Term>>& groups() const { return m_groups; }

 private:
  std::vector<std::vector<Term>> m_groups;
  std::vector<bool> m_numeric;  // per field, as given to parse
};

// Whether text matches a LIKE pattern: % and * match any run of characters, case ignored.
bool likeMatches(const QString& text, const QString& pattern);

}  // namespace db
