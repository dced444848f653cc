#include "app/frmplotlxsection.h"

#include "app/twips.h"
#include "db/connection.h"
#include "db/levelpoints.h"
#include "db/numbers.h"
#include "drawing/longsectionsheet.h"
#include "drawing/paintersurface.h"
#include "drawing/sectionview.h"
#include "engine/designlevels.h"
#include "engine/designsection.h"
#include "engine/progress.h"
#include "engine/quantities.h"
#include "engine/sectionviews.h"
#include "engine/session.h"
#include "engine/validation.h"

#include <QCloseEvent>
#include <QFrame>
#include <QGridLayout>
#include <QHBoxLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QLineEdit>
#include <QLocale>
#include <QPainter>
#include <QPushButton>
#include <QScrollBar>
#include <QTimer>
#include <QVBoxLayout>
#include <QWheelEvent>

#include <algorithm>
#include <cmath>

namespace app {

namespace {

const QString kNoOffset = QStringLiteral("Offset");
const QString kNoLevel = QStringLiteral("Level");
const QString kEditPrompt =
    QStringLiteral("Select a point on the screen or enter offset and level directly");

// One scroll step is 15 twips of the screen, whatever the zoom.
constexpr double kScrollStepTwips = 15.0;
// cmdYes and cmdNo keep their place in the frame while the picture scrolls under them.
constexpr double kYesLeftTwips = 6720.0;
constexpr double kNoLeftTwips = 7680.0;
constexpr double kButtonTopTwips = 60.0;
constexpr double kStatusLeftTwips = 120.0;
// The longitudinal view: 40 drawing units to a kilometre, levels one unit to a metre; never
// less than this much chainage across, however narrow the window.
constexpr double kUnitsPerKilometre = 40.0;
constexpr double kLeastMetresShown = 100.0;
constexpr double kMinZoom = 0.25;
constexpr double kMaxZoom = 8.0;
constexpr double kZoomStep = 1.25;

// A click's value as box text: millimetres are the survey's precision.
QString boxText(double value) {
  return db::floatText(static_cast<float>(std::round(value * 1000.0) / 1000.0));
}

// pbGraph: the picture. It draws through the window, which knows what is shown, and hands it
// the pointer and the keys.
class SectionPicture : public QWidget {
 public:
  SectionPicture(frmPlotLXSection& form, QWidget* parent) : QWidget(parent), m_form(form) {
    setAttribute(Qt::WA_OpaquePaintEvent);
    setMouseTracking(true);
    setFocusPolicy(Qt::StrongFocus);
    setCursor(Qt::CrossCursor);
  }

 protected:
  void paintEvent(QPaintEvent*) override {
    QPainter painter(this);
    m_form.paintPicture(painter);
  }
  void mouseReleaseEvent(QMouseEvent* event) override {
    setFocus();
    m_form.pictureReleased(event->position());
  }
  void mouseMoveEvent(QMouseEvent* event) override { m_form.pointerMoved(event->position()); }
  void keyPressEvent(QKeyEvent* event) override {
    if (!m_form.pictureKey(event->key(), event->text())) QWidget::keyPressEvent(event);
  }

