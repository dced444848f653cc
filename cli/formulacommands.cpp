#include "cli/command.h"
#include "db/numbers.h"
#include "engine/modvariables.h"

namespace cli {

namespace {

const QString kVarOption = QStringLiteral("var");

void formulaOptions(QCommandLineParser& parser) {
  parser.addOption({kVarOption,
                    QStringLiteral("Set the variable NAME (written $NAME in the formula) to VALUE. "
                                   "Repeat for more names; they are set in the order given."),
                    QStringLiteral("NAME=VALUE")});
  parser.addPositionalArgument(
      QStringLiteral("FORMULA"),
      QStringLiteral("The design formula, for example \"$CL+($FSD+$FREEBOARD)\". Put -- in front "
                     "of a formula that starts with a minus sign."));
}

// Fills the table from the --var options; false (after the usage message) on a bad one.
bool setVariables(Context& context, engine::modVariables& variables, int& code) {
  for (const QString& text : context.parser.values(kVarOption)) {
    const qsizetype equals = text.indexOf(QLatin1Char('='));
    const std::optional<float> value =
        equals > 0 ? parseMeasure(text.mid(equals + 1)) : std::optional<float>();
    if (!value) {
      const QString message =
          QStringLiteral("--var needs NAME=VALUE with a number as VALUE, not '") + text +
          QStringLiteral("'.");
      code = usageError(context, message);
      return false;
    }
    variables.SetFormulaVariable(text.left(equals), *value);
  }
  return true;
}

// The one FORMULA argument, or nullopt after the usage message.
std::optional<QString> formulaArgument(Context& context, int& code) {
  const QStringList args = context.parser.positionalArguments();
  if (args.size() != 1) {
    code = usageError(context, QStringLiteral("give exactly one FORMULA."));
    return std::nullopt;
  }
  return args.first();
}

int evaluate(Context& context) {
  int code = kOk;
  engine::modVariables variables;
  if (!setVariables(context, variables, code)) return code;
  const std::optional<QString> formula = formulaArgument(context, code);
  if (!formula) return code;
  context.out << db::floatText(variables.EvaluateFormula(*formula)) << '\n';
  switch (variables.refusal()) {
    case engine::FormulaRefusal::None:
      return kOk;
    case engine::FormulaRefusal::FormulaTooLong:
      context.err << "The formula is " << formula->size() << " characters long, more than the "
                  << engine::kMaxFormulaLength << " a formula may have; it counts as 0.\n";
      break;
    case engine::FormulaRefusal::WorkingTextTooLong:
      context.err << "The formula grows beyond " << engine::kMaxWorkingTextLength
                  << " characters while it is worked out; it counts as 0.\n";
      break;
  }
  return kDataProblems;
}

int substitute(Context& context) {
  int code = kOk;
  engine::modVariables variables;
  if (!setVariables(context, variables, code)) return code;
  const std::optional<QString> formula = formulaArgument(context, code);
  if (!formula) return code;
  context.out << variables.SubstituteFormulaVariables(*formula) << '\n';
  return kOk;
}

}  // namespace

const Command kFormulaCommands[] = {
    {"eval", "Evaluate a design formula with the given variables (0 when it cannot be reduced).",
     formulaOptions, evaluate},
    {"substitute", "Show a design formula with the given variables' values written in.",
     formulaOptions, substitute},
};
const int kFormulaCommandCount = std::size(kFormulaCommands);

}  // namespace cli
