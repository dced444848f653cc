#include "app/frmtypicalsection.h"
#include "app/twips.h"
#include "tests/app/appfixture.h"
#include "tests/qtestmain.h"

#include <QDir>
#include <QFile>
#include <QImageReader>
#include <QLabel>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScrollBar>
#include <QStandardPaths>
#include <QTemporaryDir>
#include <QToolButton>
#include <QWheelEvent>

#include <memory>

using app::frmTypicalSection;
using apptest::Desk;

namespace {

const QString kDemoModels = QStringLiteral(DELVANE_MODELS_DIR);

// The window on its own over the demo project, its pictures taken from folder.
struct Picture {
  explicit Picture(Desk& desk, const QString& folder, QSize size = QSize(640, 360)) {
    desk.choose(1, 1);
    form = std::make_unique<frmTypicalSection>(desk.window->sheetContext(), folder);
    form->resize(size);
    form->show();
    if (!QTest::qWaitForWindowExposed(form.get())) qFatal("The picture window was not shown.");
  }
  bool showsPicture() const { return !form->Image1()->pixmap().isNull(); }
  std::unique_ptr<frmTypicalSection> form;
};

}  // namespace

class TestFrmTypicalSection : public QObject {
  Q_OBJECT

 private slots:
  void initTestCase() { QStandardPaths::setTestModeEnabled(true); }

  void designProfileValuesTilesThePictureUnderTheDetails();
  void withoutDesignListRowOneSaysThereIsNoImageName();
  void aMissingPictureIsDrawnFromTheDesignAndSaved();
  void aPictureThatCannotBeLoadedShowsThePlatformsError_data();
  void aPictureThatCannotBeLoadedShowsThePlatformsError();
  void barsScrollOnlyWhatTheWindowCannotHold();
  void aWheelTurnNeverScrollsVertically();
};

void TestFrmTypicalSection::designProfileValuesTilesThePictureUnderTheDetails() {
  Desk desk(true);
  desk.window->setModelsFolder(kDemoModels);
  desk.choose(1, 1);
  desk.trigger("mnuDataDesignSummary");
  QCOMPARE(desk.childTitle(), QStringLiteral("DesignDetails"));
  QMdiArea& area = *desk.window->mdiArea();
  const QList<QMdiSubWindow*> children = area.subWindowList();
  QCOMPARE(children.size(), 2);
  auto* form = qobject_cast<frmTypicalSection*>(children[1]->widget());
  QVERIFY(form);
  // The demo's own picture, read from its GIF.
  const QImage gif(kDemoModels + QStringLiteral("/EarthenCanal.gif"));
  QVERIFY(!gif.isNull());
  QCOMPARE(form->Image1()->pixmap().size(), gif.size());
  // Tiled one above the other, the details on top.
  QCOMPARE(children[0]->geometry().top(), area.viewport()->rect().top());
  QCOMPARE(children[1]->geometry().top(), children[0]->geometry().bottom() + 1);
  QCOMPARE(children[1]->width(), area.viewport()->width());
}

void TestFrmTypicalSection::withoutDesignListRowOneSaysThereIsNoImageName() {
  Desk desk(true);
  desk.exec("DELETE FROM DesignList");
  Picture picture(desk, kDemoModels);
  QVERIFY(picture.form->lblErrorText()->isVisible());
  QCOMPARE(picture.form->lblErrorText()->text(),
           QStringLiteral("No image name associated with database"));
  QVERIFY(!picture.showsPicture());
}

void TestFrmTypicalSection::aMissingPictureIsDrawnFromTheDesignAndSaved() {
  Desk desk(true);
  QTemporaryDir models;
  Picture picture(desk, models.path());
  frmTypicalSection& form = *picture.form;
  QVERIFY(form.showsDrawing() && picture.showsPicture());
  QVERIFY(!form.lblErrorText()->isVisible());
  QVERIFY(form.noteLabel()->text().contains(QStringLiteral("EarthenCanal.gif")));

  // Saved where it is offered, the drawing is the design's picture from then on.
  desk.saveAs = models.filePath(QStringLiteral("EarthenCanal"));
  form.setSaveFileFunction(
      [&desk](QWidget*, const QString&, const QString& suggested, const QString&) {
        desk.suggestedSave = suggested;
        return desk.saveAs;
      });
  form.saveButton()->click();
  QCOMPARE(desk.suggestedSave, models.filePath(QStringLiteral("EarthenCanal.png")));
  const QImage saved(models.filePath(QStringLiteral("EarthenCanal.png")));
  QVERIFY(!saved.isNull());
  Picture again(desk, models.path());
  QVERIFY(!again.form->showsDrawing());
  QCOMPARE(again.form->Image1()->pixmap().size(), saved.size());
}

