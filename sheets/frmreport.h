#pragma once

#include "engine/reportgrid.h"
#include "sheets/mousewheel.h"
#include "sheets/sheetcontext.h"
#include "sheets/subwindowactivation.h"

#include <QString>
#include <QWidget>

#include <memory>

namespace sheets {

class GridControl;

// A report window: one unbound grid whose cells the quantity engine writes as text. Nothing
// in it is stored back. The layouts of modGridStyles create and fill it.
class frmReport : public QWidget, public WheelAware {
  Q_OBJECT

 public:
  explicit frmReport(const SheetContext& context, QWidget* parent = nullptr);
  ~frmReport() override;

  // "QuantitySummary" or "QuantityDetails".
  QString strCurrentDataSheet;

  void MouseWheel(int keys, int rotation, int x, int y) override;

  GridControl& scg() const { return *m_scg; }
  // The grid as the engine writes into it.
  engine::ReportGrid& reportGrid() { return *m_reportGrid; }

  // Called from the enclosing QMdiSubWindow's state changes; public so that a window outside
  // an MDI area can be driven too.
  void activateReport();
  void deactivateReport();
  bool isActiveReport() const { return m_active; }

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  SheetContext m_context;
  GridControl* m_scg = nullptr;
  std::unique_ptr<engine::ReportGrid> m_reportGrid;
  SubWindowActivation m_subWindowActivation;
  bool m_active = false;
};

}  // namespace sheets
