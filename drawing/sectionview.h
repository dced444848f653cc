#pragma once

#include "drawing/crosssectionsheet.h"

#include <QPointF>
#include <QSizeF>

namespace drawing {

// The section viewer draws a sheet unit as 400 twips on the screen: the resolution that gives
// on a screen of logicalDpi, times zoom.
double viewDpi(double logicalDpi, double zoom = 1.0);
// Device pixels of a sheet unit at dotsPerInch, as the painter surfaces place lines.
double pixelsPerUnit(double dotsPerInch);

// The section viewer's picture of one cross-section: the sheets' figure of the section on a
// page of its own, one sheet unit to a metre, with room for the level scale at the left and
// the last labels at the right.
class CrossSectionView : public SheetProducer {
 public:
  CrossSectionView(engine::CrossSection section, bool executed, engine::NumberSymbols symbols);

  int pageCount() const override { return 1; }
  void drawPage(PageEngine& engine, int page) const override;

  const engine::CrossSection& section() const { return m_section; }
  // The picture's size in sheet units.
  QSizeF size() const { return m_size; }
  // Where the point at offset (negative to the left) and level is drawn, and the offset and
  // level at a position, in sheet units.
  QPointF positionOf(double offset, double level) const;
  QPointF valueAt(QPointF position) const;

 private:
  engine::CrossSection m_section;
  CrossSectionFigure m_figure;
  QSizeF m_size;
  QPointF m_at;  // the figure's legend edge and band bottom
};

}  // namespace drawing
