#include "stdin_buffer.hpp"

#include <unistd.h>

#include <cerrno>
#include <ios>

namespace nimbara::cli {

StdinBuffer::StdinBuffer() : block_(std::size_t{1} << 16) { setg(block_.data(), block_.data(), block_.data()); }

StdinBuffer::int_type StdinBuffer::underflow()
{
    if (gptr() < egptr()) return traits_type::to_int_type(*gptr());
    // One read: it waits only while nothing has arrived and takes all that has, up to the block, so
    // a line typed or fed one at a time is still answered as it comes.
    ::ssize_t got;
    do {
        got = ::read(STDIN_FILENO, block_.data(), block_.size());
    } while (got < 0 && errno == EINTR);
    // The stream turns the failure into its bad state, which the batch reports with the line it reached.
    if (got < 0) throw std::ios_base::failure("standard input could not be read");
    setg(block_.data(), block_.data(), block_.data() + got);
    return got == 0 ? traits_type::eof() : traits_type::to_int_type(block_.front());
}

}  // namespace nimbara::cli
