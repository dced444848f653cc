#pragma once

#include <QString>

#include <functional>
#include <memory>

class QWidget;

namespace db {
class Connection;
}

namespace app {

struct AppState;

// The folder the chooser lists: the program's folder + "/Data/" when that folder exists,
// otherwise the per-user application data folder + "/Data/", created when missing. Ends
// with '/'.
QString dataFolder();

// Writes the demo project into folder (ending with '/') when the folder holds no project file.
// Throws db::Error when it cannot be written.
void ensureDemoProject(const QString& folder);

enum class OpenResult {
  Opened,     // the new project is open and its design profile loaded
  Cancelled,  // the user cancelled; nothing changed
  Refused,    // the file holds no usable design profile (the user has been told); the caller
              // ends the program
};

// Lets the user choose a project file in the data folder and opens it: on success the state
// holds the new connection and engine session (the old ones are closed), the path, and no
// current package or section. At start-up the demo project is first written into an empty
// data folder. On Refused the refused file's connection is already closed and the state
// still holds the previous project, if any. beforeReplacing runs once the new project is
// accepted and while the previous one is still open: the place to close windows that use it.
// When it returns false (the user chose to keep a window), the new file is closed again and the
// result is Cancelled.
OpenResult OpenDatabase(AppState& state, QWidget* parent, bool atStartup,
                        const std::function<bool()>& beforeReplacing = {});

// The same for a file already open: checks its design profile and makes it the state's
// project. Used by OpenDatabase and by tests.
OpenResult adoptProject(AppState& state, std::unique_ptr<db::Connection> connection,
                        const QString& path, const std::function<bool()>& beforeReplacing = {});

}  // namespace app
