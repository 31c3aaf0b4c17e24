#pragma once

#include "CampaignCatalogue.h"
#include "Endpoint.h"

#include <optional>

namespace adserver
{

/// GET and HEAD of the files beside the campaigns, whole or a range of bytes, with entity tags. Nothing
/// outside the campaigns' folders is served, whichever way a path or a link leads there. Safe from any
/// thread.
class FileEndpoint final : public Endpoint
{
public:
    explicit FileEndpoint(const CampaignCatalogue& campaigns) : m_campaigns(campaigns) {}

    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const override;

private:
    const CampaignCatalogue& m_campaigns;
};

} // namespace adserver
