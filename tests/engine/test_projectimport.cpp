#include "engine/projectimport.h"

#include "db/project.h"
#include "engine/designprofile.h"
#include "tests/fakesource.h"
#include "tests/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

using testsupport::FakeTable;

namespace {

// A copy is kept only when it opens with the design profile of design 1, as File > Open needs.
TEST(ImportProject, KeepsOnlyACopyWithADesignProfile) {
  FakeTable otherDesign = testsupport::designProfileTable();
  otherDesign.rows[0][0] = std::int64_t{2};
  FakeTable noRows = testsupport::designProfileTable();
  noRows.rows.clear();
  const struct {
    const char* what;
    FakeTable profile;
    bool kept;
  } cases[] = {
      {"design 1", testsupport::designProfileTable(), true},
      {"only design 2", otherDesign, false},
      {"no rows", noRows, false},
  };
  for (const auto& k : cases) {
    SCOPED_TRACE(k.what);
    testsupport::TempProject dir;
    testsupport::FakeSource source({k.profile});
    try {
      engine::importProject(source, dir.path());
      EXPECT_TRUE(k.kept);
      engine::RecordingReporter reporter;
      std::vector<engine::DesignProfileRow> profile;
      EXPECT_FALSE(engine::LoadDesignProfile(*db::openProject(dir.path()), reporter, profile));
    } catch (const db::CopyRefused& e) {
      EXPECT_FALSE(k.kept);
      EXPECT_TRUE(e.message().contains(QStringLiteral("\"old.mdb\" holds no design profile")))
          << e.what();
      EXPECT_FALSE(QFile::exists(dir.path()));
    }
  }
}

}  // namespace
