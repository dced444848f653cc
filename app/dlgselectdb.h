#pragma once

#include "db/connection.h"

#include <QDialog>
#include <QString>

#include <memory>

class QLabel;
class QListWidget;
class QPushButton;

namespace app {

class DesktopReporter;

// The project-file chooser: lists the project files of the data folder and opens the one the
// user picks. A file that cannot be opened as a project keeps the chooser open with a message
// naming the file and the reason. Borderless; its caption bar drags it.
class dlgSelectDB : public QDialog {
  Q_OBJECT

 public:
  // folder: the data folder, ending with '/'. Messages go through reporter's message box.
  dlgSelectDB(const QString& folder, DesktopReporter& reporter, QWidget* parent = nullptr);
  ~dlgSelectDB() override;

  // Re-reads the "*.delvane" files of the data folder into File1.
  void refreshList();
  // Opens path as a project; on success remembers it and closes the dialog (accepted),
  // otherwise tells the user why and stays open. Returns whether it opened.
  bool openFile(const QString& path);
  // Creates an empty project at path, lists it when it lies in the data folder, and opens it.
  bool createFile(const QString& path);

  // After the dialog was accepted: the chosen file and its open connection.
  const QString& strDatabasePath() const { return m_strDatabasePath; }
  std::unique_ptr<db::Connection> takeConnection();

  QLabel* wnTitle() const { return m_wnTitle; }
  QListWidget* File1() const { return m_file1; }
  QPushButton* cmdSelect() const { return m_cmdSelect; }
  QPushButton* cmdCancel() const { return m_cmdCancel; }
  QPushButton* cmdBrowse() const { return m_cmdBrowse; }
  QPushButton* cmdNew() const { return m_cmdNew; }

 private:
  void selectClicked();
  void browseClicked();
  void newClicked();

  QString m_folder;
  DesktopReporter& m_reporter;
  QString m_strDatabasePath;
  std::unique_ptr<db::Connection> m_connection;
  QLabel* m_wnTitle;
  QListWidget* m_file1;
  QPushButton* m_cmdSelect;
  QPushButton* m_cmdCancel;
  QPushButton* m_cmdBrowse;
  QPushButton* m_cmdNew;
};

}  // namespace app
