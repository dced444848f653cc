#include "app/frmoptions.h"
#include "app/settings.h"
#include "tests/app/appfixture.h"
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

// The dialog shown on default settings, counting how often it asks to save them.
struct Options {
  Options() { dialog.show(); }
  void type(const char* box, const char* text) {
    child<QLineEdit>(dialog, box)->setText(QString::fromLatin1(text));
  }
  void press(const char* button) { child<QPushButton>(dialog, button)->click(); }
  app::Settings settings;
  int saves = 0;
  app::frmOptions dialog{settings, [this] { ++saves; }};
};

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
  child<QLineEdit>(dialog, "txtVerticalScale")->setText(QStringLiteral("12.5"));  // to 12
  child<QLineEdit>(dialog, "txtMetresPerPage")->setText(QStringLiteral("13.5"));  // to 14
  child<QRadioButton>(dialog, "optFixedDatum")->click();
  child<QLineEdit>(dialog, "txtFixedDatumValue")->setText(QStringLiteral("-40"));
  child<QCheckBox>(dialog, "chkDisplayQty")->click();
  child<QLineEdit>(dialog, "txtMinorScale")->setText(QStringLiteral("x"));
  child<QLineEdit>(dialog, "txtBranchScale")->setText(QStringLiteral("0"));
  child<QCheckBox>(dialog, "chkBifurcate")->click();
  child<QPushButton>(dialog, "cmdOK")->click();

  QCOMPARE(saves, 1);
  QCOMPARE(dialog.result(), int(QDialog::Accepted));

  // Placement, auto-save, enter right, max readings, minor, branch, bifurcate, display quantities,
  // fixed datum and its value, vertical scale, metres per page.
  app::Settings reread;
  app::LoadSettings(*store.open(), reread);
  QCOMPARE(apptest::describe(reread),
           QStringLiteral("1000 1000 6500 6500 0 1 15 0 0 0 0 1 -40 12 14"));
}

void TestFrmOptions::numberOutsideSixteenBitsIsRefusedAndNothingStored() {
  Options o;
  const QString defaults = apptest::describe(o.settings);
  child<QRadioButton>(o.dialog, "optRight")->click();
  o.type("txtVerticalScale", "55");
  o.type("txtBranchScale", "40000");
  o.press("cmdOK");

  QCOMPARE(o.saves, 0);
  QVERIFY(o.dialog.isVisible());
  QCOMPARE(apptest::describe(o.settings), defaults);
  // The refusal is shown next to the box, on its tab.
  QVERIFY(child<QLabel>(o.dialog, "txtBranchScaleProblem")->isVisible());
  QVERIFY(!child<QLabel>(o.dialog, "txtVerticalScaleProblem")->isVisible());
  QVERIFY(child<QRadioButton>(o.dialog, "optTabs_2")->isChecked());

  // Corrected, the same press stores and closes.
  o.type("txtBranchScale", "-32768");
  o.press("cmdOK");
  QCOMPARE(o.saves, 1);
  QVERIFY(!o.dialog.isVisible());
  QCOMPARE(int(o.settings.BranchScale), -32768);
  QCOMPARE(int(o.settings.LSectionScale), 55);
}

void TestFrmOptions::cancelAfterApplyKeepsWhatApplyStored() {
  Options o;
  o.type("txtMinorScale", "21");
  o.press("cmdApply");
  QVERIFY(o.dialog.isVisible());
  o.type("txtMinorScale", "99");
  o.press("cmdCancel");
  QCOMPARE(o.saves, 1);
  QVERIFY(!o.dialog.isVisible());
  QCOMPARE(int(o.settings.MinorScale), 21);
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
