#include "nimbara/version.hpp"

namespace nimbara {

std::string version_text()
{
    return std::to_string(kVersionMajor) + "." + std::to_string(kVersionMinor) + "." +
           std::to_string(kVersionRevision);
}

}  // namespace nimbara
