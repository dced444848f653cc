#pragma once

#include <QByteArray>
#include <QFile>
#include <QString>

#include <zlib.h>

#include <map>
#include <optional>

namespace testsupport {

// The parts of a zip file (an .xlsx workbook) by name, inflated; nullopt when the file is not a
// well-formed zip: no end record, a central entry or local header out of place, a part that
// does not inflate to its recorded size or checksum.
inline std::optional<std::map<QString, QByteArray>> readZip(const QString& path) {
  QFile file(path);
  if (!file.open(QIODevice::ReadOnly)) return std::nullopt;
  const QByteArray zip = file.readAll();
  const auto u16 = [&zip](qsizetype at) -> quint32 {
    return static_cast<quint8>(zip[at]) | static_cast<quint8>(zip[at + 1]) << 8;
  };
  const auto u32 = [&](qsizetype at) -> quint32 { return u16(at) | u16(at + 2) << 16; };
  const auto fits = [&zip](qsizetype at, qsizetype size) {
    return at >= 0 && size >= 0 && at + size <= zip.size();
  };

  qsizetype end = zip.size() - 22;
  while (end >= 0 && !(fits(end, 4) && u32(end) == 0x06054b50)) --end;
  if (end < 0) return std::nullopt;
  const quint32 entries = u16(end + 10);
  qsizetype at = u32(end + 16);

  std::map<QString, QByteArray> parts;
  for (quint32 i = 0; i < entries; ++i) {
    if (!fits(at, 46) || u32(at) != 0x02014b50) return std::nullopt;
    const quint32 method = u16(at + 10);
    const quint32 crc = u32(at + 16);
    const quint32 packed = u32(at + 20);
    const quint32 size = u32(at + 24);
    const quint32 nameLength = u16(at + 28);
    const qsizetype next = at + 46 + nameLength + u16(at + 30) + u16(at + 32);
    if (!fits(at + 46, nameLength)) return std::nullopt;
    const QString name = QString::fromUtf8(zip.mid(at + 46, nameLength));

    const qsizetype local = u32(at + 42);
    if (!fits(local, 30) || u32(local) != 0x04034b50) return std::nullopt;
    const qsizetype data = local + 30 + u16(local + 26) + u16(local + 28);
    if (!fits(data, packed)) return std::nullopt;

    QByteArray content;
    if (method == 0) {
      content = zip.mid(data, packed);
    } else if (method == 8) {
      content.resize(size);
      z_stream stream{};
      if (inflateInit2(&stream, -MAX_WBITS) != Z_OK) return std::nullopt;
      stream.next_in = reinterpret_cast<Bytef*>(const_cast<char*>(zip.constData() + data));
      stream.avail_in = packed;
      stream.next_out = reinterpret_cast<Bytef*>(content.data());
      stream.avail_out = size;
      const int rc = inflate(&stream, Z_FINISH);
      inflateEnd(&stream);
      if (rc != Z_STREAM_END || stream.total_out != size) return std::nullopt;
    } else {
      return std::nullopt;
    }
    const uLong sum =
        crc32(0L, reinterpret_cast<const Bytef*>(content.constData()), content.size());
    if (sum != crc) return std::nullopt;
    parts[name] = content;
    at = next;
  }
  return parts;
}

}  // namespace testsupport
