#include "drawing/paintersurface.h"

#include "drawing/pageengine.h"

#include <QFontMetricsF>
#include <QPageSize>
#include <QPainter>
#include <QPdfWriter>
#include <QSvgGenerator>

#include <cmath>

namespace drawing {

namespace {

constexpr double kMmPerInch = 25.4;
constexpr double kPdfDpi = 1200.0;
constexpr double kSvgDpi = 300.0;

Qt::PenStyle penStyleOf(int drawStyle) {
  switch (drawStyle) {
    case 1:
      return Qt::DashLine;
    case 2:
      return Qt::DotLine;
    case 3:
      return Qt::DashDotLine;
    case 4:
      return Qt::DashDotDotLine;
    case 5:
      return Qt::NoPen;
    default:
      return Qt::SolidLine;
  }
}

Qt::BrushStyle brushStyleOf(int fillStyle) {
  switch (fillStyle) {
    case 0:
      return Qt::SolidPattern;
    case 2:
      return Qt::HorPattern;
    case 3:
      return Qt::VerPattern;
    case 4:
      return Qt::BDiagPattern;
    case 5:
      return Qt::FDiagPattern;
    case 6:
      return Qt::CrossPattern;
    case 7:
      return Qt::DiagCrossPattern;
    default:
      return Qt::NoBrush;
  }
}

int alignmentOf(int format) {
  int flags = 0;
  flags |= (format & kTextCentre)  ? Qt::AlignHCenter
           : (format & kTextRight) ? Qt::AlignRight
                                   : Qt::AlignLeft;
  flags |= (format & kTextMiddle)   ? Qt::AlignVCenter
           : (format & kTextBottom) ? Qt::AlignBottom
                                    : Qt::AlignTop;
  if (format & kTextWordWrap) flags |= Qt::TextWordWrap;
  return flags;
}

}  // namespace

QColor colourOf(std::uint32_t bgr) {
  return QColor(static_cast<int>(bgr & 0xFF), static_cast<int>((bgr >> 8) & 0xFF),
                static_cast<int>((bgr >> 16) & 0xFF));
}

QSize pagePixels(int widthMm, int heightMm, double dotsPerInch) {
  return QSize(static_cast<int>(std::ceil(widthMm * dotsPerInch / kMmPerInch)),
               static_cast<int>(std::ceil(heightMm * dotsPerInch / kMmPerInch)));
}

PainterSurface::PainterSurface(double dotsPerInch, double scale) : m_dpi(dotsPerInch * scale) {}

PainterSurface::~PainterSurface() = default;

void PainterSurface::setPainter(QPainter* painter) {
  flushLines();
  m_painter = painter;
  m_angle = 0;
  m_unturn = QTransform();
  if (m_painter) {
    m_painter->setWorldTransform(m_base);  // not turned, whatever the last page left
    m_painter->setRenderHint(QPainter::Antialiasing);
    m_painter->setRenderHint(QPainter::TextAntialiasing);
    m_painter->setBrush(Qt::NoBrush);
    m_fillStyle = 1;
    applyLayer();
  }
}

double PainterSurface::px(float units) const { return unitsToTwips(units) * m_dpi / 1440.0; }

QPointF PainterSurface::map(double x, double y) const { return m_unturn.map(QPointF(x, y)); }

void PainterSurface::flushLines() {
  if (m_lines.empty() || !m_painter) return;
  m_painter->drawLines(m_lines.data(), static_cast<int>(m_lines.size()));
  m_lines.clear();
}

void PainterSurface::turnTo(int angle) {
  if (angle == m_angle) return;
  flushLines();
  m_angle = angle;
  QTransform turn;
  turn.rotate(-angle);
  m_painter->setWorldTransform(turn * m_base);
  m_unturn = turn.inverted();
}

void PainterSurface::setLayer(int, const LayerStyle& style) {
  flushLines();
  m_layer = style;
  applyLayer();
}

void PainterSurface::applyLayer() {
  m_font = QFont(m_layer.FontName.isEmpty() ? QStringLiteral("Arial") : m_layer.FontName);
  m_font.setStyleHint(QFont::SansSerif);
  m_font.setPixelSize(std::max(1, static_cast<int>(std::lround(m_layer.FontSize * m_dpi / 72.0))));
  if (!m_painter) return;
  // A width of 0 is the thinnest line the device draws in the platform's pens: one screen
  // pixel here, so that no line is a device-dependent hairline.
  const double width = std::max<int>(1, m_layer.DrawWidth) * m_dpi / kScreenDpi;
  m_painter->setPen(QPen(colourOf(m_layer.ForeColor), width, penStyleOf(m_layer.DrawStyle),
                         Qt::FlatCap, Qt::MiterJoin));
  m_painter->setFont(m_font);
  m_ascent = QFontMetricsF(m_font, m_painter->device()).ascent();
  // The fill colour belongs to the layer: the next filled box sets its brush again.
  if (m_fillStyle != 1) setBrushStyle(1);
}

void PainterSurface::setBrushStyle(int fillStyle) {
  if (fillStyle == m_fillStyle) return;
  m_fillStyle = fillStyle;
  m_painter->setBrush(QBrush(colourOf(m_layer.FillColor), brushStyleOf(fillStyle)));
}

void PainterSurface::drawBox(float x1, float y1, float x2, float y2, int fillStyle) {
  if (!m_painter) return;
  flushLines();
  if (m_angle % 90 != 0) turnTo(0);
  setBrushStyle(fillStyle);
  m_painter->drawRect(QRectF(map(px(x1), px(y1)), map(px(x2), px(y2))).normalized());
}

void PainterSurface::drawSolidBox(float x1, float y1, float x2, float y2, int fillStyle) {
  drawBox(x1, y1, x2, y2, fillStyle);
}

void PainterSurface::drawLine(float x1, float y1, float x2, float y2) {
  if (!m_painter) return;
  m_lines.emplace_back(map(px(x1), px(y1)), map(px(x2), px(y2)));
}

void PainterSurface::drawPolyLine(const std::vector<float>& points) {
  if (!m_painter) return;
  flushLines();
  QPolygonF line;
  for (const QPointF& v : polylineVertices(points))
    line << map(px(static_cast<float>(v.x())), px(static_cast<float>(v.y())));
  m_painter->drawPolyline(line);
}

void PainterSurface::drawHText(float x1, float y1, float x2, float y2, const QString& text,
                               int format) {
  if (!m_painter) return;
  flushLines();
  turnTo(0);
  const QRect rect(QPoint(textPixel(x1, m_dpi), textPixel(y1, m_dpi)),
                   QPoint(textPixel(x2, m_dpi), textPixel(y2, m_dpi)));
  m_painter->drawText(rect.normalized(), alignmentOf(effectiveTextFormat(format)), text);
}

void PainterSurface::drawText(float x, float y, const QString& text, int angle) {
  if (!m_painter) return;
  turnTo(angle);
  // The reference point is the top-left of the first character cell.
  const QPointF at = map(textPixel(x, m_dpi), textPixel(y, m_dpi));
  m_painter->drawText(at + QPointF(0.0, m_ascent), text);
}

ImageSurface::ImageSurface(double dotsPerInch) : PainterSurface(dotsPerInch) {}

ImageSurface::~ImageSurface() { ImageSurface::endPage(); }

void ImageSurface::beginPage(int widthMm, int heightMm) {
  endPage();
  QImage image(pagePixels(widthMm, heightMm, effectiveDpi()), QImage::Format_RGB32);
  image.setDotsPerMeterX(static_cast<int>(std::lround(effectiveDpi() / 0.0254)));
  image.setDotsPerMeterY(image.dotsPerMeterX());
  image.fill(Qt::white);
  m_images.push_back(std::move(image));
  m_pagePainter = std::make_unique<QPainter>(&m_images.back());
  setPainter(m_pagePainter.get());
}

void ImageSurface::endPage() {
  if (!m_pagePainter) return;
  setPainter(nullptr);
  m_pagePainter->end();
  m_pagePainter.reset();
}

PdfSurface::PdfSurface(const QString& path, const QString& title)
    : PainterSurface(kPdfDpi), m_writer(std::make_unique<QPdfWriter>(path)) {
  m_writer->setResolution(static_cast<int>(kPdfDpi));
  m_writer->setCreator(QStringLiteral("Delvane"));
  if (!title.isEmpty()) m_writer->setTitle(title);
  m_writer->setPageMargins(QMarginsF(0, 0, 0, 0));
}

PdfSurface::~PdfSurface() { finish(); }

void PdfSurface::beginPage(int widthMm, int heightMm) {
  if (m_failed) return;
  const QPageSize size(QSizeF(widthMm, heightMm), QPageSize::Millimeter, QString(),
                       QPageSize::ExactMatch);
  m_writer->setPageSize(size);
  if (!m_pagePainter) {
    m_pagePainter = std::make_unique<QPainter>();
    if (!m_pagePainter->begin(m_writer.get())) {
      m_failed = true;
      m_pagePainter.reset();
      return;
    }
    setPainter(m_pagePainter.get());
  } else {
    m_writer->newPage();
    setPainter(m_pagePainter.get());
  }
}

bool PdfSurface::finish() {
  if (m_pagePainter) {
    setPainter(nullptr);
    if (!m_pagePainter->end()) m_failed = true;
    m_pagePainter.reset();
  }
  return !m_failed;
}

struct SvgSurface::Page {
  QSvgGenerator generator;
  QPainter painter;
};

SvgSurface::SvgSurface(std::function<QString(int)> pathOfPage)
    : PainterSurface(kSvgDpi), m_pathOfPage(std::move(pathOfPage)) {}

SvgSurface::~SvgSurface() { SvgSurface::endPage(); }

void SvgSurface::beginPage(int widthMm, int heightMm) {
  endPage();
  const QString path = m_pathOfPage(static_cast<int>(m_written.size()));
  m_page = std::make_unique<Page>();
  const QSize pixels = pagePixels(widthMm, heightMm, kSvgDpi);
  m_page->generator.setFileName(path);
  m_page->generator.setSize(pixels);
  m_page->generator.setViewBox(QRect(QPoint(0, 0), pixels));
  m_page->generator.setResolution(static_cast<int>(kSvgDpi));
  m_page->generator.setTitle(QStringLiteral("Delvane"));
  if (!m_page->painter.begin(&m_page->generator)) {
    m_page.reset();
    return;
  }
  m_page->painter.fillRect(QRect(QPoint(0, 0), pixels), Qt::white);
  setPainter(&m_page->painter);
  m_written.append(path);
}

void SvgSurface::endPage() {
  if (!m_page) return;
  setPainter(nullptr);
  m_page->painter.end();
  m_page.reset();
}

}  // namespace drawing
