#include "tests/qtestmain.h"

#include "sheets/dlgsearchwindow.h"

#include <QComboBox>
#include <QLabel>
#include <QLineEdit>
#include <QPushButton>
#include <QTest>

#include <map>

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
  void listsTheSheetsColumnsAndTheConditionsInOrder() {
    Builder b;
    QVERIFY(b.window.windowFlags().testFlag(Qt::WindowStaysOnTopHint));
    QStringList fields;
    for (int i = 0; i < b.field->count(); ++i) fields << b.field->itemText(i);
    QCOMPARE(fields, QStringList({"Chainage", "Offset", "Level"}));
    QStringList conditions;
    for (int i = 0; i < b.condition->count(); ++i) conditions << b.condition->itemText(i);
    QCOMPARE(conditions, QStringList({"=", "<>", "<", ">", "<=", ">=", "LIKE"}));
    QCOMPARE(b.condition->currentIndex(), -1);
    QVERIFY(!b.done->isEnabled());
  }

  void buttonsFollowTheEnablingRule_data() {
    QTest::addColumn<QStringList>("term");  // field, condition, value
    QTest::addColumn<bool>("enabled");
    QTest::newRow("complete term") << QStringList{"Level", "=", "5"} << true;
    QTest::newRow("empty value with =") << QStringList{"Level", "=", ""} << true;
    QTest::newRow("no condition") << QStringList{"Level", "", "5"} << false;
    QTest::newRow("no field") << QStringList{"", ">", "5"} << false;
    QTest::newRow("LIKE with value") << QStringList{"Level", "LIKE", "5"} << true;
    QTest::newRow("LIKE with blanks only") << QStringList{"Level", "LIKE", "   "} << false;
    QTest::newRow("field typed by hand") << QStringList{"Remarks", "<>", "x"} << true;
  }
  void buttonsFollowTheEnablingRule() {
    QFETCH(QStringList, term);
    QFETCH(bool, enabled);
    Builder b;
    b.term(term[0], term[1], term[2]);
    QCOMPARE(b.done->isEnabled(), enabled);
    QCOMPARE(b.andButton->isEnabled(), enabled);
    QCOMPARE(b.orButton->isEnabled(), enabled);
  }

  // Each step enters a term (field|condition|value) and clicks AND, OR, Done or Clear.
  void buildsTheFilterText_data() {
    QTest::addColumn<QStringList>("steps");
    QTest::addColumn<QStringList>("applied");
    QTest::newRow("AND and LIKE") << QStringList{"Chainage|>=|100|AND", "Offset|LIKE|5|Done"}
                                  << QStringList{"[Chainage] >= '100' AND [Offset] LIKE '%5%'"};
    QTest::newRow("OR and an empty value") << QStringList{"Level|<| 7 |OR", "Name|=||Done"}
                                           << QStringList{"[Level] < ' 7 ' OR [Name] = ''"};
    QTest::newRow("a term after Done is appended without connective")
        << QStringList{"Level|>|1|Done", "Level|<|9|Done"}
        << QStringList{"[Level] > '1'", "[Level] > '1'[Level] < '9'"};
    QTest::newRow("Clear forgets the filter")
        << QStringList{"Level|>|1|Done", "|||Clear", "Offset|=|0|Done"}
        << QStringList{"[Level] > '1'", "", "[Offset] = '0'"};
  }
  void buildsTheFilterText() {
    QFETCH(QStringList, steps);
    QFETCH(QStringList, applied);
    Builder b;
    for (const QString& step : steps) {
      const QStringList part = step.split(QLatin1Char('|'));
      if (part[3] != QLatin1String("Clear")) b.term(part[0], part[1], part[2]);
      const std::map<QString, QPushButton*> buttons{
          {"AND", b.andButton}, {"OR", b.orButton}, {"Done", b.done}, {"Clear", b.clear}};
      buttons.at(part[3])->click();
      if (part[3] == QLatin1String("AND") || part[3] == QLatin1String("OR")) {
        QVERIFY(b.window.searchText().endsWith(QLatin1Char(' ') + part[3] + QLatin1Char(' ')));
        // The inputs are cleared for the next term.
        QCOMPARE(b.field->currentText() + b.value->text(), QString());
        QCOMPARE(b.condition->currentIndex(), -1);
      }
    }
    QCOMPARE(b.applied, applied);
    QCOMPARE(b.window.searchText(), applied.last());
  }

  void closingTellsTheMainWindow() {
    Builder b;
    b.window.close();
    QCOMPARE(b.closed, 1);
    QVERIFY(!b.window.isVisible());
  }
};

DELVANE_QTEST(TestFilterBuilder)

#include "test_dlgsearchwindow.moc"
