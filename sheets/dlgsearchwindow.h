#pragma once

#include <QStringList>
#include <QWidget>

#include <functional>

class QComboBox;
class QLabel;
class QLineEdit;
class QPushButton;

namespace sheets {

// The filter builder: an always-on-top window in which the user joins field, condition and
// value terms with AND or OR into a row filter and applies it to the active data sheet.
class dlgSearchWindow : public QWidget {
  Q_OBJECT

 public:
  // Applies a filter text to the active sheet (its FilterData); the empty text removes it.
  using FilterFunction = std::function<void(const QString&)>;

  explicit dlgSearchWindow(QWidget* parent = nullptr);

  // The column headers of the active sheet, in column order, offered in cmbField.
  void setFields(const QStringList& headers);
  void setFilterFunction(FilterFunction filterData) { m_filterData = std::move(filterData); }
  // Called whenever the window closes, however it is closed: the main window unchecks
  // mnuViewDetail there.
  void setClosedHandler(std::function<void()> closed) { m_closed = std::move(closed); }

  // The filter text built so far (lblSearchText).
  QString searchText() const;

  // One term of the filter text: [field] condition 'value', with the value between '%' for LIKE.
  static QString filterTerm(const QString& field, const QString& condition, const QString& value);

 protected:
  void closeEvent(QCloseEvent* event) override;

 private:
  enum class Join { And, Or, Done };

  void updateEnabling();
  void appendTerm(Join join);
  void clearFilter();

  QComboBox* m_cmbField = nullptr;
  QComboBox* m_cmbCondition = nullptr;
  QLineEdit* m_txtValue = nullptr;
  QPushButton* m_cmdAND = nullptr;
  QPushButton* m_cmdOR = nullptr;
  QPushButton* m_cmdExecute = nullptr;
  QPushButton* m_cmdClear = nullptr;
  QLabel* m_wnTitle = nullptr;
  QLabel* m_lblSearchText = nullptr;
  FilterFunction m_filterData;
  std::function<void()> m_closed;
};

}  // namespace sheets
