#include "app/printform.h"

#include "app/toolicons.h"
#include "app/twips.h"
#include "db/connection.h"
#include "db/project.h"
#include "drawing/pageoutput.h"
#include "drawing/paintersurface.h"
#include "drawing/previewlayout.h"

#include <QButtonGroup>
#include <QCloseEvent>
#include <QComboBox>
#include <QDialog>
#include <QDialogButtonBox>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QKeyEvent>
#include <QLabel>
#include <QMap>
#include <QPageLayout>
#include <QPainter>
#include <QPrintDialog>
#include <QPrinter>
#include <QRadioButton>
#include <QScrollBar>
#include <QStyle>
#include <QToolBar>
#include <QToolButton>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace app {

namespace {

// A4 portrait, shown when a sheet does not say its page size (a sheet with no page).
constexpr QSize kDefaultPageMm(210, 297);
constexpr double kPrintDpi = 300.0;
// Limits of the preview's resolution, so that a tiny window or a huge one stays drawable.
constexpr double kMinimumDpi = 10.0;
constexpr double kMaximumDpi = 600.0;
// A page shown smaller than this share of its true size opens at 100 % instead.
constexpr double kReadableShare = 0.75;
// A page within this much of the paper is taken to fit it.
constexpr double kFitTolerance = 1e-3;

// The printer's pages, for the page engine: each sheet page (or each tile of one) on a new
// sheet of paper, drawn through the painter shifted by the tile's offset.
class PrinterSurface : public drawing::PainterSurface {
 public:
  PrinterSurface(QPrinter& printer, QPainter& painter, double scale)
      : PainterSurface(printer.resolution(), scale), m_printer(printer), m_painter(painter) {}

  // Where the next page's top-left corner goes on the paper, in device pixels.
  void setOffset(QPointF offset) { m_offset = offset; }

  void beginPage(int, int) override {
    if (m_started) m_printer.newPage();
    m_started = true;
    setOrigin(m_offset);
    setPainter(&m_painter);
  }
  void endPage() override { setPainter(nullptr); }

 private:
  QPrinter& m_printer;
  QPainter& m_painter;
  QPointF m_offset;
  bool m_started = false;
};

// The picture of the current page, sized to it; a scroll moves this widget inside the
// viewport.
class PageSurface : public QWidget {
 public:
  PageSurface(PrintForm& form, QWidget* parent) : QWidget(parent), m_form(form) {
    setAttribute(Qt::WA_OpaquePaintEvent);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    const QImage& image = m_form.currentPageImage();
    painter.fillRect(rect(), Qt::white);
    painter.drawImage(QPoint(0, 0), image);
  }

 private:
  PrintForm& m_form;
};

QString sizeText(QSizeF mm) {
  return QStringLiteral("%1 × %2 mm").arg(qRound(mm.width())).arg(qRound(mm.height()));
}

// The small dialog that asks how to print a page larger than the paper.
std::optional<PaperFit> askPaperFit(QWidget* parent, QSizeF pageMm, QSizeF paperMm, double factor) {
  QDialog dialog(parent);
  dialog.setWindowTitle(QStringLiteral("Print"));
  auto* layout = new QVBoxLayout(&dialog);
  layout->addWidget(new QLabel(QStringLiteral("The sheet's page (%1) is larger than the paper "
                                              "(%2). How should it be printed?")
                                   .arg(sizeText(pageMm), sizeText(paperMm)),
                               &dialog));
  auto* fit = new QRadioButton(
      QStringLiteral("Fit to paper (printed at %1 % of true scale)").arg(qRound(factor * 100)),
      &dialog);
  fit->setObjectName(QStringLiteral("optFitToPaper"));
  auto* tile =
      new QRadioButton(QStringLiteral("Tile (true scale, over several sheets of paper)"), &dialog);
  tile->setObjectName(QStringLiteral("optTile"));
  fit->setChecked(true);
  layout->addWidget(fit);
  layout->addWidget(tile);
  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel, &dialog);
  QObject::connect(buttons, &QDialogButtonBox::accepted, &dialog, &QDialog::accept);
  QObject::connect(buttons, &QDialogButtonBox::rejected, &dialog, &QDialog::reject);
  layout->addWidget(buttons);
  if (dialog.exec() != QDialog::Accepted) return std::nullopt;
  return tile->isChecked() ? PaperFit::Tile : PaperFit::FitToPaper;
}

