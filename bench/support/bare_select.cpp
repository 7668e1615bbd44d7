#include "bench/support/bare_select.h"

#include <sqlite3.h>

#include <memory>
#include <stdexcept>

qint64 selectEveryText(const QString &project)
{
    sqlite3 *opened = nullptr;
    const int state = sqlite3_open_v2(project.toUtf8().constData(), &opened, SQLITE_OPEN_READONLY, nullptr);
    const std::unique_ptr<sqlite3, int (*)(sqlite3 *)> database(opened, sqlite3_close);
    if (state != SQLITE_OK)
        throw std::runtime_error(sqlite3_errmsg(opened));

    sqlite3_stmt *prepared = nullptr;
    sqlite3_prepare_v2(opened, "SELECT address FROM custom_tag_table WHERE connector_id = 1", -1, &prepared,
                       nullptr);
    const std::unique_ptr<sqlite3_stmt, int (*)(sqlite3_stmt *)> statement(prepared, sqlite3_finalize);
    qint64 characters = 0;
    while (sqlite3_step(prepared) == SQLITE_ROW) {
        sqlite3_column_text(prepared, 0);
        characters += sqlite3_column_bytes(prepared, 0);
    }
    return characters;
}
