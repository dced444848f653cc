#pragma once

#include "cli/cli.h"

#include <QString>
#include <QStringList>
#include <QTextStream>

namespace testsupport {

// Runs a delvane-cli command line in-process and keeps what it printed.
struct CliResult {
  int code = -1;
  QString out;
  QString err;
};

inline CliResult runCli(QStringList args) {
  args.prepend(QStringLiteral("delvane-cli"));
  CliResult r;
  QTextStream out(&r.out);
  QTextStream err(&r.err);
  r.code = cli::run(args, out, err);
  out.flush();
  err.flush();
  return r;
}

}  // namespace testsupport
