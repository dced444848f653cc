#include "sheets/captiondrag.h"
#include "sheets/mousewheel.h"
#include "tests/qtestmain.h"

#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QTest>
#include <QVBoxLayout>
#include <QWheelEvent>
#include <QWindow>

namespace {

struct RecordingWheelWindow : sheets::WheelAware {
  void MouseWheel(int keys, int rotation, int x, int y) override {
    calls.append({keys, rotation, x, y});
  }
  QList<sheets::WheelValues> calls;
};

// A top-level widget that counts the wheel events Qt itself delivers to it.
class WheelCountingWidget : public QWidget {
 public:
  int received = 0;

 protected:
  void wheelEvent(QWheelEvent* event) override {
    ++received;
    event->accept();
  }
};

void sendWheel(QWidget& widget, int angleDeltaY, Qt::MouseButtons buttons,
               Qt::KeyboardModifiers modifiers) {
  const QPointF local(10, 12);
  QWheelEvent event(local, widget.mapToGlobal(local), QPoint(), QPoint(0, angleDeltaY), buttons,
                    modifiers, Qt::NoScrollPhase, false);
  QApplication::sendEvent(widget.windowHandle(), &event);
}

void sendMouse(QWidget* widget, QEvent::Type type, QPointF position, Qt::MouseButtons buttons) {
  QMouseEvent event(type, position, widget->mapToGlobal(position),
                    type == QEvent::MouseMove ? Qt::NoButton : Qt::LeftButton, buttons,
                    Qt::NoModifier);
  QApplication::sendEvent(widget, &event);
}

}  // namespace

class TestSheetsShell : public QObject {
  Q_OBJECT

 private slots:
  void wheelValuesUseClassicKeyBits_data() {
    QTest::addColumn<int>("buttons");
    QTest::addColumn<int>("modifiers");
    QTest::addColumn<int>("delta");
    QTest::addColumn<int>("keys");
    QTest::newRow("notch towards the user") << 0 << 0 << -120 << 0;
    QTest::newRow("notch away from the user") << 0 << 0 << 120 << 0;
    QTest::newRow("shift ctrl left")
        << int(Qt::LeftButton) << int(Qt::ShiftModifier | Qt::ControlModifier) << 240 << 13;
    QTest::newRow("right button") << int(Qt::RightButton) << 0 << -120 << 2;
    QTest::newRow("middle button") << int(Qt::MiddleButton) << 0 << 120 << 16;
    QTest::newRow("alt is not a key bit") << 0 << int(Qt::AltModifier) << 120 << 0;
    QTest::newRow("fine-resolution wheel") << 0 << int(Qt::ControlModifier) << 15 << 8;
  }
  void wheelValuesUseClassicKeyBits() {
    QFETCH(int, buttons);
    QFETCH(int, modifiers);
    QFETCH(int, delta);
    QFETCH(int, keys);
    const sheets::WheelValues v = sheets::wheelValues(Qt::MouseButtons::fromInt(buttons),
                                                      Qt::KeyboardModifiers::fromInt(modifiers),
                                                      delta, QPointF(640.4, 401.6));
    QCOMPARE(QList<int>({v.keys, v.rotation, v.x, v.y}), QList<int>({keys, delta, 640, 402}));
  }

