#include "tests/qtestmain.h"

#include "sheets/dlgsearchwindow.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

using sheets::dlgSearchWindow;

namespace {

// The filter builder over a sheet with three columns, recording what it asks the sheet.
struct Builder {
  Builder() {
    window.setFields(
        {QStringLiteral("Chainage"), QStringLiteral("Offset"), QStringLiteral("Level")});
    window.setFilterFunction([this](const QString& text) { applied.append(text); });
    window.setClosedHandler([this] { ++closed; });
    window.show();
    field = window.findChild<QComboBox*>(QStringLiteral("cmbField"));
    condition = window.findChild<QComboBox*>(QStringLiteral("cmbCondition"));
    value = window.findChild<QLineEdit*>(QStringLiteral("txtValue"));
    andButton = window.findChild<QPushButton*>(QStringLiteral("cmdAND"));
    orButton = window.findChild<QPushButton*>(QStringLiteral("cmdOR"));
    done = window.findChild<QPushButton*>(QStringLiteral("cmdExecute"));
    clear = window.findChild<QPushButton*>(QStringLiteral("cmdClear"));
  }

  void term(const QString& fieldText, const QString& conditionText, const QString& valueText) {
    field->setEditText(fieldText);
    condition->setCurrentIndex(condition->findText(conditionText));
    value->setText(valueText);
  }

  dlgSearchWindow window;
  QStringList applied;
  int closed = 0;
  QComboBox* field;
  QComboBox* condition;
  QLineEdit* value;
  QPushButton* andButton;
  QPushButton* orButton;
  QPushButton* done;
  QPushButton* clear;
};

}  // namespace

class TestFilterBuilder : public QObject {
  Q_OBJECT

 private slots:
  void listsTheSheetsColumnsAndTheConditionsInOrder();
  void buttonsFollowTheEnablingRule_data();
  void buttonsFollowTheEnablingRule();
  void andThenDoneBuildsTheExactText();
  void orJoinsTermsAndEmptyValueGivesTwoQuotes();
  void termAfterDoneIsAppendedWithoutConnective();
  void clearForgetsTheFilter();
  void closingTellsTheMainWindow();
};

void TestFilterBuilder::listsTheSheetsColumnsAndTheConditionsInOrder() {
  Builder b;
  QCOMPARE(b.window.windowTitle(), QStringLiteral("  Filter / Search"));
  QVERIFY(b.window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
  QStringList fields;
  for (int i = 0; i < b.field->count(); ++i) fields << b.field->itemText(i);
  QCOMPARE(fields, QStringList({"Chainage", "Offset", "Level"}));
  QStringList conditions;
  for (int i = 0; i < b.condition->count(); ++i) conditions << b.condition->itemText(i);
  QCOMPARE(conditions, QStringList({"=", "<>", "<", ">", "<=", ">=", "LIKE"}));
  QCOMPARE(b.condition->currentIndex(), -1);
  QVERIFY(!b.andButton->isEnabled());
  QVERIFY(!b.orButton->isEnabled());
  QVERIFY(!b.done->isEnabled());
  QCOMPARE(b.andButton->text(), QStringLiteral("&AND"));
  QCOMPARE(b.orButton->text(), QStringLiteral("&OR"));
  QCOMPARE(b.done->text(), QStringLiteral("&Done"));
  QCOMPARE(b.clear->text(), QStringLiteral("&Clear"));
}

void TestFilterBuilder::buttonsFollowTheEnablingRule_data() {
  QTest::addColumn<QString>("field");
  QTest::addColumn<QString>("condition");
  QTest::addColumn<QString>("value");
  QTest::addColumn<bool>("enabled");
  QTest::newRow("complete term") << "Level"
                                 << "="
                                 << "5" << true;
  QTest::newRow("empty value with =") << "Level"
                                      << "="
                                      << "" << true;
  QTest::newRow("no condition") << "Level"
                                << ""
                                << "5" << false;
  QTest::newRow("no field") << ""
                            << ">"
                            << "5" << false;
  QTest::newRow("LIKE with value") << "Level"
                                   << "LIKE"
                                   << "5" << true;
  QTest::newRow("LIKE with blanks only") << "Level"
                                         << "LIKE"
                                         << "   " << false;
  QTest::newRow("field typed by hand") << "Remarks"
                                       << "<>"
                                       << "x" << true;
}

void TestFilterBuilder::buttonsFollowTheEnablingRule() {
  QFETCH(QString, field);
  QFETCH(QString, condition);
  QFETCH(QString, value);
  QFETCH(bool, enabled);
  Builder b;
  b.term(field, condition, value);
  QCOMPARE(b.done->isEnabled(), enabled);
  QCOMPARE(b.andButton->isEnabled(), enabled);
  QCOMPARE(b.orButton->isEnabled(), enabled);
}

void TestFilterBuilder::andThenDoneBuildsTheExactText() {
  Builder b;
  b.term(QStringLiteral("Chainage"), QStringLiteral(">="), QStringLiteral("100"));
  b.andButton->click();
  QCOMPARE(b.window.searchText(), QStringLiteral("[Chainage] >= '100' AND "));
  QVERIFY(b.applied.isEmpty());
  // The inputs are cleared for the next term.
  QCOMPARE(b.field->currentText(), QString());
  QCOMPARE(b.condition->currentIndex(), -1);
  QCOMPARE(b.value->text(), QString());
  QVERIFY(!b.done->isEnabled());

  b.term(QStringLiteral("Offset"), QStringLiteral("LIKE"), QStringLiteral("5"));
  b.done->click();
  const QString expected = QStringLiteral("[Chainage] >= '100' AND [Offset] LIKE '%5%'");
  QCOMPARE(b.window.searchText(), expected);
  QCOMPARE(b.applied, QStringList({expected}));
}

void TestFilterBuilder::orJoinsTermsAndEmptyValueGivesTwoQuotes() {
  Builder b;
  b.term(QStringLiteral("Level"), QStringLiteral("<"), QStringLiteral(" 7 "));
  b.orButton->click();
  b.term(QStringLiteral("Name"), QStringLiteral("="), QString());
  b.done->click();
  QCOMPARE(b.applied, QStringList({QStringLiteral("[Level] < ' 7 ' OR [Name] = ''")}));
}

void TestFilterBuilder::termAfterDoneIsAppendedWithoutConnective() {
  Builder b;
  b.term(QStringLiteral("Level"), QStringLiteral(">"), QStringLiteral("1"));
  b.done->click();
  b.term(QStringLiteral("Level"), QStringLiteral("<"), QStringLiteral("9"));
  b.done->click();
  QCOMPARE(b.applied.last(), QStringLiteral("[Level] > '1'[Level] < '9'"));
}

void TestFilterBuilder::clearForgetsTheFilter() {
  Builder b;
  b.term(QStringLiteral("Level"), QStringLiteral(">"), QStringLiteral("1"));
  b.done->click();
  b.clear->click();
  QCOMPARE(b.window.searchText(), QString());
  QCOMPARE(b.applied.last(), QString());
  b.term(QStringLiteral("Offset"), QStringLiteral("="), QStringLiteral("0"));
  b.done->click();
  QCOMPARE(b.applied.last(), QStringLiteral("[Offset] = '0'"));
}

void TestFilterBuilder::closingTellsTheMainWindow() {
  Builder b;
  b.window.close();
  QCOMPARE(b.closed, 1);
  QVERIFY(!b.window.isVisible());
}

DELVANE_QTEST(TestFilterBuilder)

#include "test_dlgsearchwindow.moc"