// How many sheets of paper a length covers.
int tilesOver(double page, double paper) {
  return std::max(1, static_cast<int>(std::ceil(page / paper - kFitTolerance)));
}

}  // namespace

PrintForm::PrintForm(const sheets::SheetContext& context, PrintSheet sheet, QWidget* parent)
    : QWidget(parent), m_context(context), m_wheelHook(this, this, m_context.mouseWheel) {
  setObjectName(QStringLiteral("PrintForm"));
  setFocusPolicy(Qt::StrongFocus);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  layout->setSpacing(0);
  createToolRow();

  m_viewport = new QWidget(this);
  m_viewport->setObjectName(QStringLiteral("viewport"));
  m_viewport->setAutoFillBackground(true);
  QPalette shade = m_viewport->palette();
  shade.setColor(QPalette::Window, QColor(0x80, 0x80, 0x80));
  m_viewport->setPalette(shade);
  m_viewport->installEventFilter(this);
  layout->addWidget(m_viewport, 1);

  m_pbGraph = new PageSurface(*this, m_viewport);
  m_pbGraph->setObjectName(QStringLiteral("pbGraph"));
  m_hScroll = new QScrollBar(Qt::Horizontal, m_viewport);
  m_hScroll->setObjectName(QStringLiteral("HScroll1"));
  m_vScroll = new QScrollBar(Qt::Vertical, m_viewport);
  m_vScroll->setObjectName(QStringLiteral("VScroll1"));
  for (QScrollBar* bar : {m_hScroll, m_vScroll}) {
    bar->setFocusPolicy(Qt::NoFocus);
    bar->setRange(0, 0);
    bar->hide();
    bar->installEventFilter(this);
  }
  connect(m_hScroll, &QScrollBar::valueChanged, this, [this](int value) {
    m_pbGraph->move(twipsToPixels(drawing::pagePositionOf(value), screenLogicalDpiX(*this)),
                    m_pbGraph->y());
  });
  connect(m_vScroll, &QScrollBar::valueChanged, this, [this](int value) {
    m_pbGraph->move(m_pbGraph->x(),
                    twipsToPixels(drawing::pagePositionOf(value), screenLogicalDpiY(*this)));
  });

  m_command1 = new QToolButton(m_viewport);
  m_command1->setObjectName(QStringLiteral("Command1"));
  m_command1->setIcon(toolIcon(QStringLiteral("Print")));
  m_command1->setToolTip(QStringLiteral("Print"));
  m_command1->setAutoRaise(true);
  m_command1->setFocusPolicy(Qt::NoFocus);
  connect(m_command1, &QToolButton::clicked, this, &PrintForm::PrintThis);

  resize(sizeHint());
  useSheet(std::move(sheet));
}

QSize PrintForm::sizeHint() const { return QSize(820, 620); }

PrintForm::~PrintForm() = default;

