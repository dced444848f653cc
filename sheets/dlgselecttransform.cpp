#include "sheets/dlgselecttransform.h"

#include "sheets/captiondrag.h"
#include "sheets/cellnumbers.h"

#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QVBoxLayout>

namespace sheets {

dlgSelectTransform::dlgSelectTransform(QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint) {
  setObjectName(QStringLiteral("dlgSelectTransform"));
  setWindowTitle(QStringLiteral("Transform Value"));

  m_wnTitle = newCaptionBar(QStringLiteral("Transform Value"), CaptionColours::Navy, this);

  auto* label1 = new QLabel(QStringLiteral("Transformation : "), this);
  label1->setObjectName(QStringLiteral("Label1"));
  m_cmbTransformation = new QComboBox(this);
  m_cmbTransformation->setObjectName(QStringLiteral("cmbTransformation"));
  // The list position is the operation number.
  m_cmbTransformation->addItems({QStringLiteral("Set"), QStringLiteral("Add"),
                                 QStringLiteral("Subtract"), QStringLiteral("Multiply")});
  m_cmbTransformation->setCurrentIndex(-1);

  auto* label2 = new QLabel(QStringLiteral("Value : "), this);
  label2->setObjectName(QStringLiteral("Label2"));
  m_txtValue = new QLineEdit(this);
  m_txtValue->setObjectName(QStringLiteral("txtValue"));

  m_okButton = new QPushButton(QStringLiteral("OK"), this);
  m_okButton->setObjectName(QStringLiteral("OKButton"));
  m_okButton->setEnabled(false);
  m_okButton->setDefault(true);
  m_cancelButton = new QPushButton(QStringLiteral("Cancel"), this);
  m_cancelButton->setObjectName(QStringLiteral("CancelButton"));

  auto* fields = new QGridLayout;
  fields->addWidget(label1, 0, 0);
  fields->addWidget(m_cmbTransformation, 0, 1);
  fields->addWidget(label2, 1, 0);
  fields->addWidget(m_txtValue, 1, 1);
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(m_okButton);
  buttons->addWidget(m_cancelButton);
  auto* body = new QVBoxLayout;
  body->setContentsMargins(9, 9, 9, 9);
  body->addLayout(fields);
  body->addLayout(buttons);
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(1, 1, 1, 1);
  outer->setSpacing(0);
  outer->addWidget(m_wnTitle);
  outer->addLayout(body);
  setStyleSheet(QStringLiteral("QDialog#dlgSelectTransform { border: 1px solid gray; }"));

  connect(m_cmbTransformation, &QComboBox::currentIndexChanged, this,
          [this](int index) { m_okButton->setEnabled(index >= 0); });
  connect(m_okButton, &QPushButton::clicked, this, &dlgSelectTransform::onOk);
  connect(m_cancelButton, &QPushButton::clicked, this, &dlgSelectTransform::onCancel);
}

void dlgSelectTransform::onOk() {
  m_request.operation = static_cast<std::int16_t>(m_cmbTransformation->currentIndex());
  m_request.value = static_cast<float>(leadingNumber(m_txtValue->text()));
  accept();
}

void dlgSelectTransform::onCancel() {
  m_request = TransformRequest{};
  reject();
}

TransformRequest askTransform(QWidget* parent) {
  dlgSelectTransform dialog(parent);
  dialog.exec();
  return dialog.request();
}

}  // namespace sheets
