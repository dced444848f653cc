#include "app/twips.h"

#include "app/settings.h"

#include <QGuiApplication>
#include <QScreen>
#include <QWidget>

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

void applyWindowPlacement(QWidget& window, const Settings& settings) {
  const double dpiX = screenLogicalDpiX(window);
  const double dpiY = screenLogicalDpiY(window);
  window.move(twipsToPixels(settings.MainLeft, dpiX), twipsToPixels(settings.MainTop, dpiY));
  window.resize(twipsToPixels(settings.MainWidth, dpiX), twipsToPixels(settings.MainHeight, dpiY));
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
