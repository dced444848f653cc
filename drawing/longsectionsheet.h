#pragma once

#include "drawing/pageengine.h"
#include "drawing/sheettitle.h"
#include "engine/sectionviews.h"

#include <QPointF>
#include <QString>

#include <vector>

namespace drawing {

// The settings of the Options dialog's L Section tab that the sheet follows.
struct LongSectionSheetOptions {
  bool executed = false;       // a row of final (executed) levels
  float metresPerPage = 1000;  // "MetersPerPage": metres of chainage across a page's drawing
  float verticalScale = 100;   // "LSectionScale": levels drawn at 1 : this
  bool fixedDatum = false;     // "FixedDatum"
  float fixedDatumValue = 0;   // "FixedDatumVal"
  SheetTitle title;
  double printFactor = 1.0;  // as for the cross-section sheets
  // 0: a page's metres span the drawing width of an A3 sheet. Above 0 (the section viewer's
  // picture): the page is as wide as its metres need at this many units a kilometre, no higher
  // than its levels need, and has neither frame nor title line.
  double unitsPerKilometre = 0.0;
};

// The longitudinal-section sheet: the ground on the left, centre and right and the design level
// along the chainage over a datum, with their values in a band below, page after page until
// the chainage range ends. The three ground lines share the existing ground's blue and are told
// apart by their pens: left dashed, centre solid, right dotted. A line that runs on past a
// page's edge is cut there and picked up at the same level on the next page.
class LongSectionSheet : public SheetProducer {
 public:
  LongSectionSheet(engine::LongProfile profile, LongSectionSheetOptions options);

  // The metres of chainage a picture widthUnits wide holds at unitsPerKilometre.
  static double metresAcross(double widthUnits, double unitsPerKilometre);

  int pageCount() const override;
  void drawPage(PageEngine& engine, int page) const override;

  int pageWidthMm() const;
  int pageHeightMm() const;
  // The datum of a page (0-based), in whole metres: the fixed datum when one is set, else the
  // whole part of the lowest level drawn on that page, minus 1. 0 for a page that does not exist.
  int datumOf(int page) const;
  // How many chainages pages first to last (0-based, inclusive) show; one on the edge between
  // two of them counts once.
  int chainagesOn(int first, int last) const;

  // The mapping the drawing uses on a page, and back: where the chainage (in metres) and level
  // stand, and the chainage and level at a position. Levels below the datum are drawn on the
  // datum line; the way back does not clamp. A page that does not exist gives (0, 0).
  QPointF positionOf(int page, double metres, double level) const;
  QPointF valueAt(int page, QPointF position) const;

 private:
  // Where one page runs along the chainage and the levels it is drawn over.
  struct PagePlan {
    double startMetres = 0.0;  // the chainage at the drawing's left edge
    int first = 0;             // rows [first, last] of m_profile.rows lie on the page;
    int last = -1;             // last < first when none does
    int datum = 0;             // whole metres
    int topLevel = 0;          // the whole metre the level scale ends at
  };

  void planPages();
  QString titleOf(int page) const;
  float yOfLevel(double level, const PagePlan& plan) const;
  float xOfChainage(double metres, const PagePlan& plan) const;

  engine::LongProfile m_profile;
  LongSectionSheetOptions m_options;
  double m_metresPerPage = 0.0;  // the options with their guards applied
  int m_pageWidthMm = 0;
  float m_drawingWidth = 0.0f;  // from a page's first chainage to its last possible one
  double m_verticalScale = 0.0;
  float m_unitsPerLevelMetre = 0.0f;  // sheet units per metre of level
  int m_pageHeightMm = 0;
  std::vector<PagePlan> m_pages;
};

}  // namespace drawing
