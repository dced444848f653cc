#include "drawing/previewlayout.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

namespace drawing {

namespace {

struct Axis {
  int position = 0;
  ScrollBarPlacement bar;
};

Axis placeAxis(int window, int page) {
  Axis a;
  if (page <= window) {
    a.position = (window - page) / 2;
    return a;
  }
  a.bar.visible = true;
  const double steps = static_cast<double>(page + kScrollStep - window) / kScrollStep;
  a.bar.maximum = std::clamp<int>(static_cast<int>(std::nearbyint(steps)), 0, INT16_MAX);
  return a;
}

}  // namespace

std::optional<PreviewPlacement> placePreview(int width, int height, int pageWidth, int pageHeight) {
  if (width < kScrollBarThickness || height < kScrollBarThickness) return std::nullopt;
  PreviewPlacement p;
  p.barLeft = width - kScrollBarThickness;
  p.barTop = height - kScrollBarThickness;
  const Axis h = placeAxis(width, pageWidth);
  const Axis v = placeAxis(height, pageHeight);
  p.pageLeft = h.position;
  p.pageTop = v.position;
  p.horizontal = h.bar;
  p.vertical = v.bar;
  return p;
}

std::optional<WheelScroll> wheelScroll(int rotation, int hValue, int hMaximum, int hLargeChange,
                                       int vValue, int vMaximum, int vLargeChange) {
  if (hMaximum < 1 && vMaximum < 1) return std::nullopt;
  const bool vertical = vMaximum >= hMaximum;
  const int value = vertical ? vValue : hValue;
  const int maximum = vertical ? vMaximum : hMaximum;
  const int step = vertical ? vLargeChange : hLargeChange;
  const int next = rotation <= 0 ? std::min(value + step, maximum) : std::max(value - step, 0);
  return WheelScroll{vertical, next};
}

}  // namespace drawing
