#include "engine/modvariables.h"

#include <QString>

#include <cmath>
#include <cstddef>
#include <cstdint>

// Feeds any text to the design formula evaluator, with the variables a design section sets.
// Every text must come back as a finite number or 0, within the evaluator's bounds of time and
// memory, with no sanitizer report.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
  static engine::modVariables variables = [] {
    engine::modVariables v;
    for (const auto& [name, value] : {std::pair{"CL", 151.0f},
                                      {"LP_Off", 3.0f},
                                      {"LP_Val", 151.0f},
                                      {"RP_Off", -3.0f},
                                      {"RP_Val", 153.6f},
                                      {"BED_WIDTH", 6.0f},
                                      {"FSD", 2.0f},
                                      {"SRS_LEFT", 1.5f},
                                      {"TINY", 0.00001f},
                                      {"BIG", 1e30f}})
      v.SetFormulaVariable(QString::fromLatin1(name), value);
    return v;
  }();
  const QString formula =
      QString::fromUtf8(reinterpret_cast<const char*>(data), static_cast<qsizetype>(size));
  const float value = variables.EvaluateFormula(formula);
  if (!std::isfinite(value)) __builtin_trap();
  QString text = variables.SubstituteFormulaVariables(formula);
  if (text.size() <= engine::kMaxFormulaLength) variables.ReduceFormulaText(text);
  return 0;
}
