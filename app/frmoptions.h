#pragma once

#include "app/settings.h"

#include <QDialog>

#include <array>
#include <cstdint>
#include <functional>
#include <optional>

class QAbstractButton;
class QCheckBox;
class QGroupBox;
class QGridLayout;
class QLabel;
class QLineEdit;
class QPushButton;
class QRadioButton;

namespace app {

struct AppState;

// The number a settings box holds: the text's leading number rounded to the nearest 16-bit
// integer, halves to even ("12.5" -> 12, "13.5" -> 14, "abc" -> 0). Nothing when the rounded
// number does not fit in 16 bits.
std::optional<std::int16_t> settingsNumber(const QString& text);

// Shows and edits the user settings on five tabs. Apply and OK store the controls into the
// settings and write them out through the save function; Cancel and the close label discard
// what was not applied. Borderless, with its own draggable caption bar.
class frmOptions : public QDialog {
  Q_OBJECT

 public:
  // settings: the program's settings, changed in place by Apply. saveSettings writes them to
  // the settings store together with the main window's placement.
  frmOptions(Settings& settings, std::function<void()> saveSettings, QWidget* parent = nullptr);

  // Makes frame index (0 to 4) visible and the other four invisible.
  void ShowFrame(int index);
  // Stores the controls and saves; false (nothing stored) when a number box holds a number
  // outside the 16-bit range, which is then pointed out next to the box.
  bool apply();

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  struct NumberBox {
    QLineEdit* edit = nullptr;
    QLabel* problem = nullptr;
  };

  void fillControls();
  // A number box with the message shown beside it on bad input, in columns 1 and 2 of row.
  NumberBox addNumberBox(const QString& name, QGridLayout& layout, int row);
  void onOk();

  Settings& m_settings;
  std::function<void()> m_saveSettings;

  QLabel* m_wnTitle = nullptr;
  QLabel* m_wnExit = nullptr;
  std::array<QRadioButton*, 5> m_optTabs{};
  std::array<QGroupBox*, 5> m_frames{};

  QRadioButton* m_optRight = nullptr;
  QRadioButton* m_optDown = nullptr;
  QCheckBox* m_chkAutoSave = nullptr;
  QCheckBox* m_chkAutoRefreshDWG = nullptr;
  NumberBox m_txtVerticalScale;
  NumberBox m_txtMetresPerPage;
  QRadioButton* m_optFixedDatum = nullptr;
  QRadioButton* m_optVariableDatum = nullptr;
  NumberBox m_txtFixedDatumValue;
  QCheckBox* m_chkDisplayQty = nullptr;
  NumberBox m_txtMinorScale;
  NumberBox m_txtBranchScale;
  QCheckBox* m_chkBifurcate = nullptr;

  QPushButton* m_cmdOK = nullptr;
  QPushButton* m_cmdCancel = nullptr;
  QPushButton* m_cmdApply = nullptr;
};

// Tools > Options...: shows frmOptions modally over the main window. saveSettings writes the
// settings and the main window's placement to the store. True when the settings were stored
// (by Apply or OK) at least once.
bool showOptions(AppState& state, QWidget* parent, std::function<void()> saveSettings);

}  // namespace app
