#pragma once

#include <QString>

namespace db {

// The shortest decimal text that reads back as the same single ("0.1", "1250", "-3.25").
// Always a '.' decimal point, whatever the locale. This is how a measure is written into
// messages and statement text.
QString floatText(float value);

// The double a single is bound as in a statement: the value of its shortest decimal text,
// so 0.1f binds as 0.1 and a chainage the program wrote compares equal to one typed as text.
double measureToDouble(float value);

// The least and the greatest double that narrow to value. A stored measure equals value at single
// precision when it lies between them, so a chainage another program wrote as 12.39999999999999
// is found for 12.4f as surely as one the program wrote. Infinity and NaN give themselves.
struct MeasureRange {
  double low = 0;
  double high = 0;
};
MeasureRange measureRange(float value);

// Reads a measure the way a stored value comes back: narrowed to single precision.
inline float doubleToMeasure(double value) { return static_cast<float>(value); }

}  // namespace db
