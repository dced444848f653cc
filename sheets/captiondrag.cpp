#include "sheets/captiondrag.h"

#include <QEvent>
#include <QFrame>
#include <QLabel>
#include <QMouseEvent>
#include <QVBoxLayout>
#include <QWidget>

#include <cmath>

namespace sheets {

std::optional<QPointF> captionDragMove(QPointF anchorTwips, QPointF pointerTwips) {
  const QPointF offset = pointerTwips - anchorTwips;
  if (std::abs(offset.x()) > kCaptionDragThresholdTwips ||
      std::abs(offset.y()) > kCaptionDragThresholdTwips)
    return offset;
  return std::nullopt;
}

CaptionDrag::CaptionDrag(QWidget* caption) : QObject(caption), m_caption(caption) {
  caption->installEventFilter(this);
}

QPointF CaptionDrag::toTwips(QPointF pixels) const {
  return {pixels.x() * 1440.0 / m_caption->logicalDpiX(),
          pixels.y() * 1440.0 / m_caption->logicalDpiY()};
}

bool CaptionDrag::eventFilter(QObject* watched, QEvent* event) {
  if (watched != m_caption) return false;
  switch (event->type()) {
    case QEvent::MouseButtonPress: {
      const auto* mouse = static_cast<const QMouseEvent*>(event);
      if (mouse->button() != Qt::LeftButton) break;
      m_anchorTwips = toTwips(mouse->position());
      m_dragging = true;
      return true;
    }
    case QEvent::MouseMove: {
      if (!m_dragging) break;
      const auto* mouse = static_cast<const QMouseEvent*>(event);
      if (const auto move = captionDragMove(m_anchorTwips, toTwips(mouse->position()))) {
        // Back to whole pixels; the anchor stays, as the caption has moved under the pointer.
        const QPoint pixels(
            static_cast<int>(std::lround(move->x() * m_caption->logicalDpiX() / 1440.0)),
            static_cast<int>(std::lround(move->y() * m_caption->logicalDpiY() / 1440.0)));
        QWidget* dialog = m_caption->window();
        dialog->move(dialog->pos() + pixels);
      }
      return true;
    }
    case QEvent::MouseButtonRelease:
      if (!m_dragging) break;
      m_dragging = false;
      return true;
    default:
      break;
  }
  return false;
}

QLabel* newCaptionBar(const QString& text, CaptionColours colours, QWidget* parent) {
  auto* caption = new QLabel(text, parent);
  caption->setObjectName(QStringLiteral("wnTitle"));
  caption->setAutoFillBackground(true);
  switch (colours) {
    case CaptionColours::Highlight: {
      QPalette captionColours = caption->palette();
      captionColours.setColor(QPalette::Window, captionColours.color(QPalette::Highlight));
      captionColours.setColor(QPalette::WindowText,
                              captionColours.color(QPalette::HighlightedText));
      caption->setPalette(captionColours);
      caption->setMinimumHeight(20);
      break;
    }
    case CaptionColours::Navy:
      caption->setStyleSheet(
          QStringLiteral("QLabel { background: rgb(0, 0, 128); color: white; padding: 3px; }"));
      break;
  }
  new CaptionDrag(caption);
  return caption;
}

QFrame* addBoxFrame(QWidget* window) {
  auto* frame = new QFrame(window);
  frame->setFrameShape(QFrame::Box);
  auto* outer = new QVBoxLayout(window);
  outer->setContentsMargins(0, 0, 0, 0);
  outer->addWidget(frame);
  return frame;
}

}  // namespace sheets
