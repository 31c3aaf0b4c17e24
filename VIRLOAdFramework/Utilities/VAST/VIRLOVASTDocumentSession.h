#pragma once

#include "URLSession.h"

#include <memory>

namespace VIRLOVASTDocumentSession
{

/// The HTTP session of all VAST documents of the process, made on first use. When the app terminates its
/// requests are cancelled, which ends every wrapper chain; later use makes a new session. Any thread.
[[nodiscard]] std::shared_ptr<virlo::URLSession> sharedSession();

} // namespace VIRLOVASTDocumentSession
