#pragma once

#include "engine/reporter.h"

#include <QObject>
#include <QPointer>
#include <QString>

#include <functional>
#include <memory>

class QWidget;

namespace app {

class dlgErrorForm;
class frmProgress;

// How the engine and the windows tell the user things on the desktop: the shared error list
// and progress window (one of each, created on first use), message boxes and the main
// window's status bar.
class DesktopReporter : public engine::Reporter {
 public:
  // Shows one message box; replaced in tests so that nothing waits for a click.
  using MessageFunction = std::function<void(const QString& text, Icon icon)>;
  // Writes a status-bar panel (1-based); set by the main window.
  using StatusFunction = std::function<void(int panel, const QString& text)>;

  DesktopReporter();
  ~DesktopReporter() override;
  DesktopReporter(const DesktopReporter&) = delete;
  DesktopReporter& operator=(const DesktopReporter&) = delete;

  // Appends a line to the error list, opening a fresh list when none is open.
  void ShowError(const QString& message) override;
  // A modal box titled "Delvane" with the icon's standard picture.
  void messageBox(const QString& text, Icon icon) override;
  // The same box owned by a given window (a dialog that is open over the main window).
  void messageBox(QWidget* owner, const QString& text, Icon icon);
  // Shows the progress window with SetProperties(caption, maximum, showBar) and repaints it. A
  // window that was closed opens without Cancel and forgets an earlier click on it.
  void progressStart(const QString& caption, int maximum, bool showBar) override;
  void progressValue(int value) override;
  // Hides the progress window; it keeps its last maximum for the next use.
  void progressEnd() override;
  void statusText(int panel, const QString& text) override;
  // Lets pending events be handled; a call made while events are being handled returns at
  // once, so a command started from inside a long run cannot start the run's loop again. The
  // progress window offers Cancel from the first call on: only then can a click reach it.
  void processEvents() override;
  // The user clicked Cancel on the progress window of the run under way.
  bool cancelled() const override;

  void setMessageFunction(MessageFunction function);
  void setStatusFunction(StatusFunction function);
  // The window that owns message boxes and the error list (the main window); may be null.
  void setParentWindow(QWidget* parent);
  QWidget* parentWindow() const { return m_parent; }

  // The shared progress window, created on first use.
  frmProgress& progress();
  // The error list while it is open, otherwise null.
  dlgErrorForm* errorForm() const;
  // True while the error list exists.
  bool blnErrorListLoaded() const { return m_blnErrorListLoaded; }

 private:
  MessageFunction m_message;
  StatusFunction m_status;
  QPointer<QWidget> m_parent;
  std::unique_ptr<frmProgress> m_progress;
  QPointer<dlgErrorForm> m_errorForm;
  const void* m_errorFormIdentity = nullptr;
  // The receiver of the error list's signals: they stop when this reporter goes, even if the
  // list itself is deleted later.
  QObject m_connections;
  bool m_blnErrorListLoaded = false;
  bool m_processingEvents = false;
};

// The standard QMessageBox for one of the reporter's icons, titled "Delvane".
void showMessageBox(QWidget* parent, const QString& text, engine::Reporter::Icon icon);

}  // namespace app
