#include "drawing/longsectionsheet.h"

// Being written: see the helper brief.
namespace drawing {
LongSectionSheet::LongSectionSheet(engine::LongProfile profile, LongSectionSheetOptions options)
    : m_profile(std::move(profile)), m_options(std::move(options)) {}
int LongSectionSheet::pageCount() const { return 0; }
void LongSectionSheet::drawPage(PageEngine&, int) const {}
int LongSectionSheet::pageWidthMm() const { return 0; }
int LongSectionSheet::pageHeightMm() const { return 0; }
int LongSectionSheet::datumOf(int) const { return 0; }
}  // namespace drawing
