#pragma once

#include <QObject>

// Widget tests register their QTest classes with DELVANE_QTEST(Class); one main per test
// executable runs them all, or only the class named by the first argument:
//   test_sheets TestFrmDataGrid SaveStopsAtFailingRow
namespace testsupport {

using QTestFactory = QObject* (*)();

struct QTestRegistrar {
  QTestRegistrar(const char* name, QTestFactory make);
};

}  // namespace testsupport

#define DELVANE_QTEST(Class)                                    \
  static const testsupport::QTestRegistrar delvaneQTest##Class( \
      #Class, []() -> QObject* { return new Class; });