 private:
  frmPlotLXSection& m_form;
};

QPushButton* button(QWidget* parent, const char* name, const QString& caption,
                    const QString& toolTip) {
  auto* b = new QPushButton(caption, parent);
  b->setObjectName(QLatin1String(name));
  b->setToolTip(toolTip);
  b->setAutoDefault(false);
  b->setFocusPolicy(Qt::TabFocus);
  return b;
}

QLineEdit* box(QWidget* parent, const char* name, int widthChars) {
  auto* e = new QLineEdit(parent);
  e->setObjectName(QLatin1String(name));
  e->setFixedWidth(e->fontMetrics().horizontalAdvance(QLatin1Char('0')) * widthChars + 12);
  return e;
}

}  // namespace

frmPlotLXSection::frmPlotLXSection(const sheets::SheetContext& context, std::uint8_t byteLXMode,
                                   QWidget* parent)
    : QWidget(parent),
      m_context(context),
      m_byteLXMode(byteLXMode),
      m_wheelHook(this, this, m_context.mouseWheel) {
  setObjectName(QStringLiteral("frmPlotLXSection"));
  setAttribute(Qt::WA_DeleteOnClose);
  setWindowTitle(isLongitudinal() ? QStringLiteral("Longitudinal Section")
                                  : QStringLiteral("Cross Section"));
  createControls();
}

frmPlotLXSection::~frmPlotLXSection() = default;

void frmPlotLXSection::createControls() {
  auto* top = new QHBoxLayout;
  top->setSpacing(4);
  // The captions keep their text however narrow the window.
  const auto fixedCaption = [this](const QString& text) {
    auto* label = new QLabel(text, this);
    label->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    return label;
  };
  m_chainageCaption = fixedCaption(QStringLiteral("Chainage :"));
  m_txtChainage = box(this, "txtChainage", 9);
  m_txtChainage->setToolTip(QStringLiteral("Type a chainage and press Enter to show it"));
  m_cmdGo = button(this, "cmdGo", QStringLiteral("Go"), QStringLiteral("Show the chainage typed"));
  m_cmdFirst =
      button(this, "cmdFirst", QStringLiteral("|<"), QStringLiteral("First chainage (Home)"));
  m_cmdPrev =
      button(this, "cmdPrev", QStringLiteral("<"), QStringLiteral("Previous chainage (Page Up)"));
  m_cmdNext =
      button(this, "cmdNext", QStringLiteral(">"), QStringLiteral("Next chainage (Page Down)"));
  m_cmdLast = button(this, "cmdLast", QStringLiteral(">|"), QStringLiteral("Last chainage (End)"));
  for (QPushButton* b : {m_cmdGo, m_cmdFirst, m_cmdPrev, m_cmdNext, m_cmdLast})
    b->setFixedWidth(b->fontMetrics().horizontalAdvance(b->text()) + 24);
  m_label5 = fixedCaption(QStringLiteral("Offset :"));
  m_label5->setObjectName(QStringLiteral("Label5"));
  m_txtOffset = box(this, "txtOffset", 9);
  auto* levelCaption = fixedCaption(QStringLiteral("Level :"));
  m_txtLevel = box(this, "txtLevel", 9);
  m_cmdAdd = button(this, "cmdAdd", QStringLiteral("Add"), QStringLiteral("Add a point (A)"));
  m_cmdChange = button(this, "cmdChange", QStringLiteral("Change"),
                       QStringLiteral("Change the selected point (C)"));
  m_cmdDelete = button(this, "cmdDelete", QStringLiteral("Delete"),
                       QStringLiteral("Delete the selected point (D)"));
  m_cutCaption = fixedCaption(QStringLiteral("Cut Area :"));
  m_lblDesCutArea = new QLabel(this);
  m_lblDesCutArea->setObjectName(QStringLiteral("lblDesCutArea"));
  m_fillCaption = fixedCaption(QStringLiteral("Fill Area :"));
  m_lblDesFillArea = new QLabel(this);
  m_lblDesFillArea->setObjectName(QStringLiteral("lblDesFillArea"));
  for (QLabel* area : {m_lblDesCutArea, m_lblDesFillArea}) {
    area->setMinimumWidth(area->fontMetrics().horizontalAdvance(QStringLiteral("00,000.00 Sqm.")) +
                          8);
    area->setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Preferred);
    area->setFrameShape(QFrame::StyledPanel);
  }

  // Two rows: where the view stands and what it holds; then the point and its edits, with the
  // offset and level under the pointer at the right.
  m_pointerLabel = new QLabel(this);
  m_pointerLabel->setObjectName(QStringLiteral("lblPointer"));
  for (QWidget* w : std::initializer_list<QWidget*>{m_chainageCaption, m_txtChainage, m_cmdGo,
                                                    m_cmdFirst, m_cmdPrev, m_cmdNext, m_cmdLast})
    top->addWidget(w);
  top->addSpacing(24);
  for (QWidget* w : std::initializer_list<QWidget*>{m_cutCaption, m_lblDesCutArea, m_fillCaption,
                                                    m_lblDesFillArea})
    top->addWidget(w);
  top->addStretch(1);
  auto* second = new QHBoxLayout;
  second->setSpacing(4);
  for (QWidget* w : std::initializer_list<QWidget*>{m_label5, m_txtOffset, levelCaption, m_txtLevel,
                                                    m_cmdAdd, m_cmdChange, m_cmdDelete})
    second->addWidget(w);
  second->addStretch(1);
  second->addWidget(m_pointerLabel);

  m_picFrame = new QFrame(this);
  m_picFrame->setObjectName(QStringLiteral("picFrame"));
  m_picFrame->setFrameShape(QFrame::StyledPanel);
  m_picFrame->setAutoFillBackground(true);
  QPalette white = m_picFrame->palette();
  white.setColor(QPalette::Window, Qt::white);
  m_picFrame->setPalette(white);
  m_picFrame->installEventFilter(this);
  m_pbGraph = new SectionPicture(*this, m_picFrame);
  m_pbGraph->setObjectName(QStringLiteral("pbGraph"));

  m_cmdYes = button(m_picFrame, "cmdYes", QStringLiteral("Yes"), QStringLiteral("Do it (Y)"));
  m_cmdNo = button(m_picFrame, "cmdNo", QStringLiteral("No"), QStringLiteral("Leave it (N)"));
  m_lblStatusMessage = new QLabel(m_picFrame);
  m_lblStatusMessage->setObjectName(QStringLiteral("lblStatusMessage"));
  m_lblStatusMessage->setWordWrap(true);
  m_lblStatusMessage->setAutoFillBackground(true);
  m_lblStatusMessage->setFrameShape(QFrame::Box);
  QPalette note = m_lblStatusMessage->palette();
  note.setColor(QPalette::Window, QColor(255, 255, 225));
  m_lblStatusMessage->setPalette(note);
  for (QWidget* w : std::initializer_list<QWidget*>{m_cmdYes, m_cmdNo, m_lblStatusMessage})
    w->hide();

  m_hScroll = new QScrollBar(Qt::Horizontal, this);
  m_hScroll->setObjectName(QStringLiteral("HScroll1"));
  m_vScroll = new QScrollBar(Qt::Vertical, this);
  m_vScroll->setObjectName(QStringLiteral("VScroll1"));
  m_vScroll->setRange(0, 0);
  m_hScroll->setRange(0, 0);

