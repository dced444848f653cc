#include "tests/sheets/editingtests.h"

#include <QApplication>

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  int failures = 0;
  failures += runSheetEditingTests(argc, argv);
  failures += runFilterBuilderTests(argc, argv);
  failures += runTransformDialogTests(argc, argv);
  failures += runEditingSaveTests(argc, argv);
  return failures;
}
