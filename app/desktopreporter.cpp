#include "app/desktopreporter.h"

#include "app/dlgerrorform.h"
#include "app/frmprogress.h"

#include <QCoreApplication>
#include <QMessageBox>
#include <QScopedValueRollback>

namespace app {

void showMessageBox(QWidget* parent, const QString& text, engine::Reporter::Icon icon) {
  QMessageBox::Icon boxIcon = QMessageBox::Information;
  switch (icon) {
    case engine::Reporter::Icon::Information:
      boxIcon = QMessageBox::Information;
      break;
    case engine::Reporter::Icon::Exclamation:
      boxIcon = QMessageBox::Warning;
      break;
    case engine::Reporter::Icon::Critical:
      boxIcon = QMessageBox::Critical;
      break;
    case engine::Reporter::Icon::Question:
      boxIcon = QMessageBox::Question;
      break;
  }
  QMessageBox box(boxIcon, QStringLiteral("Delvane"), text, QMessageBox::Ok, parent);
  box.exec();
}

DesktopReporter::DesktopReporter() = default;

DesktopReporter::~DesktopReporter() {
  if (m_errorForm) {
    // Its signals would otherwise reach this object while it is being torn down.
    m_errorForm->disconnect();
    delete m_errorForm;
  }
}

void DesktopReporter::ShowError(const QString& message) {
  if (!m_blnErrorListLoaded) {
    auto* form = new dlgErrorForm(m_parent);
    m_errorForm = form;
    m_blnErrorListLoaded = true;
    // Closing the list drops its messages: the window deletes itself later, but from now on
    // the next message starts a fresh list.
    // Compared by address only: the form may be half destroyed when this runs.
    m_errorFormIdentity = form;
    const auto unload = [this, identity = static_cast<const void*>(form)] {
      if (m_errorFormIdentity == identity) {
        m_errorForm.clear();
        m_errorFormIdentity = nullptr;
        m_blnErrorListLoaded = false;
      }
    };
    QObject::connect(form, &QDialog::finished, &m_connections, unload);
    QObject::connect(form, &QObject::destroyed, &m_connections, unload);
    form->show();
  }
  m_errorForm->DisplayMessage(message);
}

dlgErrorForm* DesktopReporter::errorForm() const { return m_errorForm; }

void DesktopReporter::messageBox(const QString& text, Icon icon) {
  messageBox(m_parent, text, icon);
}

void DesktopReporter::messageBox(QWidget* owner, const QString& text, Icon icon) {
  if (m_message)
    m_message(text, icon);
  else
    showMessageBox(owner, text, icon);
}

frmProgress& DesktopReporter::progress() {
  if (!m_progress) m_progress = std::make_unique<frmProgress>();
  return *m_progress;
}

void DesktopReporter::progressStart(const QString& caption, int maximum, bool showBar) {
  frmProgress& window = progress();
  if (!window.isVisible()) {
    window.clearCancel();
    window.setCancelVisible(false);
  }
  window.SetProperties(caption, maximum, showBar);
  window.show();
  window.raise();
  window.repaint();
}

void DesktopReporter::progressValue(int value) {
  frmProgress& window = progress();
  window.UpdateValue(value);
  if (window.isVisible()) window.repaint();
}

void DesktopReporter::progressEnd() {
  if (m_progress) m_progress->hide();
}

void DesktopReporter::statusText(int panel, const QString& text) {
  if (m_status) m_status(panel, text);
}

void DesktopReporter::processEvents() {
  if (m_processingEvents) return;
  const QScopedValueRollback<bool> guard(m_processingEvents, true);
  if (m_progress && m_progress->isVisible()) m_progress->setCancelVisible(true);
  QCoreApplication::processEvents();
}

bool DesktopReporter::cancelled() const { return m_progress && m_progress->cancelRequested(); }

void DesktopReporter::setMessageFunction(MessageFunction function) {
  m_message = std::move(function);
}

void DesktopReporter::setStatusFunction(StatusFunction function) { m_status = std::move(function); }

void DesktopReporter::setParentWindow(QWidget* parent) { m_parent = parent; }

}  // namespace app
