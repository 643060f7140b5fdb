#pragma once
// What the entity classes share about their connection.
#include <memory>
#include <string>

#include "nimbara/Database.hpp"

namespace nimbara::entities {

// The connection an object opens at creation: OpenConnection's argument path. Empty after a
// failure, whose reason require() then reports.
std::shared_ptr<Database> connection_from_ini();

// The object's connection, or ConnectionError (naming why none was opened) when it has none, as
// the first operation of an object without a connection failed.
Database& require(const std::shared_ptr<Database>& conn);

// Runs a write the way the entity operations that answer 0 do: a failure is kept in `last_error`
// (and the write's transaction has rolled back); success empties it. Answers whether it succeeded.
// A missing connection is not kept but raised (ConnectionError), as it always reached the host.
template <class F>
bool keep_failure(std::string& last_error, F&& write)
{
    try {
        write();
        last_error.clear();
        return true;
    } catch (const ConnectionError& e) {
        last_error = e.what();
        throw;
    } catch (const std::exception& e) {
        last_error = e.what();
        return false;
    }
}

// Today at midnight by the host's clock.
Timestamp today();

}  // namespace nimbara::entities