  void hookedWindowGetsEachWheelEventOnceAndQtStillHandlesIt() {
    sheets::MouseWheelModule module;
    RecordingWheelWindow first;
    RecordingWheelWindow served;
    module.HookMouseWheel(&first);
    module.HookMouseWheel(&served);
    module.UnhookMouseWheel(&first);  // unhooking another window keeps the served one
    QCOMPARE(module.servedWindow(), &served);

    WheelCountingWidget widget;
    widget.resize(200, 100);
    widget.show();
    QVERIFY(QTest::qWaitForWindowExposed(&widget));
    sendWheel(widget, -120, Qt::LeftButton, Qt::ShiftModifier | Qt::ControlModifier);
    QCOMPARE(served.calls.size(), 1);
    const sheets::WheelValues& v = served.calls[0];
    const QPoint global = widget.mapToGlobal(QPoint(10, 12));
    QCOMPARE(QList<int>({v.keys, v.rotation, v.x, v.y}),
             QList<int>({13, -120, global.x(), global.y()}));
    QCOMPARE(widget.received, 1);

    module.UnhookMouseWheel();
    QCOMPARE(module.servedWindow(), nullptr);
    sendWheel(widget, 120, Qt::NoButton, Qt::NoModifier);
    QCOMPARE(served.calls.size(), 1);
    QVERIFY(first.calls.isEmpty());
    QCOMPARE(widget.received, 2);
  }

  void captionDragThreshold_data() {
    QTest::addColumn<QPointF>("pointer");
    QTest::addColumn<bool>("moves");
    QTest::addColumn<QPointF>("move");
    QTest::newRow("still") << QPointF(100, 50) << false << QPointF();
    QTest::newRow("30 right") << QPointF(130, 50) << false << QPointF();
    QTest::newRow("30 left and 30 up") << QPointF(70, 20) << false << QPointF();
    QTest::newRow("31 right") << QPointF(131, 50) << true << QPointF(31, 0);
    QTest::newRow("31 up") << QPointF(100, 19) << true << QPointF(0, -31);
    QTest::newRow("31 left, 5 down") << QPointF(69, 55) << true << QPointF(-31, 5);
  }

  void captionDragThreshold() {
    QFETCH(QPointF, pointer);
    QFETCH(bool, moves);
    QFETCH(QPointF, move);
    const auto result = sheets::captionDragMove(QPointF(100, 50), pointer);
    QCOMPARE(result.has_value(), moves);
    if (moves) QCOMPARE(*result, move);
  }

  void draggingCaptionMovesDialogAndKeepsAnchor() {
    QWidget dialog(nullptr, Qt::Dialog | Qt::FramelessWindowHint);
    auto* caption = new QLabel(QStringLiteral(" Caption"), &dialog);
    auto* layout = new QVBoxLayout(&dialog);
    layout->addWidget(caption);
    layout->addStretch(1);
    dialog.resize(300, 200);
    dialog.move(100, 100);
    auto* drag = new sheets::CaptionDrag(caption);
    dialog.show();
    QVERIFY(QTest::qWaitForWindowExposed(&dialog));

    const double pixelsPerTwip = caption->logicalDpiX() / 1440.0;
    const int small = static_cast<int>(30 * pixelsPerTwip);  // within the threshold
    const int large = static_cast<int>(300 * pixelsPerTwip);
    const QPoint start = dialog.pos();

    sendMouse(caption, QEvent::MouseButtonPress, QPointF(5, 5), Qt::LeftButton);
    QVERIFY(drag->dragging());
    sendMouse(caption, QEvent::MouseMove, QPointF(5 + small, 5), Qt::LeftButton);
    QCOMPARE(dialog.pos(), start);
    sendMouse(caption, QEvent::MouseMove, QPointF(5 + large, 5 - large), Qt::LeftButton);
    QCOMPARE(dialog.pos(), start + QPoint(large, -large));
    // The anchor stays where the button went down, relative to the caption.
    sendMouse(caption, QEvent::MouseMove, QPointF(5 + large, 5), Qt::LeftButton);
    QCOMPARE(dialog.pos(), start + QPoint(2 * large, -large));
    sendMouse(caption, QEvent::MouseButtonRelease, QPointF(5 + large, 5), Qt::NoButton);
    sendMouse(caption, QEvent::MouseMove, QPointF(5 + 2 * large, 5), Qt::NoButton);
    QCOMPARE(dialog.pos(), start + QPoint(2 * large, -large));
  }
};

DELVANE_QTEST(TestSheetsShell)
#include "test_sheets_shell.moc"
