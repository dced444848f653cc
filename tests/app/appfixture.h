#pragma once

#include "app/appstate.h"
#include "app/desktopreporter.h"
#include "app/frmmain.h"
#include "app/opendatabase.h"
#include "app/settings.h"
#include "db/connection.h"
#include "db/project.h"
#include "db/resultset.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/mousewheel.h"
#include "tests/testsupport.h"

#include <QAction>
#include <QHeaderView>
#include <QLabel>
#include <QMdiSubWindow>
#include <QTemporaryDir>
#include <QTest>

#include <memory>
#include <optional>

namespace apptest {

// Every field of the settings, in their order, as text, so that one comparison checks them all.
inline QString describe(const app::Settings& s) {
  return QStringList{QString::number(s.MainLeft),           QString::number(s.MainTop),
                     QString::number(s.MainWidth),          QString::number(s.MainHeight),
                     QString::number(s.AutoSave),           QString::number(s.EnterRight),
                     QString::number(s.MaxReadings),        QString::number(s.MinorScale),
                     QString::number(s.BranchScale),        QString::number(s.QtyBifurcate),
                     QString::number(s.DisplayQtyXSection), QString::number(s.FixedDatum),
                     QString::number(s.FixedDatumVal),      QString::number(s.LSectionScale),
                     QString::number(s.MetersPerPage)}
      .join(QLatin1Char(' '));
}

struct Message {
  QString title;
  QString text;
  sheets::MessageIcon icon;
};

// The program on a project (the demo when asked) in a fresh temporary folder, opened the way the
// chooser opens it, with the main window shown; every box, prompt and file dialog is answered by
// the test.
struct Desk {
  explicit Desk(bool demo = false) {
    path = folder.filePath(QStringLiteral("canal.delvane"));
    db::createProject(path, demo);
    reporter.setMessageFunction([this](const QString& text, engine::Reporter::Icon) {
      messages.append({QStringLiteral("reporter"), text, sheets::MessageIcon::Warning});
    });
    state.reporter = &reporter;
    state.mouseWheel = &mouseWheel;
    QCOMPARE(app::adoptProject(state, db::openProject(path), path), app::OpenResult::Opened);
    window = std::make_unique<app::frmMain>(state);
    reporter.setParentWindow(window.get());
    reporter.setStatusFunction(
        [this](int panel, const QString& text) { window->setStatusPanel(panel, text); });
    window->setMessageFunction([this](QWidget*, const QString& text, const QString& title,
                                      sheets::MessageButtons, sheets::MessageIcon icon) {
      messages.append({title, text, icon});
      return answer;
    });
    window->setInputFunction(
        [this](QWidget*, const QString& title, const QString& prompt, const QString& defaultText) {
          prompts.append(title + QLatin1Char('|') + prompt + QLatin1Char('|') + defaultText);
          return inputs.isEmpty() ? QString() : inputs.takeFirst();
        });
    window->setSaveFileFunction(
        [this](QWidget*, const QString&, const QString& suggested, const QString&) {
          suggestedSave = suggested;
          return saveAs;
        });
    window->resize(1000, 750);
    window->show();
    QVERIFY(QTest::qWaitForWindowExposed(window.get()));
  }

  ~Desk() {
    window.reset();
    state.engine.reset();  // it refers to the connection
    state.cnProject.reset();
  }

  db::Connection& db() { return *state.cnProject; }
  void exec(const char* sql) { db().exec(QString::fromUtf8(sql)); }
  int count(const QString& table, const QString& where = {}) {
    return testsupport::rowCount(db(), table, where);
  }
  std::optional<double> scalar(const QString& sql) { return db().scalar(sql); }
  // The rows of a query as text: columns joined by spaces, rows by '|', NULL as '-'.
  QString rows(const char* sql) {
    db::Statement query = db().prepare(QString::fromUtf8(sql));
    QStringList all;
    while (query.step()) {
      QStringList row;
      for (int c = 0; c < query.columnCount(); ++c)
        row.append(query.isNull(c) ? QStringLiteral("-") : query.text(c));
      all.append(row.join(QLatin1Char(' ')));
    }
    return all.join(QLatin1Char('|'));
  }
  QAction* action(const char* name) const { return window->action(QLatin1String(name)); }
  void trigger(const char* name) {
    QAction* item = action(name);
    QVERIFY2(item && item->isEnabled(), name);
    item->trigger();
    settle();
  }
  sheets::frmDataGrid* sheet() const { return window->activeDataSheet(); }
  QString childTitle() const {
    QMdiSubWindow* child = window->activeChild();
    return child ? child->windowTitle() : QString();
  }
  // Makes package and section current, as drilling down does.
  void choose(int packageId, int sectionId) {
    state.lngPackageID = packageId;
    state.lngSectionID = sectionId;
    if (sectionId) state.engine->setSection(sectionId);
    window->EnableMenus();
  }
  void showChildren(std::initializer_list<const char*> titles) {
    for (const char* title : titles) {
      auto* child = new QLabel(QString::fromLatin1(title));
      child->setWindowTitle(QString::fromLatin1(title));
      window->showChild(child);
    }
  }
  QString messagesText() const {
    QStringList lines;
    for (const Message& m : messages) lines.append(m.title + QStringLiteral(": ") + m.text);
    return lines.join(QLatin1Char('\n'));
  }
  // Lets closed children go, as the event loop would.
  static void settle() {
    QCoreApplication::processEvents();
    QCoreApplication::sendPostedEvents(nullptr, QEvent::DeferredDelete);
  }

  // Double-clicks the header of row, as the user drills down.
  static void doubleClickRowHeader(sheets::GridControl& grid, int row) {
    QHeaderView* header = grid.rowHeader();
    const QPoint at(header->width() / 2,
                    header->sectionViewportPosition(row) + header->sectionSize(row) / 2);
    QTest::mouseClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    QTest::mouseDClick(header->viewport(), Qt::LeftButton, Qt::NoModifier, at);
    settle();
  }
  static void clickCell(sheets::GridControl& grid, int row, int col) {
    QTest::mouseClick(grid.cellArea(), Qt::LeftButton, {}, grid.cellRect(row, col).center());
  }
  // Types text into the current cell as the user does: the first key opens the editor, the rest
  // go to it, and Enter ends the edit.
  static void typeAndEnter(sheets::GridControl& grid, const QString& text) {
    QWidget* view = grid.cellArea()->parentWidget();
    for (QChar character : text)
      QTest::keyClicks(grid.IsEditing() ? grid.editor() : view, QString(character));
    QTest::keyClick(grid.IsEditing() ? grid.editor() : view, Qt::Key_Return);
  }
  // The value of a column of the sheet's row, by column name.
  static QVariant value(sheets::frmDataGrid& sheet, int row, const char* column) {
    db::ResultSet* rows = sheet.resultSet();
    return rows->value(row, rows->columnIndex(QLatin1String(column)));
  }

  QTemporaryDir folder;
  QString path;
  app::DesktopReporter reporter;
  sheets::MouseWheelModule mouseWheel;
  app::AppState state;
  std::unique_ptr<app::frmMain> window;
  QList<Message> messages;
  QStringList inputs;
  QStringList prompts;
  QString saveAs;
  QString suggestedSave;
  sheets::MessageAnswer answer = sheets::MessageAnswer::Yes;
};

}  // namespace apptest
