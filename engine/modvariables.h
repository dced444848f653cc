#pragma once

#include <QString>
#include <QStringView>

#include <array>
#include <deque>
#include <string>
#include <vector>

namespace engine {

// The longest formula text the evaluator takes, and the longest its working text may grow to
// while it is reduced (an empty group takes the last group's result, so "(()())" doubles it).
// Beyond either the formula is not reduced and yields 0; refusal() says which bound it met.
inline constexpr int kMaxFormulaLength = 4096;
inline constexpr int kMaxWorkingTextLength = 65536;

// Why the last evaluation gave up before the formula was reduced: the formula text, or the
// working text it grew into, is longer than its bound. None for every other outcome.
enum class FormulaRefusal { None, FormulaTooLong, WorkingTextTooLong };

// A named single-precision value of the design formulas ($CL, $LP_Off, $SRS_LEFT, ...).
struct FormulaVariable {
  QString Name;
  float Value = 0.0f;
};

// The table of formula variables and the evaluator that reduces a formula text to a number by
// rewriting it, operator by operator, in the fixed order stored designs rely on: "(^%/*-+#",
// each operator from its last occurrence backwards, so 10-2-3 is 11 and 8/4/2 is 4.
class modVariables {
 public:
  // Empties the table.
  void ResetFormulaVariables();
  // Sets an existing name (exact case) or adds it, keeping the table longest name first and,
  // among names of equal length, in the order they were first set.
  void SetFormulaVariable(const QString& name, float value);
  // The formula with every $name (any letter case) replaced by its value's text, longest names
  // first; nothing is reduced. An unknown $name stays as it is.
  QString SubstituteFormulaVariables(const QString& formula) const;
  // The value of the formula, or 0 when it cannot be reduced to a number: unknown names, an
  // exponent letter, unbalanced parentheses, and arithmetic that fails (division or % by zero,
  // # with negative places, a negative number to a fractional power, overflow), or a text beyond
  // the length bounds above.
  float EvaluateFormula(const QString& formula);
  // One reduction of s (modified in place and returned); shares the step counter with the
  // evaluation that started it. Returns an empty text, leaving s unchanged, once the counter is
  // past its nesting limit or the text grows beyond kMaxWorkingTextLength; an arithmetic failure
  // leaves s empty.
  QString ReduceFormulaText(QString& s);
  // Why the last EvaluateFormula or ReduceFormulaText gave up on the length bounds, if it did.
  FormulaRefusal refusal() const { return m_refusal; }

  const std::vector<FormulaVariable>& variables() const { return m_variables; }

 private:
  // A value's text, written once when the value is set: at most 13 characters
  // ("-1.234568E+38").
  struct ValueText {
    std::array<char16_t, 16> chars{};
    int length = 0;
  };
  enum class Outcome { Reduced, Refused, Failed, TooLong };
  // What one level of parenthesis reduction keeps: the text being reduced inside the group
  // and the last group result of the level.
  struct Level {
    std::u16string inner;
    std::u16string result;
  };

  void substitute(std::u16string& text) const;
  Outcome reduce(std::u16string& s, std::size_t depth);

  std::vector<FormulaVariable> m_variables;
  std::vector<ValueText> m_texts;  // parallel to m_variables
  int m_steps = 0;
  FormulaRefusal m_refusal = FormulaRefusal::None;
  // Scratch reused by every evaluation so that the quantity run does not allocate per formula.
  std::u16string m_work;
  std::deque<Level> m_levels;  // a deque: nesting adds levels without moving the outer ones
};

}  // namespace engine
