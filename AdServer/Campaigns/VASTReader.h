#pragma once

#include "JSONChecker.h"
#include "VASTDocument.h"

#include <functional>
#include <map>
#include <string>

namespace adserver
{

/// Reads the documents of a campaign file by their names. `checkAddress` is asked of every address in them
/// and throws where one is wrong. Throws std::invalid_argument with the key's path and the reason.
[[nodiscard]] std::map<std::string, VASTDocument>
readVAST(const JSONChecker& documents, const std::function<void(const JSONChecker& address)>& checkAddress);

} // namespace adserver
