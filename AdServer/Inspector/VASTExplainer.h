#pragma once

#include "Response.h"

#include <string>
#include <utility>
#include <vector>

namespace adserver
{

/// Runs `vast-inspect --explain` on documents of the log: the ad server links nothing of the library, so the
/// program does it, in a process of its own. It is the one beside this program, or else the one of the search
/// path. Safe from any thread.
class VASTExplainer
{
public:
    /// URL and text.
    using Document = std::pair<std::string, std::string>;

    VASTExplainer();

    /// The program's report on the first document as 200; the others are those that its wrappers may lead to,
    /// and nothing is requested. 501 where there is no such program, 502 where it fails or takes longer than
    /// ten seconds.
    [[nodiscard]] Response explain(const std::vector<Document>& documents) const;

private:
    std::string m_program;
};

} // namespace adserver
