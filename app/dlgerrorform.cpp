#include "app/dlgerrorform.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QStyle>
#include <QVBoxLayout>

namespace app {

dlgErrorForm::dlgErrorForm(QWidget* parent) : QDialog(parent) {
  setObjectName(QStringLiteral("dlgErrorForm"));
  setWindowTitle(QStringLiteral("Errors encountered"));
  setAttribute(Qt::WA_DeleteOnClose);
  setAttribute(Qt::WA_QuitOnClose, false);
  setModal(false);

  m_image1 = new QLabel(this);
  m_image1->setObjectName(QStringLiteral("Image1"));
  m_image1->setPixmap(style()->standardIcon(QStyle::SP_MessageBoxWarning).pixmap(32, 32));
  m_image1->setAlignment(Qt::AlignTop | Qt::AlignHCenter);

  m_errText = new QPlainTextEdit(this);
  m_errText->setObjectName(QStringLiteral("ErrText"));
  m_errText->setReadOnly(true);
  m_errText->setLineWrapMode(QPlainTextEdit::NoWrap);

  m_cmdClose = new QPushButton(QStringLiteral("Close"), this);
  m_cmdClose->setObjectName(QStringLiteral("cmdClose"));
  m_cmdClose->setDefault(true);
  connect(m_cmdClose, &QPushButton::clicked, this, &QDialog::close);

  auto* top = new QHBoxLayout;
  top->addWidget(m_image1);
  top->addWidget(m_errText, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch(1);
  buttons->addWidget(m_cmdClose);
  auto* layout = new QVBoxLayout(this);
  layout->addLayout(top, 1);
  layout->addLayout(buttons);

  resize(520, 300);
}

void dlgErrorForm::DisplayMessage(const QString& message) {
  if (m_text.isEmpty()) {
    m_text = message;
    m_errText->setPlainText(message);
  } else {
    m_text += QStringLiteral("\r\n") + message;
    m_errText->appendPlainText(message);
  }
}

}  // namespace app
