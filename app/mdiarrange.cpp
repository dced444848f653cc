#include "app/mdiarrange.h"

#include <QMdiArea>
#include <QMdiSubWindow>
#include <QScrollBar>

#include <algorithm>

namespace app {

namespace {

// Splits length into count parts that differ by at most one pixel, larger parts first.
std::vector<int> shares(int length, int count) {
  std::vector<int> parts(static_cast<std::size_t>(count), length / count);
  for (int i = 0; i < length % count; ++i) ++parts[static_cast<std::size_t>(i)];
  return parts;
}

std::vector<QMdiSubWindow*> minimisedChildren(QMdiArea& area) {
  std::vector<QMdiSubWindow*> result;
  for (QMdiSubWindow* child : area.subWindowList(QMdiArea::CreationOrder)) {
    if (!child->isHidden() && child->isMinimized()) result.push_back(child);
  }
  return result;
}

QSize iconSizeOf(const std::vector<QMdiSubWindow*>& icons) {
  QSize size(0, 0);
  for (QMdiSubWindow* icon : icons) size = size.expandedTo(icon->size());
  return size;
}

// The part of the viewport that tiled windows may fill: all of it, less the rows of icons.
QRect tilingArea(QMdiArea& area) {
  QRect rect = area.viewport()->rect();
  const std::vector<QMdiSubWindow*> icons = minimisedChildren(area);
  if (icons.empty()) return rect;
  const QSize iconSize = iconSizeOf(icons);
  const std::vector<QPoint> positions =
      iconPositions(rect, iconSize, static_cast<int>(icons.size()));
  int top = rect.bottom() + 1;
  for (const QPoint& position : positions) top = std::min(top, position.y());
  rect.setBottom(std::max(rect.top(), top - 1));
  return rect;
}

void tile(QMdiArea& area, std::vector<QRect> (*layout)(const QRect&, int)) {
  std::vector<QMdiSubWindow*> children;
  const QList<QMdiSubWindow*> history = area.subWindowList(QMdiArea::ActivationHistoryOrder);
  for (auto it = history.rbegin(); it != history.rend(); ++it) {
    if (!(*it)->isHidden() && !(*it)->isMinimized()) children.push_back(*it);
  }
  if (children.empty()) return;
  // Scrolled-away children would otherwise be placed relative to the scrolled origin.
  area.horizontalScrollBar()->setValue(area.horizontalScrollBar()->minimum());
  area.verticalScrollBar()->setValue(area.verticalScrollBar()->minimum());
  const std::vector<QRect> rects = layout(tilingArea(area), static_cast<int>(children.size()));
  for (std::size_t i = 0; i < children.size(); ++i) {
    if (children[i]->isMaximized()) children[i]->showNormal();
    children[i]->setGeometry(rects[i]);
  }
}

}  // namespace

std::vector<QRect> horizontalTiles(const QRect& area, int count) {
  std::vector<QRect> result;
  if (count < 1) return result;
  int top = area.top();
  for (int height : shares(area.height(), count)) {
    result.emplace_back(area.left(), top, area.width(), height);
    top += height;
  }
  return result;
}

std::vector<QRect> verticalTiles(const QRect& area, int count) {
  std::vector<QRect> result;
  if (count < 1) return result;
  int left = area.left();
  for (int width : shares(area.width(), count)) {
    result.emplace_back(left, area.top(), width, area.height());
    left += width;
  }
  return result;
}

std::vector<QPoint> iconPositions(const QRect& area, QSize iconSize, int count) {
  std::vector<QPoint> result;
  if (count < 1 || iconSize.width() < 1 || iconSize.height() < 1) return result;
  const int perRow = std::max(1, area.width() / iconSize.width());
  for (int i = 0; i < count; ++i) {
    const int row = i / perRow;
    const int column = i % perRow;
    result.emplace_back(area.left() + column * iconSize.width(),
                        area.top() + area.height() - (row + 1) * iconSize.height());
  }
  return result;
}

void tileHorizontal(QMdiArea& area) { tile(area, &horizontalTiles); }

void tileVertical(QMdiArea& area) { tile(area, &verticalTiles); }

void arrangeIcons(QMdiArea& area) {
  const std::vector<QMdiSubWindow*> icons = minimisedChildren(area);
  if (icons.empty()) return;
  const std::vector<QPoint> positions =
      iconPositions(area.viewport()->rect(), iconSizeOf(icons), static_cast<int>(icons.size()));
  for (std::size_t i = 0; i < icons.size(); ++i) icons[i]->move(positions[i]);
}

}  // namespace app
