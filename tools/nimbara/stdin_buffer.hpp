#pragma once
// Standard input read in large blocks: the library's stream over it takes what one read returns
// (a pipe's few kilobytes at a time) and the batch answers after each, so a pipe of a million lines
// cost a read and a write for every few hundred lines.
#include <streambuf>
#include <vector>

namespace nimbara::cli {

class StdinBuffer : public std::streambuf {
public:
    StdinBuffer();

protected:
    int_type underflow() override;

private:
    std::vector<char> block_;
};

}  // namespace nimbara::cli
