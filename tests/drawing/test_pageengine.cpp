#include "drawing/pageengine.h"
#include "drawing/recordingsurface.h"

#include <gtest/gtest.h>

namespace {

TEST(PageEngine, PolyLineNeedsTwoWholePoints) {
  drawing::RecordingSurface surface;
  drawing::PageEngine engine(surface);
  engine.pSetPage(100, 100);
  engine.pDrawPolyLine({0, 0, 0, 1, 1});
  EXPECT_TRUE(surface.pages().front().primitives.empty());
}

}  // namespace
