#include "app/importlevelsdialog.h"

#include "db/numbers.h"
#include "engine/numberformat.h"

#include <QCheckBox>
#include <QComboBox>
#include <QDialogButtonBox>
#include <QFormLayout>
#include <QHBoxLayout>
#include <QHeaderView>
#include <QLabel>
#include <QPushButton>
#include <QTableWidget>
#include <QVBoxLayout>

#include <algorithm>

namespace app {

namespace {

// Lines of the file shown in the preview: enough to see a cross-section or two.
constexpr int kPreviewLines = 20;

enum PreviewColumn { kLine, kChainage, kOffset, kLevel, kCode, kProblem, kPreviewColumns };

QString delimiterText(QChar delimiter) {
  if (delimiter == QLatin1Char('\t')) return QStringLiteral("tabs");
  if (delimiter == QLatin1Char(' ')) return QStringLiteral("spaces");
  if (delimiter == QLatin1Char(';')) return QStringLiteral("semicolons");
  return QStringLiteral("commas");
}

QString countText(std::size_t count) { return engine::formatNumber(static_cast<double>(count), 0); }

QString readingsText(std::size_t count) {
  return count == 1 ? QStringLiteral("1 reading") : countText(count) + QStringLiteral(" readings");
}

}  // namespace

ImportLevelsDialog::ImportLevelsDialog(const QString& fileName, const QStringList& lines,
                                       engine::LevelTable table, QWidget* parent)
    : QDialog(parent), m_lines(lines), m_layout(engine::detectSurveyLayout(lines)) {
  setObjectName(QStringLiteral("ImportLevelsDialog"));
  setWindowTitle(QStringLiteral("Import Levels"));

  auto* about =
      new QLabel(QStringLiteral("%1: fields separated by %2, %3.")
                     .arg(fileName, delimiterText(m_layout.delimiter),
                          m_layout.headerLine > 0
                              ? QStringLiteral("column names on line %1").arg(m_layout.headerLine)
                              : QStringLiteral("no line of column names")),
                 this);
  about->setObjectName(QStringLiteral("lblFile"));

  auto* form = new QFormLayout;
  for (int f = 0; f < engine::kSurveyFieldCount; ++f) {
    const auto field = static_cast<engine::SurveyField>(f);
    auto* box = new QComboBox(this);
    QString name = engine::surveyFieldName(field);
    box->setObjectName(QStringLiteral("cbo") + name);
    if (field == engine::SurveyField::Code) box->addItem(QStringLiteral("(none)"), -1);
    for (int column = 0; column < m_layout.columnCount; ++column)
      box->addItem(QStringLiteral("%1: %2").arg(column + 1).arg(m_layout.columnTitle(column)),
                   column);
    // A column the header does not name stays unchosen until the user picks one.
    box->setCurrentIndex(box->findData(m_layout.columns[f]));
    connect(box, &QComboBox::currentIndexChanged, this, [this, field, box] {
      m_layout.setColumn(field, box->currentIndex() < 0 ? -1 : box->currentData().toInt());
      refresh();
    });
    m_columns[f] = box;
    name[0] = name[0].toUpper();
    form->addRow(name + (field == engine::SurveyField::Code ? QStringLiteral(" (not stored):")
                                                            : QStringLiteral(":")),
                 box);
  }

  m_unit = new QComboBox(this);
  m_unit->setObjectName(QStringLiteral("cboUnit"));
  m_unit->addItem(QStringLiteral("Guess from the values"), -1);
  m_unit->addItem(QStringLiteral("Kilometres"), static_cast<int>(engine::ChainageUnit::Kilometres));
  m_unit->addItem(QStringLiteral("Metres"), static_cast<int>(engine::ChainageUnit::Metres));
  connect(m_unit, &QComboBox::currentIndexChanged, this, &ImportLevelsDialog::refresh);
  m_unitRead = new QLabel(this);
  m_unitRead->setObjectName(QStringLiteral("lblUnitRead"));
  auto* unitRow = new QHBoxLayout;
  unitRow->addWidget(m_unit);
  unitRow->addWidget(m_unitRead, 1);
  form->addRow(QStringLiteral("Plain chainages in:"), unitRow);

  m_table = new QComboBox(this);
  m_table->setObjectName(QStringLiteral("cboTable"));
  for (engine::LevelTable t : {engine::LevelTable::Initial, engine::LevelTable::Executed})
    m_table->addItem(engine::levelTableName(t) + QStringLiteral(" levels"), static_cast<int>(t));
  m_table->setCurrentIndex(m_table->findData(static_cast<int>(table)));
  form->addRow(QStringLiteral("Add the readings to:"), m_table);
  m_replace =
      new QCheckBox(QStringLiteral("Delete the section's levels of this table first"), this);
  m_replace->setObjectName(QStringLiteral("chkReplace"));
  form->addRow(QString(), m_replace);

  m_preview = new QTableWidget(0, kPreviewColumns, this);
  m_preview->setObjectName(QStringLiteral("grdPreview"));
  m_preview->setHorizontalHeaderLabels({QStringLiteral("Line"), QStringLiteral("Chainage (km)"),
                                        QStringLiteral("Offset"), QStringLiteral("Level"),
                                        QStringLiteral("Code"), QStringLiteral("Problem")});
  m_preview->verticalHeader()->hide();
  m_preview->verticalHeader()->setDefaultSectionSize(fontMetrics().height() + 6);
  m_preview->setEditTriggers(QAbstractItemView::NoEditTriggers);
  m_preview->horizontalHeader()->setStretchLastSection(true);
  m_preview->setMinimumSize(640, 320);

  m_summary = new QLabel(this);
  m_summary->setObjectName(QStringLiteral("lblSummary"));
  m_summary->setWordWrap(true);

  auto* buttons = new QDialogButtonBox(QDialogButtonBox::Cancel, this);
  QPushButton* import = buttons->addButton(QStringLiteral("&Import"), QDialogButtonBox::AcceptRole);
  import->setObjectName(QStringLiteral("cmdImport"));
  import->setDefault(true);
  connect(buttons, &QDialogButtonBox::accepted, this, &QDialog::accept);
  connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);

