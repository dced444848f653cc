#pragma once

#include <QObject>
#include <QPointer>

#include <functional>

class QMdiSubWindow;
class QWidget;

namespace sheets {

// Follows the activation of the QMdiSubWindow that holds a sheet or report, so that the main
// window's commands follow the active window without the main window knowing about grids. The
// holder is found again each time the widget is reparented; outside an MDI area nothing is called.
class SubWindowActivation : public QObject {
 public:
  SubWindowActivation(QWidget* widget, std::function<void()> activated,
                      std::function<void()> deactivated);

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void watchSubWindow();

  QWidget* m_widget;
  std::function<void()> m_activated;
  std::function<void()> m_deactivated;
  QPointer<QMdiSubWindow> m_subWindow;
};

}  // namespace sheets
