#include "nimbara/Notifier.hpp"

#include <atomic>
#include <iostream>

namespace nimbara {
namespace {

class StandardErrorNotifier final : public Notifier {
public:
    void message(MessageIcon, std::string_view title, std::string_view text) override
    {
        std::cerr << (title.empty() ? std::string_view("nimbara") : title) << ": " << text << '\n';
    }
    void busy(bool) override {}
    void progress(int) override {}
};

StandardErrorNotifier standard_error;
std::atomic<Notifier*> current{nullptr};

}  // namespace

Notifier& notifier()
{
    Notifier* n = current.load();
    return n != nullptr ? *n : standard_error;
}

void set_notifier(Notifier* host) { current.store(host); }

}  // namespace nimbara
