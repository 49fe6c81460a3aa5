#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>

#include "recording/model/RecordingError.h"
#include "recording/model/Records.h"

struct sqlite3;
struct sqlite3_stmt;

/// @file
/// SQLite with owners. Nothing outside of this folder includes its header.

namespace harvlink::recording {

class Database;

/// A prepared statement. Columns and parameters count from 0.
class Statement {
public:
    Statement(Database& database, std::string const& sql);

    void Bind(int parameter, std::int64_t value);
    void Bind(int parameter, double value);
    void Bind(int parameter, std::string_view value);

    /// Steps to the next row; false at the end. Throws RecordingError.
    bool Step();

    /// Makes it ready to be stepped again, with all parameters null.
    void Reset();

    /// Steps to the end and resets.
    void Run();

    std::int64_t Integer(int column) const;
    double Real(int column) const;
    std::string Text(int column) const;
    bool IsNull(int column) const;
    RecordedValue Value(int column) const;

private:
    struct Finalize {
        void operator()(sqlite3_stmt* statement) const;
    };
    Database& database_;
    std::unique_ptr<sqlite3_stmt, Finalize> statement_;
};

class Database {
public:
    enum class Access {
        Read,
        ReadImmutable, ///< of a file that nobody writes, in a folder that can't be written
        Write,
    };

    Database(std::filesystem::path const& path, Access access);

    void Run(std::string const& sql);

    /// The first value of the first row.
    std::int64_t Number(std::string const& sql);

    /// Throws what fits the code of SQLite.
    [[noreturn]] void Fail(int code) const;

    std::filesystem::path const& Path() const { return path_; }
    sqlite3* Handle() const { return handle_.get(); }

private:
    struct Close {
        void operator()(sqlite3* handle) const;
    };
    std::filesystem::path path_;
    std::unique_ptr<sqlite3, Close> handle_;
};

} // namespace harvlink::recording
