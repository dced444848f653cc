#pragma once

#include "engine/levelimport.h"
#include "engine/surveycsv.h"

#include <QDialog>
#include <QStringList>

#include <array>
#include <optional>

class QCheckBox;
class QComboBox;
class QLabel;
class QTableWidget;

namespace app {

// File > Import Levels...: shows the first lines of a survey file as they will be read, and lets
// the user choose the column of each field, the unit of plain chainages, the table to fill and
// whether its rows are replaced. The caller imports what the dialog read once it is accepted.
class ImportLevelsDialog : public QDialog {
  Q_OBJECT

 public:
  // fileName: shown to the user; lines: the file's lines; table: the table chosen at first.
  ImportLevelsDialog(const QString& fileName, const QStringList& lines, engine::LevelTable table,
                     QWidget* parent = nullptr);

  // The layout detected, with the user's columns.
  const engine::SurveyLayout& layout() const { return m_layout; }
  // The unit the user chose; nullopt to guess it from the values.
  std::optional<engine::ChainageUnit> unit() const;
  engine::LevelTable table() const;
  bool replace() const;
  // The whole file read with the current choices.
  const engine::SurveyRead& read() const { return m_read; }

  QComboBox* columnBox(engine::SurveyField field) const;
  QComboBox* unitBox() const { return m_unit; }
  QTableWidget* preview() const { return m_preview; }
  QLabel* summary() const { return m_summary; }

 private:
  // Reads the file again with the current choices and shows the result.
  void refresh();

  QStringList m_lines;
  engine::SurveyLayout m_layout;
  engine::SurveyRead m_read;
  std::array<QComboBox*, engine::kSurveyFieldCount> m_columns{};
  QComboBox* m_unit = nullptr;
  QLabel* m_unitRead = nullptr;
  QComboBox* m_table = nullptr;
  QCheckBox* m_replace = nullptr;
  QTableWidget* m_preview = nullptr;
  QLabel* m_summary = nullptr;
};

}  // namespace app
