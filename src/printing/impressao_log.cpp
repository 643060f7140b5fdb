// The print log and the per-user print settings, as both editions reach them.
#include "foundation/ini_file.hpp"
#include "nimbara/ImpressaoComum.hpp"
#include "nimbara/Notifier.hpp"
#include "printing/print_log.hpp"

namespace nimbara {

void ImpressaoComum::WriteLog(const std::string& sLogEntry)
{
    log_entries_.push_back(sLogEntry);
    Notifier& notifier = notifier_ ? *notifier_ : nimbara::notifier();
    if (edition_ == Edition::Database) {
        try {
            printing::append_log_line(log_path_, sLogEntry);
        } catch (const std::exception&) {
            // Nobody is left to tell: the entry is lost.
        }
        return;
    }
    // The array edition shows what it logs; the last message stands where a failure would land, so
    // it follows every entry, written or not.
    notifier.message(MessageIcon::None, "", "WriteLog - " + log_path_.string());
    notifier.message(MessageIcon::None, "", "Entry - " + sLogEntry);
    try {
        printing::append_log_line(log_path_, sLogEntry);
    } catch (const std::exception&) {
    }
    notifier.message(MessageIcon::None, "", "WriteLog - error");
}

std::string ImpressaoComum::getImpressaoSetting(const std::string& Key, const std::string& vDefaultValue)
{
    return ini::read_value("Impressao", Key, ini::user_settings_file("ZartelDesk")).value_or(vDefaultValue);
}

}  // namespace nimbara
