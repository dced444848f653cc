#include "drawing/recordingsurface.h"
#include "drawing/tablesheet.h"

#include <gtest/gtest.h>

namespace {

using drawing::RecordedPage;
using drawing::RecordedPrimitive;
using drawing::TableSheet;

// n rows of a number and a word, the last a totals row when totals is set.
TableSheet tableOf(int n, std::vector<double> widthsMm, bool totals = false) {
  std::vector<drawing::TableColumn> columns;
  for (double w : widthsMm) columns.push_back({QStringLiteral("Col %1").arg(columns.size()), w});
  drawing::TableRows rows;
  rows.count = n;
  rows.text = [](int row) {
    return QStringList{QStringLiteral("%1.500").arg(row), QStringLiteral("word%1").arg(row)};
  };
  if (totals) rows.bold = [n](int row) { return row == n - 1; };
  drawing::TableSheetOptions options;
  options.title.projectFile = QStringLiteral("canal.delvane");
  options.name = QStringLiteral("Initial");
  return TableSheet(std::move(columns), std::move(rows), std::move(options));
}

std::vector<RecordedPage> pagesOf(const TableSheet& sheet) {
  drawing::RecordingSurface surface;
  drawing::renderPages(sheet, surface, 0, sheet.pageCount() - 1);
  return surface.pages();
}

std::vector<const RecordedPrimitive*> textsOn(const RecordedPage& page, const QString& prefix) {
  std::vector<const RecordedPrimitive*> found;
  for (const RecordedPrimitive& p : page.primitives)
    if (p.text.startsWith(prefix)) found.push_back(&p);
  return found;
}

}  // namespace

TEST(TableSheet, EveryRowOnceOverPagesEachWithTitleAndHeader) {
  const TableSheet sheet = tableOf(130, {30, 30});
  const std::vector<RecordedPage> pages = pagesOf(sheet);
  ASSERT_EQ(static_cast<int>(pages.size()), (130 + sheet.rowsPerPage() - 1) / sheet.rowsPerPage());
  ASSERT_GE(pages.size(), 2u);
  int rows = 0;
  for (std::size_t k = 0; k < pages.size(); ++k) {
    SCOPED_TRACE(k);
    EXPECT_EQ(pages[k].widthMm, 210);
    EXPECT_EQ(textsOn(pages[k], QStringLiteral("Col ")).size(), 2u);
    EXPECT_EQ(
        textsOn(
            pages[k],
            QStringLiteral("canal.delvane - Initial - Page %1 of %2").arg(k + 1).arg(pages.size()))
            .size(),
        1u);
    rows += static_cast<int>(textsOn(pages[k], QStringLiteral("word")).size());
  }
  EXPECT_EQ(rows, 130);
  EXPECT_EQ(textsOn(pages.back(), QStringLiteral("word129")).size(), 1u);
}

TEST(TableSheet, NumbersStandRightTextLeftAndTotalsAreShaded) {
  const std::vector<RecordedPage> pages = pagesOf(tableOf(3, {30, 30}, true));
  const RecordedPrimitive* number = textsOn(pages[0], QStringLiteral("1.500")).at(0);
  const RecordedPrimitive* word = textsOn(pages[0], QStringLiteral("word1")).at(0);
  EXPECT_TRUE(*number->format & drawing::kTextRight);
  EXPECT_FALSE(*word->format & (drawing::kTextRight | drawing::kTextCentre));
  int shaded = 0;
  for (const RecordedPrimitive& p : pages[0].primitives)
    shaded += p.op == QLatin1String("solidbox");
  EXPECT_EQ(shaded, 2);  // the header and the totals row
}

TEST(TableSheet, WideTablesTurnToLandscapeThenShrinkToThePage) {
  struct Case {
    std::vector<double> widths;
    int pageWidthMm;
    double drawnMm;  // the columns together
  };
  for (const Case& c :
       {Case{{90, 90}, 210, 180}, Case{{120, 120}, 297, 240}, Case{{200, 200}, 297, 297 - 18}}) {
    const TableSheet sheet = tableOf(1, c.widths);
    EXPECT_EQ(sheet.pageWidthMm(), c.pageWidthMm);
    double drawn = 0;
    for (float w : sheet.columnWidths()) drawn += w * drawing::kMmPerUnit;
    EXPECT_NEAR(drawn, c.drawnMm, 0.01);
  }
}

TEST(TableSheet, NumberTextIsWhatTheSheetsWrite) {
  for (const char* yes : {"0", "-3", "1,234.50", "12.5", ".5", "10,974,363.25"})
    EXPECT_TRUE(drawing::isNumberText(QString::fromLatin1(yes))) << yes;
  for (const char* no : {"", "abc", "1,23", "12.5 Sqm.", "1.2.3", "Left"})
    EXPECT_FALSE(drawing::isNumberText(QString::fromLatin1(no))) << no;
}
