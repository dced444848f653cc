#pragma once

#include <QSettings>

#include <cstdint>

namespace app {

// The user settings, one field per key of the "Settings" group, with their defaults. Window
// coordinates are in twips (1/1440 inch).
struct Settings {
  float MainLeft = 1000;
  float MainTop = 1000;
  float MainWidth = 6500;
  float MainHeight = 6500;
  bool AutoSave = true;
  bool EnterRight = false;
  std::int16_t MaxReadings = 15;
  std::int16_t MinorScale = 20;
  std::int16_t BranchScale = 8;
  bool QtyBifurcate = true;
  bool DisplayQtyXSection = true;
  bool FixedDatum = false;
  std::int16_t FixedDatumVal = 0;
  std::int16_t LSectionScale = 100;
  std::int16_t MetersPerPage = 1000;
};

// Reads every key of the "Settings" group in the order above; a missing key or one whose text
// does not convert yields the default (and the next save writes the default back).
void LoadSettings(QSettings& store, Settings& settings);
// Writes every key as text: "True"/"False", decimal integers, a single's text.
void SaveSettings(QSettings& store, const Settings& settings);

}  // namespace app
