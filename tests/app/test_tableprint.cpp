#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QProcess>
#include <QStandardPaths>

using apptest::Desk;

namespace {

QString pdfText(const QString& pdf, const QStringList& pages = {}) {
  QProcess p;
  p.start(QStandardPaths::findExecutable(QStringLiteral("pdftotext")),
          pages + QStringList{pdf, QStringLiteral("-")});
  p.waitForFinished(60000);
  return QString::fromUtf8(p.readAllStandardOutput()).simplified();
}

}  // namespace

// File > Save as PDF of a data sheet or report writes its whole table, not the rows on screen.
class TestTablePrint : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  void savedTablesHoldEveryRowAndTheTotals() {
    if (QStandardPaths::findExecutable(QStringLiteral("pdftotext")).isEmpty())
      QSKIP("pdftotext (poppler-utils) is not installed");
    Desk desk(true);
    desk.choose(1, 1);
    desk.window->outputViewQuantity();
    desk.saveAs = desk.folder.filePath(QStringLiteral("summary.pdf"));
    desk.trigger("mnuFileSavePdf");
    const QString summary = pdfText(desk.saveAs);
    QVERIFY2(summary.contains(QStringLiteral("Quantity Summary")), qPrintable(summary.left(300)));
    QVERIFY(summary.contains(QStringLiteral("46,102.62")));
    QVERIFY(summary.contains(QStringLiteral("4.000")));  // the last chainage, off the screen

    desk.window->dataInitial();
    desk.saveAs = desk.folder.filePath(QStringLiteral("initial.pdf"));
    desk.trigger("mnuFileSavePdf");
    const QString last = pdfText(desk.saveAs, {QStringLiteral("-f"), QStringLiteral("2")});
    QVERIFY2(last.contains(QStringLiteral("Initial - ")), qPrintable(last.left(300)));
    QVERIFY(last.contains(QStringLiteral("Offset")));  // the header on a later page too
  }
};

DELVANE_QTEST(TestTablePrint)
#include "test_tableprint.moc"
