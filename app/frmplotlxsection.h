#pragma once

#include "sheets/mousewheel.h"
#include "sheets/sheetcontext.h"

#include <QFrame>
#include <QPointF>
#include <QString>
#include <QWidget>

#include <cstdint>
#include <memory>
#include <optional>
#include <vector>

class QLabel;
class QLineEdit;
class QPainter;
class QPushButton;
class QScrollBar;

namespace drawing {
class CrossSectionView;
class LongSectionSheet;
}  // namespace drawing

namespace app {

// The section viewer: the current section on screen, either one cross-section at a time with
// its areas (mode 2) or the longitudinal section (mode 1), drawn by the sheets' own figures.
// The user steps through the chainages, picks a point with the mouse and adds, changes or
// deletes ground points (cross-section) or design levels (longitudinal); every edit is
// written at once, the picture is drawn again from the project and the quantities follow.
class frmPlotLXSection : public QWidget, public sheets::WheelAware {
  Q_OBJECT

 public:
  enum EditMode : std::uint8_t { kNoEdit = 0, kChange = 1, kAdd = 2, kDelete = 3 };

  // byteLXMode: 1 the longitudinal section, any other value a cross-section.
  frmPlotLXSection(const sheets::SheetContext& context, std::uint8_t byteLXMode,
                   QWidget* parent = nullptr);
  ~frmPlotLXSection() override;

  // Reads the chainages of the current section and shows the first cross-section, or the
  // longitudinal section from the first chainage. Call once, after the window is placed.
  void load();

  bool isLongitudinal() const { return m_byteLXMode == 1; }
  std::uint8_t editMode() const { return m_editMode; }
  // The chainages stepped through, in order, and the one shown (cross-section mode).
  const std::vector<float>& chainages() const { return m_chainages; }
  std::optional<float> currentChainage() const;
  // The point picked last: offset (or chainage) and level; none after a redraw.
  std::optional<QPointF> selectedPoint() const { return m_selected; }
  // The datum the picture stands on, in whole metres.
  int datum() const;

  // Navigation (cross-section mode). Each shows the chainage only when its levels pass the
  // check; otherwise the view stays as it was.
  void moveFirst();
  void movePrevious();
  void moveNext();
  void moveLast();
  // Shows the chainage typed into txtChainage, or says it is not in the data.
  void goToTypedChainage();
  // Checks the levels at chainage and shows its cross-section; false (view unchanged) when the
  // check failed or the chainage is not one of the section's.
  bool showChainage(float chainage);

  // The edits: start one, then commit (cmdYes) or abandon (cmdNo).
  void startAdd();
  void startChange();
  void startDelete();
  void commitEdit();
  void abandonEdit();

  // The picture's pixels and the drawing's values: offset (or chainage in kilometres) and
  // level. The one mapping the drawing itself uses, at the current zoom.
  QPointF pixelOf(QPointF value) const;
  QPointF valueAtPixel(QPointF pixel) const;
  // A mouse button released over the picture at pixel (pbGraph's coordinates).
  void pictureReleased(QPointF pixel);

  // Ctrl+wheel zoom: 1 is the drawing's own scale.
  double zoom() const { return m_zoom; }
  void setZoom(double zoom);

  // sheets::WheelAware: scrolls HScroll1 one large change while it is enabled; with Ctrl, zooms.
  void MouseWheel(int keys, int rotation, int x, int y) override;

