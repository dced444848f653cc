#pragma once

#include "drawing/pageengine.h"
#include "sheets/mousewheel.h"
#include "sheets/sheetcontext.h"

#include <QImage>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QWidget>

#include <functional>
#include <memory>
#include <optional>

class QAction;
class QComboBox;
class QLabel;
class QPrinter;
class QScrollBar;
class QToolButton;

namespace app {

// A sheet the page window shows and prints: what the window calls it, its page size, and how
// to make its producer for a print factor (1 is true scale; below 1 when it is fitted to
// smaller paper, so that its title line can state the scale the paper really has).
struct PrintSheet {
  QString caption;
  QSize pageMm;
  // The name offered when the sheet is saved, without folder or extension.
  QString fileName;
  std::function<std::unique_ptr<drawing::SheetProducer>(double printFactor)> produce;
};

// How a sheet page larger than the paper is printed.
enum class PaperFit {
  TrueScale,   // the paper holds the page
  FitToPaper,  // the page shrunk to the paper, one sheet of paper per page
  Tile,        // the page at true scale over as many sheets of paper as it covers
};

// The page window: shows one page of a sheet at a time as a picture, with the two scroll bars
// and the print button in the corner between them, a tool row to move between pages, zoom,
// choose a scale and save the sheet, and prints the sheet by drawing it again on the printer.
class PrintForm : public QWidget, public sheets::WheelAware {
  Q_OBJECT

 public:
  enum class Zoom { FitPage, FitWidth, Actual };

  // Asks for the name of a file to write; the empty text when the user cancels.
  using SaveFileFunction =
      std::function<QString(QWidget* parent, const QString& caption, const QString& suggestedPath,
                            const QString& filter)>;
  // Asks how to print a page that the paper cannot hold at true scale; nullopt cancels.
  // pageMm and paperMm are the two sizes, factor the scale that fits the page to the paper.
  using PaperFitFunction = std::function<std::optional<PaperFit>(QWidget* parent, QSizeF pageMm,
                                                                 QSizeF paperMm, double factor)>;

  PrintForm(const sheets::SheetContext& context, PrintSheet sheet, QWidget* parent = nullptr);
  ~PrintForm() override;

  // Offers a choice of scales in the tool row; choosing one shows sheetAtScale(index) in place
  // of the sheet, on the same page number where it still exists.
  void setScaleChoice(const QStringList& labels, int current,
                      std::function<PrintSheet(int index)> sheetAtScale);
  // The folder offered when the sheet is saved.
  void setSaveFolder(const QString& folder) { m_saveFolder = folder; }
  void setSaveFileFunction(SaveFileFunction saveFile) { m_saveFile = std::move(saveFile); }
  void setPaperFitFunction(PaperFitFunction paperFit) { m_paperFit = std::move(paperFit); }

  const drawing::SheetProducer& producer() const { return *m_producer; }
  // Pages shown: at least one, an empty page when the sheet has none.
  int pageCount() const;
  int currentPage() const { return m_page; }  // 0-based
  void showPage(int page);
  Zoom zoom() const { return m_zoom; }
  void setZoom(Zoom zoom);
  // Fit width when that shows the page at three quarters of its size or more, else 100 %: the
  // zoom a sheet opens at, so that its 8-point labels can be read.
  void setReadableZoom();
  // The resolution the page is shown at.
  double pageDpi() const { return m_dpi; }
  // The picture of the current page, drawn when first asked for at the current resolution.
  const QImage& currentPageImage();

  // Prints the sheet: A4 in the page's orientation, the print dialog, then printOn.
  void PrintThis();
  // Sets printer up for the sheet: A4, portrait unless the page is wider than high, 300 dpi,
  // origin at the paper's corner, colour, one copy.
  void preparePrinter(QPrinter& printer) const;
  // Prints every page on printer as it is set up: at true scale when the paper holds the page,
  // else as the user chooses. False when nothing was printed (cancelled, or the printer could
  // not be started: the user has been told).
  bool printOn(QPrinter& printer);
  // Prints every page with the given fit. False when the printer could not be started.
  bool printSheet(QPrinter& printer, PaperFit fit);
  // The factor that shrinks a page to the paper of printer; 1 or more when it fits.
  double paperFactor(const QPrinter& printer) const;

  // Writes the sheet to path: every page for PDF, the current page for PNG and SVG. False when
  // it could not be written (the user has been told why).
  bool saveAs(const QString& path);
  // Asks where to save the sheet as extension ("pdf", "png" or "svg"), then saves it there.
  void askAndSave(const QString& extension);

  // sheets::WheelAware: scrolls the page one large change.
  void MouseWheel(int keys, int rotation, int x, int y) override;

  QScrollBar* HScroll1() const { return m_hScroll; }
  QScrollBar* VScroll1() const { return m_vScroll; }
  QWidget* pbGraph() const { return m_pbGraph; }
  QToolButton* Command1() const { return m_command1; }
  QLabel* pageCounter() const { return m_pageCounter; }

  // Room for a readable page when the window opens.
  QSize sizeHint() const override;

 protected:
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void createToolRow();
  void useSheet(PrintSheet sheet);
  void layOutPage();
  void updateDpi();
  void updatePageCounter();
  void scrollTo(QScrollBar* bar, int value);
  void message(const QString& text, sheets::MessageIcon icon);
  QSize pageMm() const;

  sheets::SheetContext m_context;
  PrintSheet m_sheet;
  std::unique_ptr<drawing::SheetProducer> m_producer;
  std::function<PrintSheet(int)> m_sheetAtScale;
  SaveFileFunction m_saveFile;
  PaperFitFunction m_paperFit;
  QString m_saveFolder;
  std::unique_ptr<QPrinter> m_printer;

  int m_page = 0;
  Zoom m_zoom = Zoom::FitWidth;
  double m_dpi = drawing::kScreenDpi;
  QImage m_image;
  int m_imagePage = -1;
  double m_imageDpi = 0.0;

  QWidget* m_viewport = nullptr;
  QWidget* m_pbGraph = nullptr;
  QScrollBar* m_hScroll = nullptr;
  QScrollBar* m_vScroll = nullptr;
  QToolButton* m_command1 = nullptr;
  QLabel* m_pageCounter = nullptr;
  QAction* m_previous = nullptr;
  QAction* m_next = nullptr;
  QComboBox* m_zoomBox = nullptr;
  QComboBox* m_scaleBox = nullptr;
  QAction* m_scaleAction = nullptr;

  sheets::WheelHook m_wheelHook;
};

}  // namespace app
