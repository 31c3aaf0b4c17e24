#pragma once

#include "CampaignCatalogue.h"
#include "Endpoint.h"
#include "SessionTable.h"
#include "TransactionTable.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>

namespace adserver
{

/// The ad server's protocol: installs, sessions, advertisements, reports, rewards. Holds references only;
/// safe from any thread.
///
///     POST   /app/inst/APP                 200 {"status":"OK"}
///     POST   /app/sess/APP?state=start     200 the session
///     PUT    /app/sess/                    200 the session; 401 INVALID_SESSION
///     DELETE /app/sess/                    204; 401
///     GET    /ad/req?app&placement[&type]  200 the advertisement; 401; 404 NO_AD
///     GET    /ad/more/TXID/PAGE            200 a page of more items
///     POST   /ad/imp/TXID/CID              204
///     POST   /ad/click/TXID/CID            204
///     POST   /ad/form/TXID/CID             200 {"status":"OK"}; 400 where it is no contact data
///     GET    /ad/store/TXID/CID            302 to /store/CID
///     GET    /ad/poll/TXID/CID             200 {"status":false}, once due {"status":true,…}; 401
class AdEndpoints final : public Endpoint
{
public:
    AdEndpoints(SessionTable& sessions, TransactionTable& transactions, CampaignCatalogue& campaigns);

    [[nodiscard]] std::optional<Response> respond(const ServerRequest& request) const override;

private:
    /// An item of an advertisement that was handed out, as "/ad/WHAT/TXID/CID" names it.
    struct ItemPath {
        std::string txid = {};
        std::string rest = {};
        std::shared_ptr<const Campaign> campaign = {};
        const nlohmann::json* item = nullptr;
    };

    [[nodiscard]] Response install(const ServerRequest& request) const;
    [[nodiscard]] Response session(const ServerRequest& request) const;
    [[nodiscard]] Response startSession(const ServerRequest& request) const;
    [[nodiscard]] Response keepUpSession(const ServerRequest& request) const;
    [[nodiscard]] Response advertisement(const ServerRequest& request) const;
    [[nodiscard]] std::optional<Response> ofTransaction(const ServerRequest& request) const;
    [[nodiscard]] static Response moreItems(const ServerRequest& request, const ItemPath& path);
    [[nodiscard]] Response report(const ServerRequest& request, const ItemPath& path,
                                  const std::string& what) const;
    [[nodiscard]] Response storeLink(const ServerRequest& request, const ItemPath& path) const;
    [[nodiscard]] Response poll(const ServerRequest& request, const ItemPath& path) const;

    SessionTable& m_sessions;
    TransactionTable& m_transactions;
    CampaignCatalogue& m_campaigns;
};

} // namespace adserver
