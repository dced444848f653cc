#include "app/twips.h"

#include "app/settings.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

#include <algorithm>
#include <cmath>

namespace app {

namespace {

const QScreen* screenOf(const QWidget& widget) {
  if (const QScreen* screen = widget.screen()) return screen;
  return QGuiApplication::primaryScreen();
}

}  // namespace

int twipsToPixels(double twips, double logicalDpi) {
  return static_cast<int>(std::lround(twips * logicalDpi / kTwipsPerInch));
}

double pixelsToTwips(int pixels, double logicalDpi) { return pixels * kTwipsPerInch / logicalDpi; }

double screenLogicalDpiX(const QWidget& widget) {
  const QScreen* screen = screenOf(widget);
  return screen ? screen->logicalDotsPerInchX() : 96.0;
}

double screenLogicalDpiY(const QWidget& widget) {
  const QScreen* screen = screenOf(widget);
  return screen ? screen->logicalDotsPerInchY() : 96.0;
}

QRect placeOnScreens(const QRect& wanted, const QList<QRect>& screens) {
  if (screens.isEmpty()) return wanted;
  // The caption strip: enough of it on a screen to take hold of the window.
  constexpr int kReachable = 40;
  const QRect caption(wanted.left(), wanted.top(), wanted.width(), kReachable);
  for (const QRect& screen : screens) {
    const QRect shown = screen.intersected(caption);
    if (shown.width() >= kReachable && shown.height() >= kReachable / 2 &&
        screen.contains(QPoint(shown.left(), wanted.top())))
      return wanted;
  }
  const QPoint centre = wanted.center();
  const auto distance = [&centre](const QRect& screen) {
    const int dx = std::max({screen.left() - centre.x(), 0, centre.x() - screen.right()});
    const int dy = std::max({screen.top() - centre.y(), 0, centre.y() - screen.bottom()});
    return double{1.0 * dx * dx + 1.0 * dy * dy};
  };
  const QRect nearest = *std::min_element(
      screens.begin(), screens.end(),
      [&distance](const QRect& a, const QRect& b) { return distance(a) < distance(b); });
  QRect placed(wanted.topLeft(), wanted.size().boundedTo(nearest.size()));
  placed.moveLeft(std::clamp(placed.left(), nearest.left(), nearest.right() + 1 - placed.width()));
  placed.moveTop(std::clamp(placed.top(), nearest.top(), nearest.bottom() + 1 - placed.height()));
  return placed;
}

void applyWindowPlacement(QWidget& window, const Settings& settings) {
  const double dpiX = screenLogicalDpiX(window);
  const double dpiY = screenLogicalDpiY(window);
  const QRect wanted(twipsToPixels(settings.MainLeft, dpiX), twipsToPixels(settings.MainTop, dpiY),
                     twipsToPixels(settings.MainWidth, dpiX),
                     twipsToPixels(settings.MainHeight, dpiY));
  QList<QRect> screens;
  for (const QScreen* screen : QGuiApplication::screens())
    screens.append(screen->availableGeometry());
  const QRect placed = placeOnScreens(wanted, screens);
  window.move(placed.topLeft());
  window.resize(placed.size());
}

void recordWindowPlacement(const QWidget& window, Settings& settings) {
  QPoint topLeft = window.pos();
  QSize size = window.size();
  if (window.isMaximized() || window.isMinimized() || window.isFullScreen()) {
    // The size to come back to; normalGeometry() excludes the frame that pos() includes.
    const QRect normal = window.normalGeometry();
    topLeft = normal.topLeft() - (window.geometry().topLeft() - window.pos());
    size = normal.size();
  }
  const double dpiX = screenLogicalDpiX(window);
  const double dpiY = screenLogicalDpiY(window);
  settings.MainLeft = static_cast<float>(pixelsToTwips(topLeft.x(), dpiX));
  settings.MainTop = static_cast<float>(pixelsToTwips(topLeft.y(), dpiY));
  settings.MainWidth = static_cast<float>(pixelsToTwips(size.width(), dpiX));
  settings.MainHeight = static_cast<float>(pixelsToTwips(size.height(), dpiY));
}

}  // namespace app
