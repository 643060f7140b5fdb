// nimbara users add|list|remove: the accounts of the web server, in the database's users table.
#include <termios.h>
#include <unistd.h>

#include <iostream>
#include <memory>

#include "commands.hpp"
#include "db_command.hpp"
#include "json_output.hpp"
#include "users.hpp"

namespace nimbara::cli {
namespace {

struct UsersOptions {
    std::string conn;
    std::string name;
    std::string role;
    bool json = false;
};

// Terminal echo off while a password is typed, back on however the reading ends.
class NoEcho {
public:
    NoEcho()
    {
        if (tcgetattr(STDIN_FILENO, &saved_) != 0) return;
        termios quiet = saved_;
        quiet.c_lflag &= static_cast<tcflag_t>(~ECHO);
        active_ = tcsetattr(STDIN_FILENO, TCSAFLUSH, &quiet) == 0;
    }
    ~NoEcho()
    {
        if (active_) tcsetattr(STDIN_FILENO, TCSAFLUSH, &saved_);
    }
    NoEcho(const NoEcho&) = delete;
    NoEcho& operator=(const NoEcho&) = delete;

private:
    termios saved_{};
    bool active_ = false;
};

std::string read_line(const char* prompt, bool terminal)
{
    std::string line;
    if (terminal) {
        std::cerr << prompt << std::flush;
        const NoEcho quiet;
        std::getline(std::cin, line);
        std::cerr << '\n';
    } else {
        std::getline(std::cin, line);
    }
    if (!line.empty() && line.back() == '\r') line.pop_back();
    return line;
}

// From the terminal, asked twice; otherwise the first line of standard input (for scripts).
std::string read_password()
{
    const bool terminal = isatty(STDIN_FILENO) != 0;
    std::string password = read_line("Password: ", terminal);
    if (terminal && read_line("Password again: ", terminal) != password)
        throw CommandError("the two passwords differ; nothing was changed");
    if (password.empty()) throw CommandError("no password was given on standard input; nothing was changed");
    return password;
}

int run(const std::string& name, const std::function<int()>& body)
{
    try {
        return body();
    } catch (const std::exception& e) {
        std::cerr << "nimbara users " << name << ": " << e.what() << '\n';
        return 2;
    }
}

int add(const UsersOptions& o)
{
    const auto role = serve::role_of(o.role);
    if (!role) throw CommandError("--role is clerk or admin, not \"" + o.role + "\"");
    auto db = open_command_database(o.conn);
    const std::string password = read_password();
    serve::add_user(*db, o.name, password, *role);
    std::cerr << "added the user " << o.name << " (" << o.role << ")\n";
    return 0;
}

int list(const UsersOptions& o)
{
    auto db = open_command_database(o.conn);
    const auto users = serve::list_users(*db);
    if (o.json) {
        nlohmann::json rows = nlohmann::json::array();
        for (const auto& user : users) rows.push_back({{"name", user.name}, {"role", serve::role_name(user.role)}});
        write_json(std::cout, nlohmann::json{{"status", 0}, {"users", rows}});
    } else {
        for (const auto& user : users) std::cout << user.name << '\t' << serve::role_name(user.role) << '\n';
    }
    return 0;
}

int remove(const UsersOptions& o)
{
    auto db = open_command_database(o.conn);
    if (!serve::remove_user(*db, o.name)) throw CommandError("no user \"" + o.name + "\"; nothing was changed");
    std::cerr << "removed the user " << o.name << '\n';
    return 0;
}

}  // namespace

void register_users(CLI::App& app, int& status)
{
    auto* users = app.add_subcommand("users", "The accounts that may log in to nimbara serve");
    users->require_subcommand(1);
    users->footer("Exit status: that of the subcommand.\nExamples:\n  nimbara users add ana --role clerk\n"
                  "  nimbara users list");

    auto o = std::make_shared<UsersOptions>();
    auto* add_cmd = users->add_subcommand("add", "Add a user; the password is asked on the terminal (or read from "
                                                 "the first line of standard input)");
    add_cmd->add_option("NAME", o->name, "The user's name: 1 to 50 letters, digits or . _ - @")->required();
    add_cmd->add_option("--role", o->role, "clerk (fills and prints Guias) or admin (also clients, settings, "
                                           "imports and users)")->required();
    add_db_option(*add_cmd, o->conn);
    add_cmd->footer("Exit status: 0 added, 2 a name taken or not allowed, a role other than clerk or admin, a password "
                    "shorter than 8 characters, or a database that cannot be opened (nothing is added then).\n"
                    "Examples:\n  nimbara users add ana --role clerk\n"
                    "  printf '%s\\n' \"$PASSWORD\" | nimbara users add admin --role admin --db sqlite:shop.db");
    add_cmd->callback([o, &status] { status = run("add", [&] { return add(*o); }); });

    auto* list_cmd = users->add_subcommand("list", "List the users and their roles");
    add_db_option(*list_cmd, o->conn);
    list_cmd->add_flag("--json", o->json, "Write {\"status\", \"users\": [{\"name\", \"role\"}]} on standard output");
    list_cmd->footer("Exit status: 0 listed, 2 a database that cannot be opened.\nExamples:\n  nimbara users list\n"
                     "  nimbara users list --json");
    list_cmd->callback([o, &status] { status = run("list", [&] { return list(*o); }); });

    auto* remove_cmd = users->add_subcommand("remove", "Remove a user; their sessions end when the server restarts");
    remove_cmd->add_option("NAME", o->name, "The user's name")->required();
    add_db_option(*remove_cmd, o->conn);
    remove_cmd->footer("Exit status: 0 removed, 2 no such user or a database that cannot be opened.\nExamples:\n"
                       "  nimbara users remove ana");
    remove_cmd->callback([o, &status] { status = run("remove", [&] { return remove(*o); }); });
}

}  // namespace nimbara::cli
