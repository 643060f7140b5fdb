#pragma once
// The working table of the database validator, Tbl_Temp_Val_Guia, as each connection's own: a
// temporary table that shadows the shared one, so that the Guias one station copies in never reach
// another station's sums, and that goes when the connection closes, even after a crash.
#include "nimbara/Database.hpp"

namespace nimbara::entities {

// Gives the connection its own working table if it has none yet. Inside a transaction the table is
// made on it, and goes again if it rolls back; every user of the table therefore calls this first.
void prepare_working_table(Database& db);

}  // namespace nimbara::entities