  QWidget* picFrame() const { return m_picFrame; }
  QWidget* pbGraph() const { return m_pbGraph; }
  QScrollBar* HScroll1() const { return m_hScroll; }
  QScrollBar* VScroll1() const { return m_vScroll; }
  QLineEdit* txtChainage() const { return m_txtChainage; }
  QLineEdit* txtOffset() const { return m_txtOffset; }
  QLineEdit* txtLevel() const { return m_txtLevel; }
  QPushButton* cmdGo() const { return m_cmdGo; }
  QPushButton* cmdFirst() const { return m_cmdFirst; }
  QPushButton* cmdPrev() const { return m_cmdPrev; }
  QPushButton* cmdNext() const { return m_cmdNext; }
  QPushButton* cmdLast() const { return m_cmdLast; }
  QPushButton* cmdAdd() const { return m_cmdAdd; }
  QPushButton* cmdChange() const { return m_cmdChange; }
  QPushButton* cmdDelete() const { return m_cmdDelete; }
  QPushButton* cmdYes() const { return m_cmdYes; }
  QPushButton* cmdNo() const { return m_cmdNo; }
  QLabel* lblDesCutArea() const { return m_lblDesCutArea; }
  QLabel* lblDesFillArea() const { return m_lblDesFillArea; }
  QLabel* lblStatusMessage() const { return m_lblStatusMessage; }
  // The offset (or chainage) and level under the pointer.
  QLabel* pointerLabel() const { return m_pointerLabel; }

  QSize sizeHint() const override;

  // For the picture widget.
  void paintPicture(QPainter& painter) const;
  void pointerMoved(QPointF pixel);
  bool pictureKey(int key, const QString& text);

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void createControls();
  void loadCrossSections();
  void loadLongSection();
  void drawLongSection();
  void showRow(int row);
  void layOutPicture();
  void scrollPicture();
  double screenDpi() const;
  double pixelsPerUnit() const;
  double stepPixels() const;
  void setBoxes(const QString& offset, const QString& level);
  void clearSelection();
  void select(QPointF value);
  void beginEdit(EditMode mode, const QString& status);
  void endEdit();
  void setEditing(bool editing);
  // Reads a box as a number; nullopt, after telling the user, when its text is not one.
  std::optional<float> numberIn(const QLineEdit* box, const QString& name);
  void writeCrossSectionEdit(EditMode mode, float offset, float level);
  void writeLongSectionEdit(EditMode mode, float chainage, float level);
  void pickNearestGroundPoint(double offset);
  void pickNearestChainage(double chainage);
  void refreshQuantities(float chainage);
  void message(const QString& text, sheets::MessageIcon icon);

  sheets::SheetContext m_context;
  std::uint8_t m_byteLXMode;
  std::uint8_t m_editMode = kNoEdit;
  std::vector<float> m_chainages;
  int m_row = -1;        // the chainage shown (cross-section mode)
  int m_rangeStart = 0;  // the first chainage drawn (longitudinal mode)
  double m_rangeMetres = 0.0;
  double m_zoom = 1.0;
  std::unique_ptr<drawing::CrossSectionView> m_crossSection;
  std::unique_ptr<drawing::LongSectionSheet> m_longSection;
  std::optional<QPointF> m_selected;  // the point picked last (offset or chainage, level)
  bool m_selectedInterpolated = false;
  std::optional<QPointF> m_marker;  // where the marker stands

  QFrame* m_picFrame = nullptr;
  QWidget* m_pbGraph = nullptr;
  QScrollBar* m_hScroll = nullptr;
  QScrollBar* m_vScroll = nullptr;
  QLabel* m_chainageCaption = nullptr;
  QLabel* m_label5 = nullptr;
  QLineEdit* m_txtChainage = nullptr;
  QLineEdit* m_txtOffset = nullptr;
  QLineEdit* m_txtLevel = nullptr;
  QPushButton* m_cmdGo = nullptr;
  QPushButton* m_cmdFirst = nullptr;
  QPushButton* m_cmdPrev = nullptr;
  QPushButton* m_cmdNext = nullptr;
  QPushButton* m_cmdLast = nullptr;
  QPushButton* m_cmdAdd = nullptr;
  QPushButton* m_cmdChange = nullptr;
  QPushButton* m_cmdDelete = nullptr;
  QPushButton* m_cmdYes = nullptr;
  QPushButton* m_cmdNo = nullptr;
  QLabel* m_cutCaption = nullptr;
  QLabel* m_fillCaption = nullptr;
  QLabel* m_lblDesCutArea = nullptr;
  QLabel* m_lblDesFillArea = nullptr;
  QLabel* m_lblStatusMessage = nullptr;
  QLabel* m_pointerLabel = nullptr;

  sheets::WheelHook m_wheelHook;
};

}  // namespace app
