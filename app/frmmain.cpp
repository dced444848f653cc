#include "app/frmmain.h"

#include "app/appstate.h"
#include "app/desktopreporter.h"
#include "app/frmoptions.h"
#include "app/frmplotlxsection.h"
#include "app/frmsplash.h"
#include "app/frmtypicalsection.h"
#include "app/helpwindow.h"
#include "app/importlevelsdialog.h"
#include "app/mdiarrange.h"
#include "app/opendatabase.h"
#include "app/plotsheets.h"
#include "app/printform.h"
#include "app/settings.h"
#include "app/toolicons.h"
#include "app/twips.h"
#include "db/connection.h"
#include "db/jetsource.h"
#include "db/project.h"
#include "db/schema.h"
#include "engine/initialorder.h"
#include "engine/numbertext.h"
#include "engine/levelimport.h"
#include "engine/progress.h"
#include "engine/projectimport.h"
#include "engine/quantityexport.h"
#include "engine/session.h"
#include "sheets/dlgsearchwindow.h"
#include "sheets/frmdatagrid.h"
#include "sheets/frmreport.h"
#include "sheets/gridcontrol.h"
#include "sheets/modgridstyles.h"

#include <QApplication>
#include <QCheckBox>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDate>
#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QInputDialog>
#include <QLabel>
#include <QLocale>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QMenuBar>
#include <QPageSetupDialog>
#include <QPainter>
#include <QPointer>
#include <QPrintDialog>
#include <QPrinter>
#include <QRegularExpression>
#include <QScopeGuard>
#include <QSettings>
#include <QStatusBar>
#include <QToolBar>

#include <cmath>
#include <optional>
#include <tuple>