  auto* grid = new QGridLayout;
  grid->setSpacing(0);
  grid->addWidget(m_picFrame, 0, 0);
  grid->addWidget(m_vScroll, 0, 1);
  grid->addWidget(m_hScroll, 1, 0);
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(4, 4, 4, 2);
  layout->setSpacing(4);
  layout->addLayout(top);
  layout->addLayout(second);
  layout->addLayout(grid, 1);

  setBoxes(kNoOffset, kNoLevel);
  m_txtOffset->setReadOnly(true);
  m_txtLevel->setReadOnly(true);
  for (QLineEdit* e : {m_txtOffset, m_txtLevel}) e->installEventFilter(this);

  connect(m_cmdGo, &QPushButton::clicked, this, &frmPlotLXSection::goToTypedChainage);
  connect(m_txtChainage, &QLineEdit::returnPressed, this, [this] {
    if (m_editMode == kNoEdit) goToTypedChainage();
  });
  connect(m_cmdFirst, &QPushButton::clicked, this, &frmPlotLXSection::moveFirst);
  connect(m_cmdPrev, &QPushButton::clicked, this, &frmPlotLXSection::movePrevious);
  connect(m_cmdNext, &QPushButton::clicked, this, &frmPlotLXSection::moveNext);
  connect(m_cmdLast, &QPushButton::clicked, this, &frmPlotLXSection::moveLast);
  connect(m_cmdAdd, &QPushButton::clicked, this, &frmPlotLXSection::startAdd);
  connect(m_cmdChange, &QPushButton::clicked, this, &frmPlotLXSection::startChange);
  connect(m_cmdDelete, &QPushButton::clicked, this, &frmPlotLXSection::startDelete);
  connect(m_cmdYes, &QPushButton::clicked, this, &frmPlotLXSection::commitEdit);
  connect(m_cmdNo, &QPushButton::clicked, this, &frmPlotLXSection::abandonEdit);
  connect(m_vScroll, &QScrollBar::valueChanged, this, &frmPlotLXSection::scrollPicture);
  connect(m_hScroll, &QScrollBar::valueChanged, this, [this](int value) {
    if (!isLongitudinal()) {
      scrollPicture();
    } else if (value >= 1 && value <= static_cast<int>(m_chainages.size())) {
      m_rangeStart = value - 1;
      drawLongSection();
    }
  });
}

QSize frmPlotLXSection::sizeHint() const {
  const double dpi = screenDpi();
  return {twipsToPixels(17280, dpi), twipsToPixels(10080, dpi)};
}

double frmPlotLXSection::screenDpi() const { return screenLogicalDpiX(*this); }

double frmPlotLXSection::pixelsPerUnit() const {
  return drawing::pixelsPerUnit(drawing::viewDpi(screenDpi(), m_zoom));
}

double frmPlotLXSection::stepPixels() const { return kScrollStepTwips * screenDpi() / 1440.0; }

void frmPlotLXSection::message(const QString& text, sheets::MessageIcon icon) {
  m_context.ask(this, text, QStringLiteral("Delvane"), sheets::MessageButtons::Ok, icon);
}

// ---- Opening

void frmPlotLXSection::load() {
  engine::EngineSession* session = m_context.currentEngine();
  if (!session || session->sectionId() < 1) return;
  m_editMode = kNoEdit;
  try {
    engine::ResetDesignCache(*session);
    if (isLongitudinal())
      loadLongSection();
    else
      loadCrossSections();
  } catch (const db::Error& error) {
    message(error.message(), sheets::MessageIcon::Critical);
  }
}

void frmPlotLXSection::loadCrossSections() {
  m_chainages = engine::quantityChainages(*m_context.currentEngine());
  if (!m_chainages.empty()) showRow(0);
  layOutPicture();
}

void frmPlotLXSection::loadLongSection() {
  engine::EngineSession& session = *m_context.currentEngine();
  for (QWidget* w : std::initializer_list<QWidget*>{
           m_chainageCaption, m_txtChainage, m_cmdGo, m_cmdFirst, m_cmdPrev, m_cmdNext, m_cmdLast,
           m_cutCaption, m_fillCaption, m_lblDesCutArea, m_lblDesFillArea})
    w->hide();
  m_label5->setText(QStringLiteral("Chainage :"));
  setWindowTitle(QStringLiteral("Longitudinal Section"));
  m_hScroll->setMinimum(1);
  {
    session.reporter().progressStart(QStringLiteral("Loading Longitudinal Section data..."), 0,
                                     false);
    engine::ProgressScope progress(session.reporter());
    m_chainages = engine::quantityChainages(session);
  }
  if (m_chainages.size() < 2) {
    m_chainages.clear();
    m_hScroll->setEnabled(false);
    message(
        QStringLiteral("Insufficient levels to plot L-Section. Atleast 2 sections are required."),
        sheets::MessageIcon::Information);
    return;
  }
  const QSignalBlocker quiet(m_hScroll);
  // The last chainage is never the first of a range: a range shows at least two.
  m_hScroll->setRange(1, static_cast<int>(m_chainages.size()) - 1);
  m_hScroll->setSingleStep(1);
  m_hScroll->setPageStep(5);
  m_hScroll->setValue(1);
  m_rangeStart = 0;
  drawLongSection();
}

// ---- Showing

