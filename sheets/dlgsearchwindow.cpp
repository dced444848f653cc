#include "sheets/dlgsearchwindow.h"

#include "sheets/captiondrag.h"

#include <QCloseEvent>
#include <QComboBox>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QToolButton>
#include <QVBoxLayout>

namespace sheets {

namespace {

const QString kLike = QStringLiteral("LIKE");

}  // namespace

dlgSearchWindow::dlgSearchWindow(QWidget* parent)
    : QWidget(parent, Qt::Tool | Qt::FramelessWindowHint | Qt::WindowStaysOnTopHint) {
  setObjectName(QStringLiteral("dlgSearchWindow"));
  setWindowTitle(QStringLiteral("  Filter / Search"));
  setAttribute(Qt::WA_DeleteOnClose, false);

  // Borderless: its own caption bar drags it, and a close button ends it.
  QFrame* box = addBoxFrame(this);
  m_wnTitle = newCaptionBar(windowTitle(), CaptionColours::Highlight, box);
  auto* close = new QToolButton(box);
  close->setObjectName(QStringLiteral("cmdCloseFilter"));
  close->setText(QStringLiteral("X"));
  close->setToolTip(QStringLiteral("Close the filter window"));
  close->setAutoRaise(true);
  connect(close, &QToolButton::clicked, this, &QWidget::close);

  auto* fieldLabel = new QLabel(QStringLiteral("Field"), this);
  auto* conditionLabel = new QLabel(QStringLiteral("Condition"), this);
  auto* valueLabel = new QLabel(QStringLiteral("Value"), this);

  m_cmbField = new QComboBox(this);
  m_cmbField->setObjectName(QStringLiteral("cmbField"));
  m_cmbField->setEditable(true);  // a field typed by hand is used as typed
  m_cmbField->setInsertPolicy(QComboBox::NoInsert);

  m_cmbCondition = new QComboBox(this);
  m_cmbCondition->setObjectName(QStringLiteral("cmbCondition"));
  m_cmbCondition->addItems({QStringLiteral("="), QStringLiteral("<>"), QStringLiteral("<"),
                            QStringLiteral(">"), QStringLiteral("<="), QStringLiteral(">="),
                            kLike});
  m_cmbCondition->setCurrentIndex(-1);

  m_txtValue = new QLineEdit(this);
  m_txtValue->setObjectName(QStringLiteral("txtValue"));

  auto makeButton = [this](const QString& name, const QString& caption) {
    auto* button = new QPushButton(caption, this);
    button->setObjectName(name);
    return button;
  };
  m_cmdAND = makeButton(QStringLiteral("cmdAND"), QStringLiteral("&AND"));
  m_cmdOR = makeButton(QStringLiteral("cmdOR"), QStringLiteral("&OR"));
  m_cmdExecute = makeButton(QStringLiteral("cmdExecute"), QStringLiteral("&Done"));
  m_cmdClear = makeButton(QStringLiteral("cmdClear"), QStringLiteral("&Clear"));
  m_cmdAND->setEnabled(false);
  m_cmdOR->setEnabled(false);
  m_cmdExecute->setEnabled(false);

  m_lblSearchText = new QLabel(this);
  m_lblSearchText->setObjectName(QStringLiteral("lblSearchText"));
  m_lblSearchText->setTextFormat(Qt::PlainText);
  m_lblSearchText->setWordWrap(true);
  m_lblSearchText->setFrameShape(QFrame::Panel);
  m_lblSearchText->setFrameShadow(QFrame::Sunken);
  m_lblSearchText->setMinimumHeight(40);
  m_lblSearchText->setAlignment(Qt::AlignLeft | Qt::AlignTop);

  auto* terms = new QGridLayout;
  terms->addWidget(fieldLabel, 0, 0);
  terms->addWidget(conditionLabel, 0, 1);
  terms->addWidget(valueLabel, 0, 2);
  terms->addWidget(m_cmbField, 1, 0);
  terms->addWidget(m_cmbCondition, 1, 1);
  terms->addWidget(m_txtValue, 1, 2);
  terms->setColumnStretch(0, 2);
  terms->setColumnStretch(2, 2);
  auto* buttons = new QHBoxLayout;
  buttons->addWidget(m_cmdAND);
  buttons->addWidget(m_cmdOR);
  buttons->addWidget(m_cmdExecute);
  buttons->addStretch();
  buttons->addWidget(m_cmdClear);
  auto* caption = new QHBoxLayout;
  caption->setSpacing(0);
  caption->addWidget(m_wnTitle, 1);
  caption->addWidget(close);
  auto* content = new QVBoxLayout;
  content->setContentsMargins(6, 4, 6, 6);
  content->addLayout(terms);
  content->addLayout(buttons);
  content->addWidget(m_lblSearchText);
  auto* layout = new QVBoxLayout(box);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  layout->addLayout(caption);
  layout->addLayout(content);

  connect(m_cmbField, &QComboBox::editTextChanged, this, &dlgSearchWindow::updateEnabling);
  connect(m_cmbField, &QComboBox::currentIndexChanged, this, &dlgSearchWindow::updateEnabling);
  connect(m_cmbCondition, &QComboBox::currentIndexChanged, this, &dlgSearchWindow::updateEnabling);
  connect(m_txtValue, &QLineEdit::textChanged, this, &dlgSearchWindow::updateEnabling);
  connect(m_cmdAND, &QPushButton::clicked, this, [this] { appendTerm(Join::And); });
  connect(m_cmdOR, &QPushButton::clicked, this, [this] { appendTerm(Join::Or); });
  connect(m_cmdExecute, &QPushButton::clicked, this, [this] { appendTerm(Join::Done); });
  connect(m_cmdClear, &QPushButton::clicked, this, &dlgSearchWindow::clearFilter);
}

void dlgSearchWindow::setFields(const QStringList& headers) {
  const QString typed = m_cmbField->currentText();
  m_cmbField->clear();
  m_cmbField->addItems(headers);
  m_cmbField->setCurrentIndex(-1);
  m_cmbField->setEditText(typed);
}

QString dlgSearchWindow::searchText() const { return m_lblSearchText->text(); }

QString dlgSearchWindow::filterTerm(const QString& field, const QString& condition,
                                    const QString& value) {
  const QString wildcard = condition == kLike ? QStringLiteral("%") : QString();
  QString quoted = value;
  quoted.replace(QLatin1Char('\''), QStringLiteral("''"));
  return QLatin1Char('[') + field + QStringLiteral("] ") + condition + QStringLiteral(" '") +
         wildcard + quoted + wildcard + QLatin1Char('\'');
}

void dlgSearchWindow::updateEnabling() {
  const bool conditionChosen = m_cmbCondition->currentIndex() >= 0;
  const bool likeWithoutValue =
      m_cmbCondition->currentText() == kLike && m_txtValue->text().trimmed().isEmpty();
  const bool enabled = conditionChosen && !m_cmbField->currentText().isEmpty() && !likeWithoutValue;
  m_cmdExecute->setEnabled(enabled);
  m_cmdAND->setEnabled(enabled);
  m_cmdOR->setEnabled(enabled);
}

void dlgSearchWindow::appendTerm(Join join) {
  QString text =
      m_lblSearchText->text() +
      filterTerm(m_cmbField->currentText(), m_cmbCondition->currentText(), m_txtValue->text());
  if (join == Join::And) text += QStringLiteral(" AND ");
  if (join == Join::Or) text += QStringLiteral(" OR ");
  m_lblSearchText->setText(text);
  if (join == Join::Done && m_filterData) m_filterData(text);

  m_cmbField->setCurrentIndex(-1);
  m_cmbField->setEditText(QString());
  m_cmbCondition->setCurrentIndex(-1);
  m_txtValue->clear();
  m_cmbField->setFocus();
  updateEnabling();
}

void dlgSearchWindow::clearFilter() {
  m_lblSearchText->clear();
  if (m_filterData) m_filterData(QString());
}

void dlgSearchWindow::closeEvent(QCloseEvent* event) {
  QWidget::closeEvent(event);
  if (event->isAccepted() && m_closed) m_closed();
}

}  // namespace sheets
