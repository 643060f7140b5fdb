#pragma once
// What the `nimbara db` commands share: the connection (from --db or the places after it) and the
// way a failure becomes a message and exit status 2.
#include <CLI/CLI.hpp>

#include <functional>
#include <iosfwd>
#include <memory>
#include <stdexcept>
#include <string>

#include "nimbara/Database.hpp"

namespace nimbara::cli {

// Input the command refuses; its text is the whole message.
class CommandError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

// What the command was asked about is not stored (no such Guia, client or contract).
class NotFoundError : public CommandError {
public:
    using CommandError::CommandError;
};

// A refused value of an input document, with its place in it (a JSON pointer such as /contratos/1/bActivo).
class FieldError : public CommandError {
public:
    FieldError(const std::string& message, std::string field) : CommandError(message), field_(std::move(field)) {}
    const std::string& field() const { return field_; }

private:
    std::string field_;
};

// Adds --db to a db command; the string stays empty when the option is not given.
void add_db_option(CLI::App& cmd, std::string& conn);

// The connection string in force: --db (`conn`), else the first of the places db_location.hpp names.
std::string command_connection(const std::string& conn);

// A warning on standard error when the connection names a SQLite file on a network file system.
void warn_if_shared_over_network(const std::string& conn);

// The Guia database of --db, or of the ini file when `conn` is empty; any other database is refused
// untouched ("not a Guia database").
std::shared_ptr<Database> open_command_database(const std::string& conn);

// Runs a db command's body: any failure is written as "nimbara db NAME: message" and gives 2; with
// `json` the refusal is also the run's JSON document on `out`.
int run_db_command(const std::string& name, std::ostream& err, const std::function<int()>& body);
int run_db_command(const std::string& name, bool json, std::ostream& out, std::ostream& err,
                   const std::function<int()>& body);

}  // namespace nimbara::cli
