#include "sheets/sheetcontext.h"

#include <QMessageBox>

namespace sheets {

namespace {

QMessageBox::Icon boxIcon(MessageIcon icon) {
  switch (icon) {
    case MessageIcon::Information:
      return QMessageBox::Information;
    case MessageIcon::Warning:
      return QMessageBox::Warning;
    case MessageIcon::Question:
      return QMessageBox::Question;
    case MessageIcon::Critical:
      return QMessageBox::Critical;
  }
  return QMessageBox::NoIcon;
}

QMessageBox::StandardButtons boxButtons(MessageButtons buttons) {
  switch (buttons) {
    case MessageButtons::Ok:
      return QMessageBox::Ok;
    case MessageButtons::YesNo:
      return QMessageBox::Yes | QMessageBox::No;
    case MessageButtons::YesNoCancel:
      return QMessageBox::Yes | QMessageBox::No | QMessageBox::Cancel;
  }
  return QMessageBox::Ok;
}

MessageAnswer showMessageBox(QWidget* parent, const QString& text, const QString& title,
                             MessageButtons buttons, MessageIcon icon) {
  QMessageBox box(boxIcon(icon), title, text, boxButtons(buttons), parent);
  switch (box.exec()) {
    case QMessageBox::Yes:
      return MessageAnswer::Yes;
    case QMessageBox::No:
      return MessageAnswer::No;
    case QMessageBox::Cancel:
      return MessageAnswer::Cancel;
    default:
      // Escape on a Yes/No box counts as No, on a Yes/No/Cancel box as Cancel.
      if (buttons == MessageButtons::YesNoCancel) return MessageAnswer::Cancel;
      if (buttons == MessageButtons::YesNo) return MessageAnswer::No;
      return MessageAnswer::Ok;
  }
}

}  // namespace

MessageAnswer SheetContext::ask(QWidget* parent, const QString& text, const QString& title,
                                MessageButtons buttons, MessageIcon icon) const {
  if (message) return message(parent, text, title, buttons, icon);
  return showMessageBox(parent, text, title, buttons, icon);
}

void SheetContext::warn(QWidget* parent, const QString& text) const {
  ask(parent, text, QStringLiteral("Delvane"), MessageButtons::Ok, MessageIcon::Warning);
}

}  // namespace sheets
