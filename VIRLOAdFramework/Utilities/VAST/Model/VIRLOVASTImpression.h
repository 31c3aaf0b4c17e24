#pragma once

#include "URL.h"
#include "XMLAttributes.h"

#include <cstddef>
#include <memory>
#include <optional>
#include <string>

/// One URL that is requested when an ad is shown. Immutable; any thread.
class VIRLOVASTImpression
{
public:
    /// `url` is absent where the element's text is not a URL; `properties` are the attributes of the element
    /// "Impression".
    [[nodiscard]] static std::shared_ptr<VIRLOVASTImpression>
    initWithURLAndProperties(std::optional<virlo::URL> url, const virlo::XMLAttributes& properties);

    VIRLOVASTImpression(std::optional<virlo::URL> url, const virlo::XMLAttributes& properties);
    VIRLOVASTImpression(const VIRLOVASTImpression&) = delete;
    VIRLOVASTImpression& operator=(const VIRLOVASTImpression&) = delete;

    [[nodiscard]] const std::optional<virlo::URL>& url() const noexcept { return m_url; }

    /// The attribute "id".
    [[nodiscard]] const std::optional<std::string>& identifier() const noexcept { return m_identifier; }

    /// By URL alone; one without a URL equals none.
    [[nodiscard]] bool isEqual(const VIRLOVASTImpression& other) const;
    [[nodiscard]] std::size_t hash() const;
    [[nodiscard]] std::string description() const;

private:
    const std::optional<virlo::URL> m_url;
    const std::optional<std::string> m_identifier;
};
