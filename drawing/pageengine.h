#pragma once

#include "drawing/drawingsurface.h"

#include <QPointF>
#include <QString>

#include <array>
#include <cstdint>
#include <vector>

namespace drawing {

inline constexpr double kTwipsPerMm = 56.693;
inline constexpr double kPixelsPerMm = 3.7795;  // screen pixels at 96 per inch
inline constexpr double kMmPerUnit = 6.0;       // one sheet unit on paper, both directions
inline constexpr double kScreenDpi = 96.0;
inline constexpr int kLayerSlots = 10;

// Text formats of pDrawHText.
inline constexpr int kTextCentre = 1;
inline constexpr int kTextRight = 2;
inline constexpr int kTextMiddle = 4;
inline constexpr int kTextBottom = 8;
inline constexpr int kTextWordWrap = 16;

// The format pDrawHText lays text out with: format 0 means centred at the bottom.
int effectiveTextFormat(int format);

// A sheet-unit coordinate as a text position on a device with dotsPerInch: screen pixels of
// the unit, scaled by the device's resolution over the screen's, rounded half to even. Text is
// placed on this grid on every device, so the preview and the paper agree.
int textPixel(float units, double dotsPerInch);

// A sheet-unit coordinate in twips, as lines and boxes are placed.
double unitsToTwips(float units);

// The points a polyline's segments join: one per group of three numbers, while a whole segment
// remains. Fewer than two groups give none.
std::vector<QPointF> polylineVertices(const std::vector<float>& points);

class SheetProducer;

// The page drawing engine: a layer table and the drawing operations through which a sheet
// producer draws one page onto a surface. It keeps no drawing; to print, the producer draws
// the page again onto another surface.
class PageEngine {
 public:
  explicit PageEngine(DrawingSurface& surface);

  DrawingSurface& surface() const { return m_surface; }

  // Sizes the page in millimetres and starts it on the surface. The layer table is emptied and
  // the fill is transparent again, so every drawing of a page starts from the same state.
  void pSetPage(std::int16_t width, std::int16_t height);
  // Stores a style in the next free slot and returns its index; -1 when all slots are taken
  // (the layer is refused and the current layer stays in force).
  std::int16_t pCreateLayer(std::uint32_t ForeColor, std::uint32_t FillColor,
                            std::int16_t FillStyle, std::int16_t DrawWidth, std::int16_t DrawStyle,
                            const QString& FontName, std::uint8_t FontSize);
  // Makes a created layer current; any other index is ignored.
  void pSetLayer(std::int16_t index);
  void pDrawBox(float x1, float y1, float x2, float y2);
  void pDrawSolidBox(float x1, float y1, float x2, float y2);
  void pDrawLine(float x1, float y1, float x2, float y2);
  // Numbers in groups of three (x, y, ignored); fewer than two groups draw nothing.
  void pDrawPolyLine(const std::vector<float>& points);
  void pDrawHText(float x1, float y1, float x2, float y2, const QString& text, std::int16_t format);
  void pDrawText(float x, float y, const QString& text, std::int16_t angle);

  int layerCount() const { return m_layerCount; }
  int currentLayer() const { return m_currentLayer; }

 private:
  void endOpenPage();

  DrawingSurface& m_surface;
  std::array<LayerStyle, kLayerSlots> m_layers{};
  int m_layerCount = 0;
  int m_currentLayer = -1;
  int m_fillStyle = 1;  // the interior of a plain box: transparent until a solid box changes it
  bool m_pageOpen = false;

  friend void renderPages(const SheetProducer&, DrawingSurface&, int, int);
};

// A producer of a sheet that may run over several pages.
class SheetProducer {
 public:
  virtual ~SheetProducer() = default;
  virtual int pageCount() const = 0;
  // Draws page (0-based): pSetPage, the layers, then the primitives.
  virtual void drawPage(PageEngine& engine, int page) const = 0;
};

// Draws pages first to last (0-based, inclusive) of producer onto surface, each page on a
// fresh layer table. This is the one page loop of the program.
void renderPages(const SheetProducer& producer, DrawingSurface& surface, int first, int last);

}  // namespace drawing
