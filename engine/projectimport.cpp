#include "engine/projectimport.h"

#include "engine/designprofile.h"
#include "engine/reporter.h"

#include <vector>

namespace engine {

db::ProjectCopy importProject(db::TableSource& source, const QString& path) {
  return db::copyIntoNewProject(source, path, [&source](db::Connection& connection) {
    RecordingReporter reporter;
    std::vector<DesignProfileRow> profile;
    if (!LoadDesignProfile(connection, reporter, profile)) return QString();
    return QStringLiteral(
               "\"%1\" holds no design profile (no DesignExp rows of design 1), "
               "so the copy would not open as a project.")
        .arg(source.name());
  });
}

}  // namespace engine
