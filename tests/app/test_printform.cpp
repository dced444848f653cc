#include "app/printform.h"
#include "drawing/recordingsurface.h"
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QCheckBox>
#include <QComboBox>
#include <QFile>
#include <QImage>
#include <QLabel>
#include <QPrinter>
#include <QRegularExpression>
#include <QScrollBar>
#include <QStandardPaths>
#include <QToolButton>

#include <memory>
#include <set>
#include <vector>

using app::PaperFit;
using app::PrintForm;
using apptest::Desk;

namespace {

// What the sheets of a test drew: the pages and the print factors their producers were made for.
struct SheetLog {
  std::set<int> pagesDrawn;
  std::vector<double> factors;
};

// Pages of a fixed size with a frame on each.
class FramedPages : public drawing::SheetProducer {
 public:
  FramedPages(QSize mm, int pages, SheetLog& log) : m_mm(mm), m_pages(pages), m_log(log) {}
  int pageCount() const override { return m_pages; }
  void drawPage(drawing::PageEngine& engine, int page) const override {
    m_log.pagesDrawn.insert(page);
    engine.pSetPage(static_cast<std::int16_t>(m_mm.width()),
                    static_cast<std::int16_t>(m_mm.height()));
    engine.pSetLayer(engine.pCreateLayer(0, 0, 1, 1, 0, QStringLiteral("Arial"), 8));
    engine.pDrawBox(1, 1, m_mm.width() / 6.0f - 1, m_mm.height() / 6.0f - 1);
  }

 private:
  QSize m_mm;
  int m_pages;
  SheetLog& m_log;
};

app::PrintSheet framedSheet(QSize mm, int pages, SheetLog& log) {
  app::PrintSheet sheet;
  sheet.caption = QStringLiteral("Framed pages");
  sheet.fileName = QStringLiteral("framed");
  sheet.pageMm = mm;
  sheet.produce = [mm, pages, &log](double factor) {
    log.factors.push_back(factor);
    return std::make_unique<FramedPages>(mm, pages, log);
  };
  return sheet;
}

// A page window of its own, shown at a fixed size; its message boxes are recorded.
struct Preview {
  Preview(QSize mm, int pages, PrintForm::Zoom zoom = PrintForm::Zoom::Actual) {
    context.message = [this](QWidget*, const QString& text, const QString&, sheets::MessageButtons,
                             sheets::MessageIcon) {
      messages.append(text);
      return sheets::MessageAnswer::Ok;
    };
    form = std::make_unique<PrintForm>(context, framedSheet(mm, pages, log));
    form->setZoom(zoom);
    form->resize(640, 480);
    form->show();
    if (!QTest::qWaitForWindowExposed(form.get())) qFatal("The page window was not shown.");
  }
  QWidget* viewport() const { return form->pbGraph()->parentWidget(); }

  SheetLog log;
  sheets::SheetContext context;
  QStringList messages;
  std::unique_ptr<PrintForm> form;
};

// The pages of a PDF file, or -1 when it is not one.
int pdfPages(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return -1;
  const QByteArray data = file.readAll();
  if (!data.startsWith("%PDF")) return -1;
  return static_cast<int>(
      QString::fromLatin1(data).count(QRegularExpression(QStringLiteral("/Type\\s*/Page(?!s)"))));
}

// How many of its layers a window's first page draws with.
std::size_t layersDrawnOnFirstPage(const PrintForm& form) {
  drawing::RecordingSurface surface;
  drawing::renderPages(form.producer(), surface, 0, 0);
  std::set<int> used;
  for (const drawing::RecordedPrimitive& p : surface.pages().front().primitives)
    used.insert(p.layer);
  return used.size();
}

std::unique_ptr<QPrinter> pdfPrinter(const PrintForm& form, const QString& path) {
  auto printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  form.preparePrinter(*printer);
  printer->setOutputFormat(QPrinter::PdfFormat);
  printer->setOutputFileName(path);
  return printer;
}

}  // namespace

class TestPrintForm : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  void barsShowWhereThePageDoesNotFitAndTheWheelScrollsThem_data();
  void barsShowWhereThePageDoesNotFitAndTheWheelScrollsThem();
  void opensAtFitWidthDrawingOnlyThePageShown();
  void keysMoveBetweenPagesAndScrollThePage();
  void printsAtTrueScaleOrAsChosenWhenThePaperIsSmaller_data();
  void printsAtTrueScaleOrAsChosenWhenThePaperIsSmaller();
  void plotXSectionOpensTheSheetThatPrintsAndSavesAgain();
  void savingNeverReplacesTheProject();
  void plotsOfSectionsWithFewChainagesSaySo_data();
  void plotsOfSectionsWithFewChainagesSaySo();
};

