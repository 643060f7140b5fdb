#pragma once
// What the component would have shown in message boxes, the hourglass and progress bars goes to a
// notifier the host may set. Nothing here waits for a user.
#include <string_view>
#include "nimbara/export.hpp"

namespace nimbara {

enum class MessageIcon { None, Critical, Question, Exclamation, Information };

class NIMBARA_API Notifier {
public:
    virtual ~Notifier() = default;
    // A message box's content; an empty title stands for the default title.
    virtual void message(MessageIcon icon, std::string_view title, std::string_view text) = 0;
    virtual void busy(bool on) = 0;
    virtual void progress(int value) = 0;
};

// The notifier in force. The default writes messages to standard error and ignores the rest.
NIMBARA_API Notifier& notifier();

// Makes `host` the notifier in force; nullptr goes back to the default. The host keeps it alive
// for as long as it is set.
NIMBARA_API void set_notifier(Notifier* host);

}  // namespace nimbara
