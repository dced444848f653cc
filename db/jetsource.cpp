#include "db/jetsource.h"

#include "db/connection.h"

#include <QFile>
#include <QFileInfo>
#include <QtEndian>

// mdbtools.h includes glib inside its extern "C" block, where glib's C++ templates do not
// compile; included first, glib's include guard keeps it out of that block.
#include <glib.h>
#include <mdbtools.h>

#include <algorithm>
#include <bit>
#include <cstdint>
#include <cstdio>

#include <unistd.h>

namespace db {

namespace {

// The flag of a deleted row in a data page's row offsets, and the mask of the offset itself.
constexpr int kDeletedRow = 0x4000;
constexpr int kRowOffsetMask = 0x1fff;

// Memo text longer than this many bytes (in UTF-8) would come back cut short; Access itself
// keeps memos typed by a user under 64 K characters.
constexpr std::size_t kLongestText = 256 * 1024;

SourceType sourceTypeOf(int jetType) {
  switch (jetType) {
    case MDB_BOOL:
    case MDB_BYTE:
    case MDB_INT:
    case MDB_LONGINT:
      return SourceType::Integer;
    case MDB_FLOAT:
      return SourceType::Single;
    case MDB_DOUBLE:
    case MDB_MONEY:
    case MDB_NUMERIC:
      return SourceType::Double;
    case MDB_TEXT:
    case MDB_MEMO:
    case MDB_DATETIME:
    case MDB_REPID:
      return SourceType::Text;
    default:
      return SourceType::Other;
  }
}

// The library writes what it finds wrong in a damaged file, page dumps included, to standard
// output, where the command line's results go. While it works, that goes to standard error.
class LibraryOutputToStderr {
 public:
  LibraryOutputToStderr() {
    std::fflush(stdout);
    m_saved = ::dup(STDOUT_FILENO);
    if (m_saved >= 0) ::dup2(STDERR_FILENO, STDOUT_FILENO);
  }
  ~LibraryOutputToStderr() {
    if (m_saved < 0) return;
    std::fflush(stdout);
    ::dup2(m_saved, STDOUT_FILENO);
    ::close(m_saved);
  }
  LibraryOutputToStderr(const LibraryOutputToStderr&) = delete;
  LibraryOutputToStderr& operator=(const LibraryOutputToStderr&) = delete;

 private:
  int m_saved = -1;
};

struct TableFree {
  void operator()(MdbTableDef* table) const { mdb_free_tabledef(table); }
};
using TablePtr = std::unique_ptr<MdbTableDef, TableFree>;

MdbColumn* columnAt(MdbTableDef* table, unsigned index) {
  return static_cast<MdbColumn*>(g_ptr_array_index(table->columns, index));
}

// Takes the text the library allocated.
QString takeText(char* text) {
  const QString result = QString::fromUtf8(text ? text : "");
  g_free(text);
  return result;
}

template <typename T>
T littleEndian(const unsigned char* page, int start) {
  return qFromLittleEndian<T>(page + start);
}

}  // namespace

struct JetSource::Database {
  MdbHandle* mdb = nullptr;
  ~Database() {
    if (mdb) mdb_close(mdb);
  }

  MdbCatalogEntry* entry(unsigned index) const {
    return static_cast<MdbCatalogEntry*>(g_ptr_array_index(mdb->catalog, index));
  }
  static bool isUserTable(MdbCatalogEntry* entry) {
    return entry->object_type == MDB_TABLE && mdb_is_user_table(entry);
  }