std::optional<float> frmPlotLXSection::currentChainage() const {
  if (m_row < 0 || m_row >= static_cast<int>(m_chainages.size())) return std::nullopt;
  return m_chainages[m_row];
}

int frmPlotLXSection::datum() const {
  if (m_crossSection) return m_crossSection->section().datum();
  if (m_longSection) return m_longSection->datumOf(0);
  return 0;
}

void frmPlotLXSection::showRow(int row) {
  if (row >= 0 && row < static_cast<int>(m_chainages.size())) showChainage(m_chainages[row]);
}

bool frmPlotLXSection::showChainage(float chainage) {
  engine::EngineSession* session = m_context.currentEngine();
  const auto found = std::find(m_chainages.begin(), m_chainages.end(), chainage);
  if (!session || found == m_chainages.end()) return false;
  try {
    if (engine::ValidateLevels(*session, chainage)) return false;
    engine::ResetDesignCache(*session);
    const bool store = !session->connection().isReadOnly();
    m_crossSection = std::make_unique<drawing::CrossSectionView>(
        engine::computeCrossSection(*session, chainage, store), session->useExecutedLevel(),
        session->numberSymbols());
  } catch (const db::Error& error) {
    message(error.message(), sheets::MessageIcon::Critical);
    return false;
  }
  m_row = static_cast<int>(found - m_chainages.begin());
  const engine::CrossSection& s = m_crossSection->section();
  const engine::NumberSymbols& symbols = session->numberSymbols();
  m_txtChainage->setText(db::floatText(chainage));
  m_lblDesCutArea->setText(engine::formatNumber(s.areaCut, 2, symbols) + QStringLiteral(" Sqm."));
  m_lblDesFillArea->setText(engine::formatNumber(s.areaFill, 2, symbols) + QStringLiteral(" Sqm."));
  setWindowTitle(QStringLiteral("Cross Section - Chainage ") +
                 engine::formatNumber(chainage, 3, symbols));
  layOutPicture();
  clearSelection();
  m_pbGraph->update();
  return true;
}

void frmPlotLXSection::drawLongSection() {
  engine::EngineSession* session = m_context.currentEngine();
  if (!session || m_chainages.size() < 2) return;
  m_rangeStart = std::clamp(m_rangeStart, 0, static_cast<int>(m_chainages.size()) - 2);
  const double frameUnits = m_picFrame->contentsRect().width() / pixelsPerUnit();
  m_rangeMetres = std::max(kLeastMetresShown,
                           drawing::LongSectionSheet::metresAcross(frameUnits, kUnitsPerKilometre));
  const float from = m_chainages[m_rangeStart];
  // The profile runs on to the first chainage past the range, so that its lines reach the
  // picture's right edge.
  float to = m_chainages.back();
  for (std::size_t i = m_rangeStart + 1; i < m_chainages.size(); ++i) {
    if ((double{m_chainages[i]} - from) * 1000.0 > m_rangeMetres) {
      to = m_chainages[i];
      break;
    }
  }
  drawing::LongSectionSheetOptions options;
  options.executed = session->useExecutedLevel();
  options.metresPerPage = static_cast<float>(m_rangeMetres);
  options.verticalScale = static_cast<float>(1000.0 / drawing::kMmPerUnit);
  options.unitsPerKilometre = kUnitsPerKilometre;
  options.title.symbols = session->numberSymbols();
  try {
    engine::LongProfile profile = engine::computeLongProfile(*session, from, to, options.executed);
    // The datum stands below every level of the range, drawn or not (an outer reading lower than
    // the outermost one counts too).
    if (profile.lowest) {
      options.fixedDatum = true;
      options.fixedDatumValue = std::floor(*profile.lowest) - 1.0f;
    }
    m_longSection = std::make_unique<drawing::LongSectionSheet>(std::move(profile), options);
  } catch (const db::Error& error) {
    message(error.message(), sheets::MessageIcon::Critical);
  }
  layOutPicture();
  m_pbGraph->update();
}

void frmPlotLXSection::layOutPicture() {
  QSizeF units;
  if (m_crossSection) {
    units = m_crossSection->size();
  } else if (m_longSection && m_longSection->pageCount() > 0) {
    units =
        QSizeF(m_longSection->pageWidthMm(), m_longSection->pageHeightMm()) / drawing::kMmPerUnit;
  }
  const double ppu = pixelsPerUnit();
  const QSize picture(static_cast<int>(std::ceil(units.width() * ppu)),
                      static_cast<int>(std::ceil(units.height() * ppu)));
  m_pbGraph->resize(picture);
  const QSize frame = m_picFrame->contentsRect().size();
  const double step = stepPixels();
  const auto stepsPast = [step](int picture, int frame) {
    return picture > frame ? static_cast<int>(std::lround((picture - frame) / step)) : 0;
  };
  {
    const QSignalBlocker quiet(m_vScroll);
    m_vScroll->setRange(0, stepsPast(picture.height(), frame.height()));
    m_vScroll->setPageStep(std::max(1, static_cast<int>(frame.height() / step / 2)));
    m_vScroll->setEnabled(m_vScroll->maximum() > 0);
  }
  if (!isLongitudinal()) {
    const QSignalBlocker quiet(m_hScroll);
    m_hScroll->setRange(0, stepsPast(picture.width(), frame.width()));
    m_hScroll->setPageStep(std::max(1, static_cast<int>(frame.width() / step / 4)));
    m_hScroll->setEnabled(m_hScroll->maximum() > 0);
  }
  scrollPicture();
}

