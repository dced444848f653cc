#pragma once

#include <QStringList>
#include <QTextStream>

namespace cli {

enum ExitCode { kOk = 0, kDataProblems = 1, kUsage = 2, kCannotOpen = 3 };

// Runs one command line (args[0] is the program name) and returns its exit code. Everything
// goes to out and err, so tests can run commands in-process.
int run(const QStringList& args, QTextStream& out, QTextStream& err);

}  // namespace cli