  // The user's table of that name with its columns read; throws when there is none or it
  // cannot be read. path names the file in messages.
  TablePtr table(const QString& path, const QString& name) const {
    const LibraryOutputToStderr quiet;
    for (unsigned i = 0; i < mdb->num_catalog; ++i) {
      MdbCatalogEntry* candidate = entry(i);
      if (!isUserTable(candidate) || QString::fromUtf8(candidate->object_name) != name) continue;
      TablePtr def(mdb_read_table(candidate));
      if (!def || !mdb_read_columns(def.get()))
        throw Error(QStringLiteral("The file \"%1\" is damaged: the table %2 cannot be read.")
                        .arg(path, name));
      return def;
    }
    throw Error(QStringLiteral("The file \"%1\" holds no table %2.").arg(path, name));
  }
};

JetSource::JetSource(const QString& path) : m_path(path), m_database(new Database) {
  const QFileInfo file(path);
  if (path.isEmpty()) throw Error(QStringLiteral("No legacy project file was named."));
  if (file.isDir()) throw Error(QStringLiteral("The file \"%1\" is a folder.").arg(path));
  if (!file.exists()) throw Error(QStringLiteral("The file \"%1\" does not exist.").arg(path));
  if (!file.isReadable())
    throw Error(QStringLiteral("The file \"%1\" cannot be read: permission denied.").arg(path));
  const Error notJet(
      QStringLiteral("The file \"%1\" is not a Jet database (an Access .mdb file).").arg(path));
  // The library takes any file it can read a page of; the signature says what the file is.
  QFile header(path);
  if (!header.open(QIODevice::ReadOnly)) throw notJet;
  const QByteArray signature = header.read(19).mid(4);
  if (signature != QByteArray("Standard Jet DB", 15) &&
      signature != QByteArray("Standard ACE DB", 15))
    throw notJet;
  const LibraryOutputToStderr quiet;
  m_database->mdb = mdb_open(QFile::encodeName(path).constData(), MDB_NOFLAGS);
  if (!m_database->mdb) throw notJet;
  MdbHandle* mdb = m_database->mdb;
  // A file cut short loses whole pages, which the library would read as the end of a table.
  if (file.size() % mdb->fmt->pg_size != 0)
    throw Error(
        QStringLiteral("The file \"%1\" is damaged: it ends in the middle of a page.").arg(path));
  mdb_set_bind_size(mdb, kLongestText);
  // A date as a person and a spreadsheet read it, whatever the user's locale.
  mdb_set_date_fmt(mdb, "%Y-%m-%d %H:%M:%S");
  // Every Jet file lists its own system tables; a list without them was cut short.
  if (!mdb_read_catalog(mdb, MDB_TABLE) || mdb->num_catalog == 0)
    throw Error(
        QStringLiteral("The file \"%1\" is damaged: its list of tables cannot be read.").arg(path));
}

JetSource::~JetSource() = default;

QStringList JetSource::tableNames() {
  QStringList names;
  for (unsigned i = 0; i < m_database->mdb->num_catalog; ++i) {
    MdbCatalogEntry* entry = m_database->entry(i);
    if (Database::isUserTable(entry)) names.append(QString::fromUtf8(entry->object_name));
  }
  return names;
}

std::vector<SourceColumn> JetSource::columns(const QString& table) {
  TablePtr def = m_database->table(m_path, table);
  std::vector<SourceColumn> result;
  for (unsigned i = 0; i < def->num_cols; ++i) {
    const MdbColumn* column = columnAt(def.get(), i);
    result.push_back({QString::fromUtf8(column->name), sourceTypeOf(column->col_type)});
  }
  return result;
}

// The value of one field of the row on the current page. Fixed-size numbers are read from
// their bytes: the library's own text of a number follows the C library's locale and gives
// singles fewer digits than they hold.
static SourceValue valueOf(MdbHandle* mdb, MdbColumn* column, const MdbField& field) {
  // A yes/no field keeps its value in the row's null mask: "null" is No.
  if (column->col_type == MDB_BOOL) return std::int64_t{field.is_null ? 0 : 1};
  if (field.is_null) return std::monostate{};
  const unsigned char* page = mdb->pg_buf;
  switch (column->col_type) {
    case MDB_BYTE:
      return std::int64_t{page[field.start]};
    case MDB_INT:
      return std::int64_t{littleEndian<std::int16_t>(page, field.start)};
    case MDB_LONGINT:
      return std::int64_t{littleEndian<std::int32_t>(page, field.start)};
    case MDB_FLOAT:
      return std::bit_cast<float>(littleEndian<std::uint32_t>(page, field.start));
    case MDB_DOUBLE:
      return std::bit_cast<double>(littleEndian<std::uint64_t>(page, field.start));
    case MDB_MONEY:  // ten-thousandths in a 64-bit integer
      return static_cast<double>(littleEndian<std::int64_t>(page, field.start)) / 10000.0;
    case MDB_NUMERIC: {
      const QString text =
          takeText(mdb_numeric_to_string(mdb, field.start, column->col_scale, column->col_prec));
      bool ok = false;
      const double number = text.toDouble(&ok);
      if (ok) return number;
      return text;
    }
    default:
      return takeText(
          mdb_col_to_string(mdb, mdb->pg_buf, field.start, column->col_type, field.siz));
  }
}

void JetSource::readRows(const QString& table, const QStringList& columns,
                         const std::function<void(const std::vector<SourceValue>& row)>& onRow) {
  TablePtr def = m_database->table(m_path, table);
  std::vector<unsigned> wanted;
  for (const QString& name : columns) {
    unsigned at = 0;
    while (at < def->num_cols && QString::fromUtf8(columnAt(def.get(), at)->name) != name) ++at;
    if (at == def->num_cols)
      throw Error(
          QStringLiteral("The file \"%1\" holds no column %2.%3.").arg(m_path, table, name));
    if (sourceTypeOf(columnAt(def.get(), at)->col_type) == SourceType::Other)
      throw Error(QStringLiteral("The column %1.%2 of \"%3\" holds data that cannot be read.")
                      .arg(table, name, m_path));
    wanted.push_back(at);
  }

  MdbHandle* mdb = m_database->mdb;
  const auto damaged = [&](const QString& what) {
    return Error(QStringLiteral("The file \"%1\" is damaged: %2").arg(m_path, what));
  };
  const LibraryOutputToStderr quiet;
  std::vector<MdbField> fields(MDB_MAX_COLS);
  std::vector<int> fieldOfColumn(def->num_cols, -1);
  std::vector<SourceValue> row(wanted.size());
  unsigned rowsRead = 0;
  mdb_rewind_table(def.get());
  while (mdb_read_next_dpg(def.get())) {
    const int rowsOnPage = mdb_get_int16(mdb->pg_buf, mdb->fmt->row_count_offset);
    for (int r = 0; r < rowsOnPage; ++r) {
      int start = 0;
      size_t size = 0;
      if (mdb_find_row(mdb, r, &start, &size) == -1 || size == 0 || (start & kDeletedRow)) continue;
      const int count = mdb_crack_row(def.get(), start & kRowOffsetMask, size, fields.data());
      if (count < static_cast<int>(def->num_cols))
        throw damaged(QStringLiteral("a row of the table %1 cannot be read.").arg(table));
      std::fill(fieldOfColumn.begin(), fieldOfColumn.end(), -1);
      for (int f = 0; f < count; ++f)
        if (fields[f].colnum >= 0 && fields[f].colnum < static_cast<int>(def->num_cols))
          fieldOfColumn[fields[f].colnum] = f;
      for (std::size_t c = 0; c < wanted.size(); ++c) {
        const int f = fieldOfColumn[wanted[c]];
        if (f < 0)
          throw damaged(QStringLiteral("a row of the table %1 cannot be read.").arg(table));
        row[c] = valueOf(mdb, columnAt(def.get(), wanted[c]), fields[f]);
      }
      ++rowsRead;
      onRow(row);
    }
  }
  if (rowsRead != def->num_rows)
    throw damaged(QStringLiteral("the table %1 should hold %2 rows, but %3 can be read.")
                      .arg(table)
                      .arg(def->num_rows)
                      .arg(rowsRead));
}

}  // namespace db