void PrintForm::createToolRow() {
  auto* row = new QToolBar(this);
  row->setObjectName(QStringLiteral("tbPrintForm"));
  row->setIconSize(QSize(20, 20));
  row->setToolButtonStyle(Qt::ToolButtonTextBesideIcon);
  static_cast<QVBoxLayout*>(layout())->addWidget(row);

  QAction* print = row->addAction(toolIcon(QStringLiteral("Print")), QStringLiteral("Print..."));
  print->setObjectName(QStringLiteral("actPrint"));
  connect(print, &QAction::triggered, this, &PrintForm::PrintThis);
  row->addSeparator();

  m_previous = row->addAction(style()->standardIcon(QStyle::SP_ArrowLeft), QString());
  m_previous->setObjectName(QStringLiteral("actPreviousPage"));
  m_previous->setToolTip(QStringLiteral("Previous page (Page Up)"));
  connect(m_previous, &QAction::triggered, this, [this] { showPage(m_page - 1); });
  m_pageCounter = new QLabel(row);
  m_pageCounter->setObjectName(QStringLiteral("lblPage"));
  m_pageCounter->setContentsMargins(6, 0, 6, 0);
  row->addWidget(m_pageCounter);
  m_next = row->addAction(style()->standardIcon(QStyle::SP_ArrowRight), QString());
  m_next->setObjectName(QStringLiteral("actNextPage"));
  m_next->setToolTip(QStringLiteral("Next page (Page Down)"));
  connect(m_next, &QAction::triggered, this, [this] { showPage(m_page + 1); });
  row->addSeparator();

  m_zoomBox = new QComboBox(row);
  m_zoomBox->setObjectName(QStringLiteral("cboZoom"));
  m_zoomBox->setToolTip(QStringLiteral("Zoom"));
  m_zoomBox->addItem(QStringLiteral("Fit page"), static_cast<int>(Zoom::FitPage));
  m_zoomBox->addItem(QStringLiteral("Fit width"), static_cast<int>(Zoom::FitWidth));
  m_zoomBox->addItem(QStringLiteral("100 %"), static_cast<int>(Zoom::Actual));
  m_zoomBox->setCurrentIndex(m_zoomBox->findData(static_cast<int>(m_zoom)));
  m_zoomBox->setFocusPolicy(Qt::ClickFocus);
  connect(m_zoomBox, &QComboBox::activated, this, [this](int index) {
    setZoom(static_cast<Zoom>(m_zoomBox->itemData(index).toInt()));
    setFocus();
  });
  row->addWidget(m_zoomBox);

  m_scaleBox = new QComboBox(row);
  m_scaleBox->setObjectName(QStringLiteral("cboScale"));
  m_scaleBox->setToolTip(QStringLiteral("Scale of the sections"));
  m_scaleBox->setFocusPolicy(Qt::ClickFocus);
  connect(m_scaleBox, &QComboBox::activated, this, [this](int index) {
    if (m_sheetAtScale) useSheet(m_sheetAtScale(index));
    setFocus();
  });
  m_scaleAction = row->addWidget(m_scaleBox);
  m_scaleAction->setVisible(false);
  row->addSeparator();

  const auto addSave = [this, row](const char* name, const QString& extension) {
    QAction* save = row->addAction(QStringLiteral("Save as %1...").arg(extension.toUpper()));
    save->setObjectName(QLatin1String(name));
    connect(save, &QAction::triggered, this, [this, extension] { askAndSave(extension); });
  };
  addSave("actSavePdf", QStringLiteral("pdf"));
  addSave("actSavePng", QStringLiteral("png"));
  addSave("actSaveSvg", QStringLiteral("svg"));
  for (QWidget* button : row->findChildren<QToolButton*>()) button->setFocusPolicy(Qt::NoFocus);
}

void PrintForm::setScaleChoice(const QStringList& labels, int current,
                               std::function<PrintSheet(int)> sheetAtScale) {
  m_sheetAtScale = std::move(sheetAtScale);
  m_scaleBox->clear();
  m_scaleBox->addItems(labels);
  m_scaleBox->setCurrentIndex(current);
  m_scaleAction->setVisible(!labels.isEmpty());
}

void PrintForm::useSheet(PrintSheet sheet) {
  m_sheet = std::move(sheet);
  m_producer = m_sheet.produce(1.0);
  setWindowTitle(m_sheet.caption);
  m_imagePage = -1;
  m_image = QImage();
  m_page = std::clamp(m_page, 0, pageCount() - 1);
  updatePageCounter();
  layOutPage();
  m_pbGraph->update();
}

QSize PrintForm::pageMm() const {
  return m_sheet.pageMm.width() > 0 && m_sheet.pageMm.height() > 0 ? m_sheet.pageMm
                                                                   : kDefaultPageMm;
}

int PrintForm::pageCount() const { return std::max(1, m_producer->pageCount()); }

void PrintForm::showPage(int page) {
  const int target = std::clamp(page, 0, pageCount() - 1);
  if (target == m_page) return;
  m_page = target;
  updatePageCounter();
  layOutPage();
  m_pbGraph->update();
}

void PrintForm::updatePageCounter() {
  m_pageCounter->setText(QStringLiteral("Page %1 of %2").arg(m_page + 1).arg(pageCount()));
  m_previous->setEnabled(m_page > 0);
  m_next->setEnabled(m_page < pageCount() - 1);
}

