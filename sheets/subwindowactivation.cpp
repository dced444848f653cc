#include "sheets/subwindowactivation.h"

#include <QEvent>
#include <QMdiSubWindow>
#include <QWidget>

namespace sheets {

SubWindowActivation::SubWindowActivation(QWidget* widget, std::function<void()> activated,
                                         std::function<void()> deactivated)
    : m_widget(widget), m_activated(std::move(activated)), m_deactivated(std::move(deactivated)) {
  widget->installEventFilter(this);
}

bool SubWindowActivation::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_widget && event->type() == QEvent::ParentChange) watchSubWindow();
  return false;
}

void SubWindowActivation::watchSubWindow() {
  auto* subWindow = qobject_cast<QMdiSubWindow*>(m_widget->parentWidget());
  if (subWindow == m_subWindow) return;
  if (m_subWindow) disconnect(m_subWindow, nullptr, this, nullptr);
  m_subWindow = subWindow;
  if (!m_subWindow) return;
  connect(m_subWindow, &QMdiSubWindow::windowStateChanged, this,
          [this](Qt::WindowStates, Qt::WindowStates newState) {
            if (newState & Qt::WindowActive)
              m_activated();
            else
              m_deactivated();
          });
}

}  // namespace sheets
