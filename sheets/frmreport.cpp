#include "sheets/frmreport.h"

#include "sheets/frmdatagrid.h"
#include "sheets/gridcontrol.h"

#include <QCloseEvent>
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
    : QWidget(parent),
      m_context(context),
      m_subWindowActivation(
          this, [this] { activateReport(); }, [this] { deactivateReport(); }) {
  setObjectName(QStringLiteral("frmReport"));
  auto* layout = new QVBoxLayout(this);
  layout->setContentsMargins(0, 0, 0, 0);
  m_scg = new GridControl(this);
  m_scg->setObjectName(QStringLiteral("scg"));
  layout->addWidget(m_scg);
  m_reportGrid = std::make_unique<GridReportAdapter>(*m_scg);

  connect(m_scg, &GridControl::doubleClicked, this, [this](int row, int col) {
    if (col < 0 && row >= 0 && m_context.link) m_context.link->DoubleClickHandler(row);
  });
}

frmReport::~frmReport() {
  if (m_context.mouseWheel) m_context.mouseWheel->UnhookMouseWheel(this);
}

void frmReport::MouseWheel(int /*keys*/, int rotation, int /*x*/, int /*y*/) {
  scrollGridByWheel(*m_scg, rotation);
}

void frmReport::activateReport() {
  if (m_active) return;
  m_active = true;
  if (m_context.mouseWheel) m_context.mouseWheel->HookMouseWheel(this);
}

void frmReport::deactivateReport() {
  if (!m_active) return;
  m_active = false;
  if (m_context.mouseWheel) m_context.mouseWheel->UnhookMouseWheel(this);
}

void frmReport::closeEvent(QCloseEvent* event) {
  deactivateReport();
  event->accept();
}

}  // namespace sheets
