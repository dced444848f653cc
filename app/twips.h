#pragma once

#include <QList>
#include <QRect>

class QWidget;

namespace app {

struct Settings;

inline constexpr double kTwipsPerInch = 1440;

// Twips (1/1440 inch) to pixels at the given logical DPI, rounded to the nearest pixel.
int twipsToPixels(double twips, double logicalDpi);
// Pixels to twips at the given logical DPI.
double pixelsToTwips(int pixels, double logicalDpi);

// The logical DPI of the screen the widget is on (the primary screen when it has none yet).
double screenLogicalDpiX(const QWidget& widget);
double screenLogicalDpiY(const QWidget& widget);

// Where a window placed at wanted shows on screens (their available areas): where it is when its
// top edge, which holds the caption to drag it by, can be reached on one of them; else moved onto
// the nearest screen, shrunk to it when larger.
QRect placeOnScreens(const QRect& wanted, const QList<QRect>& screens);

// Places the main window from the four window keys (twips): left, top of the frame and the
// width, height of the window, brought back onto a screen when none shows it (a monitor
// unplugged since).
void applyWindowPlacement(QWidget& window, const Settings& settings);
// Takes the window's normal (not maximised) left, top, width and height into the four keys.
void recordWindowPlacement(const QWidget& window, Settings& settings);

}  // namespace app
