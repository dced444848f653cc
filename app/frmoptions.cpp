#include "app/frmoptions.h"

#include "app/appstate.h"
#include "sheets/captiondrag.h"
#include "sheets/cellnumbers.h"

#include <QCheckBox>
#include <QGridLayout>
#include <QGroupBox>
#include <QHBoxLayout>
#include <QLabel>
#include <QLineEdit>
#include <QMouseEvent>
#include <QPushButton>
#include <QRadioButton>
#include <QVBoxLayout>

#include <cmath>
#include <limits>

namespace app {

namespace {

const QString kExitIdle = QStringLiteral("QLabel { background: rgb(255, 255, 255); }");
const QString kExitPressed = QStringLiteral("QLabel { background: rgb(190, 190, 190); }");

QString numberText(std::int16_t value) { return QString::number(value); }

}  // namespace

std::optional<std::int16_t> settingsNumber(const QString& text) {
  // nearbyint rounds in the default mode, to nearest with halves to even.
  const double rounded = std::nearbyint(sheets::leadingNumber(text));
  if (!(rounded >= std::numeric_limits<std::int16_t>::min() &&
        rounded <= std::numeric_limits<std::int16_t>::max()))
    return std::nullopt;
  return static_cast<std::int16_t>(rounded);
}

frmOptions::frmOptions(Settings& settings, std::function<void()> saveSettings, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint),
      m_settings(settings),
      m_saveSettings(std::move(saveSettings)) {
  setObjectName(QStringLiteral("frmOptions"));
  setWindowTitle(QStringLiteral("Options"));
  setStyleSheet(QStringLiteral("QDialog#frmOptions { border: 1px solid gray; }"));

  // Caption bar with its close label.
  m_wnTitle = sheets::newCaptionBar(QStringLiteral(" Options"), sheets::CaptionColours::Navy, this);
  m_wnExit = new QLabel(QStringLiteral(" X "), this);
  m_wnExit->setObjectName(QStringLiteral("wnExit"));
  m_wnExit->setAlignment(Qt::AlignCenter);
  m_wnExit->setStyleSheet(kExitIdle);
  m_wnExit->installEventFilter(this);
  auto* caption = new QHBoxLayout;
  caption->setSpacing(0);
  caption->addWidget(m_wnTitle, 1);
  caption->addWidget(m_wnExit);

  // Tab buttons.
  static const char* const kTabCaptions[] = {"General", "LSection", "XSection", "Quantity", "Data"};
  static const char* const kFrameCaptions[] = {" General ", " L Section ", " X Section ",
                                               "Quantity Calc", "Data"};
  auto* tabBar = new QWidget(this);
  auto* tabLayout = new QHBoxLayout(tabBar);
  tabLayout->setContentsMargins(0, 0, 0, 0);
  auto* frameStack = new QGridLayout;
  for (int i = 0; i < 5; ++i) {
    m_optTabs[i] = new QRadioButton(QString::fromLatin1(kTabCaptions[i]), tabBar);
    m_optTabs[i]->setObjectName(QStringLiteral("optTabs_") + QString::number(i));
    tabLayout->addWidget(m_optTabs[i]);
    connect(m_optTabs[i], &QRadioButton::clicked, this, [this, i] { ShowFrame(i); });
    m_frames[i] = new QGroupBox(QString::fromLatin1(kFrameCaptions[i]), this);
    m_frames[i]->setObjectName(QStringLiteral("Frames_") + QString::number(i));
    m_frames[i]->setMinimumSize(320, 160);
    frameStack->addWidget(m_frames[i], 0, 0);
  }
  tabLayout->addStretch();

  // General.
  {
    QGroupBox* frame = m_frames[0];
    auto* enterKey = new QGroupBox(QStringLiteral("Enter Key Moves"), frame);
    m_optRight = new QRadioButton(QStringLiteral("Right"), enterKey);
    m_optRight->setObjectName(QStringLiteral("optRight"));
    m_optDown = new QRadioButton(QStringLiteral("Down"), enterKey);
    m_optDown->setObjectName(QStringLiteral("optDown"));
    auto* enterLayout = new QHBoxLayout(enterKey);
    enterLayout->addWidget(m_optRight);
    enterLayout->addWidget(m_optDown);
    m_chkAutoSave = new QCheckBox(QStringLiteral("Auto Save Feature"), frame);
    m_chkAutoSave->setObjectName(QStringLiteral("chkAutoSave"));
    m_chkAutoRefreshDWG = new QCheckBox(QStringLiteral("Auto Refresh Drawings"), frame);
    m_chkAutoRefreshDWG->setObjectName(QStringLiteral("chkAutoRefreshDWG"));
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(enterKey);
    layout->addWidget(m_chkAutoSave);
    layout->addWidget(m_chkAutoRefreshDWG);
    layout->addStretch();
    connect(m_chkAutoSave, &QCheckBox::toggled, m_chkAutoRefreshDWG, &QCheckBox::setEnabled);
  }
  // LSection.
  {
    QGroupBox* frame = m_frames[1];
    auto* layout = new QGridLayout(frame);
    layout->addWidget(new QLabel(QStringLiteral("Vertical Scale (M):"), frame), 0, 0);
    m_txtVerticalScale = addNumberBox(QStringLiteral("txtVerticalScale"), *layout, 0);
    layout->addWidget(new QLabel(QStringLiteral("Metres per page :"), frame), 1, 0);
    m_txtMetresPerPage = addNumberBox(QStringLiteral("txtMetresPerPage"), *layout, 1);
    m_optFixedDatum = new QRadioButton(QStringLiteral("Fixed Datum Line (Value) :"), frame);
    m_optFixedDatum->setObjectName(QStringLiteral("optFixedDatum"));
    layout->addWidget(m_optFixedDatum, 2, 0);
    m_txtFixedDatumValue = addNumberBox(QStringLiteral("txtFixedDatumValue"), *layout, 2);
    m_optVariableDatum = new QRadioButton(QStringLiteral("Variable Datum Line"), frame);
    m_optVariableDatum->setObjectName(QStringLiteral("optVariableDatum"));
    layout->addWidget(m_optVariableDatum, 3, 0);
    layout->setRowStretch(4, 1);
  }
  // XSection.
  {
    QGroupBox* frame = m_frames[2];
    auto* layout = new QGridLayout(frame);
    m_chkDisplayQty = new QCheckBox(QStringLiteral("Display quantity on Sheet"), frame);
    m_chkDisplayQty->setObjectName(QStringLiteral("chkDisplayQty"));
    layout->addWidget(m_chkDisplayQty, 0, 0, 1, 3);
    layout->addWidget(new QLabel(QStringLiteral("Minor Scale (units)"), frame), 1, 0);
    m_txtMinorScale = addNumberBox(QStringLiteral("txtMinorScale"), *layout, 1);
    layout->addWidget(new QLabel(QStringLiteral("Branch Scale (units)"), frame), 2, 0);
    m_txtBranchScale = addNumberBox(QStringLiteral("txtBranchScale"), *layout, 2);
    layout->setRowStretch(3, 1);
  }
  // Quantity.
  {
    QGroupBox* frame = m_frames[3];
    m_chkBifurcate = new QCheckBox(QStringLiteral("Display quantity break-up"), frame);
    m_chkBifurcate->setObjectName(QStringLiteral("chkBifurcate"));
    auto* layout = new QVBoxLayout(frame);
    layout->addWidget(m_chkBifurcate);
    layout->addStretch();
  }

  // Buttons.
  m_cmdOK = new QPushButton(QStringLiteral("OK"), this);
  m_cmdOK->setObjectName(QStringLiteral("cmdOK"));
  m_cmdOK->setDefault(true);
  m_cmdCancel = new QPushButton(QStringLiteral("&Cancel"), this);
  m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
  m_cmdApply = new QPushButton(QStringLiteral("&Apply"), this);
  m_cmdApply->setObjectName(QStringLiteral("cmdApply"));
  auto* buttons = new QHBoxLayout;
  buttons->addStretch();
  buttons->addWidget(m_cmdOK);
  buttons->addWidget(m_cmdCancel);
  buttons->addWidget(m_cmdApply);
  connect(m_cmdOK, &QPushButton::clicked, this, &frmOptions::onOk);
  connect(m_cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(m_cmdApply, &QPushButton::clicked, this, [this] { apply(); });

  auto* body = new QVBoxLayout;
  body->setContentsMargins(9, 9, 9, 9);
  body->addWidget(tabBar);
  body->addLayout(frameStack);
  body->addLayout(buttons);
  auto* outer = new QVBoxLayout(this);
  outer->setContentsMargins(1, 1, 1, 1);
  outer->setSpacing(0);
  outer->addLayout(caption);
  outer->addLayout(body);

  m_optTabs[0]->setChecked(true);
  ShowFrame(0);
  fillControls();
}

frmOptions::NumberBox frmOptions::addNumberBox(const QString& name, QGridLayout& layout, int row) {
  QWidget* frame = layout.parentWidget();
  NumberBox box;
  box.edit = new QLineEdit(frame);
  box.edit->setObjectName(name);
  box.edit->setMaximumWidth(90);
  box.problem = new QLabel(QStringLiteral("Enter a number from -32768 to 32767."), frame);
  box.problem->setObjectName(name + QStringLiteral("Problem"));
  box.problem->setStyleSheet(QStringLiteral("QLabel { color: rgb(192, 0, 0); }"));
  // Its whole width is kept, so that the dialog widens rather than cut the message off.
  box.problem->setMinimumWidth(box.problem->sizeHint().width());
  box.problem->setVisible(false);
  layout.addWidget(box.edit, row, 1);
  layout.addWidget(box.problem, row, 2);
  return box;
}

void frmOptions::ShowFrame(int index) {
  if (index < 0 || index > 4) return;
  for (int i = 0; i < 5; ++i) m_frames[i]->setVisible(i == index);
  m_optTabs[index]->setChecked(true);
}

void frmOptions::fillControls() {
  (m_settings.EnterRight ? m_optRight : m_optDown)->setChecked(true);
  m_chkAutoSave->setChecked(m_settings.AutoSave);
  m_chkAutoRefreshDWG->setEnabled(m_settings.AutoSave);
  m_txtVerticalScale.edit->setText(numberText(m_settings.LSectionScale));
  m_txtMetresPerPage.edit->setText(numberText(m_settings.MetersPerPage));
  (m_settings.FixedDatum ? m_optFixedDatum : m_optVariableDatum)->setChecked(true);
  m_txtFixedDatumValue.edit->setText(numberText(m_settings.FixedDatumVal));
  m_chkDisplayQty->setChecked(m_settings.DisplayQtyXSection);
  m_txtMinorScale.edit->setText(numberText(m_settings.MinorScale));
  m_txtBranchScale.edit->setText(numberText(m_settings.BranchScale));
  m_chkBifurcate->setChecked(m_settings.QtyBifurcate);
}

bool frmOptions::apply() {
  // Read every number first, so that a refused box leaves all settings as they were.
  struct Reading {
    NumberBox* box;
    int frame;
    std::optional<std::int16_t> value;
  };
  Reading readings[] = {
      {&m_txtMinorScale, 2, {}},    {&m_txtBranchScale, 2, {}},   {&m_txtFixedDatumValue, 1, {}},
      {&m_txtVerticalScale, 1, {}}, {&m_txtMetresPerPage, 1, {}},
  };
  Reading* firstRefused = nullptr;
  for (Reading& reading : readings) {
    reading.value = settingsNumber(reading.box->edit->text());
    reading.box->problem->setVisible(!reading.value);
    if (!reading.value && !firstRefused) firstRefused = &reading;
  }
  if (firstRefused) {
    ShowFrame(firstRefused->frame);
    firstRefused->box->edit->setFocus();
    firstRefused->box->edit->selectAll();
    return false;
  }

  m_settings.EnterRight = m_optRight->isChecked();
  m_settings.AutoSave = m_chkAutoSave->isChecked();
  m_settings.MinorScale = *readings[0].value;
  m_settings.BranchScale = *readings[1].value;
  m_settings.QtyBifurcate = m_chkBifurcate->isChecked();
  m_settings.DisplayQtyXSection = m_chkDisplayQty->isChecked();
  m_settings.FixedDatum = m_optFixedDatum->isChecked();
  m_settings.FixedDatumVal = *readings[2].value;
  m_settings.LSectionScale = *readings[3].value;
  m_settings.MetersPerPage = *readings[4].value;
  if (m_saveSettings) m_saveSettings();
  // The boxes show what was stored: "12.7" was kept as 13.
  fillControls();
  return true;
}

void frmOptions::onOk() {
  if (apply()) accept();
}

bool frmOptions::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_wnExit) {
    if (event->type() == QEvent::MouseButtonPress) {
      m_wnExit->setStyleSheet(kExitPressed);
      return true;
    }
    if (event->type() == QEvent::MouseButtonRelease) {
      m_wnExit->setStyleSheet(kExitIdle);
      const auto* mouse = static_cast<QMouseEvent*>(event);
      if (m_wnExit->rect().contains(mouse->position().toPoint())) reject();
      return true;
    }
  }
  return QDialog::eventFilter(watched, event);
}

bool showOptions(AppState& state, QWidget* parent, std::function<void()> saveSettings) {
  bool stored = false;
  frmOptions dialog(
      state.settings,
      [&stored, save = std::move(saveSettings)] {
        if (save) save();
        stored = true;
      },
      parent);
  dialog.exec();
  return stored;
}

}  // namespace app
