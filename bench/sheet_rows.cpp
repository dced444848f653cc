// Times the main window's Add of many Initial rows and the data sheet's Delete of the same rows,
// each in one transaction, in a section that already holds 10,000 readings.
// Usage: sheet_rows [rows]   (default 5000; run with QT_QPA_PLATFORM=offscreen if headless)
#include "app/appstate.h"
#include "app/desktopreporter.h"
#include "app/frmmain.h"
#include "app/opendatabase.h"
#include "db/connection.h"
#include "db/project.h"
#include "db/resultset.h"
#include "engine/session.h"
#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/mousewheel.h"

#include <QApplication>
#include <QElapsedTimer>
#include <QTemporaryDir>

#include <algorithm>
#include <cstdio>

namespace {

constexpr int kSurveyed = 10000;

double ms(const QElapsedTimer& timer) { return static_cast<double>(timer.nsecsElapsed()) / 1e6; }

int initialRows(db::Connection& connection) {
  return static_cast<int>(
      connection.scalar(QStringLiteral("SELECT count(*) FROM Initial")).value_or(-1));
}

}  // namespace

int main(int argc, char** argv) {
  QApplication application(argc, argv);
  const int rows = argc > 1 ? std::max(1, QString::fromLocal8Bit(argv[1]).toInt()) : 5000;
  QTemporaryDir dir;
  const QString path = dir.filePath(QStringLiteral("bench.delvane"));
  db::createProject(path, false);

  app::DesktopReporter reporter;
  sheets::MouseWheelModule mouseWheel;
  app::AppState state;
  state.reporter = &reporter;
  state.mouseWheel = &mouseWheel;
  if (app::adoptProject(state, db::openProject(path), path) != app::OpenResult::Opened) return 1;
  db::Connection& connection = *state.cnProject;
  {
    db::Transaction transaction(connection);
    connection.exec(QStringLiteral("INSERT INTO Package (ID, Name) VALUES (1, 'Bench')"));
    connection.exec(QStringLiteral("INSERT INTO Sections (ID, PackageID) VALUES (1, 1)"));
    auto insert = connection.prepare(QStringLiteral(
        "INSERT INTO Initial (Chainage, Offset, Level, SectionID) VALUES (?, 0, 100, 1)"));
    for (int i = 0; i < kSurveyed; ++i) {
      insert.bindMeasure(1, static_cast<float>(i) * 0.02f).run();
      insert.reset();
    }
    transaction.commit();
  }

  {
    app::frmMain window(state);
    reporter.setParentWindow(&window);
    window.setMessageFunction([](QWidget*, const QString&, const QString&, sheets::MessageButtons,
                                 sheets::MessageIcon) { return sheets::MessageAnswer::Yes; });
    QStringList inputs{QString::number(rows), QStringLiteral("12.51")};
    window.setInputFunction([&inputs](QWidget*, const QString&, const QString&, const QString&) {
      return inputs.isEmpty() ? QString() : inputs.takeFirst();
    });
    state.lngPackageID = 1;
    state.lngSectionID = 1;
    state.engine->setSection(1);
    window.EnableMenus();
    window.resize(1000, 750);
    window.show();
    QCoreApplication::processEvents();
    window.dataInitial();
    sheets::frmDataGrid* sheet = window.activeDataSheet();
    if (!sheet) return 1;

    QElapsedTimer timer;
    timer.start();
    window.editAdd();
    const double addMs = ms(timer);
    const int afterAdd = initialRows(connection);

    // The added rows are the readings without an offset.
    db::ResultSet& shown = *sheet->resultSet();
    const int offset = shown.columnIndex(QStringLiteral("Offset"));
    for (int row = 0; row < shown.rowCount(); ++row)
      if (shown.isNull(row, offset)) sheet->grid().SelectRow(row, true);
    timer.restart();
    window.editDelete();
    const double deleteMs = ms(timer);
    const int afterDelete = initialRows(connection);

    std::printf("add %d rows: %.0f ms; delete them: %.0f ms (in a section of %d readings)\n", rows,
                addMs, deleteMs, kSurveyed);
    std::printf("check: %d rows after the add (expected %d), %d after the delete (expected %d)\n",
                afterAdd, kSurveyed + rows, afterDelete, kSurveyed);
    if (afterAdd != kSurveyed + rows || afterDelete != kSurveyed) return 1;
  }
  state.engine.reset();  // it refers to the connection
  state.cnProject.reset();
  return 0;
}
