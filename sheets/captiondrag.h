#pragma once

#include <QObject>
#include <QPointF>

#include <optional>

class QFrame;
class QLabel;
class QString;
class QWidget;

namespace sheets {

// How far (twips) the pointer must leave the anchor, in x or y, before a drag moves the dialog;
// keeps a click on the caption from moving it.
inline constexpr double kCaptionDragThresholdTwips = 30;

// The move a caption-bar drag makes, in twips: nothing while the pointer stays within the
// threshold of the anchor in both x and y, otherwise the pointer's offset from the anchor.
std::optional<QPointF> captionDragMove(QPointF anchorTwips, QPointF pointerTwips);

// Lets the user drag a borderless dialog by its caption control: mouse down anchors, a move
// beyond the threshold moves the dialog by the difference (the anchor stays), mouse up stops.
// Parented to the caption, so it lives as long as the caption does.
class CaptionDrag : public QObject {
  Q_OBJECT

 public:
  // caption: the caption control; the dialog moved is caption->window().
  explicit CaptionDrag(QWidget* caption);

  bool dragging() const { return m_dragging; }

 protected:
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  QPointF toTwips(QPointF pixels) const;

  QWidget* m_caption;
  QPointF m_anchorTwips;
  bool m_dragging = false;
};

// The colours of a caption bar: the system's highlight colours, or white on navy.
enum class CaptionColours { Highlight, Navy };

// The caption bar of a borderless dialog: a label named "wnTitle" showing text in the given
// colours, which drags its window (see CaptionDrag). The caller places it in its layout.
QLabel* newCaptionBar(const QString& text, CaptionColours colours, QWidget* parent);

// The box frame of a borderless window: a QFrame filling the window, edge to edge; the window's
// content goes inside it.
QFrame* addBoxFrame(QWidget* window);

}  // namespace sheets
