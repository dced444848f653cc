#pragma once

#include "engine/reportgrid.h"
#include "sheets/mousewheel.h"
#include "sheets/sheetcontext.h"

#include <QString>
#include <QWidget>

#include <memory>

namespace sheets {

class GridControl;
class SheetEditing;

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

  // Copies the cells picked out (the current cell when no block is) to the clipboard as
  // tab-separated lines.
  void copy();

 private:
  SheetContext m_context;
  GridControl* m_scg = nullptr;
  std::unique_ptr<engine::ReportGrid> m_reportGrid;
  std::unique_ptr<SheetEditing> m_editing;
  WheelHook m_wheelHook;
};

}  // namespace sheets
