#include "db/numbers.h"

#include <charconv>
#include <cmath>
#include <cstdlib>
#include <limits>

namespace db {

namespace {

// Writes the shortest round-trip text of value into buf; returns its length. Values in the
// range of measures and volumes are written without an exponent ("100000", not "1e+05"), as a
// user and a spreadsheet expect them; only the very small and very large take one.
int shortestText(float value, char* buf, int size) {
  if (std::isnan(value)) return snprintf(buf, size, "NaN");
  if (std::isinf(value)) return snprintf(buf, size, value > 0 ? "Infinity" : "-Infinity");
  if (value == 0.0f) value = 0.0f;  // no "-0"
  const float magnitude = std::fabs(value);
  const bool plain = magnitude == 0.0f || (magnitude >= 1e-4f && magnitude < 1e15f);
  auto result = plain ? std::to_chars(buf, buf + size, value, std::chars_format::fixed)
                      : std::to_chars(buf, buf + size, value);
  return static_cast<int>(result.ptr - buf);
}

}  // namespace

QString floatText(float value) {
  char buf[64];
  int n = shortestText(value, buf, sizeof buf);
  return QString::fromLatin1(buf, n);
}

double measureToDouble(float value) {
  if (!std::isfinite(value)) return static_cast<double>(value);
  char buf[64];
  int n = shortestText(value, buf, sizeof buf - 1);
  buf[n] = '\0';
  double out = 0.0;
  std::from_chars(buf, buf + n, out);
  return out;
}

MeasureRange measureRange(float value) {
  if (!std::isfinite(value)) return {value, value};
  constexpr float kInfinity = std::numeric_limits<float>::infinity();
  const double v = value;
  const double below = std::nextafter(value, -kInfinity);
  const double above = std::nextafter(value, kInfinity);
  // Half-way to each neighbouring single, exact in a double; beyond the largest single the
  // neighbour is as far off as the one on the other side.
  double low = std::isfinite(below) ? (v + below) / 2 : v - (above - v) / 2;
  double high = std::isfinite(above) ? (v + above) / 2 : v + (v - below) / 2;
  // A double half-way between two singles narrows to the one whose last bit is even.
  if (!std::isfinite(below) || static_cast<float>(low) != value) low = std::nextafter(low, high);
  if (!std::isfinite(above) || static_cast<float>(high) != value) high = std::nextafter(high, low);
  return {low, high};
}

}  // namespace db
