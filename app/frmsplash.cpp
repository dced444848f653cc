#include "app/frmsplash.h"

#include <QFont>
#include <QKeyEvent>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>

namespace app {

frmSplash::frmSplash(QWidget* parent) : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint) {
  setObjectName(QStringLiteral("frmSplash"));
  setWindowTitle(QStringLiteral("About Delvane"));

  auto* product = new QLabel(QStringLiteral("Delvane"), this);
  QFont big = product->font();
  big.setPointSizeF(big.pointSizeF() * 2);
  big.setBold(true);
  product->setFont(big);
  product->setAlignment(Qt::AlignCenter);

  m_lblVersion = new QLabel(QStringLiteral("Version ") + QLatin1String(DELVANE_VERSION), this);
  m_lblVersion->setObjectName(QStringLiteral("lblVersion"));
  m_lblVersion->setAlignment(Qt::AlignCenter);

  m_lblNotice = new QLabel(
      QStringLiteral("Earthwork design for canals and roads: design sections, cross-sections and "
                     "cut and fill quantities.\n\nClick or press any key to close."),
      this);
  m_lblNotice->setObjectName(QStringLiteral("lblNotice"));
  m_lblNotice->setAlignment(Qt::AlignCenter);
  m_lblNotice->setWordWrap(true);

  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(24, 24, 24, 24);
  layout->addWidget(product);
  layout->addWidget(m_lblVersion);
  layout->addSpacing(12);
  layout->addWidget(m_lblNotice);
  setFixedSize(360, 220);
}

void frmSplash::mousePressEvent(QMouseEvent* event) {
  event->accept();
  accept();
}

void frmSplash::keyPressEvent(QKeyEvent* event) {
  event->accept();
  accept();
}

}  // namespace app