void TestPrintForm::barsShowWhereThePageDoesNotFitAndTheWheelScrollsThem_data() {
  QTest::addColumn<QSize>("pageMm");
  QTest::addColumn<bool>("horizontal");
  QTest::addColumn<bool>("vertical");
  QTest::newRow("small page: centred, no bars") << QSize(60, 40) << false << false;
  QTest::newRow("large page: both bars") << QSize(400, 300) << true << true;
  QTest::newRow("wide low page: only the horizontal bar") << QSize(600, 40) << true << false;
  QTest::newRow("narrow tall page: only the vertical bar") << QSize(40, 600) << false << true;
}

void TestPrintForm::barsShowWhereThePageDoesNotFitAndTheWheelScrollsThem() {
  QFETCH(QSize, pageMm);
  QFETCH(bool, horizontal);
  QFETCH(bool, vertical);
  Preview preview(pageMm, 1);
  PrintForm& form = *preview.form;
  QCOMPARE(!form.HScroll1()->isHidden(), horizontal);
  QCOMPARE(!form.VScroll1()->isHidden(), vertical);
  const QRect page = form.pbGraph()->geometry();
  const QRect area = preview.viewport()->rect();
  // Centred on an axis without a bar, from the edge on an axis with one.
  QVERIFY(horizontal ? page.left() == 0 : std::abs(page.center().x() - area.center().x()) <= 1);
  QVERIFY(vertical ? page.top() == 0 : std::abs(page.center().y() - area.center().y()) <= 1);
  // The print button sits in the corner between the bars.
  QCOMPARE(form.Command1()->geometry().bottomRight(), area.bottomRight());

  // A turn toward the user moves the page along the bar that scrolls, vertically on a tie.
  form.MouseWheel(0, -120, 0, 0);
  const QPoint moved = form.pbGraph()->pos() - page.topLeft();
  const bool alongVertical = vertical && form.VScroll1()->maximum() >= form.HScroll1()->maximum();
  QCOMPARE(moved.y() < 0, alongVertical);
  QCOMPARE(moved.x() < 0, horizontal && !alongVertical);
  form.MouseWheel(0, 120, 0, 0);
  QCOMPARE(form.pbGraph()->pos(), page.topLeft());
}

void TestPrintForm::opensAtFitWidthDrawingOnlyThePageShown() {
  SheetLog log;
  PrintForm form({}, framedSheet(QSize(420, 297), 300, log));
  form.resize(700, 500);
  form.show();
  QVERIFY(QTest::qWaitForWindowExposed(&form));
  form.currentPageImage();
  QCOMPARE(log.pagesDrawn, std::set<int>{0});
  QCOMPARE(form.pageCounter()->text(), QStringLiteral("Page 1 of 300"));

  // Fit width: the page fills the window's width without a horizontal bar.
  const int width = form.pbGraph()->parentWidget()->width();
  QVERIFY(form.HScroll1()->isHidden());
  QVERIFY(form.pbGraph()->width() <= width && form.pbGraph()->width() > width * 9 / 10);
  const int fitted = form.pbGraph()->width();
  form.setZoom(PrintForm::Zoom::FitPage);
  QVERIFY(form.pbGraph()->height() <= form.pbGraph()->parentWidget()->height());
  QVERIFY(form.pbGraph()->width() < fitted);

  // A sheet without pages shows one empty page.
  Preview empty(QSize(210, 297), 0);
  QCOMPARE(empty.form->pageCounter()->text(), QStringLiteral("Page 1 of 1"));
  QVERIFY(!empty.form->currentPageImage().isNull());
}

