#include "app/frmmain.h"

#include "app/appstate.h"

#include <QLabel>
#include <QMdiArea>
#include <QStatusBar>

namespace app {

frmMain::frmMain(AppState& state, QWidget* parent) : QMainWindow(parent), m_state(state) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(QStringLiteral("Delvane"));

  m_mdiArea = new QMdiArea(this);
  m_mdiArea->setObjectName(QStringLiteral("mdiArea"));
  m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setCentralWidget(m_mdiArea);

  QStatusBar* bar = statusBar();
  bar->setObjectName(QStringLiteral("sbStatusBar"));
  for (std::size_t i = 0; i < m_panels.size(); ++i) {
    auto* panel = new QLabel(bar);
    panel->setObjectName(QStringLiteral("sbPanel%1").arg(i + 1));
    panel->setFrameShape(QFrame::StyledPanel);
    panel->setFrameShadow(QFrame::Sunken);
    m_panels[i] = panel;
    // The first panel takes the spare width; the others keep to their text.
    bar->addPermanentWidget(panel, i == 0 ? 1 : 0);
  }
}

frmMain::~frmMain() = default;

void frmMain::setStatusPanel(int panel, const QString& text) {
  if (panel < 1 || panel > static_cast<int>(m_panels.size())) return;
  m_panels[static_cast<std::size_t>(panel - 1)]->setText(text);
}

QString frmMain::statusPanel(int panel) const {
  if (panel < 1 || panel > static_cast<int>(m_panels.size())) return {};
  return m_panels[static_cast<std::size_t>(panel - 1)]->text();
}

}  // namespace app
