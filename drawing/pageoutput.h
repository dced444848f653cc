#pragma once

#include "drawing/pageengine.h"

#include <QImage>
#include <QString>
#include <QStringList>

#include <optional>

namespace drawing {

enum class PageFormat { Pdf, Png, Svg, Json };

// The format a file name asks for by its extension (case-insensitive); nullopt for others.
std::optional<PageFormat> pageFormatOf(const QString& path);

// The file of one page when a format writes a file per page: "out.png" itself for a single
// page, else "out-1.png", "out-2.png", ... (pageNumber 1-based).
QString pageFilePath(const QString& path, int pageNumber, int pageCount);

// Resolution of PNG pages written to files.
inline constexpr double kPngDpi = 150.0;

struct PageOutputResult {
  bool ok = false;
  QString message;      // why it failed, naming the file
  QStringList written;  // the files written, in page order
};

// Writes pages first to last (0-based, inclusive) of producer to path: one PDF with a page per
// sheet page, one PNG or SVG file per page, or the recorded primitives as JSON. The page size
// is the sheet's, at true scale. title goes into the PDF's properties. Each file is written
// under a scratch name beside it and renamed once complete.
PageOutputResult writePages(const SheetProducer& producer, const QString& path, PageFormat format,
                            int first, int last, const QString& title = {});

// One page as an image at dotsPerInch, for the preview.
QImage renderPageImage(const SheetProducer& producer, int page, double dotsPerInch);

}  // namespace drawing
