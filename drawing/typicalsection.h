#pragma once

#include "drawing/pageengine.h"
#include "drawing/sheettitle.h"
#include "engine/typicalsection.h"

#include <optional>
#include <vector>

namespace drawing {

// The scales the typical section is drawn at (1:N, the same on both axes); the largest that
// keeps the section within a sheet's width is chosen.
inline constexpr int kTypicalScales[] = {50, 100, 200, 250, 500, 1000, 2000};

// The typical section of a design on one page: the design section as its formulas build it,
// each formula's names written at the dimension it gives, the outer slopes, and the values of
// the design details it was drawn with.
class TypicalSectionSheet : public SheetProducer {
 public:
  TypicalSectionSheet(engine::TypicalSection section, SheetTitle title);

  int pageCount() const override { return 1; }
  void drawPage(PageEngine& engine, int page) const override;

  int pageWidthMm() const { return m_pageWidthMm; }
  int pageHeightMm() const { return m_pageHeightMm; }
  int scale() const { return m_scale; }  // N of 1:N

 private:
  // Where a dimension is drawn: its row above the section (Width) or its column beside it
  // (Height), counted outward from the section.
  struct Placed {
    std::size_t dimension = 0;  // in the section's dimensions
    int track = 0;
  };

  void layOut();
  float xOf(float distance, bool left) const;
  float yOf(float level) const;
  // The outermost point of a side and where its outer slope ends; nullopt without a slope.
  std::optional<engine::ProfilePoint> slopeEnd(bool left) const;
  float rowY(int row) const;
  float columnX(int column, bool left) const;
  QString detailsText() const;

  void drawSection(PageEngine& engine) const;
  void drawWidth(PageEngine& engine, const Placed& placed) const;
  void drawHeight(PageEngine& engine, const Placed& placed) const;
  void drawLevel(PageEngine& engine, const engine::TypicalDimension& dimension) const;

  engine::TypicalSection m_section;
  SheetTitle m_title;
  int m_scale = 100;
  float m_unitsPerMetre = 1.0f;
  // The page position of the centre line and of the centre-line level.
  float m_centreX = 0.0f;
  float m_centreY = 0.0f;
  float m_lowestY = 0.0f;  // the lowest drawn point's y
  float m_topY = 0.0f;     // the highest drawn point's y
  float m_leftX = 0.0f;    // the outermost drawn x of each side
  float m_rightX = 0.0f;
  std::vector<Placed> m_widths;
  std::vector<Placed> m_heights;
  int m_pageWidthMm = 0;
  int m_pageHeightMm = 0;
};

}  // namespace drawing
