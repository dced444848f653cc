#pragma once

#include "drawing/pageengine.h"
#include "drawing/sheettitle.h"
#include "engine/sectionviews.h"

#include <QPointF>

#include <vector>

namespace drawing {

// The scale the cross-section sheets are drawn at when none is chosen: one metre is one sheet
// unit, 6 mm on paper (about 1:167).
inline constexpr int kNativeScale = 0;
// The standard scales offered besides the native one (the same on both axes).
inline constexpr int kStandardScales[] = {100, 200, 250, 500};

struct CrossSectionSheetOptions {
  bool executed = false;     // draw the executed ground and the taller band
  int scale = kNativeScale;  // N of 1:N, or kNativeScale
  SheetTitle title;
  // When a printout is fitted to smaller paper: the factor it is printed at (1 = true scale),
  // so that the title line states the scale the paper really has.
  double printFactor = 1.0;
};

// The captions of a cross-section's band rows: the sheets' own, or the section viewer's shorter
// ones, which also name the rows of final (executed) levels.
enum class BandCaptions { Sheet, Screen };

// One cross-section as the sheets and the section viewer draw it: the legend column with the
// level scale, the band of distances and levels under the section, the design, existing and
// (when asked for) executed lines over the datum, and a line above naming the chainage and
// areas. A figure stands at (x, y): the legend's left edge and the band's bottom edge.
class CrossSectionFigure {
 public:
  CrossSectionFigure(float unitsPerMetre, bool executed, BandCaptions captions,
                     engine::NumberSymbols symbols);

  // The figure's four layers, created on a page just set, in the order draw() selects them.
  static void createLayers(PageEngine& engine);

  // From the top of the line naming the section down to the band's bottom edge.
  float height(const engine::CrossSection& s) const;
  // The legend column and the section across.
  float width(const engine::CrossSection& s) const;
  float bandHeight() const { return m_bandHeight; }
  float unitsPerMetre() const { return m_unitsPerMetre; }

  void draw(PageEngine& engine, const engine::CrossSection& s, float x, float y) const;

  // Where the point at offset (negative left of the centre line) and level stands, and the
  // offset and level at a position: the one mapping the drawing uses, so that a pick agrees
  // with what is drawn.
  QPointF positionOf(const engine::CrossSection& s, float x, float y, double offset,
                     double level) const;
  QPointF valueAt(const engine::CrossSection& s, float x, float y, QPointF position) const;

 private:
  void drawLegend(PageEngine& engine, float x, float y, float datum, float highest,
                  float bandWidth) const;
  void drawSectionLine(PageEngine& engine, float cx, float yd, float yb, float datum,
                       const std::vector<engine::ProfilePoint>& left,
                       const std::vector<engine::ProfilePoint>& right) const;

  float m_unitsPerMetre;
  bool m_executed;
  BandCaptions m_captions;
  engine::NumberSymbols m_symbols;
  float m_bandHeight;
};

// Where one cross-section goes: its page, the x of its column and the y of its band's bottom
// edge, in sheet units.
struct SectionPlacement {
  int page = 0;
  float x = 0.0f;
  float y = 0.0f;
};

// The cross-section sheets of a section: every chainage in order, in columns down the pages,
// with a band of offsets and levels under each section and a legend at its left.
class CrossSectionSheet : public SheetProducer {
 public:
  CrossSectionSheet(std::vector<engine::CrossSection> sections, CrossSectionSheetOptions options);

  int pageCount() const override { return m_pageCount; }
  void drawPage(PageEngine& engine, int page) const override;

  int pageWidthMm() const { return m_pageWidthMm; }
  int pageHeightMm() const { return m_pageHeightMm; }
  const std::vector<SectionPlacement>& placements() const { return m_placements; }
  // How many sections pages first to last (0-based, inclusive) hold.
  int sectionsOn(int first, int last) const;
  // Sheet units per metre of offset and level.
  float unitsPerMetre() const { return m_figure.unitsPerMetre(); }

 private:
  void layOut();
  void drawTitle(PageEngine& engine, int page) const;

  std::vector<engine::CrossSection> m_sections;
  CrossSectionSheetOptions m_options;
  CrossSectionFigure m_figure;
  int m_pageWidthMm = 0;
  int m_pageHeightMm = 0;
  int m_pageCount = 0;
  std::vector<SectionPlacement> m_placements;  // one per section
  std::vector<int> m_firstOnPage;              // index of each page's first section
};

}  // namespace drawing
