// The host's C callbacks as the process's notifier.
#include <list>
#include <mutex>

#include "capi/handles.hpp"
#include "nimbara/Notifier.hpp"

namespace nimbara::capi {
namespace {

class CallbackNotifier final : public Notifier {
public:
    explicit CallbackNotifier(const nimbara_notifier& callbacks) : c_(callbacks) {}

    // A callback's own failure is the host's; it never stops the library's work.
    void message(MessageIcon icon, std::string_view title, std::string_view text) override
    {
        if (c_.message)
            c_.message(c_.user, static_cast<nimbara_message_icon>(icon), title.data(), title.size(), text.data(),
                       text.size());
    }
    void busy(bool on) override
    {
        if (c_.busy) c_.busy(c_.user, on ? 1 : 0);
    }
    void progress(int value) override
    {
        if (c_.progress) c_.progress(c_.user, value);
    }

private:
    nimbara_notifier c_;
};

// Every notifier ever set lives until the process ends: a thread may still be notifying through
// the one just replaced.
std::mutex set_lock;
std::list<CallbackNotifier> kept;

}  // namespace
}  // namespace nimbara::capi

extern "C" nimbara_status nimbara_set_notifier(const nimbara_notifier* notifier)
{
    using namespace nimbara::capi;
    return guarded([&] {
        if (notifier == nullptr) {
            nimbara::set_notifier(nullptr);
            return;
        }
        const auto callbacks = sized_in(notifier, "notifier");
        const std::lock_guard lock(set_lock);
        nimbara::set_notifier(&kept.emplace_back(callbacks));
    });
}
