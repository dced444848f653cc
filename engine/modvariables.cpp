#include "engine/modvariables.h"

#include <QChar>

#include <charconv>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <string_view>

namespace engine {

namespace {

// The operators in the order they are reduced; "(" stands for a parenthesised group.
constexpr std::u16string_view kOperators = u"(^%/*-+#";
// A reduction pass ends when the step counter reaches kStepLimit; nested group reductions are
// refused once it is past kNestingLimit. Together they end any text that never becomes a
// number (unbalanced or empty parentheses, unknown names).
constexpr int kStepLimit = 22000;
constexpr int kNestingLimit = 5000;

bool isDigit(char16_t c) { return c >= u'0' && c <= u'9'; }
bool isSign(char16_t c) { return c == u'+' || c == u'-'; }
bool isOperandChar(char16_t c) { return isDigit(c) || c == u'.'; }

char16_t foldAscii(char16_t c) { return c >= u'A' && c <= u'Z' ? char16_t(c + 32) : c; }

bool sameLetters(char16_t a, char16_t b) {
  if (a == b) return true;
  if (a < 128 && b < 128) return foldAscii(a) == foldAscii(b);
  return QChar::toCaseFolded(char32_t(a)) == QChar::toCaseFolded(char32_t(b));
}

// Whether text holds name right at `at`, without regard to letter case.
bool nameAt(const std::u16string& text, std::size_t at, const QString& name) {
  const auto length = static_cast<std::size_t>(name.size());
  if (text.size() - at < length) return false;
  const char16_t* n = reinterpret_cast<const char16_t*>(name.utf16());
  for (std::size_t k = 0; k < length; ++k)
    if (!sameLetters(text[at + k], n[k])) return false;
  return true;
}

// One left-to-right pass replacing every (non-overlapping) pair "ab" by c.
void replacePair(std::u16string& s, char16_t a, char16_t b, char16_t c) {
  std::size_t w = 0;
  const std::size_t n = s.size();
  for (std::size_t r = 0; r < n;) {
    if (s[r] == a && r + 1 < n && s[r + 1] == b) {
      s[w++] = c;
      r += 2;
    } else {
      s[w++] = s[r++];
    }
  }
  s.resize(w);
}

// "+-" -> "-", "--" -> "+", "-+" -> "-", "++" -> "+", one pass each in this order. Returns
// whether the text changed (it does whenever two signs stand side by side).
bool foldSigns(std::u16string& s) {
  bool pair = false;
  for (std::size_t k = 1; k < s.size() && !pair; ++k) pair = isSign(s[k - 1]) && isSign(s[k]);
  if (!pair) return false;
  replacePair(s, u'+', u'-', u'-');
  replacePair(s, u'-', u'-', u'+');
  replacePair(s, u'-', u'+', u'-');
  replacePair(s, u'+', u'+', u'+');
  return true;
}

// Reads the longest leading number of [begin, end): an optional sign, digits, an optional
// decimal point and digits; 0 when there is none. False when the number is beyond the double
// range.
bool readNumber(const char16_t* begin, const char16_t* end, double& value) {
  const char16_t* p = begin;
  bool negative = false;
  if (p < end && isSign(*p)) negative = *p++ == u'-';
  const char16_t* start = p;
  bool digits = false;
  bool wholeDigits = false;  // a non-zero digit before the point
  while (p < end && isDigit(*p)) {
    wholeDigits = wholeDigits || *p != u'0';
    digits = true;
    ++p;
  }
  if (p < end && *p == u'.') {
    ++p;
    while (p < end && isDigit(*p)) {
      digits = true;
      ++p;
    }
  }
  value = 0.0;
  if (!digits) return true;

  // Up to 15 digits with at most 22 decimals: the digits and the power of ten are exact
  // doubles, so one division gives the correctly rounded value, as from_chars would.
  static constexpr double kPowersOfTen[] = {1e0,  1e1,  1e2,  1e3,  1e4,  1e5,  1e6,  1e7,
                                            1e8,  1e9,  1e10, 1e11, 1e12, 1e13, 1e14, 1e15,
                                            1e16, 1e17, 1e18, 1e19, 1e20, 1e21, 1e22};
  std::int64_t mantissa = 0;
  int digitCount = 0;
  int decimals = 0;
  bool afterPoint = false;
  for (const char16_t* q = start; q < p && digitCount <= 15; ++q) {
    if (*q == u'.') {
      afterPoint = true;
      continue;
    }
    mantissa = mantissa * 10 + (*q - u'0');
    ++digitCount;
    if (afterPoint) ++decimals;
  }
  if (digitCount <= 15 && decimals <= 22) {
    value = static_cast<double>(mantissa) / kPowersOfTen[decimals];
    if (negative) value = -value;
    return true;
  }

  const auto length = static_cast<std::size_t>(p - start);
  char small[128];
  std::string large;
  char* ascii = small;
  if (length > sizeof small) {
    large.resize(length);
    ascii = large.data();
  }
  for (std::size_t k = 0; k < length; ++k) ascii[k] = static_cast<char>(start[k]);
  const auto result = std::from_chars(ascii, ascii + length, value, std::chars_format::fixed);
  if (result.ec == std::errc::result_out_of_range) {
    if (wholeDigits) return false;
    value = 0.0;  // too small to hold: nothing but zeros before the point
  }
  if (negative) value = -value;
  return true;
}

double roundHalfEven(double x) {
  const double r = std::round(x);  // halves away from zero
  if (std::fabs(x - std::trunc(x)) == 0.5) return 2.0 * std::round(x / 2.0);
  return r;
}

// x rounded to places decimals, a half at the last kept place going to the even digit. Works on
// the shortest decimal text of x, so 2.675 is a half (it rounds to 2.68) although its binary
// value lies a little below.
double roundToPlaces(double x, int places) {
  char buf[400];
  const auto written = std::to_chars(buf, buf + sizeof buf, std::fabs(x), std::chars_format::fixed);
  if (written.ec != std::errc()) return x;
  const std::string_view text(buf, static_cast<std::size_t>(written.ptr - buf));
  const std::size_t point = text.find('.');
  if (point == std::string_view::npos || text.size() - point - 1 <= std::size_t(places)) return x;

  const std::size_t keep = places == 0 ? point : point + 1 + std::size_t(places);  // chars kept
  const char next = text[keep == point ? point + 1 : keep];
  bool beyond = false;
  for (std::size_t k = (keep == point ? point + 2 : keep + 1); k < text.size(); ++k)
    beyond = beyond || text[k] != '0';
  const char last = text[keep - 1];
  const bool up = next > '5' || (next == '5' && (beyond || (last - '0') % 2 == 1));

  char rounded[402];
  rounded[0] = '0';  // room for a carry out of the first digit
  std::memcpy(rounded + 1, buf, keep);
  std::size_t length = keep + 1;
  if (up) {
    std::size_t k = length;
    while (k-- > 0) {
      if (rounded[k] == '.') continue;
      if (rounded[k] == '9') {
        rounded[k] = '0';
        continue;
      }
      ++rounded[k];
      break;
    }
  }
  double value = 0.0;
  std::from_chars(rounded, rounded + length, value, std::chars_format::fixed);
  return x < 0 ? -value : value;
}

// The classic general form: up to `precision` significant digits, trailing zeros dropped, an
// exponent ("1.234568E+07") only below 1E-4 or from 10^precision on. '.' decimal point, no
// "-0".
int writeGeneral(double value, int precision, char* buf, std::size_t size) {
  if (value == 0.0) value = 0.0;
  const auto written = std::to_chars(buf, buf + size, value, std::chars_format::general, precision);
  const int length = static_cast<int>(written.ptr - buf);
  for (int k = 0; k < length; ++k)
    if (buf[k] >= 'a' && buf[k] <= 'z') buf[k] = static_cast<char>(buf[k] - 32);
  return length;
}

}  // namespace

void modVariables::ResetFormulaVariables() {
  m_variables.clear();
  m_texts.clear();
}

void modVariables::SetFormulaVariable(const QString& name, float value) {
  ValueText text;
  char buf[32];
  text.length = writeGeneral(static_cast<double>(value), 7, buf, sizeof buf);
  for (int k = 0; k < text.length; ++k) text.chars[std::size_t(k)] = char16_t(buf[k]);

  for (std::size_t k = m_variables.size(); k-- > 0;) {
    if (m_variables[k].Name == name) {
      m_variables[k].Value = value;
      m_texts[k] = text;
      return;
    }
  }
  m_variables.emplace_back();
  m_texts.emplace_back();
  std::size_t k = m_variables.size() - 1;
  while (k > 0 && m_variables[k - 1].Name.size() < name.size()) {
    m_variables[k] = std::move(m_variables[k - 1]);
    m_texts[k] = m_texts[k - 1];
    --k;
  }
  m_variables[k] = FormulaVariable{name, value};
  m_texts[k] = text;
}

void modVariables::substitute(std::u16string& text) const {
  for (std::size_t v = 0; v < m_variables.size(); ++v) {
    std::size_t at = text.find(u'$');
    if (at == std::u16string::npos) return;
    const QString& name = m_variables[v].Name;
    const ValueText& value = m_texts[v];
    for (; at != std::u16string::npos; at = text.find(u'$', at)) {
      if (nameAt(text, at + 1, name)) {
        text.replace(at, std::size_t(name.size()) + 1, value.chars.data(),
                     std::size_t(value.length));
        at += std::size_t(value.length);
      } else {
        ++at;
      }
    }
  }
}

QString modVariables::SubstituteFormulaVariables(const QString& formula) const {
  std::u16string text(reinterpret_cast<const char16_t*>(formula.utf16()),
                      std::size_t(formula.size()));
  substitute(text);
  return QString::fromUtf16(text.data(), qsizetype(text.size()));
}

namespace {

// Applies one operator; writes the result's text, or returns false when the arithmetic fails.
bool applyOperator(char16_t op, double left, double right, std::array<char, 64>& text,
                   int& length) {
  double result = 0.0;
  switch (op) {
    case u'+':
      result = left + right;
      break;
    case u'-':
      result = left - right;
      break;
    case u'*':
      result = left * right;
      break;
    case u'/':
      if (right == 0.0) return false;
      result = left / right;
      break;
    case u'^':
      result = std::pow(left, right);
      break;
    case u'%': {
      const double divisor = roundHalfEven(right);
      if (divisor == 0.0) return false;
      result = std::fmod(roundHalfEven(left), divisor);
      if (result == 0.0) result = 0.0;
      const auto written = std::to_chars(text.data(), text.data() + text.size(), result,
                                         std::chars_format::fixed, 0);
      if (written.ec != std::errc()) return false;
      length = static_cast<int>(written.ptr - text.data());
      return true;
    }
    case u'#': {
      const double places = roundHalfEven(right);
      if (places < 0.0) return false;
      result = places > 400.0 ? left : roundToPlaces(left, static_cast<int>(places));
      break;
    }
    default:
      return false;
  }
  if (!std::isfinite(result)) return false;
  length = writeGeneral(result, 15, text.data(), text.size());
  return true;
}

}  // namespace

modVariables::Outcome modVariables::reduce(std::u16string& s, std::size_t depth) {
  if (m_steps > kNestingLimit) return Outcome::Refused;
  ++m_steps;
  while (m_levels.size() <= depth + 1) m_levels.emplace_back();
  m_levels[depth].result.clear();

  std::array<char, 64> resultText;
  char16_t resultChars[64];
  const auto tooLong = [&s] { return s.size() > std::size_t(kMaxWorkingTextLength); };
  for (const char16_t op : kOperators) {
    std::size_t pos = s.size() + 1;  // 1-based positions throughout, as in the rewriting rules
    while (pos >= 2 && m_steps < kStepLimit) {
      if (tooLong()) return Outcome::TooLong;
      ++m_steps;
      const bool folded = foldSigns(s);
      const std::size_t last = s.rfind(op);
      pos = last == std::u16string::npos ? 0 : last + 1;

      if (op == u'(' && pos >= 1) {
        const std::size_t closing = s.find(u')', pos - 1);
        const std::size_t close = closing == std::u16string::npos ? 0 : closing + 1;
        Level& level = m_levels[depth];
        if (close == 0) {
          // The text before the "(" and the last group result go in front of the whole text.
          // The "(" stays unmatched for good, and from the second position on each further step
          // would only double the text until the counter runs out; end it now.
          level.inner.assign(s, 0, pos - 1);
          level.inner += level.result;
          s.insert(0, level.inner);
          if (pos >= 2) m_steps = kStepLimit;
          continue;
        }
        if (close - pos - 1 > 0) {
          level.inner.assign(s, pos, close - pos - 1);
          const Outcome nested = reduce(level.inner, depth + 1);
          if (nested == Outcome::Failed || nested == Outcome::TooLong) return nested;
          if (nested == Outcome::Refused)
            level.result.clear();
          else
            level.result = level.inner;
        }
        s.replace(pos - 1, close - pos + 1, level.result);
        continue;
      }
      if (pos < 2) break;  // an operator in the first position is a sign

      // Left operand, read backwards from the operator; i ends on the last character kept in
      // front of it.
      std::size_t i = pos;
      std::size_t leftFirst = pos;
      while (i >= 2) {
        --i;
        const char16_t c = s[i - 1];
        if (isOperandChar(c)) {
          leftFirst = i;
          continue;
        }
        if (isSign(c) && (i == 1 || !isDigit(s[i - 2]))) {
          leftFirst = i;
          --i;
        }
        break;
      }
      const std::size_t keepFront = i > 1 ? i : 0;

      // Right operand; j ends on the first character kept after it.
      const std::size_t n = s.size();
      std::size_t j = pos;
      std::size_t rightLast = pos;
      while (j < n) {
        ++j;
        const char16_t c = s[j - 1];
        if (isOperandChar(c) || (isSign(c) && rightLast == pos)) {
          rightLast = j;
          continue;
        }
        break;
      }
      const std::size_t keepBackFrom = j < n ? j - 1 : n;  // 0-based

      double left = 0.0;
      double right = 0.0;
      if (!readNumber(s.data() + leftFirst - 1, s.data() + pos - 1, left)) return Outcome::Failed;
      if (!readNumber(s.data() + pos, s.data() + rightLast, right)) return Outcome::Failed;
      int length = 0;
      if (!applyOperator(op, left, right, resultText, length)) return Outcome::Failed;
      for (int k = 0; k < length; ++k) resultChars[k] = char16_t(resultText[std::size_t(k)]);

      const std::u16string_view replaced(s.data() + keepFront, keepBackFrom - keepFront);
      if (!folded && replaced == std::u16string_view(resultChars, std::size_t(length))) {
        // The text is back where this step began: every further step would repeat it.
        m_steps = kStepLimit;
        continue;
      }
      s.replace(keepFront, keepBackFrom - keepFront, resultChars, std::size_t(length));
    }
  }
  return tooLong() ? Outcome::TooLong : Outcome::Reduced;
}

QString modVariables::ReduceFormulaText(QString& s) {
  m_refusal = FormulaRefusal::None;
  std::u16string text(reinterpret_cast<const char16_t*>(s.utf16()), std::size_t(s.size()));
  switch (reduce(text, 0)) {
    case Outcome::TooLong:
      m_refusal = FormulaRefusal::WorkingTextTooLong;
      return QString();
    case Outcome::Refused:
      return QString();
    case Outcome::Failed:
      s.clear();
      return s;
    case Outcome::Reduced:
      break;
  }
  s = QString::fromUtf16(text.data(), qsizetype(text.size()));
  return s;
}

float modVariables::EvaluateFormula(const QString& formula) {
  m_refusal = FormulaRefusal::None;
  if (formula.size() > kMaxFormulaLength) {
    m_refusal = FormulaRefusal::FormulaTooLong;
    return 0.0f;
  }
  m_work.assign(reinterpret_cast<const char16_t*>(formula.utf16()), std::size_t(formula.size()));
  substitute(m_work);
  m_steps = 0;
  for (const char16_t c : m_work)
    if (c == u'E' || c == u'e') return 0.0f;
  const Outcome outcome = reduce(m_work, 0);
  if (outcome == Outcome::TooLong) m_refusal = FormulaRefusal::WorkingTextTooLong;
  if (outcome != Outcome::Reduced) return 0.0f;

  // A number: an optional sign, digits, an optional decimal point and digits.
  const char16_t* p = m_work.data();
  const char16_t* end = p + m_work.size();
  if (p < end && isSign(*p)) ++p;
  bool digits = false;
  bool point = false;
  for (; p < end; ++p) {
    if (isDigit(*p))
      digits = true;
    else if (*p == u'.' && !point)
      point = true;
    else
      return 0.0f;
  }
  double value = 0.0;
  if (!digits || !readNumber(m_work.data(), end, value)) return 0.0f;
  const float result = static_cast<float>(value);
  if (!std::isfinite(result) || result == 0.0f) return 0.0f;
  return result;
}

}  // namespace engine
