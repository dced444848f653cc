#include "engine/numbertext.h"

#include <charconv>
#include <limits>
#include <string>
#include <system_error>

namespace engine {

namespace {

bool isBlank(QChar c) {
  return c == QLatin1Char(' ') || c == QLatin1Char('\t') || c == QLatin1Char('\n') ||
         c == QLatin1Char('\r');
}

bool isDigit(QChar c) { return c >= QLatin1Char('0') && c <= QLatin1Char('9'); }

}  // namespace

double leadingNumber(QStringView text) {
  // Gather the characters of the number (blanks removed) and let from_chars read them, which
  // ignores the C locale; the scan decides where the number ends.
  std::string number;
  bool negative = false;
  qsizetype i = 0;
  const qsizetype n = text.size();
  auto skipBlanks = [&] {
    while (i < n && isBlank(text[i])) ++i;
  };
  skipBlanks();
  if (i < n && (text[i] == QLatin1Char('-') || text[i] == QLatin1Char('+'))) {
    negative = text[i] == QLatin1Char('-');
    ++i;
  }
  bool anyDigit = false;
  bool seenPoint = false;
  for (;;) {
    skipBlanks();
    if (i >= n) break;
    const QChar c = text[i];
    if (isDigit(c)) {
      number += static_cast<char>(c.unicode());
      anyDigit = true;
    } else if (c == QLatin1Char('.') && !seenPoint) {
      number += '.';
      seenPoint = true;
    } else {
      break;
    }
    ++i;
  }
  if (!anyDigit) return 0;
  if (i < n) {
    const QChar e = text[i].toUpper();
    if (e == QLatin1Char('E') || e == QLatin1Char('D')) {
      std::string exponent = "e";
      qsizetype j = i + 1;
      while (j < n && isBlank(text[j])) ++j;
      if (j < n && (text[j] == QLatin1Char('-') || text[j] == QLatin1Char('+'))) {
        exponent += static_cast<char>(text[j].unicode());
        ++j;
      }
      bool exponentDigit = false;
      for (; j < n; ++j) {
        if (isBlank(text[j])) continue;
        if (!isDigit(text[j])) break;
        exponent += static_cast<char>(text[j].unicode());
        exponentDigit = true;
      }
      if (exponentDigit) number += exponent;
    }
  }
  double value = 0;
  const auto [end, error] = std::from_chars(number.data(), number.data() + number.size(), value);
  if (error == std::errc::result_out_of_range) {
    // Too large gives infinity, which no 16-bit or single field accepts; too small gives 0.
    const bool huge = number.find("e-") == std::string::npos;
    value = huge ? std::numeric_limits<double>::infinity() : 0;
  }
  return negative ? -value : value;
}

QString generalText15(double value) {
  if (value == 0) return QStringLiteral("0");  // also turns -0 into "0"
  return QString::number(value, 'G', 15);
}

QString generalText7(float value) {
  if (value == 0) return QStringLiteral("0");
  return QString::number(static_cast<double>(value), 'G', 7);
}

}  // namespace engine
