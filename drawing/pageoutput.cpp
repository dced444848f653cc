#include "drawing/pageoutput.h"

#include "drawing/paintersurface.h"
#include "drawing/recordingsurface.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QSaveFile>

namespace drawing {

std::optional<PageFormat> pageFormatOf(const QString& path) {
  const QString suffix = QFileInfo(path).suffix().toLower();
  if (suffix == QLatin1String("pdf")) return PageFormat::Pdf;
  if (suffix == QLatin1String("png")) return PageFormat::Png;
  if (suffix == QLatin1String("svg")) return PageFormat::Svg;
  if (suffix == QLatin1String("json")) return PageFormat::Json;
  return std::nullopt;
}

QString pageFilePath(const QString& path, int pageNumber, int pageCount) {
  if (pageCount <= 1) return path;
  const QFileInfo info(path);
  const QString name = info.completeBaseName() + QLatin1Char('-') + QString::number(pageNumber) +
                       QLatin1Char('.') + info.suffix();
  return info.dir().filePath(name);
}

namespace {

QString cannotWrite(const QString& path) {
  return QStringLiteral("The file %1 cannot be written.").arg(QDir::toNativeSeparators(path));
}

}  // namespace

PageOutputResult writePages(const SheetProducer& producer, const QString& path, PageFormat format,
                            int first, int last, const QString& title) {
  PageOutputResult result;
  const int count = last - first + 1;
  switch (format) {
    case PageFormat::Pdf: {
      QSaveFile probe(path);
      if (!probe.open(QIODevice::WriteOnly)) {
        result.message = cannotWrite(path);
        return result;
      }
      probe.cancelWriting();
      PdfSurface surface(path, title);
      renderPages(producer, surface, first, last);
      if (!surface.finish()) {
        result.message = cannotWrite(path);
        return result;
      }
      result.written.append(path);
      break;
    }
    case PageFormat::Png: {
      for (int page = first; page <= last; ++page) {
        ImageSurface surface(kPngDpi);
        renderPages(producer, surface, page, page);
        const QString file = pageFilePath(path, page - first + 1, count);
        if (surface.images().empty() || !surface.images().front().save(file, "PNG")) {
          result.message = cannotWrite(file);
          return result;
        }
        result.written.append(file);
      }
      break;
    }
    case PageFormat::Svg: {
      SvgSurface surface([&](int index) { return pageFilePath(path, index + 1, count); });
      renderPages(producer, surface, first, last);
      surface.endPage();
      for (const QString& file : surface.written())
        if (!QFileInfo(file).isFile()) {
          result.message = cannotWrite(file);
          return result;
        }
      result.written = surface.written();
      break;
    }
    case PageFormat::Json: {
      RecordingSurface surface;
      renderPages(producer, surface, first, last);
      QSaveFile file(path);
      if (!file.open(QIODevice::WriteOnly) ||
          file.write(QJsonDocument(surface.toJson()).toJson(QJsonDocument::Compact)) < 0 ||
          !file.commit()) {
        result.message = cannotWrite(path);
        return result;
      }
      result.written.append(path);
      break;
    }
  }
  result.ok = true;
  return result;
}

QImage renderPageImage(const SheetProducer& producer, int page, double dotsPerInch) {
  ImageSurface surface(dotsPerInch);
  renderPages(producer, surface, page, page);
  surface.endPage();
  return surface.images().empty() ? QImage() : surface.images().front();
}

}  // namespace drawing
