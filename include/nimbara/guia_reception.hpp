#pragma once
// A printed Guia taken in at the counter: the stored Guia its symbols name is found, compared field by
// field with the paper, and marked received when they agree. A Guia is received once.
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "nimbara/Database.hpp"
#include "nimbara/Recordset.hpp"
#include "nimbara/export.hpp"
#include "nimbara/guia_file.hpp"
#include "nimbara/guia_symbol.hpp"

namespace nimbara {

// A field whose paper and stored values differ; `place` is a JSON pointer into the Guia file
// (/cabecalho/cb_Pagamento, /produtos/3/Escalao, /servicos of line 2...).
struct FieldDifference {
    std::string place;
    std::string paper;
    std::string stored;
};

// Every field the paper carries compared with the stored Guia, numbers compared as numbers (the
// symbol pads them with zeros).
NIMBARA_API std::vector<FieldDifference> compare_with_stored(const AssembledGuia& paper, const GuiaFile& stored);

enum class ReceptionOutcome { Received, Differs, AlreadyReceived };

struct GuiaReception {
    ReceptionOutcome outcome = ReceptionOutcome::Differs;
    std::int32_t N_Req = 0;
    std::vector<FieldDifference> differences;
    // When it was received: now, or at the first reception when this one is refused; empty when the
    // paper differs, or when an earlier reception left no time.
    std::string received_at;
};

// The text Situacao holds after a reception at `when` ("Recolhida em 2026-11-24 10:15:00").
NIMBARA_API std::string reception_state(const Timestamp& when);

// Finds the stored Guia of the paper (client, contract, yearly or request number, and the day of its
// date), compares them, and when they agree marks it received (Recolhido, and the time in Situacao),
// all in one transaction. A Guia received before is left as it is. Throws GuiaNotStoredError when no
// stored Guia matches the paper, and DatabaseError when the store fails (nothing is then marked).
NIMBARA_API GuiaReception receive_guia(const std::shared_ptr<Database>& db, const AssembledGuia& paper,
                                       const Timestamp& now);

}  // namespace nimbara
