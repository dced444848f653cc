#pragma once

#include "drawing/drawingsurface.h"

#include <QJsonObject>
#include <QString>

#include <optional>
#include <vector>

namespace drawing {

// One primitive as the producer passed it to the page engine.
struct RecordedPrimitive {
  QString op;  // "line", "box", "solidbox", "polyline", "htext" or "text"
  int layer = -1;
  std::vector<float> coords;  // sheet units; a polyline's groups of three
  QString text;
  std::optional<int> format;
  std::optional<int> angle;
};

struct RecordedPage {
  int widthMm = 0;
  int heightMm = 0;
  std::vector<LayerStyle> layers;
  std::vector<RecordedPrimitive> primitives;
};

// Keeps every page and primitive instead of drawing them: for tests, and for scripts that
// check a layout by its numbers.
class RecordingSurface : public DrawingSurface {
 public:
  void beginPage(int widthMm, int heightMm) override;
  void endPage() override {}
  void layerCreated(int index, const LayerStyle& style) override;
  void setLayer(int index, const LayerStyle& style) override;
  void drawBox(float x1, float y1, float x2, float y2, int fillStyle) override;
  void drawSolidBox(float x1, float y1, float x2, float y2, int fillStyle) override;
  void drawLine(float x1, float y1, float x2, float y2) override;
  void drawPolyLine(const std::vector<float>& points) override;
  void drawHText(float x1, float y1, float x2, float y2, const QString& text, int format) override;
  void drawText(float x, float y, const QString& text, int angle) override;

  const std::vector<RecordedPage>& pages() const { return m_pages; }
  // {"pages": [{"width_mm", "height_mm", "layers": [...], "primitives": [...]}, ...]}
  QJsonObject toJson() const;

 private:
  RecordedPrimitive& add(const char* op, std::vector<float> coords);

  std::vector<RecordedPage> m_pages;
  int m_layer = -1;
};

}  // namespace drawing
