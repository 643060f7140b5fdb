#pragma once
// The compiled-in catalogue as the generator writes it: the rule table, the named documents and the
// possible-value documents' rows.
#include <cstddef>
#include <string_view>

#include "rules/build/rule_table.hpp"
#include "rules/catalogue.hpp"

namespace nimbara::rules {

struct NamedDocument {
    std::string_view function;
    std::string_view text;
};

namespace generated {
extern const RuleRow kRuleTable[];
extern const std::size_t kRuleTableSize;
extern const NamedDocument kDocuments[];
extern const std::size_t kDocumentCount;
extern const RepeatedRow kRepeatedRows[];
extern const std::size_t kRepeatedRowCount;
extern const PossibleValueTable kPossibleValueTables[];
extern const std::size_t kPossibleValueTableCount;
extern const SourceTexts kSourceTexts;
extern const std::string_view kDesignationsText;  // data/designations.tsv as it stands
}  // namespace generated

}  // namespace nimbara::rules
