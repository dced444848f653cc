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

template <typename T>
T* child(QWidget& dialog, const char* name) {
  T* widget = dialog.findChild<T*>(QString::fromLatin1(name));
  if (!widget) qFatal("no child %s", name);
  return widget;
}

// The dialog shown on the given settings; each save writes them to a store of its own temporary
// folder, so no test touches the user's.
struct Options {
  explicit Options(app::Settings initial = {}) : settings(initial) { dialog.show(); }
  QString text(const char* box) { return child<QLineEdit>(dialog, box)->text(); }
  void type(const char* box, const char* text) {
    child<QLineEdit>(dialog, box)->setText(QString::fromLatin1(text));
  }
  void click(const char* button) { child<QAbstractButton>(dialog, button)->click(); }
  std::unique_ptr<QSettings> store() const {
    return std::make_unique<QSettings>(dir.filePath(QStringLiteral("settings.ini")),
                                       QSettings::IniFormat);
  }
  QTemporaryDir dir;
  app::Settings settings;
  int saves = 0;
  app::frmOptions dialog{settings, [this] {
                           ++saves;
                           app::SaveSettings(*store(), settings);
                         }};
};

}  // namespace

class TestFrmOptions : public QObject {
  Q_OBJECT

 private slots:
  void settingsNumberRoundsHalvesToEven();
  void okStoresEveryControlAndSavesThem();
  void numberOutsideSixteenBitsIsRefusedAndNothingStored();
  void cancelAfterApplyKeepsWhatApplyStored();
  void autoRefreshFollowsAutoSaveAndTabsShowOneFrame();
};

void TestFrmOptions::settingsNumberRoundsHalvesToEven() {
  // Halves to even, the leading number or 0, and refusal outside 16 bits or with an exponent.
  for (const auto& [text, expected] : {std::pair{"12.5", "12"},
                                       {"13.5", "14"},
                                       {"-2.5", "-2"},
                                       {"abc", "0"},
                                       {" 250 m", "250"},
                                       {"32767.4", "32767"},
                                       {"-32768.5", "-32768"},
                                       {"32767.5", "refused"},
                                       {"-32769", "refused"},
                                       {"1e5", "refused"}}) {
    const std::optional<std::int16_t> number = app::settingsNumber(QString::fromLatin1(text));
    QCOMPARE(number ? QString::number(*number) : QStringLiteral("refused"),
             QLatin1String(expected));
  }
}

void TestFrmOptions::okStoresEveryControlAndSavesThem() {
  Options o(app::Settings{.MinorScale = 33, .FixedDatumVal = -7});
  // The controls show the settings.
  QCOMPARE(o.text("txtMinorScale") + o.text("txtFixedDatumValue"), QStringLiteral("33-7"));
  QVERIFY(child<QCheckBox>(o.dialog, "chkAutoSave")->isChecked());
  for (const char* button :
       {"optRight", "chkAutoSave", "optFixedDatum", "chkDisplayQty", "chkBifurcate"})
    o.click(button);
  o.type("txtVerticalScale", "12.5");  // to 12
  o.type("txtMetresPerPage", "13.5");  // to 14
  o.type("txtFixedDatumValue", "-40");
  o.type("txtMinorScale", "x");  // no number: 0
  o.type("txtBranchScale", "0");
  o.click("cmdOK");
  QCOMPARE(o.saves, 1);
  QCOMPARE(o.dialog.result(), int(QDialog::Accepted));

  // Placement, auto-save, enter right, max readings, minor, branch, bifurcate, display quantities,
  // fixed datum and its value, vertical scale, metres per page.
  app::Settings reread;
  app::LoadSettings(*o.store(), reread);
  QCOMPARE(apptest::describe(reread),
           QStringLiteral("1000 1000 6500 6500 0 1 15 0 0 0 0 1 -40 12 14"));
}

void TestFrmOptions::numberOutsideSixteenBitsIsRefusedAndNothingStored() {
  Options o;
  const QString defaults = apptest::describe(o.settings);
  o.click("optRight");
  o.type("txtVerticalScale", "55");
  o.type("txtBranchScale", "40000");
  o.click("cmdOK");

  QCOMPARE(o.saves, 0);
  QVERIFY(o.dialog.isVisible());
  QCOMPARE(apptest::describe(o.settings), defaults);
  // The refusal is shown next to the box, on its tab.
  QVERIFY(child<QLabel>(o.dialog, "txtBranchScaleProblem")->isVisible());
  QVERIFY(!child<QLabel>(o.dialog, "txtVerticalScaleProblem")->isVisible());
  QVERIFY(child<QRadioButton>(o.dialog, "optTabs_2")->isChecked());

  // Corrected, the same press stores and closes.
  o.type("txtBranchScale", "-32768");
  o.click("cmdOK");
  QCOMPARE(o.saves, 1);
  QVERIFY(!o.dialog.isVisible());
  QCOMPARE(int(o.settings.BranchScale), -32768);
  QCOMPARE(int(o.settings.LSectionScale), 55);
}

void TestFrmOptions::cancelAfterApplyKeepsWhatApplyStored() {
  Options o;
  o.type("txtMinorScale", "21");
  o.click("cmdApply");
  QVERIFY(o.dialog.isVisible());
  o.type("txtMinorScale", "99");
  o.click("cmdCancel");
  QCOMPARE(o.saves, 1);
  QVERIFY(!o.dialog.isVisible());
  QCOMPARE(int(o.settings.MinorScale), 21);
}

void TestFrmOptions::autoRefreshFollowsAutoSaveAndTabsShowOneFrame() {
  Options o(app::Settings{.AutoSave = false});
  app::frmOptions& dialog = o.dialog;
  auto* autoRefresh = child<QCheckBox>(dialog, "chkAutoRefreshDWG");
  for (bool enabled : {false, true, false}) {
    QCOMPARE(autoRefresh->isEnabled(), enabled);
    o.click("chkAutoSave");
  }

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
