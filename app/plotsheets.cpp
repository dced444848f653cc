#include "app/plotsheets.h"

#include "app/appstate.h"
#include "db/connection.h"
#include "drawing/sheettitle.h"
#include "drawing/tablesheet.h"
#include "engine/designsection.h"
#include "engine/numberformat.h"
#include "engine/reporter.h"
#include "engine/sectionviews.h"
#include "engine/session.h"
#include "sheets/gridcontrol.h"

#include <QApplication>
#include <QDate>
#include <QDir>
#include <QFileInfo>
#include <QMdiArea>
#include <QMdiSubWindow>
#include <QRegularExpression>

#include <iterator>
#include <memory>

namespace app {

namespace {

// The progress window and the wait cursor for the length of a computation.
class ComputingScope {
 public:
  explicit ComputingScope(engine::Reporter& reporter) : m_reporter(reporter) {
    QApplication::setOverrideCursor(Qt::WaitCursor);
  }
  ~ComputingScope() {
    m_reporter.progressEnd();
    QApplication::restoreOverrideCursor();
  }
  ComputingScope(const ComputingScope&) = delete;
  ComputingScope& operator=(const ComputingScope&) = delete;

 private:
  engine::Reporter& m_reporter;
};

QString sectionName(const drawing::SheetTitle& title) {
  return title.sectionDescription.isEmpty()
             ? QStringLiteral("Section ") + QString::number(title.sectionId)
             : title.sectionDescription;
}

// A file name from the section's name and the kind of sheet, without the characters file
// systems refuse.
QString fileNameOf(const drawing::SheetTitle& title, const QString& kind) {
  QString name = sectionName(title).trimmed() + QLatin1Char(' ') + kind;
  name.replace(QRegularExpression(QStringLiteral("[\\\\/:*?\"<>|]")), QStringLiteral("_"));
  return name;
}

drawing::SheetTitle sheetTitleOf(const AppState& state) {
  drawing::SheetTitle title;
  title.projectFile = QFileInfo(state.strDatabasePath).fileName();
  title.packageName = state.strPackageName;
  title.sectionDescription = state.strSectionDescription;
  title.sectionId = state.lngSectionID;
  if (state.engine) title.symbols = state.engine->numberSymbols();
  return title;
}

PrintForm* openForm(AppState& state, const sheets::SheetContext& context, PrintSheet sheet) {
  auto* form = new PrintForm(context, std::move(sheet));
  form->setAttribute(Qt::WA_DeleteOnClose);
  if (!state.strDatabasePath.isEmpty())
    form->setSaveFolder(QFileInfo(state.strDatabasePath).absolutePath());
  if (context.link)
    context.link->showChild(form);
  else
    form->show();
  // A sheet is wide: its window takes the whole work area.
  if (auto* child = qobject_cast<QMdiSubWindow*>(form->parentWidget()); child && child->mdiArea()) {
    child->move(0, 0);
    child->resize(child->mdiArea()->viewport()->size());
  }
  form->setReadableZoom();
  return form;
}

}  // namespace

namespace {

// A page window's sheet of values: made again for every print factor from the shared values.
template <typename Sheet, typename Values, typename Options>
PrintSheet printSheetOf(Values values, const Options& options, const QString& kind) {
  PrintSheet sheet;
  sheet.caption = kind + QStringLiteral(" - ") + sectionName(options.title);
  sheet.fileName = fileNameOf(options.title, kind.toLower());
  const auto shared = std::make_shared<const Values>(std::move(values));
  sheet.produce = [shared, options](double printFactor) {
    Options atFactor = options;
    atFactor.printFactor = printFactor;
    return std::make_unique<Sheet>(*shared, atFactor);
  };
  const Sheet laidOut(*shared, options);
  sheet.pageMm = QSize(laidOut.pageWidthMm(), laidOut.pageHeightMm());
  return sheet;
}

}  // namespace

PrintSheet tablePrintSheet(const AppState& state, const sheets::GridControl& grid,
                           const QString& name) {
  std::vector<drawing::TableColumn> columns;
  for (int c = 0; c < grid.Cols(); ++c) {
    // Screen pixels at the usual 96 to the inch.
    columns.push_back({grid.Text(-1, c), grid.ColWidth(c) * 25.4 / 96.0});
  }
  drawing::TableRows rows;
  rows.count = grid.Rows();
  const sheets::GridControl* source = &grid;
  rows.text = [source](int row) {
    QStringList cells;
    for (int c = 0; c < source->Cols(); ++c) cells << source->Text(row, c);
    return cells;
  };
  rows.bold = [source](int row) { return source->Cols() > 0 && source->CellBold(row, 0); };
  drawing::TableSheetOptions options;
  options.title = sheetTitleOf(state);
  if (state.lngSectionID < 1) options.title.sectionDescription.clear();
  if (state.lngPackageID < 1) options.title.packageName.clear();
  options.name = name;
  options.date = QDate::currentDate().toString(Qt::ISODate);

  PrintSheet sheet;
  sheet.caption = name;
  sheet.fileName = fileNameOf(options.title, name.toLower());
  sheet.produce = [columns, rows, options](double) {
    return std::make_unique<drawing::TableSheet>(columns, rows, options);
  };
  const drawing::TableSheet laidOut(columns, rows, options);
  sheet.pageMm = QSize(laidOut.pageWidthMm(), laidOut.pageHeightMm());
  return sheet;
}

PrintSheet crossSectionPrintSheet(std::vector<engine::CrossSection> sections,
                                  drawing::CrossSectionSheetOptions options) {
  return printSheetOf<drawing::CrossSectionSheet>(std::move(sections), options,
                                                  QStringLiteral("Cross sections"));
}

PrintSheet longSectionPrintSheet(engine::LongProfile profile,
                                 drawing::LongSectionSheetOptions options) {
  return printSheetOf<drawing::LongSectionSheet>(std::move(profile), options,
                                                 QStringLiteral("Longitudinal section"));
}

QStringList crossSectionScaleLabels() {
  // The native scale draws a metre as one sheet unit.
  QStringList labels{QStringLiteral("1:%1 (1 m = %2 mm)")
                         .arg(engine::formatNumber(1000.0 / drawing::kMmPerUnit, 0))
                         .arg(drawing::kMmPerUnit)};
  for (int n : drawing::kStandardScales) labels.append(QStringLiteral("1:%1").arg(n));
  return labels;
}

int crossSectionScaleAt(int index) {
  if (index < 1 || index > static_cast<int>(std::size(drawing::kStandardScales)))
    return drawing::kNativeScale;
  return drawing::kStandardScales[index - 1];
}

PrintForm* plotCrossSections(AppState& state, const sheets::SheetContext& context,
                             QWidget* parent) {
  if (!state.engine || state.lngSectionID < 1) return nullptr;
  engine::EngineSession& session = *state.engine;
  engine::Reporter& reporter = session.reporter();
  std::vector<engine::CrossSection> sections;
  bool cancelled = false;
  try {
    const ComputingScope computing(reporter);
    sections = engine::computeCrossSections(session, [&reporter, &cancelled](int index, int count) {
      if (index == 0)
        reporter.progressStart(QStringLiteral("Computing cross sections..."), count, true);
      reporter.progressValue(index);
      reporter.processEvents();
      cancelled = reporter.cancelled();
      return !cancelled;
    });
  } catch (const db::Error& error) {
    context.warn(parent,
                 QStringLiteral("The cross sections could not be computed: ") + error.message());
    return nullptr;
  }
  if (cancelled) return nullptr;

  drawing::CrossSectionSheetOptions options;
  options.executed = context.isUseExecutedLevel();
  options.title = sheetTitleOf(state);
  const bool empty = sections.empty();
  const auto shared =
      std::make_shared<const std::vector<engine::CrossSection>>(std::move(sections));
  const auto sheetAtScale = [shared, options](int index) {
    drawing::CrossSectionSheetOptions atScale = options;
    atScale.scale = crossSectionScaleAt(index);
    return crossSectionPrintSheet(*shared, atScale);
  };
  PrintForm* form = openForm(state, context, sheetAtScale(0));
  form->setScaleChoice(crossSectionScaleLabels(), 0, sheetAtScale);
  if (empty)
    context.ask(parent,
                QStringLiteral("Section %1 has no chainages to plot: its sheet is an empty page.")
                    .arg(sectionName(options.title)),
                QStringLiteral("Delvane"), sheets::MessageButtons::Ok,
                sheets::MessageIcon::Information);
  return form;
}

PrintForm* plotLongSection(AppState& state, const sheets::SheetContext& context, QWidget* parent) {
  if (!state.engine || state.lngSectionID < 1) return nullptr;
  engine::EngineSession& session = *state.engine;
  engine::LongProfile profile;
  std::vector<float> chainages;
  try {
    const ComputingScope computing(session.reporter());
    engine::ResetDesignCache(session);
    chainages = engine::quantityChainages(session);
    if (chainages.size() >= 2) {
      session.reporter().progressStart(QStringLiteral("Computing the longitudinal section..."), 0,
                                       false);
      profile = engine::computeLongProfile(session, chainages.front(), chainages.back(),
                                           context.isUseExecutedLevel());
    }
  } catch (const db::Error& error) {
    context.warn(parent, QStringLiteral("The longitudinal section could not be computed: ") +
                             error.message());
    return nullptr;
  }
  if (chainages.size() < 2) {
    context.warn(parent, QStringLiteral("Insufficient levels to plot L-Section. Atleast 2 "
                                        "sections are required."));
    return nullptr;
  }

  drawing::LongSectionSheetOptions options;
  options.executed = context.isUseExecutedLevel();
  options.metresPerPage = state.settings.MetersPerPage;
  options.verticalScale = state.settings.LSectionScale;
  options.fixedDatum = state.settings.FixedDatum;
  options.fixedDatumValue = state.settings.FixedDatumVal;
  options.title = sheetTitleOf(state);
  return openForm(state, context, longSectionPrintSheet(std::move(profile), options));
}

}  // namespace app
