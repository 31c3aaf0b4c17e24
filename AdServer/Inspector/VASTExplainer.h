#pragma once

#include "Response.h"

#include <filesystem>
#include <string>

namespace adserver
{

/// Runs `vast-inspect --explain` on a document: the ad server links nothing of the library, so the program
/// does it, in a process of its own. It is the one beside this program, or else the one of the search path.
/// Safe from any thread.
class VASTExplainer
{
public:
    VASTExplainer();

    /// The program's report as 200; 501 where there is no such program, 502 where it fails or takes longer
    /// than ten seconds. Wrappers are not followed: their documents are in the log, too.
    [[nodiscard]] Response explain(const std::string& document) const;

private:
    std::string m_program;
};

} // namespace adserver
