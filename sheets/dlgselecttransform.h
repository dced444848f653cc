#pragma once

#include <QDialog>

#include <cstdint>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace sheets {

// The operation and operand of a value transform, as the dialog hands them to the sheet.
struct TransformRequest {
  enum Operation : std::int16_t { Cancelled = -1, Set = 0, Add = 1, Subtract = 2, Multiply = 3 };
  std::int16_t operation = Cancelled;
  float value = 0;
};

// Asks which transform to apply to the highlighted cells and with what value. Borderless, with
// its own draggable caption bar.
class dlgSelectTransform : public QDialog {
  Q_OBJECT

 public:
  explicit dlgSelectTransform(QWidget* parent = nullptr);

  // What the user chose; operation Cancelled until OK is pressed.
  TransformRequest request() const { return m_request; }

 private:
  void onOk();
  void onCancel();

  QLabel* m_wnTitle = nullptr;
  QComboBox* m_cmbTransformation = nullptr;
  QLineEdit* m_txtValue = nullptr;
  QPushButton* m_okButton = nullptr;
  QPushButton* m_cancelButton = nullptr;
  TransformRequest m_request;
};

// Shows the dialog modally over parent and returns the request (operation Cancelled when the
// user cancelled or closed it).
TransformRequest askTransform(QWidget* parent);

}  // namespace sheets