namespace app {

namespace {

const QString kTitle = QStringLiteral("Delvane");

// Prints a window that does not draw itself as its screen image, as wide as the page and cut
// into page-high slices.
void printScreenImage(QWidget& window, QPrinter& printer, QPainter& painter, const QRect& page) {
  const QPixmap image = window.grab();
  if (image.isNull() || image.width() < 1) return;
  const qreal scale = static_cast<qreal>(page.width()) / image.width();
  const int sliceHeight = std::max(1, static_cast<int>(page.height() / scale));
  for (int top = 0; top < image.height(); top += sliceHeight) {
    if (top > 0) printer.newPage();
    const QRect slice(0, top, image.width(), std::min(sliceHeight, image.height() - top));
    const QRectF target(page.left(), page.top(), page.width(), slice.height() * scale);
    painter.drawPixmap(target, image, QRectF(slice));
  }
}

// What a child window shows the rows of, and so when it has to close: the Sections sheet those
// of one package; the other data sheets, the reports and the page windows those of one section;
// the Package sheet and any other window the whole project.
enum class ChildScope { Project, Package, Section };

ChildScope scopeOf(const QMdiSubWindow* child) {
  QWidget* window = child->widget();
  if (const auto* sheet = qobject_cast<const sheets::frmDataGrid*>(window)) {
    if (sheet->strCurrentDataSheet == QLatin1String("Package")) return ChildScope::Project;
    if (sheet->strCurrentDataSheet == QLatin1String("Sections")) return ChildScope::Package;
    return ChildScope::Section;
  }
  if (qobject_cast<const sheets::frmReport*>(window) || qobject_cast<const PrintForm*>(window) ||
      qobject_cast<const frmPlotLXSection*>(window))
    return ChildScope::Section;
  return ChildScope::Project;
}

// The key of the package or section a child was opened on, kept on its frame.
const char* const kShownKey = "shownKey";

std::int32_t shownKey(const QMdiSubWindow* child) { return child->property(kShownKey).toInt(); }

// Whether the package or section a child shows is still in the project.
bool shownRowsExist(db::Connection& connection, const QMdiSubWindow* child) {
  switch (scopeOf(child)) {
    case ChildScope::Package:
      return db::keyExists(connection, QStringLiteral("Package"), shownKey(child));
    case ChildScope::Section:
      return db::keyExists(connection, QStringLiteral("Sections"), shownKey(child));
    case ChildScope::Project:
      break;
  }
  return true;
}

}  // namespace

frmMain::frmMain(AppState& state, QWidget* parent) : QMainWindow(parent), m_state(state) {
  setObjectName(QStringLiteral("frmMain"));
  setWindowTitle(kTitle);
  m_manualFolder = manualFolder();
  m_modelsFolder = modelsFolder();

  m_mdiArea = new QMdiArea(this);
  m_mdiArea->setObjectName(QStringLiteral("mdiArea"));
  m_mdiArea->setHorizontalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  m_mdiArea->setVerticalScrollBarPolicy(Qt::ScrollBarAsNeeded);
  setCentralWidget(m_mdiArea);

  m_context.connection = [this] { return m_state.cnProject.get(); };
  m_context.engine = [this] { return m_state.engine.get(); };
  m_context.packageId = [this] { return m_state.lngPackageID; };
  m_context.sectionId = [this] { return m_state.lngSectionID; };
  m_context.autoSave = [this] { return m_state.settings.AutoSave; };
  m_context.enterRight = [this] { return m_state.settings.EnterRight; };
  m_context.useExecutedLevel = [this] { return m_chkUseExecutedLevel->isChecked(); };
  m_context.mouseWheel = m_state.mouseWheel;
  m_context.link = this;

  createMenus();
  createToolBars();
  createStatusBar();
  useExecutedLevelChanged(m_chkUseExecutedLevel->isChecked());
  EnableMenus();
}

frmMain::~frmMain() {
  // The children reach this window through their link while they go, so they go first, while
  // the menus and tool bars they switch still exist.
  closeFilterWindow();
  for (QMdiSubWindow* child : m_mdiArea->subWindowList()) delete child;
}

// ---- Construction

QAction* frmMain::addMenuItem(QMenu* menu, const QString& name, const QString& caption,
                              void (frmMain::*command)(), const QKeySequence& shortcut) {
  QAction* item = menu->addAction(caption);
  item->setObjectName(name);
  if (!shortcut.isEmpty()) item->setShortcut(shortcut);
  if (command) connect(item, &QAction::triggered, this, command);
  m_actions[name] = item;
  return item;
}

QAction* frmMain::addToolButton(QToolBar* bar, const QString& key, const QString& toolTip,
                                const QString& iconKey, void (frmMain::*command)()) {
  QAction* button = bar->addAction(toolIcon(iconKey), toolTip);
  button->setObjectName(key);
  button->setData(key);
  button->setToolTip(toolTip);
  if (command) connect(button, &QAction::triggered, this, command);
  m_actions[bar->objectName() + QLatin1Char('/') + key] = button;
  return button;
}

void frmMain::createMenus() {
  auto addMenu = [this](const QString& name, const QString& caption) {
    QMenu* menu = menuBar()->addMenu(caption);
    menu->setObjectName(name);
    menu->menuAction()->setObjectName(name);
    m_actions[name] = menu->menuAction();
    return menu;
  };

  QMenu* file = addMenu(QStringLiteral("mnuFile"), QStringLiteral("&File"));
  addMenuItem(file, QStringLiteral("mnuFileOpen"), QStringLiteral("&Open DB..."),
              &frmMain::fileOpen, QKeySequence(Qt::CTRL | Qt::Key_O));
  addMenuItem(file, QStringLiteral("mnuFileImportLegacy"),
              QStringLiteral("&Import Legacy Project..."), &frmMain::fileImportLegacy);
  addMenuItem(file, QStringLiteral("mnuFileSave"), QStringLiteral("&Save"), &frmMain::fileSave,
              QKeySequence(Qt::CTRL | Qt::Key_S));
  file->addSeparator();
  addMenuItem(file, QStringLiteral("mnuFileImportLevels"), QStringLiteral("&Import Levels..."),
              &frmMain::fileImportLevels);
  file->addSeparator();
  addMenuItem(file, QStringLiteral("mnuFilePageSetup"), QStringLiteral("Page Set&up..."),
              &frmMain::filePageSetup);
  addMenuItem(file, QStringLiteral("mnuFilePrint"), QStringLiteral("&Print..."),
              &frmMain::filePrint);
  // A page window's sheet, or a data sheet's or report's whole table, as a file: every page as
  // PDF, the page shown as PNG or SVG.
  for (const auto& [name, caption, extension] :
       {std::tuple{"mnuFileSavePdf", "Save as P&DF...", "pdf"},
        std::tuple{"mnuFileSavePng", "Save as PN&G...", "png"},
        std::tuple{"mnuFileSaveSvg", "Save as S&VG...", "svg"}}) {
    QAction* save =
        addMenuItem(file, QString::fromLatin1(name), QString::fromLatin1(caption), nullptr);
    const QString kind = QString::fromLatin1(extension);
    connect(save, &QAction::triggered, this, [this, kind] {
      QMdiSubWindow* child = activeChild();
      if (auto* form = child ? qobject_cast<PrintForm*>(child->widget()) : nullptr)
        form->askAndSave(kind);
      else if (std::optional<PrintSheet> table = activeTable())
        tableForm(std::move(*table))->askAndSave(kind);
    });
    m_sheetSaveItems.append(save);
  }
  file->addSeparator();
  QAction* exit =
      addMenuItem(file, QStringLiteral("mnuFileExit"), QStringLiteral("E&xit"), nullptr);
  connect(exit, &QAction::triggered, this, &QWidget::close);

  m_mnuEdit = addMenu(QStringLiteral("mnuEdit"), QStringLiteral("&Edit"));
  QAction* undo = addMenuItem(m_mnuEdit, QStringLiteral("mnuEditUndo"), QStringLiteral("&Undo"),
                              nullptr, QKeySequence(Qt::CTRL | Qt::Key_Z));
  connect(undo, &QAction::triggered, this, [this] { editMenuEvent(sheets::frmDataGrid::kUndo); });
  m_mnuEdit->addSeparator();
  QAction* cut = addMenuItem(m_mnuEdit, QStringLiteral("mnuEditCut"), QStringLiteral("Cu&t"),
                             nullptr, QKeySequence(Qt::CTRL | Qt::Key_X));
  connect(cut, &QAction::triggered, this, [this] { editMenuEvent(sheets::frmDataGrid::kCut); });
  QAction* copy = addMenuItem(m_mnuEdit, QStringLiteral("mnuEditCopy"), QStringLiteral("&Copy"),
                              nullptr, QKeySequence(Qt::CTRL | Qt::Key_C));
  connect(copy, &QAction::triggered, this, [this] { editMenuEvent(sheets::frmDataGrid::kCopy); });
  QAction* paste = addMenuItem(m_mnuEdit, QStringLiteral("mnuEditPaste"), QStringLiteral("&Paste"),
                               nullptr, QKeySequence(Qt::CTRL | Qt::Key_V));
  connect(paste, &QAction::triggered, this, [this] { editMenuEvent(sheets::frmDataGrid::kPaste); });
  QAction* transform =
      addMenuItem(m_mnuEdit, QStringLiteral("mnuEditTransform"), QStringLiteral("T&ransform..."),
                  nullptr, QKeySequence(Qt::CTRL | Qt::Key_T));
  connect(transform, &QAction::triggered, this,
          [this] { editMenuEvent(sheets::frmDataGrid::kTransform); });
  m_mnuEdit->addSeparator();
  addMenuItem(m_mnuEdit, QStringLiteral("mnuEditAdd"), QStringLiteral("&Add"), &frmMain::editAdd,
              QKeySequence(Qt::CTRL | Qt::Key_N));
  addMenuItem(m_mnuEdit, QStringLiteral("mnuEditDelete"), QStringLiteral("&Delete"),
              &frmMain::editDelete, QKeySequence(Qt::CTRL | Qt::Key_D));

  QMenu* view = addMenu(QStringLiteral("mnuView"), QStringLiteral("&View"));
  QAction* toolbar =
      addMenuItem(view, QStringLiteral("mnuViewToolbar"), QStringLiteral("&Toolbar"), nullptr);
  toolbar->setCheckable(true);
  toolbar->setChecked(true);
  connect(toolbar, &QAction::toggled, this, [this](bool on) { m_tbToolBar->setVisible(on); });
  QAction* status =
      addMenuItem(view, QStringLiteral("mnuViewStatusBar"), QStringLiteral("Status &Bar"), nullptr);
  status->setCheckable(true);
  status->setChecked(true);
  connect(status, &QAction::toggled, this, [this](bool on) { statusBar()->setVisible(on); });
  view->addSeparator();
  QAction* detail =
      addMenuItem(view, QStringLiteral("mnuViewDetail"), QStringLiteral("Filter Window"), nullptr);
  detail->setCheckable(true);
  // The command decides the check mark from its state before the click.
  connect(detail, &QAction::triggered, this, [this, detail](bool checkedNow) {
    detail->setChecked(!checkedNow);
    viewFilterWindow();
  });
  addMenuItem(view, QStringLiteral("mnuLockColumn"), QStringLiteral("Lock/Unlock Column"),
              &frmMain::viewLockColumn, QKeySequence(Qt::CTRL | Qt::Key_F3));
  addMenuItem(view, QStringLiteral("mnuViewFreeze"), QStringLiteral("Freeze/Unfreeze Column"),
              &frmMain::viewFreeze);
  view->addSeparator();
  addMenuItem(view, QStringLiteral("mnuViewRefresh"), QStringLiteral("&Refresh"),
              &frmMain::viewRefresh);

  QMenu* data = addMenu(QStringLiteral("mnuData"), QStringLiteral("&Data"));
  addMenuItem(data, QStringLiteral("mnuDataPackage"), QStringLiteral("Package"),
              &frmMain::dataPackage);
  addMenuItem(data, QStringLiteral("mnuDataSections"), QStringLiteral("Sections"),
              &frmMain::dataSections);
  data->addSeparator();
  addMenuItem(data, QStringLiteral("mnuDataDesignSummary"), QStringLiteral("Design Profile Values"),
              &frmMain::dataDesignSummary);
  addMenuItem(data, QStringLiteral("mnuDataDesign"), QStringLiteral("Design Levels"),
              &frmMain::dataDesign);
  addMenuItem(data, QStringLiteral("mnuDataInitial"), QStringLiteral("Initial Levels"),
              &frmMain::dataInitial);
  addMenuItem(data, QStringLiteral("mnuDataExecuted"), QStringLiteral("Executed Levels"),
              &frmMain::dataExecuted);
  addMenuItem(data, QStringLiteral("mnuDataOutlets"), QStringLiteral("Outlets"),
              &frmMain::dataOutlets);

  QMenu* output = addMenu(QStringLiteral("mnuOutput"), QStringLiteral("&Output"));
  addMenuItem(output, QStringLiteral("mnuOutputViewLSec"), QStringLiteral("View L Section"),
              &frmMain::outputViewLSection);
  addMenuItem(output, QStringLiteral("mnuOutputViewXSec"), QStringLiteral("View X Section"),
              &frmMain::outputViewXSection);
  addMenuItem(output, QStringLiteral("mnuOutputViewQty"), QStringLiteral("View Quantity"),
              &frmMain::outputViewQuantity);
  output->addSeparator();
  addMenuItem(output, QStringLiteral("mnuOutputLSection"), QStringLiteral("Plot L Section"),
              &frmMain::outputPlotLSection);
  addMenuItem(output, QStringLiteral("mnuOutputXSection"), QStringLiteral("Plot X Section"),
              &frmMain::outputPlotXSection);
  output->addSeparator();
  addMenuItem(output, QStringLiteral("mnuOutputQuantity"), QStringLiteral("Export Quantity Sheet"),
              &frmMain::outputExportQuantity);

  QMenu* tools = addMenu(QStringLiteral("mnuTools"), QStringLiteral("&Tools"));
  addMenuItem(tools, QStringLiteral("mnuToolsOptions"), QStringLiteral("&Options..."),
              &frmMain::toolsOptions);

  m_mnuWindow = addMenu(QStringLiteral("mnuWindow"), QStringLiteral("&Window"));
  QAction* cascade = addMenuItem(m_mnuWindow, QStringLiteral("mnuWindowCascade"),
                                 QStringLiteral("&Cascade"), nullptr);
  connect(cascade, &QAction::triggered, m_mdiArea, &QMdiArea::cascadeSubWindows);
  QAction* tileH = addMenuItem(m_mnuWindow, QStringLiteral("mnuWindowTileHorizontal"),
                               QStringLiteral("Tile &Horizontal"), nullptr);
  connect(tileH, &QAction::triggered, this, [this] { tileHorizontal(*m_mdiArea); });
  QAction* tileV = addMenuItem(m_mnuWindow, QStringLiteral("mnuWindowTileVertical"),
                               QStringLiteral("Tile &Vertical"), nullptr);
  connect(tileV, &QAction::triggered, this, [this] { tileVertical(*m_mdiArea); });
  QAction* icons = addMenuItem(m_mnuWindow, QStringLiteral("mnuWindowArrangeIcons"),
                               QStringLiteral("&Arrange Icons"), nullptr);
  connect(icons, &QAction::triggered, this, [this] { arrangeIcons(*m_mdiArea); });
  m_windowListSeparator = m_mnuWindow->addSeparator();
  connect(m_mnuWindow, &QMenu::aboutToShow, this, &frmMain::updateWindowMenu);
  connect(m_mdiArea, &QMdiArea::subWindowActivated, this, &frmMain::updateWindowMenu);
  connect(m_mdiArea, &QMdiArea::subWindowActivated, this, [this](QMdiSubWindow* child) {
    const bool sheet = child && (qobject_cast<PrintForm*>(child->widget()) ||
                                 qobject_cast<sheets::frmDataGrid*>(child->widget()) ||
                                 qobject_cast<sheets::frmReport*>(child->widget()));
    for (QAction* item : m_sheetSaveItems) item->setEnabled(sheet);
  });
  for (QAction* item : m_sheetSaveItems) item->setEnabled(false);

  QMenu* help = addMenu(QStringLiteral("mnuHelp"), QStringLiteral("&Help"));
  addMenuItem(help, QStringLiteral("mnuHelpContents"), QStringLiteral("&Contents"),
              &frmMain::helpContents, QKeySequence(Qt::Key_F1));
  addMenuItem(help, QStringLiteral("mnuHelpAbout"), QStringLiteral("&About "), &frmMain::helpAbout);

  // A data sheet switches these on while it is the active child.
  setCommandEnabled(Command::mnuEdit, false);
  setCommandEnabled(Command::mnuViewDetail, false);
  setCommandEnabled(Command::mnuLockColumn, false);
  setCommandEnabled(Command::mnuViewFreeze, false);
  setCommandEnabled(Command::mnuViewRefresh, false);
}

void frmMain::createToolBars() {
  m_tbToolBar = addToolBar(QStringLiteral("Toolbar"));
  m_tbToolBar->setObjectName(QStringLiteral("tbToolBar"));
  m_tbToolBar->setIconSize(QSize(24, 24));
  // The View menu's check mark governs this bar; the bar's own context menu would bypass it.
  m_tbToolBar->toggleViewAction()->setVisible(false);
  m_tbToolBar->setFloatable(false);
  m_tbToolBar->setMovable(false);
  addToolButton(m_tbToolBar, QStringLiteral("Open"), QStringLiteral("Open"), QStringLiteral("Open"),
                &frmMain::fileOpen);
  addToolButton(m_tbToolBar, QStringLiteral("Save"), QStringLiteral("Save"), QStringLiteral("Save"),
                &frmMain::fileSave);
  addToolButton(m_tbToolBar, QStringLiteral("Print"), QStringLiteral("Print"),
                QStringLiteral("Print"), &frmMain::filePrint);
  m_tbToolBar->addSeparator();
  addToolButton(m_tbToolBar, QStringLiteral("Packages"), QStringLiteral("Packages"),
                QStringLiteral("Packages"), &frmMain::dataPackage);
  m_tbToolBar->addSeparator();
  connect(addToolButton(m_tbToolBar, QStringLiteral("Cut"), QStringLiteral("Cut"),
                        QStringLiteral("Cut"), nullptr),
          &QAction::triggered, this, [this] { editMenuEvent(sheets::frmDataGrid::kCut); });
  connect(addToolButton(m_tbToolBar, QStringLiteral("Copy"), QStringLiteral("Copy"),
                        QStringLiteral("Copy"), nullptr),
          &QAction::triggered, this, [this] { editMenuEvent(sheets::frmDataGrid::kCopy); });
  connect(addToolButton(m_tbToolBar, QStringLiteral("Paste"), QStringLiteral("Paste"),
                        QStringLiteral("Paste"), nullptr),
          &QAction::triggered, this, [this] { editMenuEvent(sheets::frmDataGrid::kPaste); });
  connect(addToolButton(m_tbToolBar, QStringLiteral("Undo"), QStringLiteral("Undo"),
                        QStringLiteral("Undo"), nullptr),
          &QAction::triggered, this, [this] { editMenuEvent(sheets::frmDataGrid::kUndo); });
  m_tbToolBar->addSeparator();
  addToolButton(m_tbToolBar, QStringLiteral("Filter"), QStringLiteral("Filter"),
                QStringLiteral("Find"), &frmMain::viewFilterWindow);
  addToolButton(m_tbToolBar, QStringLiteral("Help"), QStringLiteral("Help"), QStringLiteral("Help"),
                &frmMain::helpContents);
  m_tbToolBar->addSeparator();
  addToolButton(m_tbToolBar, QStringLiteral("Add"), QStringLiteral("Add"), QStringLiteral("Add"),
                &frmMain::editAdd);
  addToolButton(m_tbToolBar, QStringLiteral("Delete"), QStringLiteral("Delete"),
                QStringLiteral("Delete"), &frmMain::editDelete);
  // Shown and enabled by the active data sheet.
  setToolButtonVisible(QStringLiteral("Add"), false);
  setToolButtonVisible(QStringLiteral("Delete"), false);
  setToolButtonEnabled(QStringLiteral("Filter"), false);

  m_tbToolBar->addSeparator();
  m_chkUseExecutedLevel = new QCheckBox(QStringLiteral("Executed Lvl"), m_tbToolBar);
  m_chkUseExecutedLevel->setObjectName(QStringLiteral("chkUseExecutedLevel"));
  m_chkUseExecutedLevel->setToolTip(
      QStringLiteral("Compute the cross-section areas against the executed levels"));
  connect(m_chkUseExecutedLevel, &QCheckBox::toggled, this, &frmMain::useExecutedLevelChanged);
  m_tbToolBar->addWidget(m_chkUseExecutedLevel);

  addToolBarBreak();
  m_tbBlockBar = addToolBar(QStringLiteral("Section"));
  m_tbBlockBar->setObjectName(QStringLiteral("tbBlockBar"));
  m_tbBlockBar->setIconSize(QSize(24, 24));
  m_tbBlockBar->toggleViewAction()->setVisible(false);
  m_tbBlockBar->setFloatable(false);
  m_tbBlockBar->setMovable(false);
  addToolButton(m_tbBlockBar, QStringLiteral("Profile"), QStringLiteral("Design Profile Values"),
                QStringLiteral("Profile"), &frmMain::dataDesignSummary);
  addToolButton(m_tbBlockBar, QStringLiteral("DesignLevels"), QStringLiteral("Design Levels"),
                QStringLiteral("DesignLevels"), &frmMain::dataDesign);
  addToolButton(m_tbBlockBar, QStringLiteral("InitialLevels"), QStringLiteral("Initial Levels"),
                QStringLiteral("InitialLevels"), &frmMain::dataInitial);
  addToolButton(m_tbBlockBar, QStringLiteral("InitialSet"),
                QStringLiteral("Set Initial Levels in order"), QStringLiteral("InitialSet"),
                &frmMain::initialSet);
  m_tbBlockBar->addSeparator();
  addToolButton(m_tbBlockBar, QStringLiteral("Lsection"), QStringLiteral("Longitudinal Section"),
                QStringLiteral("Lsection"), &frmMain::outputViewLSection);
  addToolButton(m_tbBlockBar, QStringLiteral("Xsection"), QStringLiteral("Cross Section"),
                QStringLiteral("Xsection"), &frmMain::outputViewXSection);
  addToolButton(m_tbBlockBar, QStringLiteral("QuantityReport"),
                QStringLiteral("View Quantity Report"), QStringLiteral("QuantityReport"),
                &frmMain::outputViewQuantity);
}

void frmMain::createStatusBar() {
  QStatusBar* bar = statusBar();
  bar->setObjectName(QStringLiteral("sbStatusBar"));
  for (std::size_t i = 0; i < m_panels.size(); ++i) {
    auto* panel = new QLabel(bar);
    panel->setObjectName(QStringLiteral("sbPanel%1").arg(i + 1));
    panel->setFrameShape(QFrame::StyledPanel);
    panel->setFrameShadow(QFrame::Sunken);
    panel->setMinimumWidth(i == 0 ? 0 : 90);
    m_panels[i] = panel;
    // The first panel takes the spare width; the others keep to their text.
    bar->addPermanentWidget(panel, i == 0 ? 1 : 0);
  }
}

// ---- State shown by the frame

void frmMain::setStatusPanel(int panel, const QString& text) {
  if (panel < 1 || panel > static_cast<int>(m_panels.size())) return;
  m_panels[static_cast<std::size_t>(panel - 1)]->setText(text);
}

QString frmMain::statusPanel(int panel) const {
  if (panel < 1 || panel > static_cast<int>(m_panels.size())) return {};
  return m_panels[static_cast<std::size_t>(panel - 1)]->text();
}

QAction* frmMain::action(const QString& name) const {
  const auto it = m_actions.find(name);
  return it == m_actions.end() ? nullptr : it->second;
}

void frmMain::EnableMenus() {
  const bool package = m_state.lngPackageID >= 1;
  const bool section = m_state.lngSectionID >= 1;
  action(QStringLiteral("mnuDataSections"))->setEnabled(package);
  for (const char* name :
       {"mnuDataDesign", "mnuDataDesignSummary", "mnuDataOutlets", "mnuDataInitial",
        "mnuDataExecuted", "mnuFileImportLevels", "mnuOutputXSection", "mnuOutputLSection",
        "mnuOutputQuantity", "mnuOutputViewXSec", "mnuOutputViewLSec", "mnuOutputViewQty"})
    action(QLatin1String(name))->setEnabled(section);
  m_tbBlockBar->setVisible(section);
}

void frmMain::useExecutedLevelChanged(bool checked) {
  if (m_state.engine) m_state.engine->setUseExecutedLevel(checked);
  clearTotals();
}

void frmMain::clearTotals() {
  // The totals of the last run no longer hold for the levels or the project now in use.
  for (int panel = 1; panel <= 3; ++panel) setStatusPanel(panel, QString());
}

void frmMain::runEngine(const std::function<void()>& computation) {
  // The run lets events through once per chainage; the switch would change its areas midway.
  m_engineRunning = true;
  m_chkUseExecutedLevel->setEnabled(false);
  // A sheet saved while the run holds the file would fail: the open sheets wait for it.
  QList<QPointer<QWidget>> waiting;
  for (QMdiSubWindow* child : m_mdiArea->subWindowList()) {
    QWidget* window = child->widget();
    const bool writes =
        qobject_cast<sheets::frmDataGrid*>(window) || qobject_cast<frmPlotLXSection*>(window);
    if (writes && window->isEnabled()) {
      window->setEnabled(false);
      waiting.append(window);
    }
  }
  const auto idle = qScopeGuard([this, &waiting] {
    m_engineRunning = false;
    m_chkUseExecutedLevel->setEnabled(true);
    for (const QPointer<QWidget>& sheet : waiting)
      if (sheet) sheet->setEnabled(true);
    setStatusPanel(4, QString());
  });
  computation();
}

bool frmMain::refusedWhileRunning() {
  if (!m_engineRunning) return false;
  setStatusPanel(4, QStringLiteral("Busy computing: wait for it to end, or click Cancel."));
  return true;
}

void frmMain::updateWindowMenu() {
  const QList<QAction*> items = m_mnuWindow->actions();
  for (qsizetype i = items.indexOf(m_windowListSeparator) + 1; i < items.size(); ++i) {
    m_mnuWindow->removeAction(items[i]);
    items[i]->deleteLater();
  }
  const QList<QMdiSubWindow*> children = m_mdiArea->subWindowList(QMdiArea::CreationOrder);
  m_windowListSeparator->setVisible(!children.isEmpty());
  int number = 0;
  for (QMdiSubWindow* child : children) {
    ++number;
    const QString title = child->windowTitle();
    const QString caption = number <= 9 ? QStringLiteral("&%1 %2").arg(number).arg(title)
                                        : QStringLiteral("%1 %2").arg(number).arg(title);
    QAction* item = m_mnuWindow->addAction(caption);
    item->setCheckable(true);
    item->setChecked(child == m_mdiArea->currentSubWindow());
    QPointer<QMdiSubWindow> target(child);
    connect(item, &QAction::triggered, this, [this, target] {
      if (target) {
        if (target->isMinimized()) target->showNormal();
        m_mdiArea->setActiveSubWindow(target);
      }
    });
  }
}

// ---- The active child

QMdiSubWindow* frmMain::activeChild() const {
  // The current child stays current while a tool window such as the filter window has the
  // focus, as the frame's active child does.
  return m_mdiArea->currentSubWindow();
}

sheets::frmDataGrid* frmMain::activeDataSheet() const {
  QMdiSubWindow* child = activeChild();
  return child ? qobject_cast<sheets::frmDataGrid*>(child->widget()) : nullptr;
}

sheets::frmReport* frmMain::activeReport() const {
  QMdiSubWindow* child = activeChild();
  return child ? qobject_cast<sheets::frmReport*>(child->widget()) : nullptr;
}

QString frmMain::activeSheetName() const {
  if (sheets::frmDataGrid* sheet = activeDataSheet()) return sheet->strCurrentDataSheet;
  if (sheets::frmReport* report = activeReport()) return report->strCurrentDataSheet;
  return {};
}

// ---- Boxes

void frmMain::setMessageFunction(sheets::MessageFunction message) {
  m_context.message = std::move(message);
}

void frmMain::setInputFunction(InputFunction input) { m_input = std::move(input); }

void frmMain::setSaveFileFunction(SaveFileFunction saveFile) { m_saveFile = std::move(saveFile); }

void frmMain::setOpenFileFunction(OpenFileFunction openFile) { m_openFile = std::move(openFile); }

void frmMain::setLegacySourceFunction(LegacySourceFunction openSource) {
  m_openLegacySource = std::move(openSource);
}

void frmMain::message(const QString& text, sheets::MessageIcon icon) {
  m_context.ask(this, text, kTitle, sheets::MessageButtons::Ok, icon);
}

bool frmMain::askYesNo(const QString& title, const QString& text) {
  return m_context.ask(this, text, title, sheets::MessageButtons::YesNo,
                       sheets::MessageIcon::Question) == sheets::MessageAnswer::Yes;
}

QString frmMain::input(const QString& title, const QString& prompt, const QString& defaultText) {
  if (m_input) return m_input(this, title, prompt, defaultText);
  bool ok = false;
  const QString text =
      QInputDialog::getText(this, title, prompt, QLineEdit::Normal, defaultText, &ok);
  return ok ? text : QString();
}

// ---- File

void frmMain::fileOpen() {
  // The computation reads the open project; replacing it under the run would crash.
  if (refusedWhileRunning()) return;
  switch (OpenDatabase(m_state, this, false, [this] { return closeEveryChild(); })) {
    case OpenResult::Cancelled:
      return;
    case OpenResult::Refused:
      close();
      QCoreApplication::exit(1);
      return;
    case OpenResult::Opened:
      break;
  }
  projectOpened();
}

bool frmMain::closeEveryChild() {
  // The children are bound to the project they were opened on, so they close with it, each
  // sheet with unsaved edits asking first while that project is still open. A sheet the user
  // keeps open keeps that project open.
  if (!closeChildren([](QMdiSubWindow*) { return true; }, true)) return false;
  closeFilterWindow();
  return true;
}

void frmMain::projectOpened() {
  m_state.lngPackageID = 0;
  m_state.lngSectionID = 0;
  m_state.strPackageName.clear();
  m_state.strSectionDescription.clear();
  useExecutedLevelChanged(m_chkUseExecutedLevel->isChecked());
  setWindowTitle(kTitle);
  EnableMenus();
}

bool frmMain::openProjectFile(std::unique_ptr<db::Connection> connection, const QString& path) {
  if (adoptProject(m_state, std::move(connection), path, [this] { return closeEveryChild(); }) !=
      OpenResult::Opened)
    return false;
  projectOpened();
  return true;
}

void frmMain::fileImportLegacy() {
  if (refusedWhileRunning()) return;
  const QString caption = QStringLiteral("Import Legacy Project");
  const QString folder = m_state.strDatabasePath.isEmpty()
                             ? QDir::homePath()
                             : QFileInfo(m_state.strDatabasePath).absolutePath();
  const QString filter = QStringLiteral("Legacy project files (*.mdb);;All files (*)");
  const QString oldFile = m_openFile ? m_openFile(this, caption, folder, filter)
                                     : QFileDialog::getOpenFileName(this, caption, folder, filter);
  if (oldFile.isEmpty()) return;
  std::unique_ptr<db::TableSource> source;
  try {
    source =
        m_openLegacySource ? m_openLegacySource(oldFile) : std::make_unique<db::JetSource>(oldFile);
  } catch (const db::Error& e) {
    message(e.message(), sheets::MessageIcon::Critical);
    return;
  }

  const QFileInfo old(oldFile);
  const QString suggested =
      old.absoluteDir().filePath(old.completeBaseName() + QStringLiteral(".delvane"));
  const QString saveCaption = QStringLiteral("Save the Imported Project As");
  const QString saveFilter = QStringLiteral("Delvane projects (*.delvane)");
  QString newFile = m_saveFile
                        ? m_saveFile(this, saveCaption, suggested, saveFilter)
                        : QFileDialog::getSaveFileName(this, saveCaption, suggested, saveFilter);
  if (newFile.isEmpty()) return;
  if (QFileInfo(newFile).suffix().isEmpty()) newFile += QStringLiteral(".delvane");

  db::ProjectCopy copy;
  {
    QApplication::setOverrideCursor(Qt::WaitCursor);
    const auto restoreCursor = qScopeGuard([] { QApplication::restoreOverrideCursor(); });
    try {
      copy = engine::importProject(*source, newFile);
    } catch (const db::Error& e) {
      message(e.message(), sheets::MessageIcon::Critical);
      return;
    }
  }

  // Values kept as they came go to the error list, where the user works through them.
  for (const QString& line : copy.problems) m_state.reporter->ShowError(line);
  QString report = QStringLiteral("%1 was copied into %2.")
                       .arg(QDir::toNativeSeparators(oldFile), QDir::toNativeSeparators(newFile));
  if (!copy.skipped.isEmpty())
    report += QStringLiteral("\n\n") + copy.skipped.join(QLatin1Char('\n'));
  if (!copy.emptyTables.isEmpty())
    report += QStringLiteral("\n\nThe old file has no %1; these tables start empty.")
                  .arg(copy.emptyTables.join(QStringLiteral(", ")));
  if (!copy.problems.isEmpty())
    report += QStringLiteral(
        "\n\nSome values do not fit their columns and were kept as they "
        "came; the error list names them.");
  if (!askYesNo(caption, report + QStringLiteral("\n\nOpen the new project now?"))) return;
  try {
    openProjectFile(db::openProject(newFile), newFile);
  } catch (const db::Error& e) {
    message(e.message(), sheets::MessageIcon::Critical);
  }
}

void frmMain::fileSave() {
  if (!activeChild() || refusedWhileRunning()) return;
  if (sheets::frmDataGrid* sheet = activeDataSheet())
    sheet->HandleMenuEvent(sheets::frmDataGrid::kSave);
  else
    message(QStringLiteral("Disabled"), sheets::MessageIcon::Information);
}

void frmMain::fileImportLevels() {
  if (!m_state.engine || m_state.lngSectionID < 1 || refusedWhileRunning()) return;
  const QString folder = m_state.strDatabasePath.isEmpty()
                             ? QDir::homePath()
                             : QFileInfo(m_state.strDatabasePath).absolutePath();
  const QString caption = QStringLiteral("Import Levels");
  const QString filter = QStringLiteral("Survey files (*.csv *.txt *.asc);;All files (*)");
  const QString path = m_openFile ? m_openFile(this, caption, folder, filter)
                                  : QFileDialog::getOpenFileName(this, caption, folder, filter);
  if (path.isEmpty()) return;
  QString error;
  const std::optional<QByteArray> bytes = engine::readSurveyFile(path, error);
  if (!bytes) {
    message(error, sheets::MessageIcon::Critical);
    return;
  }
  // The Executed sheet in front says which levels the user is at.
  const engine::LevelTable shown = activeSheetName() == QLatin1String("Executed")
                                       ? engine::LevelTable::Executed
                                       : engine::LevelTable::Initial;
  const QString fileName = QFileInfo(path).fileName();
  ImportLevelsDialog dialog(fileName, engine::surveyLines(*bytes), shown, this);
  if (dialog.exec() != QDialog::Accepted) return;

  const engine::LevelTable table = dialog.table();
  const std::int32_t section = m_state.lngSectionID;
  engine::LevelImportResult result;
  try {
    runEngine([&] {
      result = engine::importLevels(*m_state.engine, fileName, dialog.layout(), dialog.read(),
                                    table, section, dialog.replace());
    });
  } catch (const db::Error& failure) {
    message(QStringLiteral("The levels could not be imported: ") + failure.message(),
            sheets::MessageIcon::Critical);
    return;
  }
  // Otherwise the error list says what to put right.
  if (!result.written) return;
  tableWritten(engine::levelTableName(table));
  QString done = QStringLiteral(
                     "Imported %1 readings at %2 chainages from %3 into the %4 levels "
                     "of this section")
                     .arg(result.rows)
                     .arg(result.chainages)
                     .arg(fileName, engine::levelTableName(table));
  if (dialog.replace())
    done += QStringLiteral(", in place of the %1 readings it held").arg(result.replaced);
  message(done + QLatin1Char('.'), sheets::MessageIcon::Information);
}

QPrinter& frmMain::printer() {
  if (!m_printer) m_printer = std::make_unique<QPrinter>(QPrinter::HighResolution);
  return *m_printer;
}

void frmMain::filePageSetup() {
  QPageSetupDialog dialog(&printer(), this);
  dialog.setWindowTitle(QStringLiteral("Page Setup"));
  dialog.exec();
}

void frmMain::filePrint() {
  QMdiSubWindow* child = activeChild();
  if (!child || !child->widget()) return;
  // A page window sets the paper up for its sheet and draws the sheet again on the printer.
  if (auto* form = qobject_cast<PrintForm*>(child->widget())) {
    form->PrintThis();
    return;
  }
  // A data sheet or report prints its whole table through the page engine.
  if (std::optional<PrintSheet> table = activeTable()) {
    tableForm(std::move(*table))->PrintThis();
    return;
  }
  QPrintDialog dialog(&printer(), this);
  dialog.setWindowTitle(QStringLiteral("Print"));
  dialog.setOption(QAbstractPrintDialog::PrintPageRange, false);
  dialog.setOption(QAbstractPrintDialog::PrintCurrentPage, false);
  if (dialog.exec() != QDialog::Accepted) return;
  QPrinter& device = printer();
  QPainter painter;
  if (!painter.begin(&device)) {
    message(QStringLiteral("The printer could not be started."), sheets::MessageIcon::Critical);
    return;
  }
  const QRect page(QPoint(0, 0), device.pageLayout().paintRectPixels(device.resolution()).size());
  printScreenImage(*child->widget(), device, painter, page);
  painter.end();
}

std::optional<PrintSheet> frmMain::activeTable() const {
  if (sheets::frmDataGrid* sheet = activeDataSheet())
    return tablePrintSheet(m_state, sheet->grid(), sheet->strCurrentDataSheet);
  if (sheets::frmReport* report = activeReport()) {
    const QString name = activeChild()->windowTitle();
    return tablePrintSheet(m_state, report->scg(), name);
  }
  return std::nullopt;
}

std::unique_ptr<PrintForm> frmMain::tableForm(PrintSheet table) {
  auto form = std::make_unique<PrintForm>(m_context, std::move(table));
  form->setSaveFileFunction(m_saveFile);
  if (!m_state.strDatabasePath.isEmpty())
    form->setSaveFolder(QFileInfo(m_state.strDatabasePath).absolutePath());
  return form;
}

// ---- Edit

void frmMain::editMenuEvent(std::int16_t command) {
  if (command != sheets::frmDataGrid::kCopy && refusedWhileRunning()) return;
  if (sheets::frmDataGrid* sheet = activeDataSheet())
    sheet->HandleMenuEvent(command);
  else if (sheets::frmReport* report = activeReport();
           report && command == sheets::frmDataGrid::kCopy)
    report->copy();
}

std::optional<std::int16_t> frmMain::recordCount(const QString& title) {
  const QString text =
      input(title, QStringLiteral("Number of records to add ?"), QStringLiteral("1"));
  if (text.isEmpty()) return std::nullopt;  // cancelled
  const std::optional<std::int16_t> count = settingsNumber(text);
  if (!count || *count < 1) {
    message(QStringLiteral("\"%1\" is not a number of records to add: give a whole number from 1 "
                           "to 32767.")
                .arg(text),
            sheets::MessageIcon::Warning);
    return std::nullopt;
  }
  return count;
}

void frmMain::editAdd() {
  sheets::frmDataGrid* sheet = activeDataSheet();
  if (!sheet || !m_state.cnProject || refusedWhileRunning()) return;
  db::Connection& connection = *m_state.cnProject;
  engine::Reporter* reporter = m_state.engine ? &m_state.engine->reporter() : nullptr;
  const QString name = sheet->strCurrentDataSheet;
  // A sheet adds rows to the package or section it shows, never to one that was deleted.
  QMdiSubWindow* child = activeChild();
  const std::int32_t key = shownKey(child);
  // The sheet is saved first; a row it cannot write stops the command, since the refresh after
  // the insert would drop the edit.
  const auto savedBeforeAdd = [sheet] {
    sheet->SaveBeforeAdd();
    return !sheet->isDirty();
  };
  try {
    if (!shownRowsExist(connection, child)) {
      message(QStringLiteral("The ") +
                  (scopeOf(child) == ChildScope::Package ? QStringLiteral("package")
                                                         : QStringLiteral("section")) +
                  QStringLiteral(" of this sheet is no longer in the project; nothing was added."),
              sheets::MessageIcon::Warning);
      return;
    }
    if (name == QLatin1String("DesignDetails") || name == QLatin1String("DesignLevels") ||
        name == QLatin1String("Outlets")) {
      const std::optional<std::int16_t> count = recordCount(QStringLiteral("Add Data"));
      if (!count) return;
      if (!savedBeforeAdd()) return;
      engine::DelayedProgress progress(reporter, QStringLiteral("Adding records..."), *count);
      db::AddSectionRows(connection, name, key, *count,
                         [&progress](int done) { progress.step(done); });
      sheet->RefreshData();
      if (m_state.engine && name != QLatin1String("Outlets")) m_state.engine->levelDataChanged();
    } else if (name == QLatin1String("Initial") || name == QLatin1String("Executed")) {
      const QString title = QStringLiteral("Add Initial Data");
      const std::optional<std::int16_t> count = recordCount(title);
      if (!count) return;
      // An empty or wordy answer is chainage 0, as the number a text starts with.
      const float chainage = static_cast<float>(
          engine::leadingNumber(input(title, QStringLiteral("Chainage ?"), QStringLiteral("0"))));
      if (!std::isfinite(chainage)) {
        message(QStringLiteral("The chainage is too large; nothing was added."),
                sheets::MessageIcon::Warning);
        return;
      }
      if (!savedBeforeAdd()) return;
      engine::DelayedProgress progress(reporter, QStringLiteral("Adding records..."), *count);
      db::AddLevelRows(connection, name, key, chainage, *count,
                       [&progress](int done) { progress.step(done); });
      sheet->RefreshData();
      if (m_state.engine) m_state.engine->levelDataChanged();
    } else if (name == QLatin1String("Package")) {
      if (!savedBeforeAdd()) return;
      const std::int32_t id = db::AddPackage(connection, QDate::currentDate().year());
      sheet->RefreshData();
      sheet->SeekRecord(id);
    } else if (name == QLatin1String("Sections")) {
      if (!savedBeforeAdd()) return;
      const std::int32_t id = db::AddSection(connection, key);
      sheet->RefreshData();
      sheet->SeekRecord(id);
    }
  } catch (const db::Error&) {
    // Add ends quietly at the failing statement; the rows inserted before it stay.
  }
}

void frmMain::editDelete() {
  sheets::frmDataGrid* sheet = activeDataSheet();
  if (!sheet || !m_state.cnProject || refusedWhileRunning()) return;
  const QString name = sheet->strCurrentDataSheet;
  try {
    if (name == QLatin1String("DesignDetails") || name == QLatin1String("DesignLevels") ||
        name == QLatin1String("Executed") || name == QLatin1String("Outlets")) {
      sheet->DeleteRecord();
    } else if (name == QLatin1String("Initial")) {
      sheet->DeleteRecord();
      if (m_state.engine) m_state.engine->levelDataChanged();
    } else if (name == QLatin1String("Package")) {
      // The clean-up runs whether or not the user confirmed: on a consistent project it
      // removes nothing.
      sheet->DeleteRecord();
      db::DeleteOrphansAfterPackages(*m_state.cnProject);
      forgetDeletedSelection();
    } else if (name == QLatin1String("Sections")) {
      sheet->DeleteRecord();
      db::DeleteOrphansAfterSections(*m_state.cnProject);
      forgetDeletedSelection();
    }
  } catch (const db::Error&) {
    // Delete ends quietly at the failing statement.
  }
}

// ---- View

void frmMain::viewFilterWindow() {
  QAction* detail = action(QStringLiteral("mnuViewDetail"));
  if (detail->isChecked()) {
    closeFilterWindow();
    detail->setChecked(false);
    return;
  }
  auto* window = new sheets::dlgSearchWindow(this);
  window->setAttribute(Qt::WA_DeleteOnClose);
  QStringList headers;
  if (sheets::frmDataGrid* sheet = activeDataSheet()) {
    for (int column = 0; column < sheet->grid().Cols(); ++column)
      headers.append(sheet->grid().Text(-1, column));
  }
  window->setFields(headers);
  window->setFilterFunction([this](const QString& expression) {
    if (sheets::frmDataGrid* sheet = activeDataSheet()) sheet->FilterData(expression);
  });
  window->setClosedHandler([this] {
    if (QAction* item = action(QStringLiteral("mnuViewDetail"))) item->setChecked(false);
  });
  m_filterWindow = window;
  // In the top right corner of the work area, clear of the menus and tool bars.
  window->adjustSize();
  const QRect area(m_mdiArea->mapToGlobal(QPoint(0, 0)), m_mdiArea->size());
  window->move(std::max(area.left(), area.right() - window->width() - 16), area.top() + 16);
  window->show();
  detail->setChecked(true);
}

void frmMain::viewLockColumn() {
  if (sheets::frmDataGrid* sheet = activeDataSheet()) sheet->LockColumns();
}

void frmMain::viewFreeze() {
  if (sheets::frmDataGrid* sheet = activeDataSheet()) sheet->FreezeCol();
}

void frmMain::viewRefresh() {
  if (sheets::frmDataGrid* sheet = activeDataSheet()) {
    try {
      sheet->RefreshData();
    } catch (const db::Error&) {
    }
  }
}

// ---- Data

bool frmMain::openDataSheet(const std::function<void(sheets::frmDataGrid&)>& layout) {
  if (!m_state.cnProject) return false;
  auto sheet = std::make_unique<sheets::frmDataGrid>(m_context);
  try {
    layout(*sheet);
  } catch (const db::Error&) {
    return false;
  }
  // The layout has handed the sheet to the MDI area through showChild.
  if (sheet->parent())
    sheet.release();
  else
    showChild(sheet.release());
  return true;
}

void frmMain::dataPackage() { openDataSheet(&sheets::modGridStyles::PackageStyle); }

void frmMain::dataSections() { openDataSheet(&sheets::modGridStyles::SectionsStyle); }

void frmMain::dataDesignSummary() {
  if (!openDataSheet(&sheets::modGridStyles::DesignDetailsStyle)) return;
  QMdiSubWindow* details = m_mdiArea->activeSubWindow();
  // The picture of what the details describe, beside them. The details stay the active window:
  // they are what the user edits, the picture is there to read them by.
  auto* picture = new frmTypicalSection(m_context, m_modelsFolder);
  picture->setSaveFileFunction(m_saveFile);
  showChild(picture);
  if (details) m_mdiArea->setActiveSubWindow(details);
  tileHorizontal(*m_mdiArea);
}

void frmMain::dataDesign() { openDataSheet(&sheets::modGridStyles::DesignLevelsStyle); }

void frmMain::dataInitial() {
  openDataSheet([](sheets::frmDataGrid& sheet) {
    sheets::modGridStyles::LevelsStyle(sheet, QStringLiteral("Initial"));
  });
}

void frmMain::dataExecuted() {
  openDataSheet([](sheets::frmDataGrid& sheet) {
    sheets::modGridStyles::LevelsStyle(sheet, QStringLiteral("Executed"));
  });
}

void frmMain::dataOutlets() { openDataSheet(&sheets::modGridStyles::OutletsStyle); }

// ---- Output

void frmMain::outputViewQuantity() {
  if (!m_state.cnProject || m_state.lngSectionID < 1 || refusedWhileRunning()) return;
  QString failure;
  runEngine([this, &failure] {
    try {
      sheets::modGridStyles::ShowQuantitySummary(m_context);
    } catch (const db::Error& error) {
      failure = error.message();
    }
  });
  if (!failure.isEmpty())
    message(QStringLiteral("The quantities could not be computed: ") + failure,
            sheets::MessageIcon::Critical);
}

void frmMain::outputViewLSection() { openSectionViewer(1); }

void frmMain::outputViewXSection() { openSectionViewer(2); }

frmPlotLXSection* frmMain::openSectionViewer(std::uint8_t byteLXMode) {
  if (!m_state.cnProject || m_state.lngSectionID < 1 || refusedWhileRunning()) return nullptr;
  auto* viewer = new frmPlotLXSection(m_context, byteLXMode);
  showChild(viewer);
  // Room for a wide cross-section and the tool row, within the work area.
  if (QMdiSubWindow* child = activeChild(); child && child->widget() == viewer)
    child->resize(viewer->sizeHint().boundedTo(m_mdiArea->viewport()->size()));
  QPointer<frmPlotLXSection> alive(viewer);
  runEngine([&alive] {
    if (alive) alive->load();
  });
  return alive;
}

bool frmMain::runComputation(const std::function<void()>& computation) {
  if (refusedWhileRunning()) return false;
  runEngine(computation);
  return true;
}

void frmMain::tableWritten(const QString& table) {
  for (QMdiSubWindow* child : m_mdiArea->subWindowList()) {
    auto* sheet = qobject_cast<sheets::frmDataGrid*>(child->widget());
    if (sheet && sheet->strCurrentDataSheet == table && !sheet->isDirty()) sheet->RefreshData();
  }
}

void frmMain::outputPlotLSection() {
  if (refusedWhileRunning()) return;
  PrintForm* form = nullptr;
  runEngine([this, &form] { form = plotLongSection(m_state, m_context, this); });
  if (form) form->setSaveFileFunction(m_saveFile);
}

void frmMain::outputPlotXSection() {
  if (refusedWhileRunning()) return;
  PrintForm* form = nullptr;
  runEngine([this, &form] { form = plotCrossSections(m_state, m_context, this); });
  if (form) form->setSaveFileFunction(m_saveFile);
}

void frmMain::outputExportQuantity() {
  if (!m_state.engine || m_state.lngSectionID < 1 || refusedWhileRunning()) return;
  const QString folder = m_state.strDatabasePath.isEmpty()
                             ? QDir::homePath()
                             : QFileInfo(m_state.strDatabasePath).absolutePath();
  QString name = m_state.strSectionDescription.trimmed();
  name.replace(QRegularExpression(QStringLiteral("[\\\\/:*?\"<>|]")), QStringLiteral("_"));
  if (name.isEmpty()) name = QStringLiteral("Section ") + QString::number(m_state.lngSectionID);
  const QString suggested = QDir(folder).filePath(name + QStringLiteral(" quantities.xlsx"));
  const QString caption = QStringLiteral("Export Quantity Sheet");
  const QString filter = QStringLiteral("Excel workbook (*.xlsx);;Comma-separated values (*.csv)");
  const QString path = m_saveFile ? m_saveFile(this, caption, suggested, filter)
                                  : QFileDialog::getSaveFileName(this, caption, suggested, filter);
  if (path.isEmpty()) return;
  exportQuantitySheet(path);
}

bool frmMain::exportQuantitySheet(const QString& path) {
  if (!m_state.engine || m_state.lngSectionID < 1 || refusedWhileRunning()) return false;
  QString target = path;
  if (QFileInfo(target).suffix().isEmpty()) target += QStringLiteral(".xlsx");
  const std::optional<engine::QuantitySheetFormat> format = engine::QuantitySheetFormatOf(target);
  if (!format) {
    message(QStringLiteral("The quantity sheet can be written as a workbook (.xlsx) or as "
                           "comma-separated values (.csv); ") +
                QDir::toNativeSeparators(target) + QStringLiteral(" is neither."),
            sheets::MessageIcon::Warning);
    return false;
  }
  QApplication::setOverrideCursor(Qt::WaitCursor);
  engine::QuantityExportResult result;
  try {
    runEngine([this, &result, &target, &format] {
      result = engine::ExportQuantitySheet(*m_state.engine, target, *format);
    });
  } catch (const db::Error& error) {
    QApplication::restoreOverrideCursor();
    m_state.engine->reporter().progressEnd();
    message(QStringLiteral("The quantity sheet could not be exported: ") + error.message(),
            sheets::MessageIcon::Critical);
    return false;
  }
  QApplication::restoreOverrideCursor();
  switch (result.status) {
    case engine::QuantityExportResult::Status::Written:
      setStatusPanel(
          4, QStringLiteral("Quantity sheet written to ") + QDir::toNativeSeparators(target));
      return true;
    case engine::QuantityExportResult::Status::StoppedByInvalidLevels:
    case engine::QuantityExportResult::Status::Cancelled:
      return false;
    case engine::QuantityExportResult::Status::CannotWrite:
      message(result.message, sheets::MessageIcon::Critical);
      return false;
  }
  return false;
}

// ---- Tools and Help

void frmMain::toolsOptions() {
  showOptions(m_state, this, [this] { saveSettings(); });
}

void frmMain::saveSettings() {
  recordWindowPlacement(*this, m_state.settings);
  QSettings store;
  SaveSettings(store, m_state.settings);
}

void frmMain::helpContents() {
  const bool created = !m_helpWindow;
  if (created) {
    m_helpWindow = new HelpWindow(this);
    // Over the work area, clear of the menus and tool bars.
    const QRect area(m_mdiArea->mapToGlobal(QPoint(0, 0)), m_mdiArea->size());
    m_helpWindow->resize(
        QSize(area.width() * 2 / 3, area.height() * 3 / 4).expandedTo(QSize(480, 360)));
    m_helpWindow->move(area.topLeft() + QPoint(32, 32));
  }
  QString error;
  if (!m_helpWindow->openContents(m_manualFolder, error)) {
    if (created) delete m_helpWindow;
    message(error, sheets::MessageIcon::Critical);
    return;
  }
  m_helpWindow->show();
  m_helpWindow->raise();
  m_helpWindow->activateWindow();
}

void frmMain::helpAbout() {
  frmSplash about(this);
  about.exec();
}

void frmMain::initialSet() {
  if (m_state.lngSectionID <= 0 || !m_state.engine || refusedWhileRunning()) return;
  if (!askYesNo(QStringLiteral("Set Initial Levels"),
                QStringLiteral("Initial levels will be checked and offset and chainage will be "
                               "filled correctly. Do you want to continue?")))
    return;
  try {
    runEngine([this] { engine::FormatInitialTable(*m_state.engine); });
    if (sheets::frmDataGrid* sheet = activeDataSheet()) sheet->RefreshData();
  } catch (const db::Error&) {
    // The command ends at the failing statement; the progress window must not stay behind.
    m_state.engine->reporter().progressEnd();
  }
}

// ---- Drill-down

void frmMain::DoubleClickHandler(int row) {
  // A drill-down changes the section, or starts the area calculation, under the run.
  if (refusedWhileRunning()) return;
  const QString name = activeSheetName();
  try {
    if (name == QLatin1String("Package")) {
      QMdiSubWindow* packageSheet = activeChild();
      const std::int32_t chosen = activeDataSheet()->CurrentSelectedRecord();
      // The sheets of another package close first; keeping one open keeps its package.
      if (!closeChildren(
              [chosen](QMdiSubWindow* child) {
                return scopeOf(child) == ChildScope::Package && shownKey(child) != chosen;
              },
              true))
        return;
      m_state.lngPackageID = chosen;
      packageSheet->close();
      m_state.strPackageName = db::packageName(*m_state.cnProject, m_state.lngPackageID);
      setWindowTitle(kTitle + QStringLiteral(" - ") + m_state.strPackageName);
      EnableMenus();
      dataSections();
    } else if (name == QLatin1String("Sections")) {
      QMdiSubWindow* sectionsSheet = activeChild();
      const std::int32_t chosen = activeDataSheet()->CurrentSelectedRecord();
      // The sheets, reports and page windows of another section close first, each sheet with
      // unsaved edits asking; keeping one open keeps its section.
      if (!closeChildren(
              [chosen](QMdiSubWindow* child) {
                return scopeOf(child) == ChildScope::Section && shownKey(child) != chosen;
              },
              true))
        return;
      m_state.lngSectionID = chosen;
      sectionsSheet->close();
      m_state.strSectionDescription =
          db::sectionNames(*m_state.cnProject, m_state.lngSectionID).description;
      setWindowTitle(kTitle + QStringLiteral(" - ") + m_state.strPackageName +
                     QStringLiteral(" - ") + m_state.strSectionDescription);
      if (m_state.engine) m_state.engine->setSection(m_state.lngSectionID);
      clearTotals();
      EnableMenus();
    } else if (name == QLatin1String("QuantitySummary")) {
      const QString text = activeReport()->scg().Text(row, 0).trimmed();
      bool numeric = false;
      float chainage = text.toFloat(&numeric);
      if (!numeric) chainage = QLocale().toFloat(text, &numeric);
      if (numeric) sheets::modGridStyles::ShowAreaCalculation(m_context, chainage);
    }
  } catch (const db::Error&) {
    // The drill-down ends quietly on a database error.
  }
}

// ---- Link to the sheets

QAction* frmMain::commandAction(Command command) const {
  switch (command) {
    case Command::mnuEdit:
      return m_mnuEdit->menuAction();
    case Command::mnuViewDetail:
      return action(QStringLiteral("mnuViewDetail"));
    case Command::mnuLockColumn:
      return action(QStringLiteral("mnuLockColumn"));
    case Command::mnuViewFreeze:
      return action(QStringLiteral("mnuViewFreeze"));
    case Command::mnuViewRefresh:
      return action(QStringLiteral("mnuViewRefresh"));
  }
  return nullptr;
}

void frmMain::setCommandEnabled(Command command, bool enabled) {
  commandAction(command)->setEnabled(enabled);
  // A disabled menu title does not stop its items' shortcuts, so the items follow it.
  if (command == Command::mnuEdit) {
    for (QAction* item : m_mnuEdit->actions()) item->setEnabled(enabled);
  }
}

bool frmMain::isCommandChecked(Command command) const {
  return commandAction(command)->isChecked();
}

void frmMain::setCommandChecked(Command command, bool checked) {
  commandAction(command)->setChecked(checked);
}

void frmMain::setToolButtonVisible(const QString& key, bool visible) {
  if (QAction* button = action(QStringLiteral("tbToolBar/") + key)) button->setVisible(visible);
}

void frmMain::setToolButtonEnabled(const QString& key, bool enabled) {
  if (QAction* button = action(QStringLiteral("tbToolBar/") + key)) button->setEnabled(enabled);
}

void frmMain::closeFilterWindow() {
  if (m_filterWindow) m_filterWindow->close();
}

void frmMain::showChild(QWidget* window) {
  QMdiSubWindow* child = m_mdiArea->addSubWindow(window);
  switch (scopeOf(child)) {
    case ChildScope::Package:
      child->setProperty(kShownKey, m_state.lngPackageID);
      break;
    case ChildScope::Section:
      child->setProperty(kShownKey, m_state.lngSectionID);
      break;
    case ChildScope::Project:
      break;
  }
  child->setAttribute(Qt::WA_DeleteOnClose);
  child->setWindowIcon(windowIcon());
  window->show();
  child->show();
  m_mdiArea->setActiveSubWindow(child);
}

// ---- Closing

bool frmMain::closeChildren(const std::function<bool(QMdiSubWindow*)>& which, bool askToSave) {
  QList<QPointer<QMdiSubWindow>> closing;
  for (QMdiSubWindow* child : m_mdiArea->subWindowList())
    if (which(child)) closing.append(child);
  // Every question is answered before anything closes, so a Cancel leaves every window as it was.
  if (askToSave) {
    QMdiSubWindow* active = m_mdiArea->activeSubWindow();
    for (QMdiSubWindow* child : closing) {
      auto* sheet = qobject_cast<sheets::frmDataGrid*>(child->widget());
      if (!sheet || !sheet->isDirty()) continue;
      m_mdiArea->setActiveSubWindow(child);  // the question is about the sheet in front
      if (sheet->askToSaveBeforeClosing() == sheets::MessageAnswer::Cancel) return false;
    }
    if (active) m_mdiArea->setActiveSubWindow(active);
  }
  bool allClosed = true;
  for (const QPointer<QMdiSubWindow>& child : closing) {
    if (!child) continue;
    // What is left unsaved now was refused, or belongs to rows that are gone.
    if (auto* sheet = qobject_cast<sheets::frmDataGrid*>(child->widget())) sheet->setDirty(false);
    allClosed = child->close() && allClosed;
  }
  return allClosed;
}

void frmMain::forgetDeletedSelection() {
  db::Connection& connection = *m_state.cnProject;
  const bool packageGone =
      m_state.lngPackageID != 0 &&
      !db::keyExists(connection, QStringLiteral("Package"), m_state.lngPackageID);
  const bool sectionGone =
      m_state.lngSectionID != 0 &&
      !db::keyExists(connection, QStringLiteral("Sections"), m_state.lngSectionID);
  closeChildren([&connection](QMdiSubWindow* child) { return !shownRowsExist(connection, child); },
                false);
  if (!packageGone && !sectionGone) return;
  // Without a package there is no section either, as at start; without a section the package
  // stays chosen.
  if (packageGone) {
    m_state.lngPackageID = 0;
    m_state.strPackageName.clear();
  }
  m_state.lngSectionID = 0;
  m_state.strSectionDescription.clear();
  if (m_state.engine) m_state.engine->setSection(0);
  setWindowTitle(m_state.lngPackageID ? kTitle + QStringLiteral(" - ") + m_state.strPackageName
                                      : kTitle);
  EnableMenus();
}

void frmMain::closeEvent(QCloseEvent* event) {
  if (refusedWhileRunning()) {
    event->ignore();
    return;
  }
  // A sheet whose user chose to go on editing keeps the program, and every window, open.
  if (!closeChildren([](QMdiSubWindow*) { return true; }, true)) {
    event->ignore();
    return;
  }
  closeFilterWindow();
  saveSettings();
  if (m_helpWindow) m_helpWindow->close();
  event->accept();
  // The program ends with its main window, whatever other top-level windows are open.
  QCoreApplication::quit();
}

}  // namespace app
