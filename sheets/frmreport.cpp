#include "sheets/frmreport.h"

#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"
#include "sheets/sheetediting.h"

#include <QVBoxLayout>

namespace sheets {

namespace {

// The report grid as the engine sees it: row counts and cell texts go straight to the grid.
class GridReportAdapter : public engine::ReportGrid {
 public:
  explicit GridReportAdapter(GridControl& grid) : m_grid(grid) {}
  void SetRowCount(int rows) override { m_grid.SetRowCount(rows); }
  int RowCount() const override { return m_grid.Rows(); }
  void setText(int row, int column, const QString& text) override {
    m_grid.Text(row, column, text);
  }
  void setCellBold(int row, int column, bool bold) override { m_grid.CellBold(row, column, bold); }

 private:
  GridControl& m_grid;
};

}  // namespace

frmReport::frmReport(const SheetContext& context, QWidget* parent)
    : QWidget(parent), m_context(context), m_wheelHook(this, this, context.mouseWheel) {
  setObjectName(QStringLiteral("frmReport"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  m_scg = new GridControl(this);
  m_scg->setObjectName(QStringLiteral("scg"));
  layout->addWidget(m_scg);
  m_reportGrid = std::make_unique<GridReportAdapter>(*m_scg);

  // A block of cells is picked out with the mouse or Shift and the arrows, and Ctrl+C copies it
  // as tab-separated lines, as a spreadsheet pastes it.
  SheetEditing::Hooks hooks;
  hooks.readOnly = true;
  hooks.rowHeaderDoubleClicked = [this](int row) {
    if (m_context.link) m_context.link->DoubleClickHandler(row);
  };
  m_editing = std::make_unique<SheetEditing>(*m_scg, std::move(hooks), this);
}

frmReport::~frmReport() = default;

void frmReport::copy() { m_editing->copy(); }

void frmReport::MouseWheel(int /*keys*/, int rotation, int /*x*/, int /*y*/) {
  scrollGridByWheel(*m_scg, rotation);
}

}  // namespace sheets
