#include "drawing/pageengine.h"

#include <QLoggingCategory>

#include <cmath>

Q_LOGGING_CATEGORY(lcPageEngine, "delvane.drawing.pageengine")

namespace drawing {

namespace {

// The platform's face-name field holds 32 bytes with its terminator.
constexpr int kFontNameLength = 31;

}  // namespace

int effectiveTextFormat(int format) { return format == 0 ? kTextCentre | kTextBottom : format; }

int textPixel(float units, double dotsPerInch) {
  const double pixels =
      static_cast<double>(units) * kPixelsPerMm * kMmPerUnit * (dotsPerInch / kScreenDpi);
  return static_cast<int>(std::nearbyint(pixels));
}

double unitsToTwips(float units) { return static_cast<double>(units) * kTwipsPerMm * kMmPerUnit; }

std::vector<QPointF> polylineVertices(const std::vector<float>& points) {
  std::vector<QPointF> vertices;
  const int upper = static_cast<int>(points.size()) - 1;
  for (int i = 0; i <= upper - 5; i += 3) {
    if (vertices.empty()) vertices.emplace_back(points[i], points[i + 1]);
    vertices.emplace_back(points[i + 3], points[i + 4]);
  }
  return vertices;
}

PageEngine::PageEngine(DrawingSurface& surface) : m_surface(surface) {}

void PageEngine::endOpenPage() {
  if (!m_pageOpen) return;
  m_surface.endPage();
  m_pageOpen = false;
}

void PageEngine::pSetPage(std::int16_t width, std::int16_t height) {
  endOpenPage();
  m_layerCount = 0;
  m_currentLayer = -1;
  m_fillStyle = 1;
  m_surface.beginPage(width, height);
  m_pageOpen = true;
}

std::int16_t PageEngine::pCreateLayer(std::uint32_t ForeColor, std::uint32_t FillColor,
                                      std::int16_t FillStyle, std::int16_t DrawWidth,
                                      std::int16_t DrawStyle, const QString& FontName,
                                      std::uint8_t FontSize) {
  if (m_layerCount >= kLayerSlots) {
    qCWarning(lcPageEngine) << "layer refused: all" << kLayerSlots << "slots are taken";
    return -1;
  }
  LayerStyle& layer = m_layers[m_layerCount];
  layer = {DrawWidth, DrawStyle, ForeColor, FillColor, FillStyle, FontName.left(kFontNameLength),
           FontSize};
  m_surface.layerCreated(m_layerCount, layer);
  return static_cast<std::int16_t>(m_layerCount++);
}

void PageEngine::pSetLayer(std::int16_t index) {
  if (index < 0 || index >= m_layerCount) return;
  m_currentLayer = index;
  m_surface.setLayer(index, m_layers[index]);
}

void PageEngine::pDrawBox(float x1, float y1, float x2, float y2) {
  m_surface.drawBox(x1, y1, x2, y2, m_fillStyle);
}

void PageEngine::pDrawSolidBox(float x1, float y1, float x2, float y2) {
  const int fill = m_currentLayer >= 0 ? m_layers[m_currentLayer].FillStyle : 0;
  m_surface.drawSolidBox(x1, y1, x2, y2, fill);
  m_fillStyle = 1;
}

void PageEngine::pDrawLine(float x1, float y1, float x2, float y2) {
  m_surface.drawLine(x1, y1, x2, y2);
}

void PageEngine::pDrawPolyLine(const std::vector<float>& points) {
  if (static_cast<int>(points.size()) - 1 < 5) return;
  m_surface.drawPolyLine(points);
}

void PageEngine::pDrawHText(float x1, float y1, float x2, float y2, const QString& text,
                            std::int16_t format) {
  m_surface.drawHText(x1, y1, x2, y2, text, format);
}

void PageEngine::pDrawText(float x, float y, const QString& text, std::int16_t angle) {
  m_surface.drawText(x, y, text, angle);
}

void renderPages(const SheetProducer& producer, DrawingSurface& surface, int first, int last) {
  PageEngine engine(surface);
  for (int page = first; page <= last; ++page) {
    producer.drawPage(engine, page);
    engine.endOpenPage();
  }
}

}  // namespace drawing