void frmPlotLXSection::scrollPicture() {
  const double step = stepPixels();
  const int left = isLongitudinal() ? 0 : static_cast<int>(std::lround(-step * m_hScroll->value()));
  const int top = static_cast<int>(std::lround(-step * m_vScroll->value()));
  const QPoint corner = m_picFrame->contentsRect().topLeft();
  m_pbGraph->move(corner + QPoint(left, top));
  // The edit buttons sit over the picture but keep their place in the frame.
  const double dpi = screenDpi();
  const int buttonTop = corner.y() + twipsToPixels(kButtonTopTwips, dpi);
  m_cmdYes->move(corner.x() + twipsToPixels(kYesLeftTwips, dpi), buttonTop);
  m_cmdNo->move(corner.x() + twipsToPixels(kNoLeftTwips, dpi), buttonTop);
  const int statusLeft = corner.x() + twipsToPixels(kStatusLeftTwips, dpi);
  m_lblStatusMessage->setGeometry(
      statusLeft, buttonTop, m_cmdYes->x() - statusLeft - twipsToPixels(120, dpi),
      m_lblStatusMessage->heightForWidth(m_cmdYes->x() - statusLeft) + 6);
  for (QWidget* w : std::initializer_list<QWidget*>{m_cmdYes, m_cmdNo, m_lblStatusMessage})
    w->raise();
}

QPointF frmPlotLXSection::pixelOf(QPointF value) const {
  QPointF units;
  if (m_crossSection)
    units = m_crossSection->positionOf(value.x(), value.y());
  else if (m_longSection)
    units = m_longSection->positionOf(0, value.x() * 1000.0, value.y());
  return units * pixelsPerUnit();
}

QPointF frmPlotLXSection::valueAtPixel(QPointF pixel) const {
  const QPointF units = pixel / pixelsPerUnit();
  if (m_crossSection) return m_crossSection->valueAt(units);
  if (m_longSection) {
    const QPointF v = m_longSection->valueAt(0, units);
    return {v.x() / 1000.0, v.y()};
  }
  return {};
}

void frmPlotLXSection::paintPicture(QPainter& painter) const {
  painter.fillRect(m_pbGraph->rect(), Qt::white);
  const drawing::SheetProducer* producer = nullptr;
  if (m_crossSection)
    producer = m_crossSection.get();
  else if (m_longSection && m_longSection->pageCount() > 0)
    producer = m_longSection.get();
  if (!producer) return;
  painter.setRenderHint(QPainter::Antialiasing);
  painter.setRenderHint(QPainter::TextAntialiasing);
  drawing::ExternalPainterSurface surface(painter, drawing::viewDpi(screenDpi(), m_zoom));
  drawing::renderPages(*producer, surface, 0, 0);
  if (m_marker) {
    painter.resetTransform();
    painter.setPen(QPen(QColor(255, 0, 255), 2));
    painter.setBrush(Qt::NoBrush);
    const QPointF at = pixelOf(*m_marker);
    painter.drawRect(QRectF(at - QPointF(5, 5), QSizeF(10, 10)));
  }
}

void frmPlotLXSection::pointerMoved(QPointF pixel) {
  engine::EngineSession* session = m_context.currentEngine();
  if (!session || (!m_crossSection && !m_longSection)) {
    m_pointerLabel->clear();
    return;
  }
  const QPointF v = valueAtPixel(pixel);
  const engine::NumberSymbols& symbols = session->numberSymbols();
  m_pointerLabel->setText(
      (isLongitudinal() ? QStringLiteral("Chainage %1 km") : QStringLiteral("Offset %1 m"))
          .arg(engine::formatNumber(v.x(), 3, symbols)) +
      QStringLiteral("     Level %1 m").arg(engine::formatNumber(v.y(), 3, symbols)));
}

// ---- Navigation

void frmPlotLXSection::moveFirst() {
  if (!m_chainages.empty()) showRow(0);
}

void frmPlotLXSection::moveLast() {
  if (!m_chainages.empty()) showRow(static_cast<int>(m_chainages.size()) - 1);
}

void frmPlotLXSection::moveNext() {
  if (!m_chainages.empty()) showRow(std::min(m_row + 1, static_cast<int>(m_chainages.size()) - 1));
}

void frmPlotLXSection::movePrevious() {
  if (!m_chainages.empty()) showRow(std::max(m_row - 1, 0));
}

void frmPlotLXSection::goToTypedChainage() {
  const QString text = m_txtChainage->text().trimmed();
  bool ok = false;
  const double typed = QLocale::c().toDouble(text, &ok);
  const float chainage = static_cast<float>(typed);
  if (ok && std::isfinite(chainage) &&
      std::find(m_chainages.begin(), m_chainages.end(), chainage) != m_chainages.end()) {
    showChainage(chainage);
    return;
  }
  message(QStringLiteral("Chainage ") + text + QStringLiteral(" not found in data!"),
          sheets::MessageIcon::Information);
  if (const std::optional<float> current = currentChainage())
    m_txtChainage->setText(db::floatText(*current));
}

