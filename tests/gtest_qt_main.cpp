#ifdef DELVANE_GUI_TESTS
#include <QGuiApplication>
#else
#include <QCoreApplication>
#endif

#include <gtest/gtest.h>

#include <cstdlib>

int main(int argc, char** argv) {
  // Test discovery runs this binary at build time, outside ctest's environment.
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
#ifdef DELVANE_GUI_TESTS
  // Text in drawings needs fonts, which need a GUI application.
  QGuiApplication app(argc, argv);
#else
  QCoreApplication app(argc, argv);
#endif
  ::testing::InitGoogleTest(&argc, argv);
  return RUN_ALL_TESTS();
}