void PrintForm::setZoom(Zoom zoom) {
  m_zoom = zoom;
  m_zoomBox->setCurrentIndex(m_zoomBox->findData(static_cast<int>(zoom)));
  layOutPage();
  m_pbGraph->update();
}

void PrintForm::setReadableZoom() {
  m_zoom = Zoom::FitWidth;
  updateDpi();
  setZoom(m_dpi >= kReadableShare * screenLogicalDpiX(*this) ? Zoom::FitWidth : Zoom::Actual);
}

void PrintForm::updateDpi() {
  const double screenDpi = screenLogicalDpiX(*this);
  const QSize mm = pageMm();
  // The fitted page keeps one bar's thickness free on each side, so that the bar beside it
  // never covers it.
  const int margin = 2 * twipsToPixels(drawing::kScrollBarThickness, screenDpi);
  const double widthDpi = (m_viewport->width() - margin) / (mm.width() / 25.4);
  const double heightDpi = (m_viewport->height() - margin) / (mm.height() / 25.4);
  double dpi = screenDpi;
  if (m_zoom == Zoom::FitWidth) dpi = widthDpi;
  if (m_zoom == Zoom::FitPage) dpi = std::min(widthDpi, heightDpi);
  m_dpi = std::clamp(dpi, kMinimumDpi, kMaximumDpi);
}

// Places the page, the bars and the print button by the preview rule, in twips of the screen.
void PrintForm::layOutPage() {
  updateDpi();
  const QSize mm = pageMm();
  const QSize page = drawing::pagePixels(mm.width(), mm.height(), m_dpi);
  m_pbGraph->resize(page);
  const double dpiX = screenLogicalDpiX(*this);
  const double dpiY = screenLogicalDpiY(*this);
  const int width = qRound(pixelsToTwips(m_viewport->width(), dpiX));
  const int height = qRound(pixelsToTwips(m_viewport->height(), dpiY));
  const std::optional<drawing::PreviewPlacement> placed =
      drawing::placePreview(width, height, qRound(pixelsToTwips(page.width(), dpiX)),
                            qRound(pixelsToTwips(page.height(), dpiY)));
  if (!placed) return;

  const int barLeft = twipsToPixels(placed->barLeft, dpiX);
  const int barTop = twipsToPixels(placed->barTop, dpiY);
  const int thickX = twipsToPixels(drawing::kScrollBarThickness, dpiX);
  const int thickY = twipsToPixels(drawing::kScrollBarThickness, dpiY);
  m_vScroll->setGeometry(barLeft, 0, thickX, barTop);
  m_hScroll->setGeometry(0, barTop, barLeft, thickY);
  m_command1->setGeometry(barLeft, barTop, thickX, thickY);

  const auto placeBar = [](QScrollBar* bar, const drawing::ScrollBarPlacement& at, int visible) {
    const QSignalBlocker quiet(bar);
    bar->setRange(0, at.visible ? at.maximum : 0);
    bar->setValue(0);
    bar->setSingleStep(1);
    bar->setPageStep(std::max(1, visible / drawing::kScrollStep));
    bar->setVisible(at.visible);
  };
  placeBar(m_hScroll, placed->horizontal, width - drawing::kScrollBarThickness);
  placeBar(m_vScroll, placed->vertical, height - drawing::kScrollBarThickness);
  m_pbGraph->move(twipsToPixels(placed->pageLeft, dpiX), twipsToPixels(placed->pageTop, dpiY));
  m_hScroll->raise();
  m_vScroll->raise();
  m_command1->raise();
}

const QImage& PrintForm::currentPageImage() {
  if (m_imagePage != m_page || m_imageDpi != m_dpi) {
    m_image = m_page < m_producer->pageCount()
                  ? drawing::renderPageImage(*m_producer, m_page, m_dpi)
                  : QImage();
    if (m_image.isNull()) {
      const QSize mm = pageMm();
      m_image = QImage(drawing::pagePixels(mm.width(), mm.height(), m_dpi), QImage::Format_RGB32);
      m_image.fill(Qt::white);
    }
    m_imagePage = m_page;
    m_imageDpi = m_dpi;
  }
  return m_image;
}

// ---- Scrolling

void PrintForm::scrollTo(QScrollBar* bar, int value) {
  bar->setValue(std::clamp(value, bar->minimum(), bar->maximum()));
}

