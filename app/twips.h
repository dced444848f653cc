#pragma once

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

// Places the main window from the four window keys (twips): left, top of the frame and the
// width, height of the window.
void applyWindowPlacement(QWidget& window, const Settings& settings);
// Takes the window's normal (not maximised) left, top, width and height into the four keys.
void recordWindowPlacement(const QWidget& window, Settings& settings);

}  // namespace app
