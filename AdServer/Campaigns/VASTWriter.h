#pragma once

#include "VASTDocument.h"

#include <cstdint>
#include <string>

namespace adserver
{

/// Who asks for which document.
struct VASTRequest {
    /// The document's name.
    std::string name;
    /// From 1 to the document's `steps`.
    std::uint64_t step = 1;
    /// "https://localhost:8443": how the client calls this server.
    std::string origin;
    /// Handed on in every address of this server; empty: left out.
    std::string tx;
};

/// The document as XML: addresses and titles in CDATA sections, systems and durations as plain text, as
/// clients want them, and with macros in brackets for clients to fill in or leave.
[[nodiscard]] std::string writeVAST(const VASTDocument& document, const VASTRequest& request);

} // namespace adserver
