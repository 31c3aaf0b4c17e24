#pragma once

#include "CampaignCatalogue.h"
#include "Endpoint.h"

#include <string>

namespace adserver
{

/// VAST documents, and the tracking URLs in them. A document is the file vast/NAME.xml of a campaign folder
/// with its placeholders filled in; it belongs to no transaction, so it can be fetched by itself. Safe from
/// any thread.
///
///     GET /vast/NAME[?tx=TXID]        200 vast/NAME.xml
///     GET /vast/NAME/STEP[?tx=TXID]   200 vast/NAME/STEP.xml where there is one, else vast/NAME.xml
///     GET /ping/NAME/…                200, empty
class VASTEndpoints final : public Endpoint
{
public:
    explicit VASTEndpoints(const CampaignCatalogue& campaigns) : m_campaigns(campaigns) {}

    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const override;

private:
    [[nodiscard]] Response document(const ServerRequest& request) const;
    [[nodiscard]] Response ping(const ServerRequest& request) const;
    [[nodiscard]] std::optional<std::string> templateNamed(const std::string& name) const;

    const CampaignCatalogue& m_campaigns;
};

} // namespace adserver
