#include "tests/qtestmain.h"

#include "sheets/cellnumbers.h"
#include "sheets/dlgselecttransform.h"

#include <QComboBox>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using sheets::dlgSelectTransform;
using sheets::TransformRequest;

// The dialog's parts, found by name.
struct TransformDialog {
  TransformDialog() { dialog.show(); }
  dlgSelectTransform dialog;
  QComboBox* list = dialog.findChild<QComboBox*>(QStringLiteral("cmbTransformation"));
  QLineEdit* value = dialog.findChild<QLineEdit*>(QStringLiteral("txtValue"));
  QPushButton* ok = dialog.findChild<QPushButton*>(QStringLiteral("OKButton"));
};

class TestTransformDialog : public QObject {
  Q_OBJECT

 private slots:
  void okNeedsAnOperationAndCancelGivesMinusOne() {
    TransformDialog d;
    QStringList items;
    for (int i = 0; i < d.list->count(); ++i) items << d.list->itemText(i);
    QCOMPARE(items, QStringList({"Set", "Add", "Subtract", "Multiply"}));
    QCOMPARE(d.list->currentIndex(), -1);
    QVERIFY(!d.ok->isEnabled());
    d.list->setCurrentIndex(1);
    QVERIFY(d.ok->isEnabled());
    d.dialog.findChild<QPushButton*>(QStringLiteral("CancelButton"))->click();
    QCOMPARE(int(d.dialog.request().operation), -1);
    QVERIFY(!d.dialog.isVisible());
  }

  void okHandsOverOperationAndLeadingNumber_data() {
    QTest::addColumn<int>("operation");
    QTest::addColumn<QString>("text");
    QTest::addColumn<float>("value");
    QTest::newRow("set") << 0 << "0.1" << 0.1f;
    QTest::newRow("add, text after the number") << 1 << "2.5 m" << 2.5f;
    QTest::newRow("subtract, no number") << 2 << "abc" << 0.0f;
  }
  void okHandsOverOperationAndLeadingNumber() {
    QFETCH(int, operation);
    QFETCH(QString, text);
    QFETCH(float, value);
    TransformDialog d;
    d.list->setCurrentIndex(operation);
    d.value->setText(text);
    d.ok->click();
    QCOMPARE(d.dialog.result(), int(QDialog::Accepted));
    QCOMPARE(int(d.dialog.request().operation), operation);
    QCOMPARE(d.dialog.request().value, value);
  }

  void leadingNumberReadsTheStartOfTheText_data() {
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

  void leadingNumberReadsTheStartOfTheText() {
    QFETCH(QString, text);
    QFETCH(double, value);
    QCOMPARE(sheets::leadingNumber(text), value);
  }

  void generalTextKeepsFifteenDigits_data() {
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

  void generalTextKeepsFifteenDigits() {
    QFETCH(double, value);
    QFETCH(QString, text);
    QCOMPARE(sheets::generalText15(value), text);
  }
};

DELVANE_QTEST(TestTransformDialog)

#include "test_dlgselecttransform.moc"
