#pragma once

#include "CampaignCatalogue.h"
#include "Response.h"
#include "ServerRequest.h"

#include <optional>
#include <string>

namespace adserver
{

/// The VAST documents of all campaigns and what they track. Bound to no transaction, so that a document can
/// be fetched by itself; one named in its query is handed on. Safe from any thread.
///
///     GET /vast/NAME[?tx=TXID]           200 the document
///     GET /vast/NAME/STEP[?tx=TXID]      200 the same further down its chain
///     GET /ping/NAME/…                   200, empty
class VASTEndpoints
{
public:
    explicit VASTEndpoints(const CampaignCatalogue& campaigns) : m_campaigns(campaigns) {}

    /// Nothing when the path is none of these.
    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const;

private:
    [[nodiscard]] Response document(const ServerRequest& request) const;
    [[nodiscard]] Response ping(const ServerRequest& request) const;

    const CampaignCatalogue& m_campaigns;
};

} // namespace adserver
