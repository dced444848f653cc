#pragma once

#include "drawing/typicalsection.h"
#include "sheets/mousewheel.h"
#include "sheets/sheetcontext.h"

#include <QImage>
#include <QString>
#include <QWidget>

#include <functional>
#include <memory>

class QLabel;
class QScrollBar;
class QToolButton;

namespace app {

// The folder of the typical-section pictures that the build copies beside the program.
QString modelsFolder();

// The picture of the design's typical section, shown beside its design details: the design's
// picture file in the Models folder, scrolled by two flat bars when it is larger than the
// window. A design without a picture file is drawn from its formulas instead, and that drawing
// can be saved for the Models folder.
class frmTypicalSection : public QWidget, public sheets::WheelAware {
  Q_OBJECT

 public:
  // Asks for the name of a file to write; the empty text when the user cancels.
  using SaveFileFunction =
      std::function<QString(QWidget* parent, const QString& caption, const QString& suggestedPath,
                            const QString& filter)>;

  // Loads the picture at once: the design's name from the project of context, its file from
  // folder.
  frmTypicalSection(const sheets::SheetContext& context, const QString& folder,
                    QWidget* parent = nullptr);
  ~frmTypicalSection() override;

  void setSaveFileFunction(SaveFileFunction saveFile) { m_saveFile = std::move(saveFile); }

  // Whether the picture is the drawing made from the design, for want of a picture file.
  bool showsDrawing() const { return m_drawing != nullptr; }
  // Writes the drawing made from the design to path as a PNG picture (".png" is added to a
  // name without it). False when there is no drawing or it could not be written (the user has
  // been told why).
  bool saveDrawing(QString path);
  // Asks where to save the drawing, offering the Models folder, then saves it there.
  void askAndSaveDrawing();

  // sheets::WheelAware: scrolls the picture sideways by one large change, never up or down.
  void MouseWheel(int keys, int rotation, int x, int y) override;

  QLabel* Image1() const { return m_image1; }
  QScrollBar* fsbHorizontal() const { return m_fsbHorizontal; }
  QScrollBar* fsbVertical() const { return m_fsbVertical; }
  QLabel* lblErrorText() const { return m_lblErrorText; }
  // The line above a drawing that says no picture file exists, and its save button.
  QLabel* noteLabel() const { return m_note; }
  QToolButton* saveButton() const { return m_saveButton; }

  QSize sizeHint() const override;

 protected:
  void wheelEvent(QWheelEvent* event) override;
  void closeEvent(QCloseEvent* event) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void load();
  bool drawFromDesign(db::Connection& connection);
  void showPicture(const QImage& picture);
  void showError(const QString& text);
  void layOutPicture();
  void message(const QString& text, sheets::MessageIcon icon);

  sheets::SheetContext m_context;
  QString m_folder;
  QString m_designName;
  std::unique_ptr<drawing::TypicalSectionSheet> m_drawing;
  SaveFileFunction m_saveFile;

  QWidget* m_noteRow = nullptr;
  QLabel* m_note = nullptr;
  QToolButton* m_saveButton = nullptr;
  QWidget* m_viewport = nullptr;
  QLabel* m_image1 = nullptr;
  QScrollBar* m_fsbHorizontal = nullptr;
  QScrollBar* m_fsbVertical = nullptr;
  QLabel* m_lblErrorText = nullptr;

  sheets::WheelHook m_wheelHook;
};

}  // namespace app