void TestPrintForm::keysMoveBetweenPagesAndScrollThePage() {
  Preview preview(QSize(400, 300), 3);
  PrintForm& form = *preview.form;
  const struct {
    Qt::Key key;
    Qt::KeyboardModifiers modifiers;
    const char* counter;
  } steps[] = {
      {Qt::Key_PageDown, {}, "Page 2 of 3"},
      {Qt::Key_PageDown, {}, "Page 3 of 3"},
      {Qt::Key_PageDown, {}, "Page 3 of 3"},
      {Qt::Key_PageUp, {}, "Page 2 of 3"},
      {Qt::Key_End, Qt::ControlModifier, "Page 3 of 3"},
      {Qt::Key_Home, Qt::ControlModifier, "Page 1 of 3"},
  };
  for (const auto& step : steps) {
    QTest::keyClick(&form, step.key, step.modifiers);
    QCOMPARE(form.pageCounter()->text(), QLatin1String(step.counter));
  }

  QTest::keyClick(&form, Qt::Key_Down);
  QCOMPARE(form.VScroll1()->value(), 1);
  QTest::keyClick(&form, Qt::Key_Right);
  QCOMPARE(form.HScroll1()->value(), 1);
  QTest::keyClick(&form, Qt::Key_End);
  QCOMPARE(form.VScroll1()->value(), form.VScroll1()->maximum());
  QVERIFY(form.pbGraph()->geometry().bottom() < preview.viewport()->height());
  QTest::keyClick(&form, Qt::Key_Home);
  QCOMPARE(form.pbGraph()->pos(), QPoint(0, 0));
}

void TestPrintForm::printsAtTrueScaleOrAsChosenWhenThePaperIsSmaller_data() {
  QTest::addColumn<QSize>("pageMm");
  QTest::addColumn<int>("answer");  // a PaperFit, or -1 to cancel
  QTest::addColumn<bool>("asked");
  QTest::addColumn<int>("papers");  // sheets of paper for the sheet's two pages
  QTest::addColumn<bool>("shrunk");
  QTest::newRow("A4 page: true scale") << QSize(210, 297) << -1 << false << 2 << false;
  QTest::newRow("landscape A4 page: true scale") << QSize(297, 210) << -1 << false << 2 << false;
  QTest::newRow("large page fitted")
      << QSize(400, 300) << int(PaperFit::FitToPaper) << true << 2 << true;
  QTest::newRow("large page tiled 2 x 2")
      << QSize(400, 300) << int(PaperFit::Tile) << true << 8 << false;
  QTest::newRow("large page cancelled") << QSize(400, 300) << -1 << true << 0 << false;
}

void TestPrintForm::printsAtTrueScaleOrAsChosenWhenThePaperIsSmaller() {
  QFETCH(QSize, pageMm);
  QFETCH(int, answer);
  QFETCH(bool, asked);
  QFETCH(int, papers);
  QFETCH(bool, shrunk);
  Preview preview(pageMm, 2);
  bool wasAsked = false;
  preview.form->setPaperFitFunction(
      [&](QWidget*, QSizeF, QSizeF, double factor) -> std::optional<PaperFit> {
        wasAsked = true;
        if (factor >= 1.0) qWarning("asked although the paper holds the page");
        if (answer < 0) return std::nullopt;
        return static_cast<PaperFit>(answer);
      });
  QTemporaryDir folder;
  // The same window prints twice: each print draws the whole sheet again.
  for (const char* name : {"first.pdf", "second.pdf"}) {
    preview.log.factors.clear();
    const QString path = folder.filePath(QLatin1String(name));
    const auto printer = pdfPrinter(*preview.form, path);
    QCOMPARE(preview.form->printOn(*printer), papers > 0);
    QCOMPARE(wasAsked, asked);
    QCOMPARE(pdfPages(path), papers > 0 ? papers : -1);
    if (papers > 0) QCOMPARE(preview.log.factors.size(), std::size_t{1});
    if (papers > 0) QCOMPARE(preview.log.factors.front() < 1.0, shrunk);
  }
  QVERIFY(preview.messages.isEmpty());
}

