#pragma once

#include <QString>

#include <cstdint>
#include <vector>

namespace drawing {

// One slot of the page engine's layer table: the style its primitives are drawn with. Colours
// are 0x00BBGGRR; DrawWidth is in screen pixels (1/96 inch).
struct LayerStyle {
  std::int16_t DrawWidth = 1;
  std::int16_t DrawStyle =
      0;  // 0 solid, 1 dash, 2 dot, 3 dash-dot, 4 dash-dot-dot, 5 none, 6 inside
  std::uint32_t ForeColor = 0;
  std::uint32_t FillColor = 0;
  std::int16_t FillStyle = 0;  // 0 solid, 1 transparent, 2 to 7 hatches
  QString FontName;
  std::uint8_t FontSize = 8;  // points
};

// Where the page engine's primitives go: a painter on any device, a recording, later DXF.
// Coordinates are sheet units (6 mm on paper) from the page's top-left corner, y downward,
// exactly as the sheet producers pass them; each surface converts them for its device.
class DrawingSurface {
 public:
  virtual ~DrawingSurface() = default;

  // A new page of the given size in millimetres; the primitives until endPage() belong to it.
  virtual void beginPage(int widthMm, int heightMm) = 0;
  virtual void endPage() = 0;

  // A layer was stored in slot index of the page's layer table.
  virtual void layerCreated(int index, const LayerStyle& style) = 0;
  // The following primitives use this layer.
  virtual void setLayer(int index, const LayerStyle& style) = 0;

  // A rectangle outline; fillStyle is the interior in force (1: transparent).
  virtual void drawBox(float x1, float y1, float x2, float y2, int fillStyle) = 0;
  // A rectangle filled in the layer's fill colour with the layer's fill style.
  virtual void drawSolidBox(float x1, float y1, float x2, float y2, int fillStyle) = 0;
  virtual void drawLine(float x1, float y1, float x2, float y2) = 0;
  // Joined lines through the points, given in groups of three numbers (x, y, unused); at least
  // two whole groups.
  virtual void drawPolyLine(const std::vector<float>& points) = 0;
  // Text laid out in a rectangle with the page engine's format flags (1 centred, 2 right,
  // 4 middle, 8 bottom, 16 word-wrapped), as the producer passed them.
  virtual void drawHText(float x1, float y1, float x2, float y2, const QString& text,
                         int format) = 0;
  // Text from the top-left of its first character, turned counter-clockwise by angle degrees.
  virtual void drawText(float x, float y, const QString& text, int angle) = 0;
};

}  // namespace drawing
