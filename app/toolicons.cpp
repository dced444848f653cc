#include "app/toolicons.h"

#include <QPainter>
#include <QPainterPath>
#include <QPixmap>
#include <QPolygonF>

#include <functional>
#include <map>

namespace app {

namespace {

// Every picture is drawn on a 32 x 32 canvas and scaled for the smaller sizes.
constexpr int kCanvas = 32;

const QColor kInk(40, 40, 40);
const QColor kPaper(255, 255, 255);
const QColor kBlue(32, 96, 192);
const QColor kGreen(40, 150, 60);
const QColor kRed(200, 40, 40);
const QColor kBrown(150, 100, 50);
const QColor kYellow(240, 200, 80);

QPen ink(const QColor& colour = kInk, qreal width = 1.6) {
  return QPen(colour, width, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin);
}

// A sheet of paper with a folded corner.
void page(QPainter& p, const QRectF& r) {
  const qreal fold = r.width() / 4;
  QPolygonF outline({r.topLeft(), QPointF(r.right() - fold, r.top()),
                     QPointF(r.right(), r.top() + fold), r.bottomRight(), r.bottomLeft()});
  p.setPen(ink());
  p.setBrush(kPaper);
  p.drawPolygon(outline);
  p.drawPolyline(
      QPolygonF({QPointF(r.right() - fold, r.top()), QPointF(r.right() - fold, r.top() + fold),
                 QPointF(r.right(), r.top() + fold)}));
}

void textLines(QPainter& p, const QRectF& r, int count) {
  p.setPen(ink(QColor(120, 120, 120), 1.2));
  for (int i = 0; i < count; ++i) {
    const qreal y = r.top() + (i + 1) * r.height() / (count + 1);
    p.drawLine(QPointF(r.left(), y), QPointF(r.right(), y));
  }
}

void table(QPainter& p, const QRectF& r, int rows, int columns, const QColor& header) {
  p.setPen(ink(kInk, 1.2));
  p.setBrush(kPaper);
  p.drawRect(r);
  p.fillRect(QRectF(r.left(), r.top(), r.width(), r.height() / rows), header);
  for (int i = 1; i < rows; ++i) {
    const qreal y = r.top() + i * r.height() / rows;
    p.drawLine(QPointF(r.left(), y), QPointF(r.right(), y));
  }
  for (int i = 1; i < columns; ++i) {
    const qreal x = r.left() + i * r.width() / columns;
    p.drawLine(QPointF(x, r.top()), QPointF(x, r.bottom()));
  }
  p.setBrush(Qt::NoBrush);
  p.drawRect(r);
}

// A trapezoidal canal cross-section over a ground line.
void canalSection(QPainter& p, const QRectF& r) {
  p.setPen(ink(kBrown, 2));
  p.drawPolyline(QPolygonF({QPointF(r.left(), r.top() + r.height() * 0.45),
                            QPointF(r.left() + r.width() * 0.3, r.top() + r.height() * 0.35),
                            QPointF(r.right(), r.top() + r.height() * 0.5)}));
  p.setPen(ink(kBlue, 2));
  p.drawPolyline(QPolygonF({QPointF(r.left(), r.top() + r.height() * 0.3),
                            QPointF(r.left() + r.width() * 0.3, r.bottom()),
                            QPointF(r.right() - r.width() * 0.3, r.bottom()),
                            QPointF(r.right(), r.top() + r.height() * 0.3)}));
}

void plus(QPainter& p, QPointF centre, qreal half, const QColor& colour) {
  p.setPen(ink(colour, 3));
  p.drawLine(centre - QPointF(half, 0), centre + QPointF(half, 0));
  p.drawLine(centre - QPointF(0, half), centre + QPointF(0, half));
}

void drawOpen(QPainter& p) {
  p.setPen(ink());
  p.setBrush(kYellow);
  p.drawPolygon(QPolygonF({QPointF(3, 8), QPointF(12, 8), QPointF(14, 11), QPointF(27, 11),
                           QPointF(27, 26), QPointF(3, 26)}));
  p.setBrush(QColor(250, 225, 130));
  p.drawPolygon(QPolygonF({QPointF(3, 26), QPointF(8, 15), QPointF(31, 15), QPointF(27, 26)}));
}

void drawSave(QPainter& p) {
  p.setPen(ink());
  p.setBrush(kBlue);
  p.drawRoundedRect(QRectF(4, 4, 24, 24), 2, 2);
  p.setBrush(kPaper);
  p.drawRect(QRectF(9, 4, 14, 9));
  p.setBrush(QColor(200, 200, 200));
  p.drawRect(QRectF(8, 18, 16, 10));
  p.fillRect(QRectF(18, 6, 3, 5), kInk);
}

void drawPrint(QPainter& p) {
  page(p, QRectF(9, 3, 14, 12));
  p.setPen(ink());
  p.setBrush(QColor(190, 190, 190));
  p.drawRoundedRect(QRectF(3, 13, 26, 11), 2, 2);
  p.setBrush(kPaper);
  p.drawRect(QRectF(8, 20, 16, 9));
  p.fillRect(QRectF(24, 16, 3, 2), kGreen);
}

void drawPackages(QPainter& p) {
  const QColor box(205, 160, 95);
  p.setPen(ink());
  for (const QRectF& r : {QRectF(3, 16, 13, 12), QRectF(16, 16, 13, 12), QRectF(9, 4, 13, 12)}) {
    p.setBrush(box);
    p.drawRect(r);
    p.drawLine(QPointF(r.center().x(), r.top()), QPointF(r.center().x(), r.top() + 4));
  }
}

void drawCut(QPainter& p) {
  p.setPen(ink(kInk, 2));
  p.drawLine(QPointF(10, 3), QPointF(20, 21));
  p.drawLine(QPointF(22, 3), QPointF(12, 21));
  p.setBrush(Qt::NoBrush);
  p.setPen(ink(kRed, 2.2));
  p.drawEllipse(QPointF(9, 25), 4.5, 4.5);
  p.drawEllipse(QPointF(23, 25), 4.5, 4.5);
}

void drawCopy(QPainter& p) {
  page(p, QRectF(4, 3, 16, 20));
  textLines(p, QRectF(7, 8, 9, 12), 3);
  page(p, QRectF(12, 9, 16, 20));
  textLines(p, QRectF(15, 14, 9, 12), 3);
}

void drawPaste(QPainter& p) {
  p.setPen(ink());
  p.setBrush(kBrown);
  p.drawRoundedRect(QRectF(4, 5, 20, 24), 2, 2);
  p.setBrush(QColor(190, 190, 190));
  p.drawRoundedRect(QRectF(9, 2, 10, 6), 1.5, 1.5);
  page(p, QRectF(14, 11, 15, 19));
  textLines(p, QRectF(17, 15, 8, 12), 3);
}

void drawUndo(QPainter& p) {
  QPainterPath arc;
  arc.moveTo(9, 12);
  arc.cubicTo(QPointF(20, 6), QPointF(30, 14), QPointF(24, 25));
  p.setPen(ink(kBlue, 3));
  p.setBrush(Qt::NoBrush);
  p.drawPath(arc);
  p.setPen(Qt::NoPen);
  p.setBrush(kBlue);
  p.drawPolygon(QPolygonF({QPointF(3, 12), QPointF(12, 5), QPointF(12, 19)}));
}

void drawFind(QPainter& p) {
  p.setPen(ink(kInk, 2.4));
  p.setBrush(QColor(210, 230, 250));
  p.drawEllipse(QPointF(13, 13), 8.5, 8.5);
  p.setPen(ink(kBrown, 4.5));
  p.drawLine(QPointF(19.5, 19.5), QPointF(28, 28));
}

void drawHelp(QPainter& p) {
  p.setPen(ink(kBlue, 1.6));
  p.setBrush(kBlue);
  p.drawEllipse(QRectF(3, 3, 26, 26));
  QFont font = p.font();
  font.setBold(true);
  font.setPixelSize(20);
  p.setFont(font);
  p.setPen(kPaper);
  p.drawText(QRectF(3, 3, 26, 26), Qt::AlignCenter, QStringLiteral("?"));
}

void drawAdd(QPainter& p) {
  table(p, QRectF(3, 3, 20, 20), 4, 2, QColor(200, 215, 235));
  p.setPen(Qt::NoPen);
  p.setBrush(kPaper);
  p.drawEllipse(QPointF(23, 23), 8, 8);
  plus(p, QPointF(23, 23), 6, kGreen);
}

void drawDelete(QPainter& p) {
  table(p, QRectF(3, 3, 20, 20), 4, 2, QColor(200, 215, 235));
  p.setPen(ink(kRed, 3.2));
  p.drawLine(QPointF(17, 17), QPointF(29, 29));
  p.drawLine(QPointF(29, 17), QPointF(17, 29));
}

void drawProfile(QPainter& p) {
  table(p, QRectF(2, 2, 16, 18), 4, 2, QColor(200, 215, 235));
  canalSection(p, QRectF(10, 16, 20, 13));
}

void drawDesignLevels(QPainter& p) {
  p.setPen(ink(kInk, 1.2));
  p.drawLine(QPointF(3, 29), QPointF(29, 29));
  p.drawLine(QPointF(3, 29), QPointF(3, 3));
  p.setPen(ink(kBlue, 2.4));
  p.drawPolyline(QPolygonF({QPointF(4, 10), QPointF(14, 14), QPointF(20, 14), QPointF(29, 19)}));
  p.setPen(ink(kBrown, 1.6));
  p.drawPolyline(QPolygonF(
      {QPointF(4, 20), QPointF(10, 17), QPointF(17, 22), QPointF(23, 18), QPointF(29, 24)}));
}

void drawInitialLevels(QPainter& p) { table(p, QRectF(3, 3, 26, 26), 5, 3, QColor(225, 205, 170)); }

void drawInitialSet(QPainter& p) {
  table(p, QRectF(3, 3, 18, 26), 5, 2, QColor(225, 205, 170));
  p.setPen(ink(kGreen, 2.6));
  p.drawLine(QPointF(26, 6), QPointF(26, 24));
  p.setPen(Qt::NoPen);
  p.setBrush(kGreen);
  p.drawPolygon(QPolygonF({QPointF(21, 21), QPointF(31, 21), QPointF(26, 29)}));
}

void drawLsection(QPainter& p) {
  p.setPen(ink(kBrown, 2));
  p.drawPolyline(QPolygonF({QPointF(2, 12), QPointF(8, 9), QPointF(14, 13), QPointF(20, 8),
                            QPointF(26, 12), QPointF(30, 10)}));
  p.setPen(ink(kBlue, 2.4));
  p.drawLine(QPointF(2, 18), QPointF(30, 22));
  p.setPen(ink(kInk, 1));
  for (int x = 4; x <= 28; x += 6) p.drawLine(QPointF(x, 25), QPointF(x, 29));
  p.drawLine(QPointF(2, 27), QPointF(30, 27));
}

void drawXsection(QPainter& p) {
  canalSection(p, QRectF(2, 6, 28, 20));
  p.setPen(QPen(kInk, 1, Qt::DashLine));
  p.drawLine(QPointF(16, 3), QPointF(16, 29));
}

void drawQuantityReport(QPainter& p) {
  page(p, QRectF(5, 2, 22, 28));
  p.setPen(ink(kInk, 1.2));
  for (int row = 0; row < 4; ++row) {
    const qreal y = 11 + row * 4.5;
    p.drawLine(QPointF(9, y), QPointF(15, y));
    p.drawLine(QPointF(18, y), QPointF(23, y));
  }
  p.setPen(ink(kRed, 1.6));
  p.drawLine(QPointF(9, 27), QPointF(23, 27));
}

}  // namespace

QIcon toolIcon(const QString& key) {
  static const std::map<QString, std::function<void(QPainter&)>> kDrawings = {
      {QStringLiteral("Open"), drawOpen},
      {QStringLiteral("Save"), drawSave},
      {QStringLiteral("Print"), drawPrint},
      {QStringLiteral("Packages"), drawPackages},
      {QStringLiteral("Cut"), drawCut},
      {QStringLiteral("Copy"), drawCopy},
      {QStringLiteral("Paste"), drawPaste},
      {QStringLiteral("Undo"), drawUndo},
      {QStringLiteral("Find"), drawFind},
      {QStringLiteral("Help"), drawHelp},
      {QStringLiteral("Add"), drawAdd},
      {QStringLiteral("Delete"), drawDelete},
      {QStringLiteral("Profile"), drawProfile},
      {QStringLiteral("DesignLevels"), drawDesignLevels},
      {QStringLiteral("InitialLevels"), drawInitialLevels},
      {QStringLiteral("InitialSet"), drawInitialSet},
      {QStringLiteral("Lsection"), drawLsection},
      {QStringLiteral("Xsection"), drawXsection},
      {QStringLiteral("QuantityReport"), drawQuantityReport},
  };
  const auto it = kDrawings.find(key);
  if (it == kDrawings.end()) return {};
  QIcon icon;
  for (int size : {16, 24, 32, 48}) {
    QPixmap pixmap(size, size);
    pixmap.fill(Qt::transparent);
    QPainter painter(&pixmap);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.setRenderHint(QPainter::TextAntialiasing);
    painter.scale(static_cast<qreal>(size) / kCanvas, static_cast<qreal>(size) / kCanvas);
    it->second(painter);
    painter.end();
    icon.addPixmap(pixmap);
  }
  return icon;
}

}  // namespace app
