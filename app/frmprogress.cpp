#include "app/frmprogress.h"

#include "sheets/captiondrag.h"

#include <QFrame>
#include <QGuiApplication>
#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QPushButton>
#include <QScreen>
#include <QVBoxLayout>

namespace app {

frmProgress::frmProgress(QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
  setObjectName(QStringLiteral("frmProgress"));
  setAttribute(Qt::WA_QuitOnClose, false);

  QFrame* frame = sheets::addBoxFrame(this);
  m_wnTitle =
      sheets::newCaptionBar(QStringLiteral("  Progress"), sheets::CaptionColours::Highlight, frame);

  m_progressName = new QLabel(QStringLiteral("Task Progress"), frame);
  m_progressName->setObjectName(QStringLiteral("progressName"));

  m_progressBar1 = new QProgressBar(frame);
  m_progressBar1->setObjectName(QStringLiteral("ProgressBar1"));
  m_progressBar1->setRange(0, 100);
  m_progressBar1->setValue(0);

  m_cmdCancel = new QPushButton(QStringLiteral("Cancel"), frame);
  m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
  m_cmdCancel->setVisible(false);
  connect(m_cmdCancel, &QPushButton::clicked, this, [this] {
    m_cancelRequested = true;
    m_cmdCancel->setEnabled(false);
  });

  auto* layout = new QVBoxLayout(frame);
  layout->setContentsMargins(1, 1, 1, 8);
  layout->addWidget(m_wnTitle);
  auto* body = new QVBoxLayout;
  body->setContentsMargins(10, 6, 10, 0);
  body->addWidget(m_progressName);
  auto* barRow = new QHBoxLayout;
  barRow->addWidget(m_progressBar1, 1);
  barRow->addWidget(m_cmdCancel);
  body->addLayout(barRow);
  layout->addLayout(body);

  setFixedSize(380, 100);
}

void frmProgress::SetProperties(const QString& caption, int maximum, bool showBar) {
  m_progressName->setText(caption);
  if (maximum > 0) m_progressBar1->setMaximum(maximum);
  m_progressBar1->setVisible(showBar);
}

void frmProgress::UpdateValue(int value) {
  if (value < m_progressBar1->minimum() || value > m_progressBar1->maximum()) return;
  m_progressBar1->setValue(value);
}

void frmProgress::setCancelVisible(bool visible) { m_cmdCancel->setVisible(visible); }

void frmProgress::clearCancel() {
  m_cancelRequested = false;
  m_cmdCancel->setEnabled(true);
}

void frmProgress::resizeEvent(QResizeEvent* event) {
  QWidget::resizeEvent(event);
  centreOnScreen();
}

void frmProgress::centreOnScreen() {
  const QScreen* screen = this->screen();
  if (!screen) screen = QGuiApplication::primaryScreen();
  if (!screen) return;
  const QRect area = screen->geometry();
  move(area.left() + area.width() / 2 - width() / 2, area.top() + area.height() / 2 - height() / 2);
}

}  // namespace app
