#include "app/frmtypicalsection.h"

#include "app/twips.h"
#include "db/connection.h"
#include "db/project.h"
#include "drawing/pageoutput.h"
#include "drawing/sheettitle.h"
#include "engine/reporter.h"
#include "engine/session.h"
#include "engine/typicalsection.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QHBoxLayout>
#include <QImageReader>
#include <QLabel>
#include <QLoggingCategory>
#include <QPixmap>
#include <QScrollBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <optional>

Q_LOGGING_CATEGORY(lcTypicalSection, "delvane.app.typicalsection")

namespace app {

namespace {

// Sizes in twips, as the window places its parts.
constexpr int kBarThickness = 255;
constexpr int kSmallChange = 150;

const QString kNoImageName = QStringLiteral("No image name associated with database");

// Flat bars: a plain trough and handle, no arrow buttons.
const QString kFlatBar = QStringLiteral(
    "QScrollBar { background: palette(window); border: none; }"
    "QScrollBar::handle { background: palette(mid); border: none; }"
    "QScrollBar::handle:horizontal { min-width: 24px; }"
    "QScrollBar::handle:vertical { min-height: 24px; }"
    "QScrollBar::add-line, QScrollBar::sub-line { width: 0px; height: 0px; border: none; }"
    "QScrollBar::add-page, QScrollBar::sub-page { background: none; }");

// A bar's maximum as the bar holds it: a 16-bit count of twips.
int barMaximum(double twips) {
  return static_cast<int>(std::clamp(
      std::round(twips), 0.0, static_cast<double>(std::numeric_limits<std::int16_t>::max())));
}

}  // namespace

QString modelsFolder() {
  return QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral("Models"));
}

