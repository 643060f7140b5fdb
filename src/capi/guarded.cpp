#include "capi/guarded.hpp"

#include <filesystem>
#include <system_error>

#include "capi/last_error.hpp"
#include "nimbara/Database.hpp"
#include "nimbara/Schema.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/guia_store.hpp"

namespace nimbara::capi {

nimbara_status status_of_current_exception() noexcept
{
    try {
        try {
            throw;
        } catch (const Refusal& e) {
            set_last_error(e.what());
            return e.status();
        } catch (const GuiaNotStoredError& e) {
            set_last_error(e.what());
            return NIMBARA_NOT_FOUND;
        } catch (const GuiaFileError& e) {
            set_last_error(e.what());
            return NIMBARA_BAD_ARGUMENT;
        } catch (const DatabaseError& e) {
            set_last_error(e.what());
            return NIMBARA_DATABASE;
        } catch (const SchemaExistsError& e) {
            set_last_error(e.what());
            return NIMBARA_DATABASE;
        } catch (const ForeignTablesError& e) {
            set_last_error(e.what());
            return NIMBARA_DATABASE;
        } catch (const std::filesystem::filesystem_error& e) {
            set_last_error(e.what());
            return NIMBARA_IO;
        } catch (const std::system_error& e) {
            set_last_error(e.what());
            return NIMBARA_IO;
        } catch (const std::invalid_argument& e) {
            set_last_error(e.what());
            return NIMBARA_BAD_ARGUMENT;
        } catch (const std::out_of_range& e) {
            set_last_error(e.what());
            return NIMBARA_BAD_ARGUMENT;
        } catch (const std::bad_alloc&) {
            set_last_error("out of memory");
            return NIMBARA_INTERNAL;
        } catch (const std::exception& e) {
            set_last_error(e.what());
            return NIMBARA_INTERNAL;
        } catch (...) {
            set_last_error("an unknown failure");
            return NIMBARA_INTERNAL;
        }
    } catch (...) {
        // Keeping the cause itself failed (no memory for its text): the status still says enough.
        return NIMBARA_INTERNAL;
    }
}

}  // namespace nimbara::capi
