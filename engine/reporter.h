#pragma once

#include <QString>
#include <QStringList>

namespace engine {

// How the engine tells the user what happened without knowing any window. The desktop program
// implements it with the error list, the progress window, message boxes and the status bar;
// the command line with stderr and nothing else.
class Reporter {
 public:
  enum class Icon { Information, Exclamation, Critical, Question };

  virtual ~Reporter() = default;

  // One line of the error list. The engine goes on after it returns.
  virtual void ShowError(const QString& message) = 0;
  // A message box with its fixed text; returns when the user has closed it.
  virtual void messageBox(const QString& text, Icon icon) = 0;
  // The progress window: caption, maximum (kept when <= 0), whether the bar shows.
  virtual void progressStart(const QString& caption, int maximum, bool showBar) = 0;
  virtual void progressValue(int value) = 0;
  virtual void progressEnd() = 0;
  // A panel of the main window's status bar (1-based, as the panels are numbered).
  virtual void statusText(int panel, const QString& text) = 0;
  // Called once per chainage of a long run so that the user interface stays alive.
  virtual void processEvents() {}
  // Whether the user asked the run under way to stop. A run asks once per chainage, after
  // processEvents, and stops between two chainages.
  virtual bool cancelled() const { return false; }
};

// Collects everything; for tests and for callers that decide later what to show.
class RecordingReporter : public Reporter {
 public:
  void ShowError(const QString& message) override { errors.append(message); }
  void messageBox(const QString& text, Icon) override { messages.append(text); }
  void progressStart(const QString&, int, bool) override {}
  void progressValue(int) override {}
  void progressEnd() override {}
  void statusText(int panel, const QString& text) override {
    status.append(QString::number(panel) + QLatin1Char(':') + text);
  }

  QStringList errors;
  QStringList messages;
  QStringList status;
};

}  // namespace engine
