#pragma once

#include "sheets/sheetcontext.h"
#include "tests/testsupport.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <map>

// A sheet context over a project in a temporary folder, with message boxes that record what
// they were asked and answer from a queue instead of blocking, and a main window that records
// what the sheets switch.
namespace sheetstest {

struct RecordedMessage {
  QString text;
  QString title;
  sheets::MessageButtons buttons = sheets::MessageButtons::Ok;
  sheets::MessageIcon icon = sheets::MessageIcon::Information;
};

class RecordingMainWindow : public sheets::MainWindowLink {
 public:
  void setCommandEnabled(Command command, bool enabled) override {
    this->enabled[command] = enabled;
  }
  bool isCommandChecked(Command command) const override {
    auto it = checked.find(command);
    return it != checked.end() && it->second;
  }
  void setCommandChecked(Command command, bool on) override { checked[command] = on; }
  void setToolButtonVisible(const QString& key, bool visible) override {
    buttonVisible[key] = visible;
  }
  void setToolButtonEnabled(const QString& key, bool on) override { buttonEnabled[key] = on; }
  void closeFilterWindow() override { ++filterWindowClosed; }
  void showChild(QWidget* window) override { shown.append(window); }
  void DoubleClickHandler(int row) override { doubleClickedRows.append(row); }

  std::map<Command, bool> enabled;
  std::map<Command, bool> checked;
  std::map<QString, bool> buttonVisible;
  std::map<QString, bool> buttonEnabled;
  int filterWindowClosed = 0;
  QList<QWidget*> shown;
  QList<int> doubleClickedRows;
};

class SheetsFixture {
 public:
  // A project with the schema only, or the demo package with its two sections.
  explicit SheetsFixture(bool demo) { m_connection = &m_project.create(demo); }

  db::Connection& connection() { return *m_connection; }

  // The context the sheets are given; withLink decides whether a main window is attached.
  sheets::SheetContext context(bool withLink = false) {
    sheets::SheetContext c;
    c.connection = [this] { return m_connection; };
    c.engine = [this] { return engine; };
    c.packageId = [this] { return packageId; };
    c.sectionId = [this] { return sectionId; };
    c.autoSave = [this] { return autoSave; };
    c.enterRight = [this] { return enterRight; };
    c.useExecutedLevel = [this] { return useExecutedLevel; };
    c.message = [this](QWidget*, const QString& text, const QString& title,
                       sheets::MessageButtons buttons, sheets::MessageIcon icon) {
      messages.append({text, title, buttons, icon});
      if (buttons == sheets::MessageButtons::Ok) return sheets::MessageAnswer::Ok;
      return answers.isEmpty() ? sheets::MessageAnswer::Yes : answers.takeFirst();
    };
    c.link = withLink ? &mainWindow : nullptr;
    return c;
  }

  QStringList messageTexts() const {
    QStringList texts;
    for (const RecordedMessage& m : messages) texts.append(m.text);
    return texts;
  }

  std::int32_t packageId = 1;
  std::int32_t sectionId = 1;
  bool autoSave = false;
  bool enterRight = false;
  bool useExecutedLevel = false;
  engine::EngineSession* engine = nullptr;
  QList<RecordedMessage> messages;
  // Answers to Yes/No questions, first asked first; Yes once they run out.
  QList<sheets::MessageAnswer> answers;
  RecordingMainWindow mainWindow;

 private:
  testsupport::TempProject m_project;
  db::Connection* m_connection = nullptr;
};

}  // namespace sheetstest
