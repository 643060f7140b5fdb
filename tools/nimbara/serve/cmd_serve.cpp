// nimbara serve: the web front end and its API over the database, until stopped.
#include <signal.h>

#include <iostream>
#include <memory>

#include "assets.hpp"
#include "commands.hpp"
#include "db_command.hpp"
#include "option_checks.hpp"
#include "routes.hpp"
#include "server.hpp"

namespace nimbara::cli {
namespace {

struct ServeOptions {
    std::string conn;
    std::string listen = "127.0.0.1:8080";
    std::string tls_cert;
    std::string tls_key;
    int threads = 64;
};

int serve_until_stopped(const ServeOptions& o)
{
    serve::ServerSettings settings;
    settings.conn = command_connection(o.conn);
    settings.listen = serve::parse_listen_address(o.listen);
    settings.tls_cert = o.tls_cert;
    settings.tls_key = o.tls_key;
    settings.threads = o.threads;
    settings.routes = serve::api_routes();
    settings.assets = serve::web_assets();
    settings.openapi = serve::openapi_document();
    if (settings.tls_cert.empty() != settings.tls_key.empty())
        throw CommandError("--tls-cert and --tls-key go together");
    warn_if_shared_over_network(settings.conn);

    // The stop signals are taken here, by this thread, rather than killing the program mid-answer;
    // blocked before the server starts, so that its threads inherit the block.
    sigset_t stop;
    sigemptyset(&stop);
    sigaddset(&stop, SIGINT);
    sigaddset(&stop, SIGTERM);
    pthread_sigmask(SIG_BLOCK, &stop, nullptr);
    serve::Server server(std::move(settings));
    std::cout << server.url() << std::endl;
    std::cerr << "nimbara serve: listening on " << server.url() << " (Ctrl-C stops)\n";
    int got = 0;
    sigwait(&stop, &got);
    std::cerr << "nimbara serve: stopped\n";
    return 0;
}

}  // namespace

void register_serve(CLI::App& app, int& status)
{
    auto* cmd = app.add_subcommand("serve", "Serve the web pages and their API over the database until stopped");
    auto o = std::make_shared<ServeOptions>();
    add_db_option(*cmd, o->conn);
    cmd->add_option("--listen", o->listen,
                    "ADDR:PORT to listen on (default 127.0.0.1:8080; port 0 picks a free one; an address other "
                    "than 127.0.0.1, ::1 or localhost needs users, see nimbara users add)");
    cmd->add_option("--tls-cert", o->tls_cert, "PEM certificate file: serve HTTPS (with --tls-key)");
    cmd->add_option("--tls-key", o->tls_key, "PEM private key file of --tls-cert");
    cmd->add_option("--threads", o->threads, "Connections served at once (default 64)")->check(whole_in(1, 1024));
    cmd->footer("The first line on standard output is the address it listens on. Without users every caller is an "
                "admin with no login; with users (nimbara users add) everyone logs in.\n"
                "Exit status: 0 stopped by Ctrl-C or SIGTERM, 2 an address refused or in use, TLS files that cannot "
                "be read, or a database that cannot be opened.\nExamples:\n  nimbara serve --db sqlite:shop.db\n"
                "  nimbara serve --listen 0.0.0.0:8443 --tls-cert cert.pem --tls-key key.pem");
    cmd->callback([o, &status] {
        try {
            status = serve_until_stopped(*o);
        } catch (const std::exception& e) {
            std::cerr << "nimbara serve: " << e.what() << '\n';
            status = 2;
        }
    });
}

}  // namespace nimbara::cli
