#pragma once

#include "drawing/pageengine.h"
#include "drawing/sheettitle.h"
#include "engine/sectionviews.h"

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
  float unitsPerMetre() const { return m_unitsPerMetre; }

 private:
  void layOut();
  float sectionHeight(const engine::CrossSection& s) const;
  float sectionWidth(const engine::CrossSection& s) const;
  void drawSection(PageEngine& engine, const engine::CrossSection& s,
                   const SectionPlacement& at) const;
  void drawLegend(PageEngine& engine, float x, float y, float datum, float highest,
                  float bandWidth) const;
  void drawSectionLine(PageEngine& engine, float cx, float yd, float yb, float datum,
                       const std::vector<engine::ProfilePoint>& left,
                       const std::vector<engine::ProfilePoint>& right) const;
  void drawTitle(PageEngine& engine, int page) const;

  std::vector<engine::CrossSection> m_sections;
  CrossSectionSheetOptions m_options;
  float m_unitsPerMetre = 1.0f;
  float m_bandHeight = 8.0f;
  int m_pageWidthMm = 0;
  int m_pageHeightMm = 0;
  int m_pageCount = 0;
  std::vector<SectionPlacement> m_placements;  // one per section
  std::vector<int> m_firstOnPage;              // index of each page's first section
};

}  // namespace drawing
