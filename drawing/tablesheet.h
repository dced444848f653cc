#pragma once

#include "drawing/pageengine.h"
#include "drawing/sheettitle.h"

#include <QString>
#include <QStringList>

#include <functional>
#include <vector>

namespace drawing {

// One column of a printed table: its caption and its width on screen, which the printout keeps
// in proportion.
struct TableColumn {
  QString header;
  double widthMm = 20.0;
};

// The rows of a table, read one at a time while a page is drawn, so that a sheet of 400,000
// rows prints without being copied first.
struct TableRows {
  int count = 0;
  std::function<QStringList(int row)> text;  // one text per column
  std::function<bool(int row)> bold;         // a totals row, shaded; unset: none
};

struct TableSheetOptions {
  SheetTitle title;
  QString name;  // what the table is: "Initial", "Quantity Summary"
  QString date;  // as the title line shows it
};

// A data sheet or report printed in full: every row over as many A4 pages as it needs, portrait
// unless the columns need the width of landscape, the header row on every page, the title line
// (project, package, section, name, date, "Page k of n") above it, a totals row shaded. A cell that
// reads as a number stands at the right of its column, other text at the left; both stay text on
// the page, so a PDF reader finds them.
class TableSheet : public SheetProducer {
 public:
  TableSheet(std::vector<TableColumn> columns, TableRows rows, TableSheetOptions options);

  int pageCount() const override { return m_pageCount; }
  void drawPage(PageEngine& engine, int page) const override;

  int pageWidthMm() const { return m_pageWidthMm; }
  int pageHeightMm() const { return m_pageHeightMm; }
  int rowsPerPage() const { return m_rowsPerPage; }
  // The columns' widths on paper, in sheet units: the screen's, shrunk to the page when wider.
  const std::vector<float>& columnWidths() const { return m_widths; }

 private:
  QString titleOf(int page) const;

  std::vector<TableColumn> m_columns;
  TableRows m_rows;
  TableSheetOptions m_options;
  std::vector<float> m_widths;
  int m_pageWidthMm = 210;
  int m_pageHeightMm = 297;
  int m_rowsPerPage = 1;
  int m_pageCount = 1;
};

// Whether a cell's text is a number as the sheets write them ("1,234.50", "-3", "0.5"): such
// cells are aligned right.
bool isNumberText(const QString& text);

}  // namespace drawing
