// SPDX-License-Identifier: BSD-3-Clause
// The only source that knows the library for databases.
#include <sqlite3.h>

#include <cassert>
#include <memory>

#include "kit/base/fault.h"
#include "kit/tools/sweep/collect.h"

namespace kit::sweep {

namespace {

struct Close {
    void operator()(sqlite3* database) const { sqlite3_close(database); }
};

/// A database that is being made.
class Database {
public:
    explicit Database(const OutputFile& file) : m_path(file.path())
    {
        sqlite3* database = nullptr;
        const int status = sqlite3_open(file.partPath().c_str(), &database);
        m_database.reset(database); // it must be closed even if it could not be opened
        check(status);
    }
    ~Database() { sqlite3_finalize(m_statement); }
    Database(const Database&) = delete;
    Database& operator=(const Database&) = delete;

    void execute(const std::string& sql)
    {
        check(sqlite3_exec(m_database.get(), sql.c_str(), nullptr, nullptr, nullptr));
    }

    void prepare(const std::string& sql)
    {
        check(sqlite3_prepare_v2(m_database.get(), sql.c_str(), -1, &m_statement, nullptr));
    }

    /// Binds a value of the prepared statement. @param index  from 1
    void bind(int index, const Json& value)
    {
        if (value.isString()) {
            const std::string& text = value.asString();
            check(sqlite3_bind_text(m_statement, index, text.data(), static_cast<int>(text.size()),
                                    SQLITE_TRANSIENT));
        } else if (value.isInteger()) {
            check(sqlite3_bind_int64(m_statement, index, value.asInteger()));
        } else if (value.isNumber()) {
            check(sqlite3_bind_double(m_statement, index, value.asNumber()));
        } else {
            check(sqlite3_bind_null(m_statement, index));
        }
    }

    /// Runs the prepared statement.
    void step()
    {
        if (sqlite3_step(m_statement) != SQLITE_DONE) {
            fail(sqlite3_errmsg(m_database.get()));
        }
        check(sqlite3_reset(m_statement));
    }

private:
    void check(int status) const
    {
        if (status != SQLITE_OK) {
            fail(m_database != nullptr ? sqlite3_errmsg(m_database.get()) : sqlite3_errstr(status));
        }
    }

    [[noreturn]] void fail(const std::string& why) const
    {
        const int error = m_database != nullptr ? sqlite3_system_errno(m_database.get()) : 0;
        const std::string what = "cannot write " + m_path + ": " + why;
        throw error != 0 ? systemFault(what, error) : Fault(what);
    }

    const std::string& m_path; ///< for messages
    std::unique_ptr<sqlite3, Close> m_database;
    sqlite3_stmt* m_statement = nullptr;
};

} // namespace

void writeSqlite(const Table& table, const OutputFile& file)
{
    std::string columns;
    std::string marks;
    for (const Column& column : table.columns) {
        columns += (columns.empty() ? "" : ", ") + column.name + " " + column.type +
                   (column.name == "id" ? " PRIMARY KEY" : "");
        marks += marks.empty() ? "?" : ", ?";
    }
    Database database(file);
    database.execute("PRAGMA journal_mode = OFF; PRAGMA synchronous = OFF"); // it is renamed when it is whole
    database.execute("CREATE TABLE runs (" + columns + ")");
    database.execute("BEGIN");
    database.prepare("INSERT INTO runs VALUES (" + marks + ")");
    for (const auto& row : table.rows) {
        assert(row.size() == table.columns.size());
        for (size_t i = 0; i < row.size(); ++i) {
            database.bind(static_cast<int>(i + 1), row[i]);
        }
        database.step();
    }
    database.execute("COMMIT");
}

} // namespace kit::sweep