void PrintForm::MouseWheel(int /*keys*/, int rotation, int /*x*/, int /*y*/) {
  const std::optional<drawing::WheelScroll> scroll = drawing::wheelScroll(
      rotation, m_hScroll->value(), m_hScroll->maximum(), m_hScroll->pageStep(), m_vScroll->value(),
      m_vScroll->maximum(), m_vScroll->pageStep());
  if (scroll) (scroll->vertical ? m_vScroll : m_hScroll)->setValue(scroll->value);
}

void PrintForm::keyPressEvent(QKeyEvent* event) {
  const bool control = event->modifiers() & Qt::ControlModifier;
  switch (event->key()) {
    case Qt::Key_Left:
      scrollTo(m_hScroll, m_hScroll->value() - m_hScroll->singleStep());
      break;
    case Qt::Key_Right:
      scrollTo(m_hScroll, m_hScroll->value() + m_hScroll->singleStep());
      break;
    case Qt::Key_Up:
      scrollTo(m_vScroll, m_vScroll->value() - m_vScroll->singleStep());
      break;
    case Qt::Key_Down:
      scrollTo(m_vScroll, m_vScroll->value() + m_vScroll->singleStep());
      break;
    case Qt::Key_Home:
      if (control) showPage(0);
      scrollTo(m_vScroll, 0);
      scrollTo(m_hScroll, 0);
      break;
    case Qt::Key_End:
      if (control) showPage(pageCount() - 1);
      scrollTo(m_vScroll, m_vScroll->maximum());
      break;
    case Qt::Key_PageUp:
      showPage(m_page - 1);
      break;
    case Qt::Key_PageDown:
      showPage(m_page + 1);
      break;
    default:
      QWidget::keyPressEvent(event);
      return;
  }
  event->accept();
}

void PrintForm::wheelEvent(QWheelEvent* event) {
  sheets::deliverWheelEvent(*this, m_context.mouseWheel, event);
}

bool PrintForm::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_viewport && event->type() == QEvent::Resize) {
    layOutPage();
  } else if ((watched == m_hScroll || watched == m_vScroll) && event->type() == QEvent::Wheel) {
    // The bars scroll by the page rule only, not by their own wheel steps as well.
    wheelEvent(static_cast<QWheelEvent*>(event));
    return true;
  }
  return QWidget::eventFilter(watched, event);
}

// ---- Activation

void PrintForm::closeEvent(QCloseEvent* event) {
  m_wheelHook.unhook();
  event->accept();
}

// ---- Printing

void PrintForm::preparePrinter(QPrinter& printer) const {
  const QSize mm = pageMm();
  printer.setPageSize(QPageSize(QPageSize::A4));
  printer.setPageOrientation(mm.width() > mm.height() ? QPageLayout::Landscape
                                                      : QPageLayout::Portrait);
  printer.setResolution(static_cast<int>(kPrintDpi));
  printer.setFullPage(true);
  printer.setColorMode(QPrinter::Color);
  printer.setCopyCount(1);
  printer.setDocName(m_sheet.caption);
}

double PrintForm::paperFactor(const QPrinter& printer) const {
  const QSizeF paper = printer.pageLayout().fullRect(QPageLayout::Millimeter).size();
  const QSize page = pageMm();
  return std::min(paper.width() / page.width(), paper.height() / page.height());
}

void PrintForm::PrintThis() {
  if (!m_printer) m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  preparePrinter(*m_printer);
  QPrintDialog dialog(m_printer.get(), this);
  dialog.setWindowTitle(QStringLiteral("Print"));
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
  dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
  if (dialog.exec() != QDialog::Accepted) return;
  printOn(*m_printer);
}

bool PrintForm::printOn(QPrinter& printer) {
  const double factor = paperFactor(printer);
  PaperFit fit = PaperFit::TrueScale;
  if (factor < 1.0 - kFitTolerance) {
    const QSizeF paper = printer.pageLayout().fullRect(QPageLayout::Millimeter).size();
    const std::optional<PaperFit> chosen = m_paperFit ? m_paperFit(this, pageMm(), paper, factor)
                                                      : askPaperFit(this, pageMm(), paper, factor);
    if (!chosen) return false;
    fit = *chosen;
  }
  if (!printSheet(printer, fit)) {
    message(QStringLiteral("The printer could not be started."), sheets::MessageIcon::Critical);
    return false;
  }
  return true;
}

