#include "app/dlgselectdb.h"

#include "app/desktopreporter.h"
#include "db/project.h"
#include "sheets/captiondrag.h"

#include <QDir>
#include <QFileDialog>
#include <QFileInfo>
#include <QFrame>
#include <QHBoxLayout>
#include <QLabel>
#include <QListWidget>
#include <QPushButton>
#include <QVBoxLayout>

namespace app {

namespace {

const QString kProjectPattern = QStringLiteral("*.delvane");
const QString kProjectFilter = QStringLiteral("Delvane projects (*.delvane)");

}  // namespace

dlgSelectDB::dlgSelectDB(const QString& folder, DesktopReporter& reporter, QWidget* parent)
    : QDialog(parent, Qt::Dialog | Qt::FramelessWindowHint),
      m_folder(folder),
      m_reporter(reporter) {
  setObjectName(QStringLiteral("dlgSelectDB"));
  setWindowTitle(QStringLiteral("Select DB"));

  QFrame* frame = sheets::addBoxFrame(this);
  m_wnTitle =
      sheets::newCaptionBar(QStringLiteral(" Select DB"), sheets::CaptionColours::Highlight, frame);

  m_file1 = new QListWidget(frame);
  m_file1->setObjectName(QStringLiteral("File1"));
  m_file1->setSelectionMode(QAbstractItemView::SingleSelection);
  connect(m_file1, &QListWidget::itemDoubleClicked, this, [this] { selectClicked(); });

  m_cmdSelect = new QPushButton(QStringLiteral("&Select"), frame);
  m_cmdSelect->setObjectName(QStringLiteral("cmdSelect"));
  m_cmdSelect->setDefault(true);
  m_cmdSelect->setAutoDefault(true);
  m_cmdCancel = new QPushButton(QStringLiteral("&Cancel"), frame);
  m_cmdCancel->setObjectName(QStringLiteral("cmdCancel"));
  m_cmdCancel->setAutoDefault(false);
  m_cmdBrowse = new QPushButton(QStringLiteral("&Browse..."), frame);
  m_cmdBrowse->setObjectName(QStringLiteral("cmdBrowse"));
  m_cmdBrowse->setAutoDefault(false);
  m_cmdNew = new QPushButton(QStringLiteral("&New..."), frame);
  m_cmdNew->setObjectName(QStringLiteral("cmdNew"));
  m_cmdNew->setAutoDefault(false);
  connect(m_cmdSelect, &QPushButton::clicked, this, [this] { selectClicked(); });
  connect(m_cmdCancel, &QPushButton::clicked, this, &QDialog::reject);
  connect(m_cmdBrowse, &QPushButton::clicked, this, [this] { browseClicked(); });
  connect(m_cmdNew, &QPushButton::clicked, this, [this] { newClicked(); });

  auto* buttons = new QVBoxLayout;
  buttons->addWidget(m_cmdSelect);
  buttons->addWidget(m_cmdCancel);
  buttons->addSpacing(12);
  buttons->addWidget(m_cmdBrowse);
  buttons->addWidget(m_cmdNew);
  buttons->addStretch(1);
  auto* body = new QHBoxLayout;
  body->setContentsMargins(8, 8, 8, 8);
  body->addWidget(m_file1, 1);
  body->addLayout(buttons);
  auto* layout = new QVBoxLayout(frame);
  layout->setContentsMargins(1, 1, 1, 1);
  layout->setSpacing(0);
  layout->addWidget(m_wnTitle);
  layout->addLayout(body, 1);

  resize(400, 260);
  refreshList();
}

dlgSelectDB::~dlgSelectDB() = default;

void dlgSelectDB::refreshList() {
  const QString current = m_file1->currentItem() ? m_file1->currentItem()->text() : QString();
  m_file1->clear();
  const QStringList names =
      QDir(m_folder).entryList({kProjectPattern}, QDir::Files, QDir::Name | QDir::IgnoreCase);
  m_file1->addItems(names);
  const auto matches = m_file1->findItems(current, Qt::MatchExactly);
  if (!current.isEmpty() && !matches.isEmpty())
    m_file1->setCurrentItem(matches.first());
  else if (m_file1->count() > 0)
    m_file1->setCurrentRow(0);  // Enter opens the first project at once
}

bool dlgSelectDB::openFile(const QString& path) {
  try {
    m_connection = db::openProject(path);
  } catch (const db::Error& e) {
    m_reporter.messageBox(this, e.message(), engine::Reporter::Icon::Exclamation);
    return false;
  }
  m_strDatabasePath = path;
  accept();
  return true;
}

bool dlgSelectDB::createFile(const QString& path) {
  try {
    db::createProject(path, false);
  } catch (const db::Error& e) {
    m_reporter.messageBox(this, e.message(), engine::Reporter::Icon::Exclamation);
    return false;
  }
  refreshList();
  const QFileInfo created(path);
  if (QDir(created.absolutePath()) == QDir(m_folder)) {
    const auto matches = m_file1->findItems(created.fileName(), Qt::MatchExactly);
    if (!matches.isEmpty()) m_file1->setCurrentItem(matches.first());
  }
  return openFile(path);
}

std::unique_ptr<db::Connection> dlgSelectDB::takeConnection() { return std::move(m_connection); }

void dlgSelectDB::selectClicked() {
  const QListWidgetItem* item = m_file1->currentItem();
  if (!item || !item->isSelected()) {
    m_reporter.messageBox(this,
                          QStringLiteral("Select a project file from the list, or press Cancel."),
                          engine::Reporter::Icon::Information);
    return;
  }
  openFile(m_folder + item->text());
}

void dlgSelectDB::browseClicked() {
  const QString path = QFileDialog::getOpenFileName(this, QStringLiteral("Open Project File"),
                                                    m_folder, kProjectFilter);
  if (!path.isEmpty()) openFile(path);
}

void dlgSelectDB::newClicked() {
  QString path = QFileDialog::getSaveFileName(this, QStringLiteral("New Project File"), m_folder,
                                              kProjectFilter);
  if (path.isEmpty()) return;
  if (QFileInfo(path).suffix().isEmpty()) path += QStringLiteral(".delvane");
  createFile(path);
}

}  // namespace app
