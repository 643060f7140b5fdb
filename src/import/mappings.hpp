#pragma once
// The twelve procedures as data: for each, the five tables it copies and, for every target column,
// where its value comes from in the source row (read by position, as each old layout fixes it).
#include <string_view>
#include <vector>

namespace nimbara::import {

// What a target column takes, as the register types it. The old statements put a text between
// quotes, so a Null became the empty text (`Text`), except the two texts of a line that were always
// digits and went in bare (`BareText`): a Null there broke the old statement, and stays Null here.
enum class Kind { Long, Short, Text, BareText, YesNo, Date };

enum class From {
    Field,          // the source field
    Constant,       // a fixed text
    OneOrZero,      // "1" when the field is true, "0" when false
    NoApostrophe,   // the field with every apostrophe made a blank
    ZeroWhenEmpty,  // the field, or "0" when it is Null or empty
    EveryOther,     // a running number that grows by two from row to row
    ClientOf,       // Id_Cliente of the target's client whose number is the field
    NextNumber,     // the Guias of client `field` and contract `field2` on the target, plus one
    YearCount,      // a number that starts again at 1 when the year of the field's date changes
};

struct Column {
    const char* name;
    Kind kind;
    From from;
    int field = -1;
    int field2 = -1;
    const char* constant = nullptr;
};

struct TableCopy {
    const char* source;
    const char* target;
    int key_fields;    // the leading fields of a source row that make its key
    int sorted_by;     // the field whose order the numbering needs, or -1 when the stored order serves
    int progress;      // the bar's value once the table is in
    std::vector<Column> columns;
};

struct Procedure {
    const char* name;
    bool withdraws_e03;  // product E03 made inactive in the target's product and rule tables
    std::vector<TableCopy> tables;
};

const std::vector<Procedure>& procedures();

// The procedure called `name`, or nullptr.
const Procedure* find_procedure(std::string_view name);

// The procedure ImportaDados runs for a version, or nullptr for every version it refuses.
const Procedure* procedure_for_version(std::string_view versao);

}  // namespace nimbara::import
