#pragma once

#include "app/settings.h"
#include "db/connection.h"
#include "engine/session.h"

#include <QString>

#include <cstdint>
#include <memory>

namespace sheets {
class MouseWheelModule;
}

namespace app {

class DesktopReporter;

// The program's one global state: the open project, the user's selection and the settings.
// Created at start-up and passed to the windows that need it; nothing else is global.
struct AppState {
  std::unique_ptr<db::Connection> cnProject;
  QString strDatabasePath;
  std::int32_t lngPackageID = 0;
  std::int32_t lngSectionID = 0;
  QString strPackageName;
  QString strSectionDescription;
  Settings settings;

  // How the engine reports on the desktop (error list, progress window, message boxes, status
  // bar), and the engine's state for the open project.
  DesktopReporter* reporter = nullptr;
  std::unique_ptr<engine::EngineSession> engine;

  // The mouse-wheel forwarding; wheel-aware windows hook themselves to it while active.
  sheets::MouseWheelModule* mouseWheel = nullptr;
};

}  // namespace app
