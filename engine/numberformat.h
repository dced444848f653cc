#pragma once

#include <QString>

namespace engine {

// The symbols a formatted number uses. The desktop takes them from the user's locale; the
// command line's text output uses the defaults.
struct NumberSymbols {
  QChar group = QLatin1Char(',');
  QChar decimal = QLatin1Char('.');
  QChar minus = QLatin1Char('-');
};

// value with the given decimals (half away from zero) and digit grouping: 1234.5678, 3 ->
// "1,234.568". The one formatter for numbers shown to users.
QString formatNumber(double value, int decimals, const NumberSymbols& symbols = {});

}  // namespace engine
