#include "drawing/recordingsurface.h"

#include "db/numbers.h"

#include <QJsonArray>

namespace drawing {

void RecordingSurface::beginPage(int widthMm, int heightMm) {
  m_pages.push_back({widthMm, heightMm, {}, {}});
  m_layer = -1;
}

void RecordingSurface::layerCreated(int index, const LayerStyle& style) {
  if (m_pages.empty()) return;
  auto& layers = m_pages.back().layers;
  if (index >= static_cast<int>(layers.size())) layers.resize(index + 1);
  layers[index] = style;
}

void RecordingSurface::setLayer(int index, const LayerStyle&) { m_layer = index; }

RecordedPrimitive& RecordingSurface::add(const char* op, std::vector<float> coords) {
  if (m_pages.empty()) m_pages.emplace_back();
  auto& primitives = m_pages.back().primitives;
  primitives.push_back({QString::fromLatin1(op), m_layer, std::move(coords), {}, {}, {}});
  return primitives.back();
}

void RecordingSurface::drawBox(float x1, float y1, float x2, float y2, int) {
  add("box", {x1, y1, x2, y2});
}

void RecordingSurface::drawSolidBox(float x1, float y1, float x2, float y2, int) {
  add("solidbox", {x1, y1, x2, y2});
}

void RecordingSurface::drawLine(float x1, float y1, float x2, float y2) {
  add("line", {x1, y1, x2, y2});
}

void RecordingSurface::drawPolyLine(const std::vector<float>& points) { add("polyline", points); }

void RecordingSurface::drawHText(float x1, float y1, float x2, float y2, const QString& text,
                                 int format) {
  RecordedPrimitive& p = add("htext", {x1, y1, x2, y2});
  p.text = text;
  p.format = format;
}

void RecordingSurface::drawText(float x, float y, const QString& text, int angle) {
  RecordedPrimitive& p = add("text", {x, y});
  p.text = text;
  p.angle = angle;
}

QJsonObject RecordingSurface::toJson() const {
  QJsonArray pages;
  for (const RecordedPage& page : m_pages) {
    QJsonArray layers;
    for (const LayerStyle& l : page.layers)
      layers.append(QJsonObject{{QStringLiteral("fore"), static_cast<qint64>(l.ForeColor)},
                                {QStringLiteral("fill"), static_cast<qint64>(l.FillColor)},
                                {QStringLiteral("fill_style"), l.FillStyle},
                                {QStringLiteral("width"), l.DrawWidth},
                                {QStringLiteral("style"), l.DrawStyle},
                                {QStringLiteral("font"), l.FontName},
                                {QStringLiteral("size"), l.FontSize}});
    QJsonArray primitives;
    for (const RecordedPrimitive& p : page.primitives) {
      QJsonArray coords;
      // Each number as the shortest text of the single the producer passed.
      for (float v : p.coords) coords.append(db::measureToDouble(v));
      QJsonObject o{{QStringLiteral("op"), p.op},
                    {QStringLiteral("layer"), p.layer},
                    {QStringLiteral("coords"), coords}};
      if (p.op == QLatin1String("htext") || p.op == QLatin1String("text"))
        o.insert(QStringLiteral("text"), p.text);
      if (p.format) o.insert(QStringLiteral("format"), *p.format);
      if (p.angle) o.insert(QStringLiteral("angle"), *p.angle);
      primitives.append(o);
    }
    pages.append(QJsonObject{{QStringLiteral("width_mm"), page.widthMm},
                             {QStringLiteral("height_mm"), page.heightMm},
                             {QStringLiteral("layers"), layers},
                             {QStringLiteral("primitives"), primitives}});
  }
  return QJsonObject{{QStringLiteral("pages"), pages}};
}

}  // namespace drawing
