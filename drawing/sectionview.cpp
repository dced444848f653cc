#include "drawing/sectionview.h"

#include <cmath>

namespace drawing {

namespace {

// Around the figure, in sheet units: the legend stands this far from the left edge; what the
// picture's width leaves on the right holds the outermost labels.
constexpr double kLeftRoom = 1.0;
constexpr double kExtraWidth = 5.0;  // besides the legend column, both sides together
constexpr double kBottomRoom = 0.5;

constexpr double kTwipsPerViewUnit = 400.0;

}  // namespace

double viewDpi(double logicalDpi, double zoom) {
  return logicalDpi * zoom * kTwipsPerViewUnit / unitsToTwips(1.0f);
}

double pixelsPerUnit(double dotsPerInch) { return unitsToTwips(1.0f) * dotsPerInch / 1440.0; }

CrossSectionView::CrossSectionView(engine::CrossSection section, bool executed,
                                   engine::NumberSymbols symbols)
    : m_section(std::move(section)),
      m_figure(1.0f, executed, BandCaptions::Screen, std::move(symbols)) {
  const double height = m_figure.height(m_section) + kBottomRoom;
  m_size = QSizeF(m_figure.width(m_section) + kExtraWidth, height);
  m_at = QPointF(kLeftRoom, height - kBottomRoom);
}

void CrossSectionView::drawPage(PageEngine& engine, int page) const {
  const auto mm = [](double units) {
    return static_cast<std::int16_t>(std::ceil(units * kMmPerUnit));
  };
  engine.pSetPage(mm(m_size.width()), mm(m_size.height()));
  CrossSectionFigure::createLayers(engine);
  if (page != 0) return;
  m_figure.draw(engine, m_section, static_cast<float>(m_at.x()), static_cast<float>(m_at.y()));
}

QPointF CrossSectionView::positionOf(double offset, double level) const {
  return m_figure.positionOf(m_section, static_cast<float>(m_at.x()), static_cast<float>(m_at.y()),
                             offset, level);
}

QPointF CrossSectionView::valueAt(QPointF position) const {
  return m_figure.valueAt(m_section, static_cast<float>(m_at.x()), static_cast<float>(m_at.y()),
                          position);
}

}  // namespace drawing
