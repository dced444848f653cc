#include "cli/session.h"

#include <cmath>

namespace cli {

const QString kSection = QStringLiteral("section");
const QString kChainage = QStringLiteral("chainage");
const QString kExecuted = QStringLiteral("executed");
const QString kJson = QStringLiteral("json");

void addFileAndSection(QCommandLineParser& parser, const QString& sectionHelp) {
  parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The project file."));
  parser.addOption({kSection, sectionHelp, QStringLiteral("ID")});
}

void addFileAndSection(QCommandLineParser& parser) {
  addFileAndSection(parser, QStringLiteral("The section to work on (its ID)."));
}

void addJson(QCommandLineParser& parser) {
  parser.addOption({kJson, QStringLiteral("Write the result as one JSON object.")});
}

std::optional<QString> fileArgument(Context& context, int& code) {
  const QStringList files = context.parser.positionalArguments();
  if (files.size() != 1) {
    code = usageError(context, QStringLiteral("give exactly one FILE."));
    return std::nullopt;
  }
  if (files.first().isEmpty()) {
    code = usageError(context, QStringLiteral("FILE is empty: give the name of a project file."));
    return std::nullopt;
  }
  return files.first();
}

std::optional<std::int32_t> sectionOption(Context& context, int& code) {
  if (!context.parser.isSet(kSection)) {
    code = usageError(context, QStringLiteral("give the section with --section ID."));
    return std::nullopt;
  }
  const auto section = parseKey(context.parser.value(kSection));
  if (!section || *section <= 0) {
    code = usageError(context, QStringLiteral("--section needs a positive whole number, not '") +
                                   context.parser.value(kSection) + QStringLiteral("'."));
    return std::nullopt;
  }
  return section;
}

std::optional<float> chainageOption(Context& context, float fallback, int& code) {
  if (!context.parser.isSet(kChainage)) return fallback;
  const auto chainage = parseMeasure(context.parser.value(kChainage));
  if (!chainage || !std::isfinite(*chainage)) {
    code = usageError(context, QStringLiteral("--chainage needs a number in kilometres, not '") +
                                   context.parser.value(kChainage) + QStringLiteral("'."));
    return std::nullopt;
  }
  return chainage;
}

}  // namespace cli
