#include "entities/connection.hpp"

#include <map>

#include "foundation/ini_file.hpp"
#include "nimbara/Notifier.hpp"
#include "nimbara/Schema.hpp"
#include "nimbara/mdl_Biz.hpp"

namespace nimbara {

thread_local std::shared_ptr<Database> gConn;
thread_local std::string gConnString;
thread_local std::string gDirBD;

namespace {

constexpr std::size_t kIniBuffer = 400;
// Relative on purpose: the host's working directory at the moment of the call, not the component's folder.
constexpr const char* kIniFile = "./Zartel_Nimbara.Ini";

// Why this thread's last OpenConnection on the argument path left its argument empty.
thread_local std::string last_failure;

}  // namespace

bool Le_Ini()
{
    try {
        gConnString = ini::GetPrivateProfileString("Nimbarauto", "Conn", "", kIniBuffer, kIniFile);
        gDirBD = ini::GetPrivateProfileString("Nimbarauto", "DirBD", "", kIniBuffer, kIniFile);
        if (!gConnString.empty()) return true;
    } catch (const std::exception&) {
        // Any failure while reading shows the same message as a missing file.
    }
    notifier().message(MessageIcon::Critical, "Guia Nimbara",
                       "Erro na leitura do ficheiro INI.\nSaia da aplicação e verifique a existencia do mesmo.");
    return false;
}

std::shared_ptr<Database> SharedConnection(const std::string& conn)
{
    thread_local std::map<std::string, std::weak_ptr<Database>> open;
    if (auto db = open[conn].lock()) return db;
    // Recognised before anything is written: a foreign file stays as it was.
    auto db = OpenGuiaDatabase(conn);
    open[conn] = db;
    return db;
}

void OpenConnection()
{
    if (!Le_Ini()) return;
    try {
        gConn = SharedConnection(gConnString);
    } catch (const DatabaseError& e) {
        throw ConnectionError(e.what());
    }
}

void OpenConnection(std::shared_ptr<Database>& conn)
{
    conn.reset();
    if (!Le_Ini()) {
        last_failure = "the ini file Zartel_Nimbara.Ini gives no connection string";
        return;
    }
    try {
        conn = SharedConnection(gConnString);
    } catch (const std::exception& e) {
        last_failure = e.what();
    }
}

std::int16_t CloseConnection()
{
    gConn.reset();
    return 0;
}

std::int16_t CloseConnection(std::shared_ptr<Database>& conn)
{
    conn.reset();
    return 0;
}

namespace entities {

std::shared_ptr<Database> connection_from_ini()
{
    std::shared_ptr<Database> conn;
    OpenConnection(conn);
    return conn;
}

Database& require(const std::shared_ptr<Database>& conn)
{
    if (!conn) throw ConnectionError("no connection to the database: " + (last_failure.empty() ? "none was opened" : last_failure));
    return *conn;
}

Timestamp today()
{
    Timestamp t = Timestamp::now();
    t.hour = t.minute = t.second = 0;
    return t;
}

}  // namespace entities
}  // namespace nimbara