// ---- Selection and edits

void frmPlotLXSection::setBoxes(const QString& offset, const QString& level) {
  m_txtOffset->setText(offset);
  m_txtLevel->setText(level);
}

void frmPlotLXSection::clearSelection() {
  m_selected.reset();
  m_selectedInterpolated = false;
  m_marker.reset();
  setBoxes(kNoOffset, kNoLevel);
  m_pbGraph->update();
}

void frmPlotLXSection::select(QPointF value) {
  m_selected = value;
  m_marker = value;
  setBoxes(db::floatText(static_cast<float>(value.x())),
           db::floatText(static_cast<float>(value.y())));
  m_pbGraph->update();
}

void frmPlotLXSection::pictureReleased(QPointF pixel) {
  if (!m_crossSection && !m_longSection) return;
  const QPointF value = valueAtPixel(pixel);
  try {
    switch (m_editMode) {
      case kNoEdit:
        if (isLongitudinal())
          pickNearestChainage(value.x());
        else
          pickNearestGroundPoint(value.x());
        break;
      case kChange:
      case kAdd:
        setBoxes(boxText(value.x()), boxText(value.y()));
        m_marker = value;
        m_pbGraph->update();
        break;
      default:
        break;
    }
  } catch (const db::Error& error) {
    message(error.message(), sheets::MessageIcon::Critical);
  }
}

void frmPlotLXSection::pickNearestGroundPoint(double offset) {
  const std::optional<float> chainage = currentChainage();
  if (!chainage) return;
  db::Connection& c = m_context.currentEngine()->connection();
  const std::int32_t section = m_context.currentEngine()->sectionId();
  const std::optional<float> picked =
      db::groundOffsetsAround(c, section, *chainage, offset).nearestTo(offset);
  if (!picked) return;
  const std::optional<float> level = db::groundLevelAt(c, section, *chainage, *picked);
  if (!level) return;
  m_selectedInterpolated = false;
  select(QPointF(*picked, *level));
}

void frmPlotLXSection::pickNearestChainage(double chainage) {
  engine::EngineSession& session = *m_context.currentEngine();
  const std::optional<float> picked =
      db::quantityChainagesAround(session.connection(), session.sectionId(), chainage)
          .nearestTo(chainage);
  if (!picked) return;
  session.levels().Reload = true;
  bool interpolated = false;
  const float level = engine::DesignLevelAt(session, *picked, interpolated, true);
  m_selectedInterpolated = interpolated;
  select(QPointF(*picked, level));
}

void frmPlotLXSection::setEditing(bool editing) {
  for (QWidget* w :
       std::initializer_list<QWidget*>{m_txtChainage, m_cmdGo, m_cmdFirst, m_cmdPrev, m_cmdNext,
                                       m_cmdLast, m_cmdAdd, m_cmdChange, m_cmdDelete})
    w->setEnabled(!editing);
  for (QWidget* w : std::initializer_list<QWidget*>{m_cmdYes, m_cmdNo, m_lblStatusMessage})
    w->setVisible(editing);
  if (editing) scrollPicture();
}

void frmPlotLXSection::beginEdit(EditMode mode, const QString& status) {
  m_editMode = mode;
  m_lblStatusMessage->setText(status);
  setEditing(true);
  const bool typing = mode == kChange || mode == kAdd;
  m_txtOffset->setReadOnly(!typing);
  m_txtLevel->setReadOnly(!typing);
  if (typing)
    m_txtOffset->setFocus();
  else
    m_pbGraph->setFocus();
}

void frmPlotLXSection::endEdit() {
  m_txtOffset->setReadOnly(true);
  m_txtLevel->setReadOnly(true);
  setEditing(false);
  m_editMode = kNoEdit;
}

void frmPlotLXSection::startAdd() {
  if (m_editMode != kNoEdit || (!m_crossSection && !m_longSection)) return;
  beginEdit(kAdd, kEditPrompt);
  setBoxes(kNoOffset, kNoLevel);
  m_marker.reset();
  m_pbGraph->update();
}

void frmPlotLXSection::startChange() {
  if (m_editMode != kNoEdit || m_txtOffset->text() == kNoOffset) return;
  if (isLongitudinal() && m_selectedInterpolated) {
    message(QStringLiteral("You cannot change an interpolated point!"),
            sheets::MessageIcon::Information);
    return;
  }
  beginEdit(kChange, kEditPrompt);
}

void frmPlotLXSection::startDelete() {
  if (m_editMode != kNoEdit || m_txtOffset->text() == kNoOffset) return;
  if (isLongitudinal() && m_selectedInterpolated) {
    message(QStringLiteral("You cannot delete an interpolated point!"),
            sheets::MessageIcon::Information);
    return;
  }
  beginEdit(kDelete,
            QStringLiteral("Are you sure you want to delete the selected point at offset ") +
                m_txtOffset->text() + QStringLiteral("?"));
}

void frmPlotLXSection::abandonEdit() {
  if (m_editMode == kNoEdit) return;
  if (m_editMode == kChange || m_editMode == kAdd) {
    if (m_selected) {
      select(*m_selected);
    } else {
      setBoxes(kNoOffset, kNoLevel);
      m_marker.reset();
      m_pbGraph->update();
    }
  }
  endEdit();
}

