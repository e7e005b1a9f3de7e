#include "RecordDb.h"

#include "FileSystem.h"

namespace qi {

namespace {
bool truthy(const Value& v)
{
    if (const auto* s = std::get_if<std::string>(&v))
        return !s->empty() && *s != "0" && *s != "False" && *s != "false";
    return toLong(v) != 0;
}
} // namespace

bool RecordDb::OpenDb()
{
    begin();
    CloseDb();
    if (dbPath_.empty())
        return false;
    // OpenOptions and OpenConnectInfo are kept for callers; the engine needs neither.
    try {
        db_ = Database::open(dbPath_, truthy(openReadOnly_));
        db_->setLimitsText(limitsText_);
        return true;
    } catch (const DbError& e) {
        return fail("Die Datenbank " + displayPath(dbPath_) + " konnte nicht geöffnet werden!", e);
    }
}

bool RecordDb::openChecked(const Structure& expected, const std::string& kind)
{
    if (!OpenDb())
        return false;
    const std::string failed = "Die Datenbank " + displayPath(dbPath_) + " konnte nicht geöffnet werden!";
    try {
        const std::string missing = missingStructure(*db_, expected);
        if (missing.empty())
            return true;
        CloseDb();
        return fail(failed + "\r\nSie ist " + kind + ": " + missing + ".");
    } catch (const DbError& e) {
        CloseDb();
        return fail(failed, e);
    }
}

void RecordDb::CloseDb() { db_.reset(); }

bool RecordDb::UpdateDb()
{
    begin();
    return true;
}

bool RecordDb::fail(const std::string& text)
{
    lastError_ = text;
    return false;
}

bool RecordDb::fail(const std::string& text, const DbError& e)
{
    lastError_ = text + "\r\n" + e.description();
    lastErrorNumber_ = e.number();
    return false;
}

bool RecordDb::fail(const std::string& text, const std::exception& e)
{
    lastError_ = text + "\r\n" + e.what();
    return false;
}

Database& RecordDb::db()
{
    if (!db_)
        throw NoDatabase{};
    return *db_;
}

bool RecordDb::executeDelete(std::string_view sql)
{
    begin();
    try {
        db().execute(sql);
        return true;
    } catch (const NoDatabase&) {
        return fail(failtext::Delete);
    } catch (const DbError& e) {
        return fail(failtext::Delete, e);
    }
}

} // namespace qi