void TestFrmTypicalSection::aPictureThatCannotBeLoadedShowsThePlatformsError_data() {
  QTest::addColumn<QByteArray>("file");  // the picture file's bytes; empty for no file
  QTest::addColumn<QString>("setup");
  QTest::newRow("no file, no design details") << QByteArray() << "DELETE FROM DesignDetails";
  QTest::newRow("a file that is no picture") << QByteArray("not a GIF") << "";
}

void TestFrmTypicalSection::aPictureThatCannotBeLoadedShowsThePlatformsError() {
  QFETCH(QByteArray, file);
  QFETCH(QString, setup);
  Desk desk(true);
  if (!setup.isEmpty()) desk.db().exec(setup);
  QTemporaryDir models;
  const QString path = models.filePath(QStringLiteral("EarthenCanal.gif"));
  if (!file.isEmpty()) {
    QFile gif(path);
    QVERIFY(gif.open(QIODevice::WriteOnly));
    gif.write(file);
  }
  QImageReader reader(path);
  QVERIFY(reader.read().isNull());
  Picture picture(desk, models.path());
  QVERIFY(picture.form->lblErrorText()->isVisible());
  QVERIFY2(picture.form->lblErrorText()->text().contains(reader.errorString()),
           qPrintable(picture.form->lblErrorText()->text()));
  QVERIFY(!picture.showsPicture());
}

void TestFrmTypicalSection::barsScrollOnlyWhatTheWindowCannotHold() {
  Desk desk(true);
  // A window larger than the picture: nothing to scroll.
  Picture large(desk, kDemoModels, QSize(1600, 700));
  QCOMPARE(large.form->fsbHorizontal()->maximum(), 0);
  QCOMPARE(large.form->fsbVertical()->maximum(), 0);

  // Narrower than the picture: the bar reaches the picture's far edge beside the other bar.
  Picture narrow(desk, kDemoModels, QSize(600, 700));
  frmTypicalSection& form = *narrow.form;
  const double dpi = app::screenLogicalDpiX(form);
  const double beside = app::pixelsToTwips(form.fsbVertical()->x(), dpi);
  const double picture = app::pixelsToTwips(form.Image1()->width(), dpi);
  QVERIFY(qAbs(form.fsbHorizontal()->maximum() - (picture - beside)) <= 15);
  QCOMPARE(form.fsbVertical()->maximum(), 0);
  form.fsbHorizontal()->setValue(form.fsbHorizontal()->maximum());
  QCOMPARE(form.Image1()->x(), -app::twipsToPixels(form.fsbHorizontal()->maximum(), dpi));
}

void TestFrmTypicalSection::aWheelTurnNeverScrollsVertically() {
  Desk desk(true);
  Picture small(desk, kDemoModels, QSize(400, 200));
  frmTypicalSection& form = *small.form;
  QScrollBar& across = *form.fsbHorizontal();
  QScrollBar& down = *form.fsbVertical();
  QVERIFY(across.maximum() > 0 && down.maximum() > 0);

  form.MouseWheel(0, -120, 0, 0);
  QCOMPARE(across.value(), across.pageStep());
  QCOMPARE(down.value(), 0);
  form.MouseWheel(0, 120, 0, 0);
  QCOMPARE(across.value(), 0);
  // A turn over the vertical bar itself still scrolls sideways.
  QWheelEvent turn(QPointF(5, 5), form.mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, -120),
                   Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
  QCoreApplication::sendEvent(&down, &turn);
  QCOMPARE(down.value(), 0);
  QCOMPARE(across.value(), across.pageStep());
}

DELVANE_QTEST(TestFrmTypicalSection)
#include "test_frmtypicalsection.moc"
