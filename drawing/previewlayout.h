#pragma once

#include <optional>

namespace drawing {

// Sizes in twips (1/1440 inch), as the page window places its parts.
inline constexpr int kScrollBarThickness = 260;
inline constexpr int kScrollStep = 250;

struct ScrollBarPlacement {
  bool visible = false;
  int maximum = 0;
};

// Where the page window puts the page and its two bars for an inner size W x H and a page of
// pageWidth x pageHeight: a bar is hidden and the page centred on an axis where it fits, else
// the bar scrolls it in 250-twip steps from the edge.
struct PreviewPlacement {
  int barLeft = 0;  // the vertical bar's left; the print button's left
  int barTop = 0;   // the horizontal bar's top; the print button's top
  int pageLeft = 0;
  int pageTop = 0;
  ScrollBarPlacement horizontal;
  ScrollBarPlacement vertical;
};

// nullopt when the window is too small to lay out (either side under 260 twips).
std::optional<PreviewPlacement> placePreview(int width, int height, int pageWidth, int pageHeight);

// The page's left (or top) for a bar value.
inline int pagePositionOf(int barValue) { return -kScrollStep * barValue; }

// A wheel turn: which bar moves and its new value. Nothing moves when neither bar can scroll;
// else the bar with the larger maximum (the vertical one on a tie) moves one large change,
// down/right for a turn toward the user (rotation <= 0), up/left otherwise.
struct WheelScroll {
  bool vertical = true;
  int value = 0;
};
std::optional<WheelScroll> wheelScroll(int rotation, int hValue, int hMaximum, int hLargeChange,
                                       int vValue, int vMaximum, int vLargeChange);

}  // namespace drawing
