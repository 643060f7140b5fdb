#pragma once
// Where the database of the `nimbara db` commands is named, first to last: --db, the environment's
// NIMBARA_DB, Conn of section [Nimbarauto] in Zartel_Nimbara.Ini of the working folder (as the library
// reads it), and `db = CONN` in $XDG_CONFIG_HOME/nimbara/config. The first that names one is in force.
#include <optional>
#include <string>
#include <vector>

namespace nimbara::cli {

// One of the four places, as it was found.
struct DbPlace {
    std::string name;                  // "--db", "NIMBARA_DB", the ini file's path, the config file's path
    std::string key;                   // where in it: "[Nimbarauto] Conn", "db"; empty for the first two
    std::optional<std::string> value;  // the connection it names, as written; nothing when it names none
    std::string problem;               // why it could not be read, when it could not
};

struct DbLocation {
    std::vector<DbPlace> places;          // all four, in their order
    std::optional<std::size_t> in_force;  // the first with a value
};

// Reads the four places; `option` is the text of --db (empty when not given). A config file that
// cannot be read or holds a line it does not know is kept as that place's problem.
DbLocation locate_database(const std::string& option);

// The connection string of a place's text: a text without a known prefix (sqlite:, postgresql:,
// postgres://, Provider=) is a SQLite file's path. Throws CommandError for an unknown scheme://.
std::string connection_of(const std::string& text);

// The connection in force, or CommandError naming the four places when none names one, or the
// problem of a config file that would be read.
std::string connection_in_force(const std::string& option);

// The connection as it may be shown: a password in it is replaced by "****".
std::string shown_connection(const std::string& conn);

// The config file: $XDG_CONFIG_HOME/nimbara/config, ~/.config standing in for an unset or relative
// XDG_CONFIG_HOME.
std::string config_file_path();

}  // namespace nimbara::cli