std::optional<float> frmPlotLXSection::numberIn(const QLineEdit* box, const QString& name) {
  const QString text = box->text().trimmed();
  bool ok = false;
  double value = QLocale::c().toDouble(text, &ok);
  if (!ok) {
    // The user's own decimal symbol is taken as well as the point.
    const engine::EngineSession* session = m_context.currentEngine();
    const QChar decimal = session ? session->numberSymbols().decimal : QLatin1Char('.');
    value = QLocale::c().toDouble(QString(text).replace(decimal, QLatin1Char('.')), &ok);
  }
  const float single = static_cast<float>(value);
  if (ok && std::isfinite(single)) return single;
  message(QStringLiteral("The %1 box holds \"%2\", which is not a number. Nothing was written.")
              .arg(name, text),
          sheets::MessageIcon::Warning);
  return std::nullopt;
}

void frmPlotLXSection::commitEdit() {
  const EditMode mode = static_cast<EditMode>(m_editMode);
  if (mode == kNoEdit) return;
  float first = 0.0f;
  float level = 0.0f;
  if (mode == kDelete) {
    if (!m_selected) {
      endEdit();
      return;
    }
    first = static_cast<float>(m_selected->x());
    level = static_cast<float>(m_selected->y());
  } else {
    if (m_txtOffset->text() == kNoOffset || m_txtLevel->text() == kNoLevel) {
      endEdit();
      message(QStringLiteral("You have not selected a correct offset and level"),
              sheets::MessageIcon::Information);
      if (m_selected)
        select(*m_selected);
      else
        clearSelection();
      return;
    }
    // A text that is not a number keeps the edit open, with the box to mend.
    const QString firstName = isLongitudinal() ? QStringLiteral("Chainage") : kNoOffset;
    const std::optional<float> a = numberIn(m_txtOffset, firstName);
    if (!a) {
      m_txtOffset->setFocus();
      return;
    }
    const std::optional<float> b = numberIn(m_txtLevel, kNoLevel);
    if (!b) {
      m_txtLevel->setFocus();
      return;
    }
    first = *a;
    level = *b;
  }
  endEdit();
  try {
    if (isLongitudinal())
      writeLongSectionEdit(mode, first, level);
    else
      writeCrossSectionEdit(mode, first, level);
  } catch (const db::Error& error) {
    message(error.message(), sheets::MessageIcon::Critical);
  }
}

void frmPlotLXSection::writeCrossSectionEdit(EditMode mode, float offset, float level) {
  const std::optional<float> chainage = currentChainage();
  engine::EngineSession& session = *m_context.currentEngine();
  if (!chainage) return;
  db::Connection& c = session.connection();
  const std::int32_t section = session.sectionId();
  const QPointF old = m_selected.value_or(QPointF());
  const db::LevelPoint was{static_cast<float>(old.x()), static_cast<float>(old.y())};
  const db::LevelPoint point{offset, level};
  if (mode == kChange)
    db::changeGroundPoint(c, section, *chainage, was, point);
  else if (mode == kAdd)
    db::addGroundPoint(c, section, *chainage, point);
  else if (mode == kDelete)
    db::deleteGroundPoint(c, section, *chainage, point);
  session.levelDataChanged();
  if (m_context.link) m_context.link->tableWritten(QStringLiteral("Initial"));

  // Drawn again from what the project now holds; a chainage whose last reading went is no
  // longer one of the section's, and the view moves to its neighbour.
  engine::ResetDesignCache(session);
  const int row = m_row;
  m_chainages = engine::quantityChainages(session);
  if (std::find(m_chainages.begin(), m_chainages.end(), *chainage) != m_chainages.end()) {
    showChainage(*chainage);
  } else if (!m_chainages.empty()) {
    showRow(std::clamp(row, 0, static_cast<int>(m_chainages.size()) - 1));
  } else {
    m_row = -1;
    m_crossSection.reset();
    layOutPicture();
    clearSelection();
  }
  // Only this chainage's areas changed: the volumes and totals follow from the stored areas.
  refreshQuantities(-2.0f);
}

void frmPlotLXSection::writeLongSectionEdit(EditMode mode, float chainage, float level) {
  engine::EngineSession& session = *m_context.currentEngine();
  db::Connection& c = session.connection();
  const std::int32_t section = session.sectionId();
  const QPointF old = m_selected.value_or(QPointF());
  const db::LevelPoint point{chainage, level};
  if (mode == kDelete)
    db::deleteDesignLevel(c, section, point);
  else if (mode == kAdd)
    db::addDesignLevel(c, section, point);
  else if (mode == kChange)
    db::changeDesignLevel(c, section, {static_cast<float>(old.x()), static_cast<float>(old.y())},
                          point);
  session.levelDataChanged();
  if (m_context.link) m_context.link->tableWritten(QStringLiteral("DesignLevels"));
  engine::ResetDesignCache(session);
  if (mode == kDelete) {
    clearSelection();
  } else {
    m_selectedInterpolated = false;
    select(QPointF(chainage, level));
  }
  drawLongSection();
  // A design level moves the design section of every chainage near it: all areas again.
  refreshQuantities(-1.0f);
}

