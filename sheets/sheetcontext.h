#pragma once

#include <QString>

#include <cstdint>
#include <functional>

class QWidget;

namespace db {
class Connection;
}

namespace engine {
class EngineSession;
}

namespace sheets {

class MouseWheelModule;

// What a sheet or report window may ask of the main window. The main window implements it;
// the sheets never see the main window's class.
class MainWindowLink {
 public:
  // The main window's commands that a data sheet switches while it is the active child.
  enum class Command { mnuEdit, mnuViewDetail, mnuLockColumn, mnuViewFreeze, mnuViewRefresh };

  virtual ~MainWindowLink() = default;

  virtual void setCommandEnabled(Command command, bool enabled) = 0;
  virtual bool isCommandChecked(Command command) const = 0;
  virtual void setCommandChecked(Command command, bool checked) = 0;
  // tbToolBar buttons by key: "Add" and "Delete" are shown and hidden, "Filter" enabled.
  virtual void setToolButtonVisible(const QString& key, bool visible) = 0;
  virtual void setToolButtonEnabled(const QString& key, bool enabled) = 0;
  // Closes the filter window (dlgSearchWindow) if it is open.
  virtual void closeFilterWindow() = 0;
  // Shows a new sheet or report window as a modeless child of the main window.
  virtual void showChild(QWidget* window) = 0;
  // A double-click on a row header of a data sheet or report; row is the grid row (0-based).
  virtual void DoubleClickHandler(int row) = 0;
  // Runs an engine computation that a child window starts, with the program busy as for the
  // main window's own; false, with nothing run, while another computation is under way.
  virtual bool runComputation(const std::function<void()>& computation) {
    computation();
    return true;
  }
  // Rows of table ("Initial", "DesignLevels") were written outside the data sheets: the open
  // sheets of that table show them, unless they hold unsaved edits of their own.
  virtual void tableWritten(const QString& /*table*/) {}
};

// The buttons and icon of a message box, and the button that closed it.
enum class MessageButtons { Ok, YesNo, YesNoCancel };
enum class MessageIcon { Information, Warning, Question, Critical };
enum class MessageAnswer { Ok, Yes, No, Cancel };

// Shows a modal message box and returns the answer. Tests replace it so nothing blocks.
using MessageFunction =
    std::function<MessageAnswer(QWidget* parent, const QString& text, const QString& title,
                                MessageButtons buttons, MessageIcon icon)>;

// Everything a sheet or report window needs from the running program, handed in by the main
// window when it creates the window. Values that change while the program runs (the open
// project, the current package and section, the settings) are read through getters, so one
// context serves every window for the life of the main window. Unset getters read as
// "nothing": no connection, key 0, setting off.
struct SheetContext {
  // The shared project connection, opened on first use; null when no project is open.
  std::function<db::Connection*()> connection;
  // The engine's state for the open project; null when none is open.
  std::function<engine::EngineSession*()> engine;
  std::function<std::int32_t()> packageId;
  std::function<std::int32_t()> sectionId;
  std::function<bool()> autoSave;
  std::function<bool()> enterRight;
  // The main window's check box chkUseExecutedLevel.
  std::function<bool()> useExecutedLevel;
  // Wheel forwarding; null leaves the wheel to Qt.
  MouseWheelModule* mouseWheel = nullptr;
  // Message boxes; unset shows a QMessageBox.
  MessageFunction message;
  // The main window; null (tests, a window on its own) means nobody to tell.
  MainWindowLink* link = nullptr;

  db::Connection* currentConnection() const { return connection ? connection() : nullptr; }
  engine::EngineSession* currentEngine() const { return engine ? engine() : nullptr; }
  std::int32_t currentPackageId() const { return packageId ? packageId() : 0; }
  std::int32_t currentSectionId() const { return sectionId ? sectionId() : 0; }
  bool isAutoSave() const { return autoSave && autoSave(); }
  bool isEnterRight() const { return enterRight && enterRight(); }
  bool isUseExecutedLevel() const { return useExecutedLevel && useExecutedLevel(); }

  // Shows a message box through message, or a QMessageBox when it is unset.
  MessageAnswer ask(QWidget* parent, const QString& text, const QString& title,
                    MessageButtons buttons, MessageIcon icon) const;
  // A warning with an OK button, titled with the program's name.
  void warn(QWidget* parent, const QString& text) const;
};

}  // namespace sheets
