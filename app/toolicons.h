#pragma once

#include <QIcon>
#include <QString>

namespace app {

// The pictures of the tool bar buttons, drawn at start so that the program carries no image
// files. key: a button key of tbToolBar ("Open", "Save", "Print", "Packages", "Cut", "Copy",
// "Paste", "Undo", "Find", "Help", "Add", "Delete") or of tbBlockBar ("Profile",
// "DesignLevels", "InitialLevels", "InitialSet", "Lsection", "Xsection", "QuantityReport").
// An unknown key gives a null icon.
QIcon toolIcon(const QString& key);

}  // namespace app
