#include "engine/projectimport.h"

#include "tests/fakesource.h"
#include "tests/testsupport.h"

#include <QFile>

#include <gtest/gtest.h>

namespace {

// A copy whose design template has no rows of design 1 would not open, so it is not kept.
TEST(ImportProject, KeepsNoCopyWithoutADesignProfile) {
  testsupport::FakeTable otherDesign = testsupport::designProfileTable();
  otherDesign.rows[0][0] = std::int64_t{2};
  testsupport::TempProject dir;
  testsupport::FakeSource source({otherDesign});
  try {
    engine::importProject(source, dir.path());
    ADD_FAILURE() << "kept";
  } catch (const db::CopyRefused& e) {
    EXPECT_TRUE(e.message().contains(QStringLiteral("\"old.mdb\" holds no design profile")))
        << e.what();
  }
  EXPECT_FALSE(QFile::exists(dir.path()));
}

}  // namespace
