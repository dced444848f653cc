#include <QCoreApplication>

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
  // Test discovery runs this binary at build time, outside ctest's environment.
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QCoreApplication app(argc, argv);
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
