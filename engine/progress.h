#pragma once

#include <QElapsedTimer>
#include <QString>

namespace engine {

class Reporter;

// Closes the progress window when the scope ends, however it is left: after the last step, on
// a cancel, or when a database error ends the work.
class ProgressScope {
 public:
  explicit ProgressScope(Reporter& reporter) : m_reporter(reporter) {}
  ~ProgressScope();
  ProgressScope(const ProgressScope&) = delete;
  ProgressScope& operator=(const ProgressScope&) = delete;

 private:
  Reporter& m_reporter;
};

// The progress of work that is usually over in a moment, such as adding or deleting many rows:
// the window opens only once the work has taken longer than a second, so quick work shows
// nothing, and it closes with the scope. Without a reporter it does nothing.
class DelayedProgress {
 public:
  DelayedProgress(Reporter* reporter, QString caption, int count);
  ~DelayedProgress();
  DelayedProgress(const DelayedProgress&) = delete;
  DelayedProgress& operator=(const DelayedProgress&) = delete;

  // done: the steps finished so far, of count.
  void step(int done);

 private:
  Reporter* m_reporter;
  QString m_caption;
  int m_count;
  QElapsedTimer m_timer;
  bool m_shown = false;
};

}  // namespace engine
