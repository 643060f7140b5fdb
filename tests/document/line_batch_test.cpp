// The line batch read in whatever pieces its input arrives: answers and line numbers do not depend
// on where the reads end, and a read that fails ends the batch without judging a half line.
#include <gtest/gtest.h>

#include <sstream>
#include <stdexcept>
#include <string>

#include "nimbara/line_batch.hpp"

namespace {

// Hands out its text a few bytes at a time and never tells how much more is waiting, as a pipe
// fed slowly does; with `fail_at`, reading past that offset fails as a broken device does.
class Trickle : public std::streambuf {
public:
    Trickle(std::string text, std::size_t piece, std::size_t fail_at = std::string::npos)
        : text_(std::move(text)), piece_(piece), fail_at_(fail_at) {}

protected:
    int_type underflow() override
    {
        if (at_ >= fail_at_) throw std::runtime_error("device failed");
        if (at_ >= text_.size()) return traits_type::eof();
        const std::size_t n = std::min({piece_, text_.size() - at_, fail_at_ - at_});
        setg(text_.data() + at_, text_.data() + at_, text_.data() + at_ + n);
        at_ += n;
        return traits_type::to_int_type(*gptr());
    }
    std::streamsize showmanyc() override { return 0; }

private:
    std::string text_;
    std::size_t piece_, fail_at_, at_ = 0;
};

struct Batch {
    std::string out, err;
    nimbara::BatchSummary summary;
};

Batch run(std::streambuf& input)
{
    std::istream in(&input);
    std::ostringstream out, err;
    Batch r;
    r.summary = nimbara::check_line_batch(in, out, err, "in");
    r.out = out.str();
    r.err = err.str();
    return r;
}

}  // namespace

TEST(LineBatch, AnswersDoNotDependOnWhereReadsEnd)
{
    const std::string passes = "C01\t01\t50\t0\t02\t1\t0\t0\t0\t0";
    const std::string input = passes + "\r\n" +                         // a Windows line end
                              "C01\t01\t0\t0\t02\t1\t0\t0\t0\t0\n" +     // fails on the weight
                              "\n" +                                     // an empty line is refused
                              "C01\t01\tabc\t0\t02\t1\t0\t0\t0\t0\n" +   // so is a weight that is no number
                              std::string(70'000, 'x') + "\n" +          // a line longer than any read
                              passes;                                    // the last line ends without a break
    const std::string expected = "0\n"
                                 "-3\tErro na Validação do Peso\n"
                                 "!expected 10 tab-separated fields, found 1\n"
                                 "!weight \"abc\" is not a 32-bit whole number\n"
                                 "!expected 10 tab-separated fields, found 1\n"
                                 "0\n";
    for (const std::size_t piece : {std::size_t{1}, std::size_t{3}, std::size_t{4096}, input.size()}) {
        Trickle trickle(input, piece);
        const Batch r = run(trickle);
        EXPECT_EQ(r.out, expected) << "pieces of " << piece;
        EXPECT_EQ(r.summary.lines, 6u) << "pieces of " << piece;
        EXPECT_EQ(r.summary.refused, 3u) << "pieces of " << piece;
        EXPECT_NE(r.err.find("in:5: expected 10"), std::string::npos) << r.err;
    }
    std::stringbuf whole(input);
    EXPECT_EQ(run(whole).out, expected);
}

TEST(LineBatch, AFailedReadEndsTheBatchWithoutAHalfLine)
{
    const std::string line = "C01\t01\t50\t0\t02\t1\t0\t0\t0\t0\n";
    Trickle trickle(line + line + line, 7, line.size() * 2 + 5);
    const Batch r = run(trickle);
    EXPECT_EQ(r.out, "0\n0\n");
    EXPECT_TRUE(r.summary.read_failed);
    EXPECT_EQ(r.err, "in:3: the input could not be read; the batch ends here\n");
}
