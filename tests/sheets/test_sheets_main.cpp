#include "tests/sheets/sheetstests.h"

#include <QApplication>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  int failures = 0;
  failures += runFrmDataGridTests(argc, argv);
  failures += runModGridStylesTests(argc, argv);
  failures += runFrmReportTests(argc, argv);
  return failures;
}
