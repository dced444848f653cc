#pragma once

#include <QString>

namespace sheets {

class frmDataGrid;
class frmReport;
struct SheetContext;

// The layouts that turn a fresh data sheet into the editor of one project table, and the
// quantity report windows. Each sheet layout sets the query and the connection, loads the
// sheet, hides the key columns, sizes and aligns the rest, names the sheet and shows it
// through the context's main-window link (or on its own when there is none). A query that
// cannot be opened throws db::Error before anything is shown.
namespace modGridStyles {

// "Package": Name, Phase, District.
void PackageStyle(frmDataGrid& sheet);
// "Sections" of the current package: Description, Title.
void SectionsStyle(frmDataGrid& sheet);
// "DesignDetails" of the current section: every column but SectionID and ID.
void DesignDetailsStyle(frmDataGrid& sheet);
// "DesignLevels" of the current section: every column but SectionID and ID.
void DesignLevelsStyle(frmDataGrid& sheet);
// table: "Initial" or "Executed"; Chainage, Offset, Level of the current section.
void LevelsStyle(frmDataGrid& sheet, const QString& table);
// "Outlets" of the current section: every column but SectionID and ID.
void OutletsStyle(frmDataGrid& sheet);

// Creates, fills and shows a new "Quantity Summary" of the current section. The window is
// handed to the main-window link; without one the caller owns it. Null when no project is open,
// when a quantity run is already under way, and when the user cancels the run.
frmReport* ShowQuantitySummary(const SheetContext& context);
// Creates, fills and shows a new area calculation window for chainage (km). Windows are never
// reused: every call makes a new one. Ownership as for ShowQuantitySummary.
frmReport* ShowAreaCalculation(const SheetContext& context, float chainage);

}  // namespace modGridStyles

}  // namespace sheets