void TestPrintForm::plotXSectionOpensTheSheetThatPrintsAndSavesAgain() {
  Desk desk(true);
  desk.choose(1, 1);
  desk.state.strSectionDescription = QStringLiteral("RMC km 0.000 to 4.000");
  desk.trigger("mnuOutputXSection");
  QVERIFY2(desk.messages.isEmpty(), qPrintable(desk.messagesText()));
  auto* form = qobject_cast<PrintForm*>(desk.window->activeChild()->widget());
  QVERIFY(form);
  QCOMPARE(desk.childTitle(), QStringLiteral("Cross sections - RMC km 0.000 to 4.000"));
  QVERIFY(form->pageCount() > 1);
  QCOMPARE(form->pageCounter()->text(), QStringLiteral("Page 1 of %1").arg(form->pageCount()));
  QCOMPARE(desk.mouseWheel.servedWindow(), form);

  // A smaller scale needs fewer pages.
  const int nativePages = form->pageCount();
  auto* scales = form->findChild<QComboBox*>(QStringLiteral("cboScale"));
  QVERIFY(scales && scales->count() > 1);
  scales->setCurrentIndex(scales->count() - 1);
  emit scales->activated(scales->count() - 1);
  QVERIFY(form->pageCount() < nativePages);
  QCOMPARE(desk.childTitle(), QStringLiteral("Cross sections - RMC km 0.000 to 4.000"));

  form->setPaperFitFunction([](QWidget*, QSizeF, QSizeF, double) { return PaperFit::FitToPaper; });
  for (const char* name : {"first.pdf", "second.pdf"}) {
    const QString path = desk.folder.filePath(QLatin1String(name));
    QVERIFY(form->printOn(*pdfPrinter(*form, path)));
    QCOMPARE(pdfPages(path), form->pageCount());
  }
  desk.saveAs = desk.folder.filePath(QStringLiteral("sheet"));
  form->findChild<QAction*>(QStringLiteral("actSavePdf"))->trigger();
  QCOMPARE(pdfPages(desk.saveAs + QStringLiteral(".pdf")), form->pageCount());
  // File > Save as PNG saves the page shown.
  desk.trigger("mnuFileSavePng");
  QCOMPARE(QImage(desk.saveAs + QStringLiteral(".png")).isNull(), false);

  // Another window takes the wheel, and File's sheet items have nothing to save.
  desk.showChildren({"another window"});
  QVERIFY(desk.mouseWheel.servedWindow() != form);
  QVERIFY(!desk.action("mnuFileSavePdf")->isEnabled());

  // The executed-level switch draws the executed ground as well.
  const std::size_t plain = layersDrawnOnFirstPage(*form);
  desk.window->chkUseExecutedLevel()->setChecked(true);
  desk.trigger("mnuOutputXSection");
  auto* executed = qobject_cast<PrintForm*>(desk.window->activeChild()->widget());
  QVERIFY(executed && executed != form);
  QCOMPARE(layersDrawnOnFirstPage(*executed), plain + 1);
}

void TestPrintForm::savingNeverReplacesTheProject() {
  // A project whose name reads as a picture: saving the page under that name would replace it.
  testsupport::TempProject project;
  const QString name = QStringLiteral("survey.png");
  db::Connection& connection = project.create(false, name);
  QStringList messages;
  sheets::SheetContext context;
  context.connection = [&connection] { return &connection; };
  context.message = [&messages](QWidget*, const QString& text, const QString&,
                                sheets::MessageButtons, sheets::MessageIcon) {
    messages.append(text);
    return sheets::MessageAnswer::Ok;
  };
  SheetLog log;
  PrintForm form(context, framedSheet(QSize(210, 297), 1, log));
  QVERIFY(!form.saveAs(project.path(name)));
  QCOMPARE(messages.size(), 1);
  QFile file(project.path(name));
  QVERIFY(file.open(QIODevice::ReadOnly));
  QVERIFY(file.read(15) == "SQLite format 3");
}

void TestPrintForm::plotsOfSectionsWithFewChainagesSaySo_data() {
  QTest::addColumn<QString>("command");
  QTest::addColumn<int>("readings");
  QTest::addColumn<QString>("message");
  QTest::addColumn<QString>("opened");
  QTest::newRow("L section on one chainage")
      << "mnuOutputLSection" << 1
      << "Insufficient levels to plot L-Section. Atleast 2 sections are required."
      << "";
  QTest::newRow("X section on none")
      << "mnuOutputXSection" << 0 << "Section Lone has no chainages to plot"
      << "Page 1 of 1";
}

void TestPrintForm::plotsOfSectionsWithFewChainagesSaySo() {
  QFETCH(QString, command);
  QFETCH(int, readings);
  QFETCH(QString, message);
  QFETCH(QString, opened);
  Desk desk(true);
  desk.exec("INSERT INTO Sections (ID, PackageID, Description, DesignID) VALUES (9, 1, 'Lone', 1)");
  for (int i = 0; i < readings; ++i)
    desk.exec("INSERT INTO Initial (SectionID, Chainage, Offset, [Level]) VALUES (9, 0.5, 0, 100)");
  desk.choose(1, 9);
  desk.state.strSectionDescription = QStringLiteral("Lone");
  desk.trigger(command.toLatin1().constData());
  QCOMPARE(desk.messages.size(), 1);
  QVERIFY2(desk.messages[0].text.startsWith(message), qPrintable(desk.messages[0].text));
  auto* form = desk.window->activeChild()
                   ? qobject_cast<PrintForm*>(desk.window->activeChild()->widget())
                   : nullptr;
  QCOMPARE(form ? form->pageCounter()->text() : QString(), opened);
}

DELVANE_QTEST(TestPrintForm)
#include "test_printform.moc"
