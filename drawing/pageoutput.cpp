#include "drawing/pageoutput.h"

#include "drawing/paintersurface.h"
#include "drawing/recordingsurface.h"

#include <QDir>
#include <QFileInfo>
#include <QJsonDocument>
#include <QRandomGenerator>
#include <QSaveFile>

#include <filesystem>
#include <memory>
#include <system_error>
#include <vector>

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

// A file written under a scratch name beside its target, which takes the target's name only
// once it is complete: a failed write leaves any earlier file of that name as it was, and a
// link of that name is replaced rather than written through.
class ScratchFile {
 public:
  explicit ScratchFile(QString target) : m_target(std::move(target)) {
    const QFileInfo info(m_target);
    m_path = info.dir().filePath(
        QStringLiteral(".%1.%2.part")
            .arg(info.fileName(), QString::number(QRandomGenerator::global()->generate64(), 36)));
  }
  ~ScratchFile() {
    if (!m_committed) QFile::remove(m_path);
  }
  ScratchFile(const ScratchFile&) = delete;
  ScratchFile& operator=(const ScratchFile&) = delete;

  const QString& path() const { return m_path; }
  const QString& target() const { return m_target; }
  // Gives the written scratch file the target's name; false when it is missing or the rename
  // fails.
  bool commit() {
    if (!QFileInfo(m_path).isFile()) return false;
    std::error_code error;
    std::filesystem::rename(QFile::encodeName(m_path).toStdString(),
                            QFile::encodeName(m_target).toStdString(), error);
    m_committed = !error;
    return m_committed;
  }

 private:
  QString m_target;
  QString m_path;
  bool m_committed = false;
};

}  // namespace

PageOutputResult writePages(const SheetProducer& producer, const QString& path, PageFormat format,
                            int first, int last, const QString& title) {
  PageOutputResult result;
  const int count = last - first + 1;
  switch (format) {
    case PageFormat::Pdf: {
      ScratchFile file(path);
      bool finished = false;
      {
        PdfSurface surface(file.path(), title);  // closes the file when it goes
        renderPages(producer, surface, first, last);
        finished = surface.finish();
      }
      if (!finished || !file.commit()) {
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
        ScratchFile file(pageFilePath(path, page - first + 1, count));
        if (surface.images().empty() || !surface.images().front().save(file.path(), "PNG") ||
            !file.commit()) {
          result.message = cannotWrite(file.target());
          return result;
        }
        result.written.append(file.target());
      }
      break;
    }
    case PageFormat::Svg: {
      std::vector<std::unique_ptr<ScratchFile>> files;
      SvgSurface surface([&](int index) {
        files.push_back(std::make_unique<ScratchFile>(pageFilePath(path, index + 1, count)));
        return files.back()->path();
      });
      renderPages(producer, surface, first, last);
      surface.endPage();
      for (const auto& file : files)
        if (!file->commit()) {
          result.message = cannotWrite(file->target());
          return result;
        }
      for (const auto& file : files) result.written.append(file->target());
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
