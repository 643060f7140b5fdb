#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "nimbara/cls_ImpressaoA.hpp"
#include "printed_text.hpp"
#include "support/temp_folder.hpp"

using nimbara::cls_ImpressaoA;
using nimbara::printing::RecordingSurface;
using namespace printing_test;

namespace {

struct Placed { std::string text; double x; };

std::vector<Placed> placed(const RecordingSurface& s)
{
    std::vector<Placed> out;
    for (const auto& p : printed_texts(s)) out.push_back({p.text, p.x_mm});
    return out;
}

bool operator==(const Placed& a, const Placed& b) { return a.text == b.text && std::abs(a.x - b.x) < 0.01; }
std::ostream& operator<<(std::ostream& o, const Placed& p) { return o << '"' << p.text << "\"@" << p.x; }

class DetailLines : public ::testing::Test {
protected:
    DetailLines() { printer.set_log_path(folder.path() / "print.log"); }
    std::string log() const { return nimbara::testing::read_file(folder.path() / "print.log"); }
    std::vector<Placed> line(const std::string& M, const std::string& K = "0", const std::string& P = "0")
    {
        RecordingSurface s;
        printer.PrintaParteDetail(s, "01", "C01", "20", "100", "02", "03", "1", "04", "9", K, "1", M, "2", "3", P, 42);
        return placed(s);
    }
    nimbara::testing::TempFolder folder;
    cls_ImpressaoA printer;
};

}  // namespace

TEST_F(DetailLines, ProductLineColumns)
{
    const std::vector<Placed> head = {{"01", 12}, {"C01", 21}, {"20", 31.5}, {"100", 55}};
    const std::vector<Placed> tail = {{"2", 77.5}, {"3", 90}, {"1", 102}, {"4", 114}, {"1", 188.5},
                                      {"2", 224}, {"3", 236.6}};
    const auto with = [&](std::vector<Placed> middle, std::vector<Placed> end) {
        auto all = head;
        all.insert(all.end(), middle.begin(), middle.end());
        all.insert(all.end(), tail.begin(), tail.end());
        all.insert(all.end(), end.begin(), end.end());
        // The sampling column stands between the discount and the week.
        return all;
    };
    struct Case { const char* what; std::vector<Placed> got, expected; };
    auto sampled = with({{"250", 201.5}}, {});
    sampled.insert(sampled.begin() + 9, Placed{"7", 176.5});
    const Case cases[] = {
        {"quantity 0 leaves its column blank", line("0"), with({}, {})},
        {"quantity and sampling printed", line("250", "07"), sampled},
        {"reference keeps its last nine", line("0", "0", "1234567890"), with({}, {{"234567890", 248.2}})},
    };
    for (const auto& c : cases) EXPECT_EQ(c.got, c.expected) << c.what;
    EXPECT_EQ(log(), "");
}

TEST_F(DetailLines, QuantityThatIsNoNumberCostsTheRightHandColumns)
{
    EXPECT_EQ(line(""), (std::vector<Placed>{{"01", 12}, {"C01", 21}, {"20", 31.5}, {"100", 55}}));
    EXPECT_NE(log().find("PrintaParteDetail-Erro:Type mismatch"), std::string::npos) << log();
}

TEST(CountSEspeciaisComValor, CountsValuesAboveZero)
{
    nimbara::serv::Table services;
    const char* values[] = {"0", "300", nullptr, "5"};
    for (int i = 0; i < 4; ++i)
        services.set(nimbara::serv::Valor, i, values[i] ? std::optional<std::string>(values[i]) : std::nullopt);
    EXPECT_EQ(cls_ImpressaoA::CountSEspeciaisComValor(services), 2);
    services.set(nimbara::serv::Valor, 4, std::string("abc"));
    EXPECT_ANY_THROW(cls_ImpressaoA::CountSEspeciaisComValor(services));
}