bool PrintForm::printSheet(QPrinter& printer, PaperFit fit) {
  const double factor = fit == PaperFit::FitToPaper ? std::min(1.0, paperFactor(printer)) : 1.0;
  // A fitted sheet states the scale the paper has, so its producer is made for the factor.
  const std::unique_ptr<drawing::SheetProducer> producer = m_sheet.produce(factor);
  QPainter painter;
  if (!painter.begin(&printer)) return false;
  PrinterSurface surface(printer, painter, factor);

  const double dpi = printer.resolution();
  const QSizeF paper = printer.pageLayout().fullRectPixels(static_cast<int>(dpi)).size();
  const QSize page = drawing::pagePixels(pageMm().width(), pageMm().height(), dpi);
  const bool tiled = fit == PaperFit::Tile;
  const int columns = tiled ? tilesOver(page.width(), paper.width()) : 1;
  const int rows = tiled ? tilesOver(page.height(), paper.height()) : 1;
  for (int p = 0; p < producer->pageCount(); ++p) {
    for (int row = 0; row < rows; ++row) {
      for (int column = 0; column < columns; ++column) {
        surface.setOffset(QPointF(-column * paper.width(), -row * paper.height()));
        drawing::renderPages(*producer, surface, p, p);
      }
    }
  }
  painter.end();
  return true;
}

// ---- Saving

void PrintForm::askAndSave(const QString& extension) {
  static const QMap<QString, QString> kFilters = {
      {QStringLiteral("pdf"), QStringLiteral("PDF document (*.pdf)")},
      {QStringLiteral("png"), QStringLiteral("PNG image (*.png)")},
      {QStringLiteral("svg"), QStringLiteral("SVG drawing (*.svg)")}};
  const QString filter = kFilters.value(extension);
  const QString folder = m_saveFolder.isEmpty() ? QDir::homePath() : m_saveFolder;
  const QString name = m_sheet.fileName.isEmpty() ? QStringLiteral("sheet") : m_sheet.fileName;
  const QString suggested = QDir(folder).filePath(name + QLatin1Char('.') + extension);
  const QString caption = QStringLiteral("Save as %1").arg(extension.toUpper());
  QString path = m_saveFile ? m_saveFile(this, caption, suggested, filter)
                            : QFileDialog::getSaveFileName(this, caption, suggested, filter);
  if (path.isEmpty()) return;
  if (QFileInfo(path).suffix().isEmpty()) path += QLatin1Char('.') + extension;
  saveAs(path);
}

bool PrintForm::saveAs(const QString& path) {
  const std::optional<drawing::PageFormat> format = drawing::pageFormatOf(path);
  if (!format) {
    message(QStringLiteral("A sheet can be saved as PDF, PNG or SVG; %1 is none of them.")
                .arg(QDir::toNativeSeparators(path)),
            sheets::MessageIcon::Warning);
    return false;
  }
  if (m_producer->pageCount() == 0) {
    message(QStringLiteral("The sheet has no pages to save."), sheets::MessageIcon::Information);
    return false;
  }
  // One file is written (a picture holds the page on screen): it may not be the project.
  if (const db::Connection* project = m_context.currentConnection()) {
    if (db::isSameFile(path, project->path())) {
      message(QStringLiteral("%1 is the open project file; choose another name for the sheet.")
                  .arg(QDir::toNativeSeparators(path)),
              sheets::MessageIcon::Warning);
      return false;
    }
  }
  // A PDF holds the whole sheet; a picture holds the page on screen.
  const bool allPages = *format == drawing::PageFormat::Pdf;
  const drawing::PageOutputResult result =
      drawing::writePages(*m_producer, path, *format, allPages ? 0 : m_page,
                          allPages ? m_producer->pageCount() - 1 : m_page, m_sheet.caption);
  if (!result.ok) message(result.message, sheets::MessageIcon::Critical);
  return result.ok;
}

void PrintForm::message(const QString& text, sheets::MessageIcon icon) {
  m_context.ask(this, text, QStringLiteral("Delvane"), sheets::MessageButtons::Ok, icon);
}

}  // namespace app
