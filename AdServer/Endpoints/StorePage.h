#pragma once

#include "CampaignCatalogue.h"
#include "Response.h"
#include "ServerRequest.h"

#include <optional>

namespace adserver
{

/// GET /store/CID: a page that stands in for the app's page in a store, made of the item's own texts. A
/// client that accepts JSON only gets the item's name and identifier. Safe from any thread.
class StorePage
{
public:
    explicit StorePage(const CampaignCatalogue& campaigns) : m_campaigns(campaigns) {}

    /// Nothing when the path is not below /store/.
    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const;

private:
    const CampaignCatalogue& m_campaigns;
};

} // namespace adserver
