#include "drawing/sheettitle.h"

#include "db/project.h"

#include <QFileInfo>

#include <QStringList>

#include <cmath>

namespace drawing {

SheetTitle sheetTitleOf(db::Connection& connection, const QString& projectFile,
                        std::int32_t section) {
  SheetTitle title;
  title.projectFile = QFileInfo(projectFile).fileName();
  title.sectionId = section;
  const db::SectionNames names = db::sectionNames(connection, section);
  title.sectionDescription = names.description;
  title.packageName = names.packageName;
  return title;
}

QString titleLead(const SheetTitle& title) {
  QStringList parts;
  if (!title.projectFile.isEmpty()) parts << title.projectFile;
  if (!title.packageName.isEmpty()) parts << title.packageName;
  parts << (title.sectionDescription.isEmpty()
                ? QStringLiteral("Section ") + QString::number(title.sectionId)
                : title.sectionDescription);
  return parts.join(QStringLiteral(" - "));
}

QString scaleText(double n, const engine::NumberSymbols& symbols) {
  const bool whole = std::fabs(n - std::round(n)) < 0.05;
  return QStringLiteral("1:") + engine::formatNumber(n, whole ? 0 : 1, symbols);
}

}  // namespace drawing
