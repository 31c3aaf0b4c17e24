#pragma once

#include "URLSession.h"

#include <memory>

namespace VIRLOVASTDocumentSession
{

/// The HTTP session of all VAST documents of the process, made at the first use. When the app terminates its
/// exchanges are cancelled, which ends every wrapper chain at once; later use makes a new one. Any thread.
[[nodiscard]] std::shared_ptr<virlo::URLSession> sharedSession();

} // namespace VIRLOVASTDocumentSession
