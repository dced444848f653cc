#include "app/frmoptions.h"
#include "app/settings.h"
#include "tests/qtestmain.h"

#include <QCheckBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QRadioButton>
#include <QSettings>
#include <QTemporaryDir>
#include <QTest>

#include <memory>

namespace {

// A settings store in a file of its own temporary folder, so no test touches the user's.
struct TempStore {
  QTemporaryDir dir;
  QString file() const { return dir.filePath(QStringLiteral("settings.ini")); }
  std::unique_ptr<QSettings> open() const {
    return std::make_unique<QSettings>(file(), QSettings::IniFormat);
  }
};

template <typename T>
T* child(QWidget& dialog, const char* name) {
  T* widget = dialog.findChild<T*>(QString::fromLatin1(name));
  if (!widget) qFatal("no child %s", name);
  return widget;
}

}  // namespace

class TestFrmOptions : public QObject {
  Q_OBJECT

 private slots:
  void settingsNumberRoundsHalvesToEven_data();
  void settingsNumberRoundsHalvesToEven();
  void okStoresEveryControlAndSavesThem();
  void numberOutsideSixteenBitsIsRefusedAndNothingStored();
  void cancelAfterApplyKeepsWhatApplyStored();
  void autoRefreshFollowsAutoSaveAndTabsShowOneFrame();
};

void TestFrmOptions::settingsNumberRoundsHalvesToEven_data() {
  QTest::addColumn<QString>("text");
  QTest::addColumn<bool>("fits");
  QTest::addColumn<int>("expected");
  QTest::newRow("12.5 rounds down to even") << "12.5" << true << 12;
  QTest::newRow("13.5 rounds up to even") << "13.5" << true << 14;
  QTest::newRow("-2.5 rounds to even") << "-2.5" << true << -2;
  QTest::newRow("no leading number") << "abc" << true << 0;
  QTest::newRow("number then text") << " 250 m" << true << 250;
  QTest::newRow("largest") << "32767.4" << true << 32767;
  QTest::newRow("smallest") << "-32768.5" << true << -32768;
  QTest::newRow("just too large") << "32767.5" << false << 0;
  QTest::newRow("too small") << "-32769" << false << 0;
  QTest::newRow("exponent") << "1e5" << false << 0;
}

void TestFrmOptions::settingsNumberRoundsHalvesToEven() {
  QFETCH(QString, text);
  QFETCH(bool, fits);
  QFETCH(int, expected);
  const std::optional<std::int16_t> number = app::settingsNumber(text);
  QCOMPARE(number.has_value(), fits);
  if (fits) QCOMPARE(int(*number), expected);
}

void TestFrmOptions::okStoresEveryControlAndSavesThem() {
  TempStore store;
  app::Settings settings;
  settings.MinorScale = 33;
  settings.FixedDatumVal = -7;
  int saves = 0;
  app::frmOptions dialog(settings, [&] {
    ++saves;
    app::SaveSettings(*store.open(), settings);
  });
  dialog.show();
  // The controls show the settings.
  QCOMPARE(child<QLineEdit>(dialog, "txtMinorScale")->text(), QStringLiteral("33"));
  QCOMPARE(child<QLineEdit>(dialog, "txtFixedDatumValue")->text(), QStringLiteral("-7"));
  QVERIFY(child<QCheckBox>(dialog, "chkAutoSave")->isChecked());

  child<QRadioButton>(dialog, "optRight")->click();
  child<QCheckBox>(dialog, "chkAutoSave")->click();
  child<QLineEdit>(dialog, "txtVerticalScale")->setText(QStringLiteral("12.5"));
  child<QLineEdit>(dialog, "txtMetresPerPage")->setText(QStringLiteral("13.5"));
  child<QRadioButton>(dialog, "optFixedDatum")->click();
  child<QLineEdit>(dialog, "txtFixedDatumValue")->setText(QStringLiteral("-40"));
  child<QCheckBox>(dialog, "chkDisplayQty")->click();
  child<QLineEdit>(dialog, "txtMinorScale")->setText(QStringLiteral("x"));
  child<QLineEdit>(dialog, "txtBranchScale")->setText(QStringLiteral("0"));
  child<QCheckBox>(dialog, "chkBifurcate")->click();
  child<QPushButton>(dialog, "cmdOK")->click();

  QCOMPARE(saves, 1);
  QCOMPARE(dialog.result(), int(QDialog::Accepted));

  app::Settings reread;
  app::LoadSettings(*store.open(), reread);
  QCOMPARE(reread.EnterRight, true);
  QCOMPARE(reread.AutoSave, false);
  QCOMPARE(int(reread.LSectionScale), 12);
  QCOMPARE(int(reread.MetersPerPage), 14);
  QCOMPARE(reread.FixedDatum, true);
  QCOMPARE(int(reread.FixedDatumVal), -40);
  QCOMPARE(reread.DisplayQtyXSection, false);
  QCOMPARE(int(reread.MinorScale), 0);
  QCOMPARE(int(reread.BranchScale), 0);
  QCOMPARE(reread.QtyBifurcate, false);
  QCOMPARE(int(reread.MaxReadings), 15);
}

