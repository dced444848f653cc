#pragma once

#include <QString>

#include <vector>

namespace engine {

// A named single-precision value of the design formulas ($CL, $LP_Off, $SRS_LEFT, ...).
struct FormulaVariable {
  QString Name;
  float Value = 0.0f;
};

// The table of formula variables and the evaluator that reduces a formula text to a number by
// rewriting it, operator by operator, in the fixed order stored designs rely on.
class modVariables {
 public:
  void ResetFormulaVariables();
  // Sets an existing name (exact case) or adds it, keeping the table longest name first.
  void SetFormulaVariable(const QString& name, float value);
  // The formula with every $name replaced by its value's text; nothing is reduced.
  QString SubstituteFormulaVariables(const QString& formula) const;
  // The value of the formula, or 0 when it cannot be reduced to a number.
  float EvaluateFormula(const QString& formula);
  // One reduction pass over s (modified in place and returned); shares the step counter.
  QString ReduceFormulaText(QString& s);

  const std::vector<FormulaVariable>& variables() const { return m_variables; }

 private:
  std::vector<FormulaVariable> m_variables;
  int m_steps = 0;
};

}  // namespace engine
