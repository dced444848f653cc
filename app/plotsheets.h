#pragma once

#include "app/printform.h"
#include "drawing/crosssectionsheet.h"
#include "drawing/longsectionsheet.h"

#include <QStringList>

#include <vector>

class QWidget;

namespace sheets {
class GridControl;
}

namespace app {

struct AppState;

// The page window's sheets of cross-sections and of the longitudinal section, named after the
// section they show.
PrintSheet crossSectionPrintSheet(std::vector<engine::CrossSection> sections,
                                  drawing::CrossSectionSheetOptions options);
PrintSheet longSectionPrintSheet(engine::LongProfile profile,
                                 drawing::LongSectionSheetOptions options);

// The whole table of a data sheet or report (every row, the columns in their screen widths, hidden
// ones left out) as a printable sheet named name, titled with the current selection.
PrintSheet tablePrintSheet(const AppState& state, const sheets::GridControl& grid,
                           const QString& name);

// The scales the cross-section window offers, by their labels, and the scale of each.
QStringList crossSectionScaleLabels();
int crossSectionScaleAt(int index);

// Output > Plot X Section: computes the cross-sections of the current section under the
// progress window and opens them in a page window with a choice of scales. A section without
// chainages opens one empty page and says so. Returns the window, or null when none opened
// (no section, the user cancelled, or a database error that the user has been told about).
// Message boxes go through context, owned by parent.
PrintForm* plotCrossSections(AppState& state, const sheets::SheetContext& context, QWidget* parent);

// Output > Plot L Section: the longitudinal section of the current section from its first to
// its last quantity chainage, laid out by the L Section settings. Fewer than two chainages: the
// user is told and nothing opens.
PrintForm* plotLongSection(AppState& state, const sheets::SheetContext& context, QWidget* parent);

}  // namespace app
