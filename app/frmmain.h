#pragma once

#include <QMainWindow>
#include <QString>

#include <array>

class QLabel;
class QMdiArea;

namespace app {

struct AppState;

// The program's multiple-document frame: menus, tool bars and status bar, the user's current
// package and section, and the routing of every command to the active child window.
class frmMain : public QMainWindow {
  Q_OBJECT

 public:
  explicit frmMain(AppState& state, QWidget* parent = nullptr);
  ~frmMain() override;

  QMdiArea* mdiArea() const { return m_mdiArea; }

  // Text of one panel of sbStatusBar; panel is 1-based (1 to 4), others are ignored.
  void setStatusPanel(int panel, const QString& text);
  QString statusPanel(int panel) const;

 private:
  AppState& m_state;
  QMdiArea* m_mdiArea = nullptr;
  std::array<QLabel*, 4> m_panels{};
};

}  // namespace app
