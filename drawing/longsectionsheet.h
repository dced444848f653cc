#pragma once

#include "drawing/pageengine.h"
#include "drawing/sheettitle.h"
#include "engine/sectionviews.h"

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
};

// The longitudinal-section sheet: the ground on the left, centre and right and the design level
// along the chainage over a datum, with their values in a band below, page after page until
// the chainage range ends.
class LongSectionSheet : public SheetProducer {
 public:
  LongSectionSheet(engine::LongProfile profile, LongSectionSheetOptions options);

  int pageCount() const override;
  void drawPage(PageEngine& engine, int page) const override;

  int pageWidthMm() const;
  int pageHeightMm() const;
  // The datum of a page, in whole metres.
  int datumOf(int page) const;

 private:
  engine::LongProfile m_profile;
  LongSectionSheetOptions m_options;
  // Rows of each page: [first, last] indices into m_profile.rows.
  std::vector<std::pair<int, int>> m_pages;
};

}  // namespace drawing
