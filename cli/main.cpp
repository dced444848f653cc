#include "cli/cli.h"

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char* argv[]) {
  QCoreApplication app(argc, argv);
  QTextStream out(stdout);
  QTextStream err(stderr);
  return cli::run(QCoreApplication::arguments(), out, err);
}