frmTypicalSection::frmTypicalSection(const sheets::SheetContext& context, const QString& folder,
                                     QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_folder(folder),
      m_wheelHook(this, this, m_context.mouseWheel) {
  setObjectName(QStringLiteral("frmTypicalSection"));
  setWindowTitle(QStringLiteral("Typical Section"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);

  m_noteRow = new QWidget(this);
  auto* noteLayout = new QHBoxLayout(m_noteRow);
  noteLayout->setContentsMargins(6, 2, 2, 2);
  m_note = new QLabel(m_noteRow);
  m_note->setObjectName(QStringLiteral("lblNote"));
  noteLayout->addWidget(m_note, 1);
  auto* save = new QAction(QStringLiteral("Save as PNG..."), this);
  save->setObjectName(QStringLiteral("actSavePng"));
  connect(save, &QAction::triggered, this, &frmTypicalSection::askAndSaveDrawing);
  m_saveButton = new QToolButton(m_noteRow);
  m_saveButton->setObjectName(QStringLiteral("cmdSavePng"));
  m_saveButton->setDefaultAction(save);
  m_saveButton->setFocusPolicy(Qt::NoFocus);
  noteLayout->addWidget(m_saveButton);
  m_noteRow->hide();
  layout->addWidget(m_noteRow);

  // The picture and its bars are placed by hand, in twips, inside the viewport.
  m_viewport = new QWidget(this);
  m_viewport->setObjectName(QStringLiteral("viewport"));
  m_viewport->installEventFilter(this);
  layout->addWidget(m_viewport, 1);

  m_image1 = new QLabel(m_viewport);
  m_image1->setObjectName(QStringLiteral("Image1"));
  m_image1->resize(0, 0);
  m_fsbHorizontal = new QScrollBar(Qt::Horizontal, m_viewport);
  m_fsbHorizontal->setObjectName(QStringLiteral("fsbHorizontal"));
  m_fsbVertical = new QScrollBar(Qt::Vertical, m_viewport);
  m_fsbVertical->setObjectName(QStringLiteral("fsbVertical"));
  for (QScrollBar* bar : {m_fsbHorizontal, m_fsbVertical}) {
    bar->setStyleSheet(kFlatBar);
    bar->setFocusPolicy(Qt::NoFocus);
    bar->setRange(0, 0);
    bar->setSingleStep(kSmallChange);
    bar->installEventFilter(this);
  }
  // One bar unit is one twip.
  connect(m_fsbHorizontal, &QScrollBar::valueChanged, this, [this](int value) {
    m_image1->move(-twipsToPixels(value, screenLogicalDpiX(*this)), m_image1->y());
  });
  connect(m_fsbVertical, &QScrollBar::valueChanged, this, [this](int value) {
    m_image1->move(m_image1->x(), -twipsToPixels(value, screenLogicalDpiY(*this)));
  });
  m_lblErrorText = new QLabel(m_viewport);
  m_lblErrorText->setObjectName(QStringLiteral("lblErrorText"));
  m_lblErrorText->setWordWrap(true);
  m_lblErrorText->setAlignment(Qt::AlignLeft | Qt::AlignTop);
  m_lblErrorText->setContentsMargins(8, 8, 8, 8);
  m_lblErrorText->hide();

  resize(sizeHint());
  load();
  layOutPicture();
}

frmTypicalSection::~frmTypicalSection() = default;

QSize frmTypicalSection::sizeHint() const { return QSize(640, 360); }

// ---- Loading

void frmTypicalSection::load() {
  db::Connection* connection = m_context.currentConnection();
  if (!connection) {
    showError(kNoImageName);
    return;
  }
  try {
    const std::optional<QString> name = db::designName(*connection);
    if (!name) {
      showError(kNoImageName);
      return;
    }
    m_designName = *name;
  } catch (const db::Error& error) {
    showError(error.message());
    return;
  }
  setWindowTitle(QStringLiteral("Typical Section - ") + m_designName);
  const QString path = QDir(m_folder).filePath(m_designName + QStringLiteral(".gif"));
  QImageReader reader(path);
  const QImage picture = reader.read();
  if (!picture.isNull()) {
    showPicture(picture);
    return;
  }
  const QString failure = QStringLiteral("The picture %1 could not be loaded: %2.")
                              .arg(QDir::toNativeSeparators(path), reader.errorString());
  // A picture file that exists and cannot be read is the user's to mend; a missing one is
  // replaced by the drawing, or by the drawing saved earlier from this window.
  if (!QFileInfo::exists(path)) {
    QImageReader saved(QDir(m_folder).filePath(m_designName + QStringLiteral(".png")));
    const QImage drawn = saved.read();
    if (!drawn.isNull()) {
      showPicture(drawn);
      return;
    }
    if (drawFromDesign(*connection)) {
      m_note->setText(QStringLiteral("There is no picture %1 for this design; this is its typical "
                                     "section drawn from its formulas.")
                          .arg(QDir::toNativeSeparators(path)));
      m_noteRow->show();
      // The drawing offers itself for saving from its own context menu too.
      m_image1->addAction(m_saveButton->defaultAction());
      m_image1->setContextMenuPolicy(Qt::ActionsContextMenu);
      return;
    }
  }
  showError(failure);
}

bool frmTypicalSection::drawFromDesign(db::Connection& connection) {
  try {
    // The drawing is offered, not asked for: its own problems stay out of the error list, and
    // a session of its own leaves the open section's caches as they are.
    engine::RecordingReporter quiet;
    engine::EngineSession session(connection, quiet);
    if (session.LoadDesignProfile()) return false;
    const std::int32_t section =
        engine::sectionWithDesignDetails(connection, m_context.currentSectionId());
    if (section == 0) return false;
    session.setSection(section);
    std::optional<engine::TypicalSection> typical = engine::computeTypicalSection(session);
    if (!typical) {
      qCInfo(lcTypicalSection) << "no typical section to draw:" << quiet.errors;
      return false;
    }
    drawing::SheetTitle title = drawing::sheetTitleOf(connection, connection.path(), section);
    if (const engine::EngineSession* shared = m_context.currentEngine())
      title.symbols = shared->numberSymbols();
    m_drawing = std::make_unique<drawing::TypicalSectionSheet>(std::move(*typical), title);
  } catch (const db::Error& error) {
    qCInfo(lcTypicalSection) << "no typical section to draw:" << error.message();
    return false;
  }
  showPicture(drawing::renderPageImage(*m_drawing, 0, screenLogicalDpiX(*this)));
  return true;
}

void frmTypicalSection::showPicture(const QImage& picture) {
  m_image1->setPixmap(QPixmap::fromImage(picture));
  m_image1->resize(picture.size());
  m_lblErrorText->hide();
}

void frmTypicalSection::showError(const QString& text) {
  m_lblErrorText->setText(text);
  m_lblErrorText->show();
  m_lblErrorText->raise();
}

// ---- Placing the picture and its bars

void frmTypicalSection::layOutPicture() {
  const double dpiX = screenLogicalDpiX(*this);
  const double dpiY = screenLogicalDpiY(*this);
  const double width = pixelsToTwips(m_viewport->width(), dpiX);
  const double height = pixelsToTwips(m_viewport->height(), dpiY);
  const double pictureWidth = pixelsToTwips(m_image1->width(), dpiX);
  const double pictureHeight = pixelsToTwips(m_image1->height(), dpiY);
  const int thickX = twipsToPixels(kBarThickness, dpiX);
  const int thickY = twipsToPixels(kBarThickness, dpiY);
  const int barTop = twipsToPixels(height - kBarThickness, dpiY);
  const int barLeft = twipsToPixels(width - kBarThickness, dpiX);

  m_fsbHorizontal->setGeometry(0, barTop, std::max(0, barLeft), thickY);
  m_fsbHorizontal->setMaximum(
      width - kBarThickness < pictureWidth ? barMaximum(pictureWidth - width + kBarThickness) : 0);
  m_fsbHorizontal->setPageStep(std::max(1, barMaximum((width - kBarThickness) / 2)));
  m_fsbVertical->setGeometry(barLeft, 0, thickX, std::max(0, barTop));
  m_fsbVertical->setMaximum(height - kBarThickness < pictureHeight
                                ? barMaximum(pictureHeight - height + kBarThickness)
                                : 0);
  m_fsbVertical->setPageStep(std::max(1, barMaximum((height - kBarThickness) / 2)));

  m_image1->move(-twipsToPixels(m_fsbHorizontal->value(), dpiX),
                 -twipsToPixels(m_fsbVertical->value(), dpiY));
  m_lblErrorText->setGeometry(0, 0, std::max(0, barLeft), std::max(0, barTop));
  m_fsbHorizontal->raise();
  m_fsbVertical->raise();
}

// ---- The wheel

void frmTypicalSection::MouseWheel(int /*keys*/, int rotation, int /*x*/, int /*y*/) {
  QScrollBar* bar = m_fsbHorizontal;
  if (bar->maximum() < 1) return;
  if (rotation < 1)
    bar->setValue(std::min(bar->value() + bar->pageStep(), bar->maximum()));
  else
    bar->setValue(std::max(bar->value() - bar->pageStep(), bar->minimum()));
}

void frmTypicalSection::wheelEvent(QWheelEvent* event) {
  sheets::deliverWheelEvent(*this, m_context.mouseWheel, event);
}

bool frmTypicalSection::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_viewport && event->type() == QEvent::Resize) {
    layOutPicture();
  } else if ((watched == m_fsbHorizontal || watched == m_fsbVertical) &&
             event->type() == QEvent::Wheel) {
    // The bars scroll by the window's wheel rule only, never by their own wheel steps.
    wheelEvent(static_cast<QWheelEvent*>(event));
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

// ---- Activation

void frmTypicalSection::closeEvent(QCloseEvent* event) {
  m_wheelHook.unhook();
  event->accept();
}

// ---- Saving the drawing

void frmTypicalSection::askAndSaveDrawing() {
  if (!m_drawing) return;
  const QString caption = QStringLiteral("Save as PNG");
  const QString filter = QStringLiteral("PNG image (*.png)");
  const QString suggested = QDir(m_folder).filePath(m_designName + QStringLiteral(".png"));
  const QString path = m_saveFile ? m_saveFile(this, caption, suggested, filter)
                                  : QFileDialog::getSaveFileName(this, caption, suggested, filter);
  if (!path.isEmpty()) saveDrawing(path);
}

bool frmTypicalSection::saveDrawing(QString path) {
  if (!m_drawing) return false;
  if (QFileInfo(path).suffix().compare(QLatin1String("png"), Qt::CaseInsensitive) != 0)
    path += QStringLiteral(".png");
  if (const db::Connection* project = m_context.currentConnection()) {
    if (db::isSameFile(path, project->path())) {
      message(QStringLiteral("%1 is the open project file; choose another name for the picture.")
                  .arg(QDir::toNativeSeparators(path)),
              sheets::MessageIcon::Warning);
      return false;
    }
  }
  const drawing::PageOutputResult result =
      drawing::writePages(*m_drawing, path, drawing::PageFormat::Png, 0, 0, windowTitle());
  if (!result.ok) message(result.message, sheets::MessageIcon::Critical);
  return result.ok;
}

void frmTypicalSection::message(const QString& text, sheets::MessageIcon icon) {
  m_context.ask(this, text, QStringLiteral("Delvane"), sheets::MessageButtons::Ok, icon);
}

}  // namespace app