void frmPlotLXSection::refreshQuantities(float chainage) {
  engine::EngineSession* session = m_context.currentEngine();
  if (!session) return;
  const auto run = [session, chainage] {
    try {
      engine::ComputeQuantities(*session, nullptr, chainage);
    } catch (const db::Error& error) {
      session->reporter().messageBox(
          QStringLiteral("The quantities could not be computed: ") + error.message(),
          engine::Reporter::Icon::Critical);
    }
  };
  if (m_context.link)
    m_context.link->runComputation(run);
  else
    run();
}

// ---- Keys, wheel and zoom

bool frmPlotLXSection::pictureKey(int key, const QString& text) {
  const QChar c = text.isEmpty() ? QChar() : text.front().toLower();
  if (m_editMode != kNoEdit) {
    if (c == QLatin1Char('n') || key == Qt::Key_Escape) {
      abandonEdit();
      return true;
    }
    if (c == QLatin1Char('y') || key == Qt::Key_Return || key == Qt::Key_Enter) {
      commitEdit();
      return true;
    }
    return false;
  }
  if (c == QLatin1Char('c')) {
    startChange();
  } else if (c == QLatin1Char('a')) {
    startAdd();
  } else if (c == QLatin1Char('d')) {
    startDelete();
  } else if (isLongitudinal()) {
    return false;
  } else if (key == Qt::Key_PageDown) {
    moveNext();
  } else if (key == Qt::Key_PageUp) {
    movePrevious();
  } else if (key == Qt::Key_Home) {
    moveFirst();
  } else if (key == Qt::Key_End) {
    moveLast();
  } else {
    return false;
  }
  return true;
}

void frmPlotLXSection::keyPressEvent(QKeyEvent* event) {
  if (event->modifiers() & Qt::ControlModifier) {
    if (event->key() == Qt::Key_0) {
      setZoom(1.0);
      return;
    }
    if (event->key() == Qt::Key_Plus || event->key() == Qt::Key_Equal) {
      setZoom(m_zoom * kZoomStep);
      return;
    }
    if (event->key() == Qt::Key_Minus) {
      setZoom(m_zoom / kZoomStep);
      return;
    }
  }
  if (!pictureKey(event->key(), event->text())) QWidget::keyPressEvent(event);
}

bool frmPlotLXSection::eventFilter(QObject* watched, QEvent* event) {
  if (watched == m_picFrame && event->type() == QEvent::Resize) {
    if (isLongitudinal())
      drawLongSection();
    else
      layOutPicture();
    return false;
  }
  const bool box = watched == m_txtOffset || watched == m_txtLevel;
  const bool typing = m_editMode == kChange || m_editMode == kAdd;
  if (box && typing && event->type() == QEvent::KeyPress) {
    const auto* key = static_cast<QKeyEvent*>(event);
    const QChar c = key->text().isEmpty() ? QChar() : key->text().front().toLower();
    const bool answer = c == QLatin1Char('y') || c == QLatin1Char('n') ||
                        key->key() == Qt::Key_Escape || key->key() == Qt::Key_Return ||
                        key->key() == Qt::Key_Enter;
    if (answer) return pictureKey(key->key(), key->text());
  }
  if (box && typing && event->type() == QEvent::FocusIn) {
    // After the click that gave the focus has placed the cursor.
    auto* edit = static_cast<QLineEdit*>(watched);
    QTimer::singleShot(0, edit, [edit] { edit->selectAll(); });
  }
  return QWidget::eventFilter(watched, event);
}

void frmPlotLXSection::setZoom(double zoom) {
  zoom = std::clamp(zoom, kMinZoom, kMaxZoom);
  if (zoom == m_zoom) return;
  // The value at the frame's centre stays there.
  const QPointF centre = QRectF(m_picFrame->contentsRect()).center();
  const QPointF value = valueAtPixel(centre - QPointF(m_pbGraph->pos()));
  m_zoom = zoom;
  if (isLongitudinal()) {
    drawLongSection();
    return;
  }
  layOutPicture();
  const QPointF now = pixelOf(value) + QPointF(m_picFrame->contentsRect().topLeft());
  const double step = stepPixels();
  m_hScroll->setValue(static_cast<int>(std::lround((now.x() - centre.x()) / step)));
  m_vScroll->setValue(static_cast<int>(std::lround((now.y() - centre.y()) / step)));
  m_pbGraph->update();
}

void frmPlotLXSection::MouseWheel(int keys, int rotation, int /*x*/, int /*y*/) {
  constexpr int kCtrl = 8;
  if (keys & kCtrl) {
    setZoom(rotation > 0 ? m_zoom * kZoomStep : m_zoom / kZoomStep);
    return;
  }
  if (!m_hScroll->isEnabled()) return;
  if (rotation < 1)
    m_hScroll->setValue(std::min(m_hScroll->value() + m_hScroll->pageStep(), m_hScroll->maximum()));
  else
    m_hScroll->setValue(std::max(m_hScroll->value() - m_hScroll->pageStep(), m_hScroll->minimum()));
}

void frmPlotLXSection::wheelEvent(QWheelEvent* event) {
  sheets::deliverWheelEvent(*this, m_context.mouseWheel, event);
}

void frmPlotLXSection::closeEvent(QCloseEvent* event) {
  abandonEdit();
  m_wheelHook.unhook();
  QWidget::closeEvent(event);
}

}  // namespace app