  auto* layout = new QVBoxLayout(this);
  layout->addWidget(about);
  layout->addLayout(form);
  layout->addWidget(m_preview, 1);
  layout->addWidget(m_summary);
  layout->addWidget(buttons);
  refresh();
}

std::optional<engine::ChainageUnit> ImportLevelsDialog::unit() const {
  const int chosen = m_unit->currentData().toInt();
  if (chosen < 0) return std::nullopt;
  return static_cast<engine::ChainageUnit>(chosen);
}

engine::LevelTable ImportLevelsDialog::table() const {
  return static_cast<engine::LevelTable>(m_table->currentData().toInt());
}

bool ImportLevelsDialog::replace() const { return m_replace->isChecked(); }

QComboBox* ImportLevelsDialog::columnBox(engine::SurveyField field) const {
  return m_columns[static_cast<int>(field)];
}

void ImportLevelsDialog::refresh() {
  m_read = engine::readSurvey(m_lines, m_layout, unit());
  const QString unitName = m_read.unit == engine::ChainageUnit::Metres
                               ? QStringLiteral("metres")
                               : QStringLiteral("kilometres");
  m_unitRead->setText(m_read.unitGuessed ? QStringLiteral("read as ") + unitName : QString());

  // The first lines in file order, read or refused.
  struct Shown {
    int line;
    const engine::SurveyReading* reading;
    const engine::SurveyProblem* problem;
  };
  std::vector<Shown> shown;
  for (std::size_t i = 0; i < m_read.readings.size() && i < kPreviewLines; ++i)
    shown.push_back({m_read.readings[i].line, &m_read.readings[i], nullptr});
  for (std::size_t i = 0; i < m_read.problems.size() && i < kPreviewLines; ++i)
    shown.push_back({m_read.problems[i].line, nullptr, &m_read.problems[i]});
  std::sort(shown.begin(), shown.end(),
            [](const Shown& a, const Shown& b) { return a.line < b.line; });
  if (shown.size() > kPreviewLines) shown.resize(kPreviewLines);

  m_preview->setRowCount(static_cast<int>(shown.size()));
  for (int row = 0; row < static_cast<int>(shown.size()); ++row) {
    const Shown& s = shown[row];
    QString cells[kPreviewColumns];
    cells[kLine] = QString::number(s.line);
    if (s.reading) {
      cells[kChainage] = db::floatText(s.reading->chainage);
      cells[kOffset] = db::floatText(s.reading->offset);
      cells[kLevel] = db::floatText(s.reading->level);
      cells[kCode] = s.reading->code;
    } else {
      cells[kProblem] = s.problem->column < 0
                            ? s.problem->message
                            : engine::surveyColumnText(m_layout, s.problem->column) +
                                  QStringLiteral(": ") + s.problem->message;
    }
    for (int column = 0; column < kPreviewColumns; ++column) {
      auto* item = new QTableWidgetItem(cells[column]);
      item->setToolTip(s.problem ? cells[kProblem] + QLatin1Char('\n') + m_lines.value(s.line - 1)
                                 : m_lines.value(s.line - 1));
      if (s.problem) item->setForeground(QColor(192, 0, 0));
      if (column != kCode && column != kProblem)
        item->setTextAlignment(Qt::AlignRight | Qt::AlignVCenter);
      m_preview->setItem(row, column, item);
    }
  }
  m_preview->resizeColumnsToContents();

  QString summary = readingsText(m_read.readings.size()) + QStringLiteral(" will be imported.");
  if (!m_read.problems.empty())
    summary = QStringLiteral(
                  "%1 read; %2, the first on line %3. Nothing is imported until every "
                  "line reads.")
                  .arg(readingsText(m_read.readings.size()),
                       m_read.problems.size() == 1 ? QStringLiteral("1 line has a problem")
                                                   : countText(m_read.problems.size()) +
                                                         QStringLiteral(" lines have problems"))
                  .arg(m_read.problems.front().line);
  m_summary->setText(summary);
}

}  // namespace app
