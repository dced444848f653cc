#pragma once

#include <QRect>

class QPainter;

namespace sheets {

// A child window that draws itself for File > Print. Windows that do not implement it are
// printed as their screen image.
class Printable {
 public:
  virtual ~Printable() = default;
  // Draws the window's content onto the printer's painter, starting new pages on the painter's
  // device as needed. page: the printable area of one page, in device pixels.
  virtual void printTo(QPainter& painter, const QRect& page) = 0;
};

}  // namespace sheets
