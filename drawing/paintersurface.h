#pragma once

#include "drawing/drawingsurface.h"

#include <QColor>
#include <QFont>
#include <QImage>
#include <QLineF>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QTransform>

#include <functional>
#include <memory>

class QPainter;
class QPdfWriter;

namespace drawing {

// 0x00BBGGRR as a colour.
QColor colourOf(std::uint32_t bgr);

// A page's size in device pixels at dotsPerInch.
QSize pagePixels(int widthMm, int heightMm, double dotsPerInch);

// Paints the primitives with a QPainter whose coordinates are the device pixels of a page at
// dotsPerInch, origin at the page's top-left corner. Lines and boxes are placed through twips,
// text on the rounded text grid, fonts sized for the device (never through a painter scale, so
// a font is not scaled twice), pens with real widths. The device itself comes from a subclass,
// which starts and ends its pages.
class PainterSurface : public DrawingSurface {
 public:
  // scale shrinks (or enlarges) everything, for a sheet fitted to smaller paper.
  explicit PainterSurface(double dotsPerInch, double scale = 1.0);
  ~PainterSurface() override;

  void layerCreated(int, const LayerStyle&) override {}
  void setLayer(int index, const LayerStyle& style) override;
  void drawBox(float x1, float y1, float x2, float y2, int fillStyle) override;
  void drawSolidBox(float x1, float y1, float x2, float y2, int fillStyle) override;
  void drawLine(float x1, float y1, float x2, float y2) override;
  void drawPolyLine(const std::vector<float>& points) override;
  void drawHText(float x1, float y1, float x2, float y2, const QString& text, int format) override;
  void drawText(float x, float y, const QString& text, int angle) override;

  // The resolution the primitives are converted with: the device's times the scale.
  double effectiveDpi() const { return m_dpi; }

 protected:
  // The painter of the page being drawn; null between pages. Its transform is set to put the
  // page's corner at the origin given before.
  void setPainter(QPainter* painter);
  // Where the page's top-left corner goes on the device, in device pixels (a tile of a page
  // printed over several sheets of paper starts left of and above the paper).
  void setOrigin(QPointF origin) { m_base = QTransform::fromTranslate(origin.x(), origin.y()); }
  QPainter* painter() const { return m_painter; }

 private:
  double px(float units) const;
  void applyLayer();
  void setBrushStyle(int fillStyle);
  // Turns the painter by angle degrees counter-clockwise about the page's origin, when it is
  // not already; every primitive maps its points through the turn, so that a run of turned
  // labels and their ticks changes the device's state once, not twice a label.
  void turnTo(int angle);
  QPointF map(double x, double y) const;
  // Lines are gathered and drawn together when anything else is drawn or changes: a PDF then
  // strokes a band's ticks as one path instead of one path each.
  void flushLines();

  double m_dpi;
  QPainter* m_painter = nullptr;
  LayerStyle m_layer;
  QFont m_font;
  double m_ascent = 0.0;
  int m_fillStyle = 1;          // the brush in force
  int m_angle = 0;              // the turn in force
  QTransform m_unturn;          // page to turned coordinates
  QTransform m_base;            // the page's corner on the device
  std::vector<QLineF> m_lines;  // waiting to be drawn, in turned coordinates
};

// Draws on a painter the caller owns, such as a widget's in its paint event, with the page's
// corner at origin (device pixels).
class ExternalPainterSurface : public PainterSurface {
 public:
  ExternalPainterSurface(QPainter& painter, double dotsPerInch, QPointF origin = {})
      : PainterSurface(dotsPerInch), m_target(painter), m_origin(origin) {}
  void beginPage(int, int) override {
    setOrigin(m_origin);
    setPainter(&m_target);
  }
  void endPage() override { setPainter(nullptr); }

 private:
  QPainter& m_target;
  QPointF m_origin;
};

// Pages as images at dotsPerInch, white paper; for the preview and for PNG files.
class ImageSurface : public PainterSurface {
 public:
  explicit ImageSurface(double dotsPerInch);
  ~ImageSurface() override;
  void beginPage(int widthMm, int heightMm) override;
  void endPage() override;
  const std::vector<QImage>& images() const { return m_images; }

 private:
  std::vector<QImage> m_images;
  std::unique_ptr<QPainter> m_pagePainter;
};

// Pages into one PDF file, each PDF page the size of the sheet page, at true scale.
class PdfSurface : public PainterSurface {
 public:
  explicit PdfSurface(const QString& path, const QString& title = {});
  ~PdfSurface() override;
  void beginPage(int widthMm, int heightMm) override;
  void endPage() override { setPainter(nullptr); }
  // Closes the file; false when it could not be written.
  bool finish();

 private:
  std::unique_ptr<QPdfWriter> m_writer;
  std::unique_ptr<QPainter> m_pagePainter;
  bool m_failed = false;
};

// One SVG file per page, named by pathOfPage (the page's 0-based index).
class SvgSurface : public PainterSurface {
 public:
  explicit SvgSurface(std::function<QString(int)> pathOfPage);
  ~SvgSurface() override;
  void beginPage(int widthMm, int heightMm) override;
  void endPage() override;
  const QStringList& written() const { return m_written; }

 private:
  struct Page;
  std::function<QString(int)> m_pathOfPage;
  std::unique_ptr<Page> m_page;
  QStringList m_written;
};

}  // namespace drawing
