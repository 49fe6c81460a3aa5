#include "recording/store/Database.h"

#include <fmt/format.h>
#include <sqlite3.h>

#include "words/text/Path.h"
#include "words/text/Utf8.h"

namespace harvlink::recording {

using words::TextOf;

void Statement::Finalize::operator()(sqlite3_stmt* statement) const {
    sqlite3_finalize(statement);
}

Statement::Statement(Database& database, std::string const& sql) : database_(database) {
    sqlite3_stmt* statement = nullptr;
    int const code = sqlite3_prepare_v3(database.Handle(), sql.c_str(), static_cast<int>(sql.size()),
                                        SQLITE_PREPARE_PERSISTENT, &statement, nullptr);
    statement_.reset(statement);
    if (code != SQLITE_OK) {
        database.Fail(code);
    }
}

void Statement::Bind(int parameter, std::int64_t value) {
    sqlite3_bind_int64(statement_.get(), parameter + 1, value);
}

void Statement::Bind(int parameter, double value) {
    sqlite3_bind_double(statement_.get(), parameter + 1, value);
}

void Statement::Bind(int parameter, std::string_view value) {
    auto const size = static_cast<int>(value.size());
    if (words::IsUtf8(value)) {
        sqlite3_bind_text(statement_.get(), parameter + 1, value.data(), size, SQLITE_TRANSIENT);
    } else {
        // What is not UTF-8, no reader could show as a text.
        sqlite3_bind_blob(statement_.get(), parameter + 1, value.data(), size, SQLITE_TRANSIENT);
    }
}

bool Statement::Step() {
    int const code = sqlite3_step(statement_.get());
    if (code != SQLITE_ROW && code != SQLITE_DONE) {
        sqlite3_reset(statement_.get());
        database_.Fail(code);
    }
    return code == SQLITE_ROW;
}

void Statement::Reset() {
    sqlite3_reset(statement_.get());
    sqlite3_clear_bindings(statement_.get());
}

void Statement::Run() {
    while (Step()) {
    }
    Reset();
}

std::int64_t Statement::Integer(int column) const {
    return sqlite3_column_int64(statement_.get(), column);
}

double Statement::Real(int column) const {
    return sqlite3_column_double(statement_.get(), column);
}

std::string Statement::Text(int column) const {
    auto const* const text = static_cast<char const*>(sqlite3_column_blob(statement_.get(), column));
    auto const size = static_cast<std::size_t>(sqlite3_column_bytes(statement_.get(), column));
    return text == nullptr ? std::string() : std::string(text, size);
}

bool Statement::IsNull(int column) const {
    return sqlite3_column_type(statement_.get(), column) == SQLITE_NULL;
}

RecordedValue Statement::Value(int column) const {
    switch (sqlite3_column_type(statement_.get(), column)) {
    case SQLITE_NULL:
        return {};
    case SQLITE_INTEGER:
        return Integer(column);
    case SQLITE_FLOAT:
        return Real(column);
    default:
        return Text(column);
    }
}

void Database::Close::operator()(sqlite3* handle) const {
    sqlite3_close(handle);
}

Database::Database(std::filesystem::path const& path, Access access) : path_(path) {
    sqlite3* handle = nullptr;
    bool const writes = access == Access::Write;
    // Each connection belongs to one thread.
    int const flags = (writes ? SQLITE_OPEN_READWRITE | SQLITE_OPEN_CREATE : SQLITE_OPEN_READONLY) |
                      SQLITE_OPEN_NOMUTEX | SQLITE_OPEN_URI;
    std::string name = TextOf(path);
    if (access == Access::ReadImmutable) {
        std::string const place = TextOf(std::filesystem::absolute(path).generic_u8string());
        std::string escaped = place.starts_with('/') ? "" : "/"; // before the letter of a drive
        for (char const character : place) {
            bool const isSpecial = character == '%' || character == '?' || character == '#';
            escaped +=
                isSpecial ? fmt::format("%{:02x}", static_cast<unsigned char>(character)) : std::string(1, character);
        }
        name = "file://" + escaped + "?immutable=1";
    } else if (name.starts_with("file:")) {
        name.insert(0, "./");
    }
    int const code = sqlite3_open_v2(name.c_str(), &handle, flags, nullptr);
    handle_.reset(handle);
    if (code != SQLITE_OK) {
        Fail(code);
    }
    sqlite3_extended_result_codes(handle, 1);
    // A file of somebody else must not run anything.
    sqlite3_db_config(handle, SQLITE_DBCONFIG_DEFENSIVE, 1, nullptr);
    sqlite3_db_config(handle, SQLITE_DBCONFIG_TRUSTED_SCHEMA, 0, nullptr);
}

void Database::Run(std::string const& sql) {
    int const code = sqlite3_exec(handle_.get(), sql.c_str(), nullptr, nullptr, nullptr);
    if (code != SQLITE_OK) {
        Fail(code);
    }
}

std::int64_t Database::Number(std::string const& sql) {
    Statement statement(*this, sql);
    return statement.Step() ? statement.Integer(0) : 0;
}

void Database::Fail(int code) const {
    std::string const text = handle_ ? sqlite3_errmsg(handle_.get()) : sqlite3_errstr(code);
    // A limit of the size of files or a quota shows as a failed write, a full disk by its own code.
    bool const isWrite = code == SQLITE_IOERR_WRITE || code == SQLITE_IOERR_SHMSIZE;
    switch (isWrite ? SQLITE_FULL : code & 0xFF) {
    case SQLITE_FULL:
        throw DiskFull(fmt::format("{}: the disk is full or a limit is reached: {}. What is recorded so far is safe",
                                   TextOf(path_), text));
    case SQLITE_BUSY:
    case SQLITE_LOCKED:
        throw Busy(fmt::format("{}: another program holds the file", TextOf(path_)));
    case SQLITE_NOTADB:
        throw RecordingError(fmt::format("{}: this is not a recording", TextOf(path_)));
    case SQLITE_CORRUPT:
        throw RecordingError(fmt::format("{}: the file is damaged: {}", TextOf(path_), text));
    default:
        throw RecordingError(fmt::format("{}: {}", TextOf(path_), text));
    }
}

} // namespace harvlink::recording
