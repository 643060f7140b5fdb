#include "nimbara/Database.hpp"

namespace nimbara {

void Database::execute_queued(std::string_view sql, std::span<const FieldValue> values, std::string_view label)
{
    try {
        execute(sql, values);
    } catch (const DatabaseError& e) {
        throw QueuedStatementFailed(label.empty() ? std::string(e.what()) : std::string(label) + ": " + e.what());
    }
}

Transaction::Transaction(Database& db, TransactionMode mode) : db_(db), outermost_(db.depth_ == 0)
{
    if (outermost_) {
        db_.begin(mode);
        db_.doomed_ = false;
    }
    ++db_.depth_;
}

void Transaction::commit()
{
    if (done_) throw DatabaseError("the transaction has already ended");
    if (!outermost_) {
        done_ = true;
        --db_.depth_;
        return;
    }
    if (db_.doomed_) throw DatabaseError("a part of the transaction failed; nothing was saved");
    db_.commit();  // on failure the destructor still rolls back
    done_ = true;
    --db_.depth_;
}

Transaction::~Transaction()
{
    if (done_) return;
    --db_.depth_;
    if (outermost_)
        db_.rollback();
    else
        db_.doomed_ = true;
}

}  // namespace nimbara
