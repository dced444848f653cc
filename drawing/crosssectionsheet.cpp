#include "drawing/crosssectionsheet.h"

// Being written.
namespace drawing {
CrossSectionSheet::CrossSectionSheet(std::vector<engine::CrossSection> sections,
                                     CrossSectionSheetOptions options)
    : m_sections(std::move(sections)), m_options(std::move(options)) {}
void CrossSectionSheet::drawPage(PageEngine&, int) const {}
int CrossSectionSheet::sectionsOn(int, int) const { return 0; }
}  // namespace drawing
