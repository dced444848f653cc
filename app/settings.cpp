#include "app/settings.h"

#include "db/numbers.h"

#include <QString>

#include <cmath>
#include <limits>

namespace app {

namespace {

const QString kGroup = QStringLiteral("Settings");

// The stored text of key, or a null string when the key is missing or holds no single text.
QString storedText(QSettings& store, const QString& key) {
  const QVariant value = store.value(key);
  if (!value.isValid() || !value.canConvert<QString>()) return {};
  return value.toString().trimmed();
}

void readBool(QSettings& store, const QString& key, bool& target) {
  const QString text = storedText(store, key);
  if (text.compare(QLatin1String("True"), Qt::CaseInsensitive) == 0) {
    target = true;
    return;
  }
  if (text.compare(QLatin1String("False"), Qt::CaseInsensitive) == 0) {
    target = false;
    return;
  }
  // A number counts as a boolean the classic way: 0 is False, anything else True.
  bool ok = false;
  const int number = text.toInt(&ok);
  if (ok) target = number != 0;
}

void readInt16(QSettings& store, const QString& key, std::int16_t& target) {
  bool ok = false;
  const int number = storedText(store, key).toInt(&ok);
  if (ok && number >= std::numeric_limits<std::int16_t>::min() &&
      number <= std::numeric_limits<std::int16_t>::max())
    target = static_cast<std::int16_t>(number);
}

void readSingle(QSettings& store, const QString& key, float& target) {
  bool ok = false;
  const float number = storedText(store, key).toFloat(&ok);
  if (ok && std::isfinite(number)) target = number;
}

QString boolText(bool value) { return value ? QStringLiteral("True") : QStringLiteral("False"); }

QString intText(std::int16_t value) { return QString::number(value); }

}  // namespace

void LoadSettings(QSettings& store, Settings& settings) {
  // Each field starts from its default, so a missing or unreadable key keeps the default.
  settings = Settings{};
  store.beginGroup(kGroup);
  readSingle(store, QStringLiteral("MainLeft"), settings.MainLeft);
  readSingle(store, QStringLiteral("MainTop"), settings.MainTop);
  readSingle(store, QStringLiteral("MainWidth"), settings.MainWidth);
  readSingle(store, QStringLiteral("MainHeight"), settings.MainHeight);
  readBool(store, QStringLiteral("AutoSave"), settings.AutoSave);
  readBool(store, QStringLiteral("EnterRight"), settings.EnterRight);
  readInt16(store, QStringLiteral("MaxReadings"), settings.MaxReadings);
  readInt16(store, QStringLiteral("MinorScale"), settings.MinorScale);
  readInt16(store, QStringLiteral("BranchScale"), settings.BranchScale);
  readBool(store, QStringLiteral("QtyBifurcate"), settings.QtyBifurcate);
  readBool(store, QStringLiteral("DisplayQtyXSection"), settings.DisplayQtyXSection);
  readBool(store, QStringLiteral("FixedDatum"), settings.FixedDatum);
  readInt16(store, QStringLiteral("FixedDatumVal"), settings.FixedDatumVal);
  readInt16(store, QStringLiteral("LSectionScale"), settings.LSectionScale);
  readInt16(store, QStringLiteral("MetersPerPage"), settings.MetersPerPage);
  store.endGroup();
}

void SaveSettings(QSettings& store, const Settings& settings) {
  store.beginGroup(kGroup);
  store.setValue(QStringLiteral("MainLeft"), db::floatText(settings.MainLeft));
  store.setValue(QStringLiteral("MainTop"), db::floatText(settings.MainTop));
  store.setValue(QStringLiteral("MainWidth"), db::floatText(settings.MainWidth));
  store.setValue(QStringLiteral("MainHeight"), db::floatText(settings.MainHeight));
  store.setValue(QStringLiteral("AutoSave"), boolText(settings.AutoSave));
  store.setValue(QStringLiteral("EnterRight"), boolText(settings.EnterRight));
  store.setValue(QStringLiteral("MaxReadings"), intText(settings.MaxReadings));
  store.setValue(QStringLiteral("MinorScale"), intText(settings.MinorScale));
  store.setValue(QStringLiteral("BranchScale"), intText(settings.BranchScale));
  store.setValue(QStringLiteral("QtyBifurcate"), boolText(settings.QtyBifurcate));
  store.setValue(QStringLiteral("DisplayQtyXSection"), boolText(settings.DisplayQtyXSection));
  store.setValue(QStringLiteral("FixedDatum"), boolText(settings.FixedDatum));
  store.setValue(QStringLiteral("FixedDatumVal"), intText(settings.FixedDatumVal));
  store.setValue(QStringLiteral("LSectionScale"), intText(settings.LSectionScale));
  store.setValue(QStringLiteral("MetersPerPage"), intText(settings.MetersPerPage));
  store.endGroup();
  store.sync();
}

}  // namespace app
