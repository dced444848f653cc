#pragma once

#include <QPoint>
#include <QRect>
#include <QSize>

#include <vector>

class QMdiArea;

namespace app {

// Rectangles for count windows stacked top to bottom, each as wide as area; the heights share
// area's height, the first ones taking the odd pixels. Empty when count < 1.
std::vector<QRect> horizontalTiles(const QRect& area, int count);
// Rectangles for count windows side by side, each as high as area; the widths share area's
// width as above.
std::vector<QRect> verticalTiles(const QRect& area, int count);
// Top-left corners for count minimised windows of iconSize, lined up left to right along the
// bottom edge of area and continuing on a new row above when a row is full.
std::vector<QPoint> iconPositions(const QRect& area, QSize iconSize, int count);

// The Window menu's arrangements of an MDI area's children. The tilings take the visible
// children that are not minimised, the most recently active first, and leave a strip along the
// bottom for minimised ones; arrangeIcons moves only the minimised children.
void tileHorizontal(QMdiArea& area);
void tileVertical(QMdiArea& area);
void arrangeIcons(QMdiArea& area);

}  // namespace app
