#include "engine/numberformat.h"

#include <algorithm>
#include <charconv>
#include <cmath>

namespace engine {

QString formatNumber(double value, int decimals, const NumberSymbols& symbols) {
  if (!std::isfinite(value)) return QString::number(value);
  // Round half away from zero on the decimal text, as a spreadsheet shows it.
  const double scale = std::pow(10.0, decimals);
  double rounded = std::round(std::fabs(value) * scale) / scale;
  // to_chars, unlike printf, ignores the process locale: the digits always come with a '.'.
  char buf[400];
  const auto written = std::to_chars(buf, buf + sizeof buf, rounded, std::chars_format::fixed,
                                     std::max(decimals, 0));
  const QString plain = QString::fromLatin1(buf, written.ec == std::errc() ? written.ptr - buf : 0);
  const qsizetype point = plain.indexOf(QLatin1Char('.'));
  const QString whole = point < 0 ? plain : plain.left(point);
  QString out;
  for (qsizetype i = 0; i < whole.size(); ++i) {
    if (i > 0 && (whole.size() - i) % 3 == 0) out += symbols.group;
    out += whole[i];
  }
  if (point >= 0) out += symbols.decimal + plain.mid(point + 1);
  const bool negative = value < 0 && rounded != 0.0;
  return negative ? symbols.minus + out : out;
}

}  // namespace engine
