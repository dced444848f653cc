#pragma once

#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/modgridstyles.h"
#include "sheets/sheetcontext.h"
#include "tests/testsupport.h"

#include <QList>
#include <QString>
#include <QStringList>

#include <cstdint>
#include <functional>
#include <map>
#include <memory>

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

// The header texts of every column.
inline QStringList headers(const sheets::GridControl& grid) {
  QStringList texts;
  for (int col = 0; col < grid.Cols(); ++col) texts.append(grid.Text(-1, col));
  return texts;
}

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

  // Section 1 gets that many Initial readings at chainage 0.1 km, offsets 0, 1, 2, ... and
  // levels 100 + offset; section 2 one reading at level 55 no sheet of section 1 may touch.
  void writeInitialRows(int rows) {
    db::Transaction transaction(*m_connection);
    db::Statement insert = m_connection->prepare(QStringLiteral(
        "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (0.1,?,?,1)"));
    for (int i = 0; i < rows; ++i) {
      insert.bindMeasure(1, static_cast<float>(i)).bindMeasure(2, 100.0f + i).run();
      insert.reset();
    }
    m_connection->exec(QStringLiteral(
        "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (0.1, 0, 55, 2)"));
    transaction.commit();
  }

  // The stored value of an SQL expression over the section 1 reading at that offset; -1 when
  // there is no such row.
  double initialAt(int offset, const QString& expression = QStringLiteral("Level")) {
    return m_connection
        ->scalar(QStringLiteral("SELECT %1 FROM Initial WHERE SectionID=1 AND Offset=%2")
                     .arg(expression)
                     .arg(offset))
        .value_or(-1);
  }

  // A data sheet of the current section, laid out as the main window opens it: "Package",
  // "Sections", "DesignDetails", "DesignLevels", "Outlets", or a levels table ("Initial").
  std::unique_ptr<sheets::frmDataGrid> openSheet(const QString& layout = QStringLiteral("Initial"),
                                                 bool withLink = false) {
    namespace styles = sheets::modGridStyles;
    const std::map<QString, std::function<void(sheets::frmDataGrid&)>> layouts{
        {QStringLiteral("Package"), styles::PackageStyle},
        {QStringLiteral("Sections"), styles::SectionsStyle},
        {QStringLiteral("DesignDetails"), styles::DesignDetailsStyle},
        {QStringLiteral("DesignLevels"), styles::DesignLevelsStyle},
        {QStringLiteral("Outlets"), styles::OutletsStyle}};
    auto sheet = std::make_unique<sheets::frmDataGrid>(context(withLink));
    sheet->resize(600, 300);
    auto it = layouts.find(layout);
    if (it != layouts.end())
      it->second(*sheet);
    else
      styles::LevelsStyle(*sheet, layout);
    return sheet;
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
