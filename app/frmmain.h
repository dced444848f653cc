#pragma once

#include "app/helpwindow.h"
#include "app/printform.h"
#include "sheets/dlgsearchwindow.h"
#include "sheets/sheetcontext.h"

#include <QMainWindow>
#include <QPointer>
#include <QString>

#include <array>
#include <cstdint>
#include <functional>
#include <map>
#include <memory>
#include <optional>

class QAction;
class QCheckBox;
class QLabel;
class QMdiArea;
class QMdiSubWindow;
class QMenu;
class QPrinter;
class QToolBar;

namespace db {
class Connection;
class TableSource;
}  // namespace db

namespace sheets {
class frmDataGrid;
class frmReport;
}  // namespace sheets

namespace app {

struct AppState;
class frmPlotLXSection;

// The program's multiple-document frame: menus, tool bars and status bar, the user's current
// package and section, and the routing of every command to the active child window.
class frmMain : public QMainWindow, public sheets::MainWindowLink {
  Q_OBJECT

 public:
  // Asks for a line of text (an input box); returns the empty text when the user cancels.
  using InputFunction = std::function<QString(QWidget* parent, const QString& title,
                                              const QString& prompt, const QString& defaultText)>;

  // Asks for the name of a file to write; returns the empty text when the user cancels.
  using SaveFileFunction =
      std::function<QString(QWidget* parent, const QString& caption, const QString& suggestedPath,
                            const QString& filter)>;

  // Asks for an existing file to read; returns the empty text when the user cancels.
  using OpenFileFunction = std::function<QString(QWidget* parent, const QString& caption,
                                                 const QString& folder, const QString& filter)>;

  // Opens an older project file as a table source; throws db::Error when it cannot be read.
  using LegacySourceFunction = std::function<std::unique_ptr<db::TableSource>(const QString& path)>;

  explicit frmMain(AppState& state, QWidget* parent = nullptr);
  ~frmMain() override;

  QMdiArea* mdiArea() const { return m_mdiArea; }

  // Text of one panel of sbStatusBar; panel is 1-based (1 to 4), others are ignored.
  void setStatusPanel(int panel, const QString& text);
  QString statusPanel(int panel) const;

  // Enables the commands that need a package or a section, and shows tbBlockBar, by the
  // current lngPackageID and lngSectionID.
  void EnableMenus();

  // A menu item or a button by its name: "mnuEditAdd", "mnuWindow" (the menu's own item), or
  // "tbToolBar/Save", "tbBlockBar/InitialSet". Null when there is none.
  QAction* action(const QString& name) const;
  QToolBar* tbToolBar() const { return m_tbToolBar; }
  QToolBar* tbBlockBar() const { return m_tbBlockBar; }
  QCheckBox* chkUseExecutedLevel() const { return m_chkUseExecutedLevel; }

  // The active child's window, its data sheet or report when it is one, and its sheet name
  // (strCurrentDataSheet; empty for other windows and when there is no child).
  QMdiSubWindow* activeChild() const;
  sheets::frmDataGrid* activeDataSheet() const;
  sheets::frmReport* activeReport() const;
  QString activeSheetName() const;

  // The context handed to every sheet and report window this window opens.
  const sheets::SheetContext& sheetContext() const { return m_context; }

  // Replace the message and input boxes (tests). The message function also serves the sheets
  // and reports opened from here.
  void setMessageFunction(sheets::MessageFunction message);
  void setInputFunction(InputFunction input);
  void setSaveFileFunction(SaveFileFunction saveFile);
  void setOpenFileFunction(OpenFileFunction openFile);
  // Replaces the Jet reader that File > Import Legacy Project uses (tests).
  void setLegacySourceFunction(LegacySourceFunction openSource);

  // Rebuilds the list of open children at the foot of the Window menu.
  void updateWindowMenu();

  // Writes the main window's placement and every setting to the settings store.
  void saveSettings();

  // Commands. Each one is what its menu item and button run.
  void fileOpen();
  // Asks for an older project file (.mdb) and where to save its copy, copies it into a new
  // project file, tells what was skipped, and offers to open the copy as File > Open does.
  void fileImportLegacy();
  void fileSave();
  // Asks for a survey file, shows how it reads, and adds its readings to the levels of the
  // current section.
  void fileImportLevels();
  void filePageSetup();
  void filePrint();
  void editMenuEvent(std::int16_t command);
  void editAdd();
  void editDelete();
  void viewFilterWindow();
  void viewLockColumn();
  void viewFreeze();
  void viewRefresh();
  void dataPackage();
  void dataSections();
  void dataDesignSummary();
  void dataDesign();
  void dataInitial();
  void dataExecuted();
  void dataOutlets();
  void outputViewQuantity();
  void outputViewLSection();
  void outputViewXSection();
  // Opens a new section viewer on the current section (1 longitudinal, 2 cross-section); null
  // when none opened.
  frmPlotLXSection* openSectionViewer(std::uint8_t byteLXMode);
  void outputPlotLSection();
  void outputPlotXSection();
  void outputExportQuantity();
  // Writes the quantity sheet of the current section to path, as a workbook or, for a name
  // ending in ".csv", as comma-separated text; a name without an extension gets ".xlsx". True
  // when the file was written; otherwise the user has been told why (invalid levels go to the
  // error list).
  bool exportQuantitySheet(const QString& path);
  void toolsOptions();
  void helpContents();
  void helpAbout();
  void initialSet();

