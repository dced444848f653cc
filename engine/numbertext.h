#pragma once

#include <QString>
#include <QStringView>

namespace engine {

// The value of the number a text starts with, read the classic way (a cell, a typed count, a
// formula's value): blanks (spaces, tabs, line
// breaks) are skipped wherever they stand, then an optional sign, digits with at most one '.',
// and an optional exponent (E or D). Whatever follows is ignored; a text that does not start with
// a number gives 0. "12.5 m" -> 12.5, " - 3" -> -3, "abc" -> 0, "1e3x" -> 1000.
double leadingNumber(QStringView text);

// A double as text with up to fifteen significant digits in the general format: no trailing
// zeros, an exponent only for very large or very small values (1.1 -> "1.1",
// 1.100000001490116 -> "1.10000000149012", 1e20 -> "1E+20"). Zero is always "0".
QString generalText15(double value);

// A single as text with up to seven significant digits in the same general format
// (1.0f / 3 -> "0.3333333", 16777216 -> "1.677722E+07"). Zero is always "0".
QString generalText7(float value);

}  // namespace engine
