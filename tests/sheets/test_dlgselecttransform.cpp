#include "tests/qtestmain.h"

#include "sheets/cellnumbers.h"
#include "sheets/dlgselecttransform.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <cmath>

using sheets::dlgSelectTransform;
using sheets::TransformRequest;

class TestTransformDialog : public QObject {
  Q_OBJECT

 private slots:
  void okIsEnabledOnlyOnceAnOperationIsChosen();
  void okHandsOverOperationAndLeadingNumber_data();
  void okHandsOverOperationAndLeadingNumber();
  void cancelGivesMinusOne();
  void leadingNumberReadsTheStartOfTheText_data();
  void leadingNumberReadsTheStartOfTheText();
  void generalTextKeepsFifteenDigits_data();
  void generalTextKeepsFifteenDigits();
};

void TestTransformDialog::okIsEnabledOnlyOnceAnOperationIsChosen() {
  dlgSelectTransform dialog;
  dialog.show();
  auto* list = dialog.findChild<QComboBox*>(QStringLiteral("cmbTransformation"));
  auto* ok = dialog.findChild<QPushButton*>(QStringLiteral("OKButton"));
  QCOMPARE(dialog.findChild<QLabel*>(QStringLiteral("wnTitle"))->text(),
           QStringLiteral("Transform Value"));
  QStringList items;
  for (int i = 0; i < list->count(); ++i) items << list->itemText(i);
  QCOMPARE(items, QStringList({"Set", "Add", "Subtract", "Multiply"}));
  QCOMPARE(list->currentIndex(), -1);
  QVERIFY(!ok->isEnabled());
  list->setCurrentIndex(2);
  QVERIFY(ok->isEnabled());
}

void TestTransformDialog::okHandsOverOperationAndLeadingNumber_data() {
  QTest::addColumn<int>("operation");
  QTest::addColumn<QString>("text");
  QTest::addColumn<float>("value");
  QTest::newRow("set") << 0 << "0.1" << 0.1f;
  QTest::newRow("add, text after the number") << 1 << "2.5 m" << 2.5f;
  QTest::newRow("multiply, empty") << 3 << "" << 0.0f;
  QTest::newRow("subtract, no number") << 2 << "abc" << 0.0f;
}

void TestTransformDialog::okHandsOverOperationAndLeadingNumber() {
  QFETCH(int, operation);
  QFETCH(QString, text);
  QFETCH(float, value);
  dlgSelectTransform dialog;
  dialog.show();
  dialog.findChild<QComboBox*>(QStringLiteral("cmbTransformation"))->setCurrentIndex(operation);
  dialog.findChild<QLineEdit*>(QStringLiteral("txtValue"))->setText(text);
  dialog.findChild<QPushButton*>(QStringLiteral("OKButton"))->click();
  QCOMPARE(dialog.result(), int(QDialog::Accepted));
  QCOMPARE(int(dialog.request().operation), operation);
  QCOMPARE(dialog.request().value, value);
}

void TestTransformDialog::cancelGivesMinusOne() {
  dlgSelectTransform dialog;
  dialog.show();
  dialog.findChild<QComboBox*>(QStringLiteral("cmbTransformation"))->setCurrentIndex(1);
  dialog.findChild<QPushButton*>(QStringLiteral("CancelButton"))->click();
  QCOMPARE(int(dialog.request().operation), -1);
  QVERIFY(!dialog.isVisible());
}

void TestTransformDialog::leadingNumberReadsTheStartOfTheText_data() {
  QTest::addColumn<QString>("text");
  QTest::addColumn<double>("value");
  QTest::newRow("plain") << "12.5" << 12.5;
  QTest::newRow("text after") << "12.5 m" << 12.5;
  QTest::newRow("leading blanks and sign") << "  -3.25" << -3.25;
  QTest::newRow("blanks inside") << "1 2" << 12.0;
  QTest::newRow("no number") << "abc" << 0.0;
  QTest::newRow("empty") << "" << 0.0;
  QTest::newRow("point first") << ".5" << 0.5;
  QTest::newRow("exponent") << "1e3x" << 1000.0;
  QTest::newRow("D exponent") << "2D2" << 200.0;
  QTest::newRow("bare E") << "7E" << 7.0;
  QTest::newRow("second point ends") << "1.2.3" << 1.2;
  QTest::newRow("comma ends") << "1,234" << 1.0;
}

void TestTransformDialog::leadingNumberReadsTheStartOfTheText() {
  QFETCH(QString, text);
  QFETCH(double, value);
  QCOMPARE(sheets::leadingNumber(text), value);
}

void TestTransformDialog::generalTextKeepsFifteenDigits_data() {
  QTest::addColumn<double>("value");
  QTest::addColumn<QString>("text");
  QTest::newRow("single widened") << (1.0 + double(0.1f)) << "1.10000000149012";
  QTest::newRow("integer") << 250.0 << "250";
  QTest::newRow("negative") << -8.5 << "-8.5";
  QTest::newRow("negative zero") << -0.0 << "0";
  QTest::newRow("fifteen digits") << 123456789012345.0 << "123456789012345";
  QTest::newRow("large") << 1e20 << "1E+20";
  QTest::newRow("small") << 0.0001 << "0.0001";
}

void TestTransformDialog::generalTextKeepsFifteenDigits() {
  QFETCH(double, value);
  QFETCH(QString, text);
  QCOMPARE(sheets::generalText15(value), text);
}

DELVANE_QTEST(TestTransformDialog)

#include "test_dlgselecttransform.moc"
