#pragma once
// Where the component learns which database it works on: the ini file Zartel_Nimbara.Ini in the
// working directory (section "Nimbarauto", keys "Conn" and "DirBD"), and the connection made from
// it. Objects created on one thread for one connection string share one open connection; a host
// may instead hand an object its own Database.
#include <cstdint>
#include <memory>
#include <string>

#include "nimbara/Database.hpp"
#include "nimbara/export.hpp"

namespace nimbara {

// The shared values, one set per thread.
NIMBARA_API extern thread_local std::shared_ptr<Database> gConn;
NIMBARA_API extern thread_local std::string gConnString;
NIMBARA_API extern thread_local std::string gDirBD;

// Reads "Conn" and "DirBD" (each cut to 399 characters, as the old 400-character buffer held)
// into gConnString and gDirBD. True when gConnString is not empty; otherwise the failure message
// goes to the notifier and the answer is false.
NIMBARA_API bool Le_Ini();

// Reads the ini file and puts this thread's connection for gConnString into gConn. A store that
// cannot be opened raises ConnectionError; a failed Le_Ini leaves gConn as it was.
NIMBARA_API void OpenConnection();
// As above into `conn`, but a failure of any kind leaves `conn` empty and raises nothing.
NIMBARA_API void OpenConnection(std::shared_ptr<Database>& conn);

// Lets go of gConn, or of `conn`; the connection closes when its last holder lets go. Always 0.
NIMBARA_API std::int16_t CloseConnection();
NIMBARA_API std::int16_t CloseConnection(std::shared_ptr<Database>& conn);

// This thread's open connection for a connection string, opened on first use and shared while
// anyone holds it. Raises DatabaseError when the store cannot be opened.
NIMBARA_API std::shared_ptr<Database> SharedConnection(const std::string& conn);

}  // namespace nimbara
