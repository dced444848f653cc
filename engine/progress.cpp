#include "engine/progress.h"

#include "engine/reporter.h"

#include <utility>

namespace engine {

namespace {

// Work that ends sooner than this shows no progress window.
constexpr qint64 kSlowWorkMs = 1000;

}  // namespace

ProgressScope::~ProgressScope() { m_reporter.progressEnd(); }

DelayedProgress::DelayedProgress(Reporter* reporter, QString caption, int count)
    : m_reporter(reporter), m_caption(std::move(caption)), m_count(count) {
  m_timer.start();
}

DelayedProgress::~DelayedProgress() {
  if (m_shown) m_reporter->progressEnd();
}

void DelayedProgress::step(int done) {
  if (!m_reporter) return;
  if (!m_shown) {
    if (m_timer.elapsed() < kSlowWorkMs) return;
    m_reporter->progressStart(m_caption, m_count, true);
    m_shown = true;
  }
  m_reporter->progressValue(done);
}

}  // namespace engine