  // The help window while it is open, otherwise null.
  HelpWindow* helpWindow() const { return m_helpWindow; }
  // The folder of the HTML manual; by default the "manual" folder beside the program.
  void setManualFolder(const QString& folder) { m_manualFolder = folder; }
  // The folder of the typical-section pictures; by default the "Models" folder beside the
  // program.
  void setModelsFolder(const QString& folder) { m_modelsFolder = folder; }

  // sheets::MainWindowLink
  void setCommandEnabled(Command command, bool enabled) override;
  bool isCommandChecked(Command command) const override;
  void setCommandChecked(Command command, bool checked) override;
  void setToolButtonVisible(const QString& key, bool visible) override;
  void setToolButtonEnabled(const QString& key, bool enabled) override;
  void closeFilterWindow() override;
  void showChild(QWidget* window) override;
  void DoubleClickHandler(int row) override;
  bool runComputation(const std::function<void()>& computation) override;
  void tableWritten(const QString& table) override;

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  void createMenus();
  void createToolBars();
  void createStatusBar();
  QAction* addMenuItem(QMenu* menu, const QString& name, const QString& caption,
                       void (frmMain::*command)(), const QKeySequence& shortcut = {});
  QAction* addToolButton(QToolBar* bar, const QString& key, const QString& toolTip,
                         const QString& iconKey, void (frmMain::*command)());
  QAction* commandAction(Command command) const;
  void useExecutedLevelChanged(bool checked);
  // Empties the status bar's volume and time panels.
  void clearTotals();
  // Makes path, open on connection, the current project as File > Open does: every child
  // closes first (those with unsaved edits ask). False when the user kept a child open or the
  // project was refused.
  bool openProjectFile(std::unique_ptr<db::Connection> connection, const QString& path);
  // Closes every child and the filter window, sheets with unsaved edits asking first; false
  // when the user kept one.
  bool closeEveryChild();
  // The current package and section are forgotten after another project was opened.
  void projectOpened();
  // Runs a long engine computation (the quantity run, the plotted sections, the export, the
  // ordering of the initial levels) with the program marked busy until it ends.
  void runEngine(const std::function<void()>& computation);
  // While a computation runs, the commands that would replace the project, change the section,
  // write rows or start another computation over it are refused: the status bar says why, and
  // this returns true.
  bool refusedWhileRunning();
  // Closes the children for which which() holds. With askToSave, every data sheet among them
  // with unsaved edits first asks whether to save them, and a Cancel (or a save that fails)
  // closes nothing and returns false; without it their edits are dropped, as for rows that were
  // deleted. False too when a child refused to close.
  bool closeChildren(const std::function<bool(QMdiSubWindow*)>& which, bool askToSave);
  // After packages or sections were deleted: a current package or section that is gone stops
  // being current, and the windows that show rows of a deleted one close.
  void forgetDeletedSelection();
  // Opens a new data sheet through layout; false when a database error ended the command.
  bool openDataSheet(const std::function<void(sheets::frmDataGrid&)>& layout);
  void message(const QString& text, sheets::MessageIcon icon);
  bool askYesNo(const QString& title, const QString& text);
  QString input(const QString& title, const QString& prompt, const QString& defaultText);
  // Asks how many records to add; nullopt when the user cancelled or was told the answer is not
  // a count from 1 to 32767.
  std::optional<std::int16_t> recordCount(const QString& title);
  QPrinter& printer();
  // The whole table of the active data sheet or report as a printable sheet; nullopt for any
  // other window.
  std::optional<PrintSheet> activeTable() const;
  // An unshown page window over a table, to print or save it from File.
  std::unique_ptr<PrintForm> tableForm(PrintSheet table);

  AppState& m_state;
  sheets::SheetContext m_context;
  InputFunction m_input;
  SaveFileFunction m_saveFile;
  OpenFileFunction m_openFile;
  LegacySourceFunction m_openLegacySource;
  QMdiArea* m_mdiArea = nullptr;
  std::array<QLabel*, 4> m_panels{};
  std::map<QString, QAction*> m_actions;
  QMenu* m_mnuEdit = nullptr;
  QMenu* m_mnuWindow = nullptr;
  QAction* m_windowListSeparator = nullptr;
  QToolBar* m_tbToolBar = nullptr;
  QToolBar* m_tbBlockBar = nullptr;
  QCheckBox* m_chkUseExecutedLevel = nullptr;
  QPointer<sheets::dlgSearchWindow> m_filterWindow;
  QPointer<HelpWindow> m_helpWindow;
  QString m_manualFolder;
  QString m_modelsFolder;
  std::unique_ptr<QPrinter> m_printer;
  bool m_engineRunning = false;
  QList<QAction*> m_sheetSaveItems;  // File > Save as PDF/PNG/SVG, for a page window
};

}  // namespace app
