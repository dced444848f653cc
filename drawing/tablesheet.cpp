#include "drawing/tablesheet.h"

#include <QRegularExpression>

#include <algorithm>
#include <cmath>

namespace drawing {

namespace {

// The layout, in sheet units (6 mm). A row holds one line of 8-point text.
constexpr int kPortraitWidthMm = 210;
constexpr int kPortraitHeightMm = 297;
constexpr float kMargin = 1.5f;
constexpr float kTitleHeight = 1.0f;
constexpr float kGapBelowTitle = 0.3f;
constexpr float kHeaderHeight = 1.3f;  // two lines of a wrapped caption
constexpr float kRowHeight = 0.75f;
constexpr float kCellInset = 0.15f;
constexpr std::uint8_t kPoints = 8;

float units(double mm) { return static_cast<float>(mm / kMmPerUnit); }

}  // namespace

bool isNumberText(const QString& text) {
  static const QRegularExpression number(
      QStringLiteral(R"(^\s*[-+]?(\d{1,3}(,\d{3})+|\d+)(\.\d+)?\s*$|^\s*[-+]?\.\d+\s*$)"));
  return number.match(text).hasMatch();
}

TableSheet::TableSheet(std::vector<TableColumn> columns, TableRows rows, TableSheetOptions options)
    : m_columns(std::move(columns)), m_rows(std::move(rows)), m_options(std::move(options)) {
  double natural = 0.0;
  for (const TableColumn& c : m_columns) natural += std::max(0.0, c.widthMm);
  const auto usable = [](int pageWidthMm) { return pageWidthMm - 2.0 * kMargin * kMmPerUnit; };
  const bool landscape = natural > usable(kPortraitWidthMm);
  m_pageWidthMm = landscape ? kPortraitHeightMm : kPortraitWidthMm;
  m_pageHeightMm = landscape ? kPortraitWidthMm : kPortraitHeightMm;
  const double shrink = natural > usable(m_pageWidthMm) ? usable(m_pageWidthMm) / natural : 1.0;
  for (const TableColumn& c : m_columns)
    m_widths.push_back(units(std::max(0.0, c.widthMm) * shrink));

  const float body =
      units(m_pageHeightMm) - 2 * kMargin - kTitleHeight - kGapBelowTitle - kHeaderHeight;
  m_rowsPerPage = std::max(1, static_cast<int>(std::floor(body / kRowHeight)));
  m_pageCount = std::max(1, (std::max(0, m_rows.count) + m_rowsPerPage - 1) / m_rowsPerPage);
}

QString TableSheet::titleOf(int page) const {
  const SheetTitle& t = m_options.title;
  QStringList parts;
  for (const QString& part : {t.projectFile, t.packageName, t.sectionDescription})
    if (!part.isEmpty()) parts << part;
  if (!m_options.name.isEmpty()) parts << m_options.name;
  if (!m_options.date.isEmpty()) parts << m_options.date;
  parts << QStringLiteral("Page %1 of %2").arg(page + 1).arg(m_pageCount);
  return parts.join(QStringLiteral(" - "));
}

void TableSheet::drawPage(PageEngine& engine, int page) const {
  engine.pSetPage(static_cast<std::int16_t>(m_pageWidthMm),
                  static_cast<std::int16_t>(m_pageHeightMm));
  const QString font = QStringLiteral("Arial");
  const std::int16_t plain = engine.pCreateLayer(0x000000, 0xE0E0E0, 0, 1, 0, font, kPoints);
  const std::int16_t heavy = engine.pCreateLayer(0x000000, 0, 0, 2, 0, font, kPoints);
  if (page < 0 || page >= m_pageCount) return;

  const float left = kMargin;
  float right = left;
  for (float w : m_widths) right += w;
  engine.pSetLayer(plain);
  engine.pDrawHText(left, kMargin, units(m_pageWidthMm) - kMargin, kMargin + kTitleHeight,
                    titleOf(page), kTextMiddle);

  // The header row, shaded, its captions wrapped and centred.
  const float headerTop = kMargin + kTitleHeight + kGapBelowTitle;
  const float headerBottom = headerTop + kHeaderHeight;
  engine.pDrawSolidBox(left, headerTop, right, headerBottom);
  float x = left;
  for (std::size_t c = 0; c < m_columns.size(); ++c) {
    if (m_widths[c] > 0)
      engine.pDrawHText(x + kCellInset, headerTop, x + m_widths[c] - kCellInset, headerBottom,
                        m_columns[c].header, kTextCentre | kTextMiddle | kTextWordWrap);
    x += m_widths[c];
  }

  const int first = page * m_rowsPerPage;
  const int last = std::min(m_rows.count, first + m_rowsPerPage);
  float y = headerBottom;
  for (int row = first; row < last; ++row) {
    const QStringList cells = m_rows.text ? m_rows.text(row) : QStringList();
    // A totals row is shaded like the header, under a heavier rule.
    if (m_rows.bold && m_rows.bold(row)) {
      engine.pDrawSolidBox(left, y, right, y + kRowHeight);
      engine.pSetLayer(heavy);
      engine.pDrawLine(left, y, right, y);
      engine.pSetLayer(plain);
    }
    x = left;
    for (std::size_t c = 0; c < m_columns.size(); ++c) {
      const QString text = c < static_cast<std::size_t>(cells.size()) ? cells[c] : QString();
      if (m_widths[c] > 0 && !text.isEmpty())
        engine.pDrawHText(x + kCellInset, y, x + m_widths[c] - kCellInset, y + kRowHeight, text,
                          (isNumberText(text) ? kTextRight : 0) | kTextMiddle);
      x += m_widths[c];
    }
    y += kRowHeight;
    engine.pDrawLine(left, y, right, y);
  }
  // The frame and the column rules over the rows drawn.
  engine.pSetLayer(plain);
  engine.pDrawBox(left, headerTop, right, y);
  x = left;
  for (std::size_t c = 0; c + 1 < m_columns.size(); ++c) {
    x += m_widths[c];
    if (m_widths[c] > 0) engine.pDrawLine(x, headerTop, x, y);
  }
}

}  // namespace drawing