void TestFrmOptions::numberOutsideSixteenBitsIsRefusedAndNothingStored() {
  app::Settings settings;
  int saves = 0;
  app::frmOptions dialog(settings, [&] { ++saves; });
  dialog.show();

  child<QRadioButton>(dialog, "optRight")->click();
  child<QLineEdit>(dialog, "txtVerticalScale")->setText(QStringLiteral("55"));
  child<QLineEdit>(dialog, "txtBranchScale")->setText(QStringLiteral("40000"));
  child<QPushButton>(dialog, "cmdOK")->click();

  QCOMPARE(saves, 0);
  QVERIFY(dialog.isVisible());
  QCOMPARE(settings.EnterRight, false);
  QCOMPARE(int(settings.LSectionScale), 100);
  QCOMPARE(int(settings.BranchScale), 8);
  // The refusal is shown next to the box, on its tab.
  QVERIFY(child<QLabel>(dialog, "txtBranchScaleProblem")->isVisible());
  QVERIFY(!child<QLabel>(dialog, "txtVerticalScaleProblem")->isVisible());
  QVERIFY(child<QRadioButton>(dialog, "optTabs_2")->isChecked());

  // Corrected, the same press stores and closes.
  child<QLineEdit>(dialog, "txtBranchScale")->setText(QStringLiteral("-32768"));
  child<QPushButton>(dialog, "cmdOK")->click();
  QCOMPARE(saves, 1);
  QVERIFY(!dialog.isVisible());
  QCOMPARE(int(settings.BranchScale), -32768);
  QCOMPARE(int(settings.LSectionScale), 55);
}

void TestFrmOptions::cancelAfterApplyKeepsWhatApplyStored() {
  app::Settings settings;
  int saves = 0;
  app::frmOptions dialog(settings, [&] { ++saves; });
  dialog.show();

  child<QLineEdit>(dialog, "txtMinorScale")->setText(QStringLiteral("21"));
  child<QPushButton>(dialog, "cmdApply")->click();
  QVERIFY(dialog.isVisible());
  child<QLineEdit>(dialog, "txtMinorScale")->setText(QStringLiteral("99"));
  child<QPushButton>(dialog, "cmdCancel")->click();

  QCOMPARE(saves, 1);
  QVERIFY(!dialog.isVisible());
  QCOMPARE(int(settings.MinorScale), 21);
}

void TestFrmOptions::autoRefreshFollowsAutoSaveAndTabsShowOneFrame() {
  app::Settings settings;
  settings.AutoSave = false;
  app::frmOptions dialog(settings, {});
  dialog.show();
  auto* autoSave = child<QCheckBox>(dialog, "chkAutoSave");
  auto* autoRefresh = child<QCheckBox>(dialog, "chkAutoRefreshDWG");
  QVERIFY(!autoRefresh->isEnabled());
  autoSave->click();
  QVERIFY(autoRefresh->isEnabled());
  autoSave->click();
  QVERIFY(!autoRefresh->isEnabled());

  QVERIFY(child<QRadioButton>(dialog, "optTabs_0")->isChecked());
  for (int tab = 0; tab < 5; ++tab) {
    child<QRadioButton>(dialog, qPrintable(QStringLiteral("optTabs_%1").arg(tab)))->click();
    for (int frame = 0; frame < 5; ++frame)
      QCOMPARE(dialog.findChild<QWidget*>(QStringLiteral("Frames_%1").arg(frame))->isVisible(),
               frame == tab);
  }
}

DELVANE_QTEST(TestFrmOptions)
#include "test_frmoptions.moc"
