#include "tests/qtestmain.h"

#include <QApplication>
#include <QTest>

#include <cstdlib>
#include <cstring>
#include <memory>
#include <vector>

namespace testsupport {

namespace {

struct Entry {
  const char* name;
  QTestFactory make;
};

std::vector<Entry>& registry() {
  static std::vector<Entry> entries;
  return entries;
}

}  // namespace

QTestRegistrar::QTestRegistrar(const char* name, QTestFactory make) {
  registry().push_back({name, make});
}

}  // namespace testsupport

int main(int argc, char** argv) {
  if (!std::getenv("QT_QPA_PLATFORM")) setenv("QT_QPA_PLATFORM", "offscreen", 1);
  QApplication application(argc, argv);

  // A first argument naming a registered class runs that class alone, with the rest of the
  // arguments (test functions, QTest options) passed on.
  const char* only = nullptr;
  if (argc > 1) {
    for (const auto& entry : testsupport::registry())
      if (std::strcmp(argv[1], entry.name) == 0) only = entry.name;
  }
  std::vector<char*> args(argv, argv + argc);
  if (only) args.erase(args.begin() + 1);

  int failures = 0;
  for (const auto& entry : testsupport::registry()) {
    if (only && std::strcmp(only, entry.name) != 0) continue;
    std::unique_ptr<QObject> test(entry.make());
    failures += QTest::qExec(test.get(), static_cast<int>(args.size()), args.data());
  }
  return failures == 0 ? 0 : 1;
}
