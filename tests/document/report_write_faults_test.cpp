// A report that cannot be written leaves nothing behind in its folder.
#include <gtest/gtest.h>

#include <filesystem>

#include "nimbara/cls_ValProdutosA.hpp"
#include "support/unwritable_places.hpp"

namespace fs = std::filesystem;
using nimbara::testing::UnwritableFolder;

TEST(ReportWriteFaults, NothingHalfWritten)
{
    int tried = 0;
    for (const auto kind : {UnwritableFolder::Kind::Full, UnwritableFolder::Kind::ReadOnly}) {
        UnwritableFolder place(kind);
        if (!place.path()) continue;
        ++tried;
        const auto before = std::distance(fs::directory_iterator(*place.path()), {});
        nimbara::cls_ValProdutosA guia;
        guia.setReportFolder(*place.path());
        guia.setPrintingEnabled(false);
        guia.PreencheCabecalho("1", "", "456", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "", "0");
        // A line that fails, so that the report has text to write.
        guia.PreencheProduto("01", "X99", "0", "10", "1", "0", "0", "20", "01", "1", "0", "", "", "", "", "", "", "1",
                             "", "");
        guia.ImprimeGuia(false);
        EXPECT_EQ(std::distance(fs::directory_iterator(*place.path()), {}), before);
    }
    if (tried == 0) GTEST_SKIP() << "this machine lets the test make neither a full nor a read-only folder";
}
