#pragma once

#include "CampaignCatalogue.h"
#include "Endpoint.h"

#include <optional>

namespace adserver
{

/// GET /store/CID: a page in place of the app's page in a store, made of the item's own texts. A
/// client that accepts JSON only gets the item's name and identifier. Safe from any thread.
class StorePage final : public Endpoint
{
public:
    explicit StorePage(const CampaignCatalogue& campaigns) : m_campaigns(campaigns) {}

    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const override;

private:
    const CampaignCatalogue& m_campaigns;
};

} // namespace adserver
